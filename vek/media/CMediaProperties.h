#pragma once

// Description of one medium (a track of a container, the input or output of
// a filter): its format code, its time scale and its duration, plus a
// property bag for everything else. Audio, video and subtitle descriptions
// derive from it and add the facts of their medium.
//
// Times are counts of units of the time scale (by default 10,000,000 units
// per second). A description takes no lock; guard a shared one with its
// monitor.
#include <vek/core/CObject.h>
#include <vek/media/IProperties.h>

namespace Quorvex::Vek {

class VEK_API CMediaProperties : public CObject, public IProperties {
public:
    enum : uint32_t { Type = Four("mdia") };
    static constexpr int64_t DefaultTimeScale = 10000000;

    // The described keys common to every medium; ends with a null key.
    static const Accessor Accessors[];

    CMediaProperties();

    // A new description with the same facts and a copy of the bag; null
    // without memory. Derived descriptions clone as their own class.
    virtual CMediaProperties* Clone() const;

    // A four-character format code (VideoFormat, AudioFormat, ...); 0 unknown.
    uint32_t GetFormat() const { return m_format; }
    void SetFormat(uint32_t format) { m_format = format; }

    // Units per second; -19003 unless positive.
    int64_t GetTimeScale() const { return m_timeScale; }
    int SetTimeScale(int64_t unitsPerSecond);

    // In units of the time scale; -19003 when negative.
    int64_t GetDuration() const { return m_duration; }
    int SetDuration(int64_t duration);

protected:
    explicit CMediaProperties(uint32_t type);
    CMediaProperties(const CMediaProperties& other);
    ~CMediaProperties() override;

    const Accessor* GetPropertyAccessors() const override;
    // The clone, or null (released) when its bag is incomplete.
    CMediaProperties* CloneChecked(CMediaProperties* copy) const;

private:
    uint32_t m_format = 0;
    int64_t m_timeScale = DefaultTimeScale;
    int64_t m_duration = 0;
};

} // namespace Quorvex::Vek
