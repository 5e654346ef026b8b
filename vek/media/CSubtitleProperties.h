#pragma once

// Description of a subtitle or caption medium. It adds no facts of its own
// beyond the common media ones yet (format, time scale, duration); details
// such as caption channels travel in the property bag.
#include <vek/media/CMediaProperties.h>

namespace Quorvex::Vek {

class VEK_API CSubtitleProperties : public CMediaProperties {
public:
    enum : uint32_t { Type = Four("sbtl") };

    // The described subtitle keys, common media keys included; ends with a null key.
    static const Accessor Accessors[];

    CSubtitleProperties();
    CMediaProperties* Clone() const override;

protected:
    CSubtitleProperties(const CSubtitleProperties& other);
    ~CSubtitleProperties() override;

    const Accessor* GetPropertyAccessors() const override;
};

} // namespace Quorvex::Vek
