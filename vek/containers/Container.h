#pragma once

// Public wrapper of CContainer, and through ContainerReader of every reader.
// Calls forward unchanged; a null wrapper answers 0, false, an empty name
// or a null wrapper to the getters and -19001 to the rest. Track
// descriptions are shared with the container (read them, do not change
// them while it is in use).
#include <vek/containers/CContainer.h>
#include <vek/core/BaseObject.h>
#include <vek/io/ContainerContext.h>
#include <vek/media/AudioProperties.h>
#include <vek/media/Properties.h>
#include <vek/media/SubtitleProperties.h>
#include <vek/media/VideoProperties.h>

namespace Quorvex::Vek {

class VEK_API Container : public Object<CContainer, IProperties> {
public:
    Container() = default;
    // Adopts the caller's reference.
    Container(CContainer* object) : BaseObject(object) {}
    using Object::operator=;

    // A wrapper sharing `object` (its count goes up by one).
    static Container FromObject(CContainer* object);

    Properties GetProperties() const { return Properties(GetInterface()); }
    ContainerContext GetContext() const;

    const char* GetFormatName() const;
    int32_t GetVideoMediaCount() const;
    int32_t GetAudioMediaCount() const;
    int32_t GetSubtitleMediaCount() const;
    VideoProperties GetVideoProperties(int32_t track) const;
    AudioProperties GetAudioProperties(int32_t track) const;
    SubtitleProperties GetSubtitleProperties(int32_t track) const;

    bool IsReady() const;
    bool WaitForMedia(int32_t milliseconds) const;
};

} // namespace Quorvex::Vek
