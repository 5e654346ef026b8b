#pragma once

// What every container offers, read or written: the context that names its
// files, its media (at most one video track, up to 32 audio and 32 subtitle
// tracks) with their formats and descriptions, readiness of that media, and
// a property bag of container-level facts (timecode, broadcast-wave text,
// MXF identifiers ...) described by one accessor table.
//
// Ownership: SetContext shares the context; GetContext and the
// Get*Properties getters lend; Get*Formats hand the caller a new list (null
// when the container has no such media).
//
// Readiness: a reader whose media appears while a pass runs announces it
// with SetReady, which wakes every thread in WaitForMedia. Both use the
// container's own monitor.
#include <vek/core/CString.h>
#include <vek/core/CValueList.h>
#include <vek/io/CContainerContext.h>
#include <vek/media/CAudioProperties.h>
#include <vek/media/CSubtitleProperties.h>
#include <vek/media/CVideoProperties.h>

namespace Quorvex::Vek {

class VEK_API CContainer : public CObject, public IProperties {
public:
    enum : uint32_t { Type = Four("cont") };
    // Track limits: tracks beyond them are not exposed.
    enum : int32_t { MaxVideoMedia = 1, MaxAudioMedia = 32, MaxSubtitleMedia = 32 };

    // The described container keys; "Starting Timecode" first. Ends with a
    // null key.
    static const Accessor Accessors[];

    // Text renderings of format-specific container facts, for the table:
    // a QuickTime caption type ("c608"), a QuickTime timecode mode (its
    // flag names), an MXF data-container label (dotted hex) and a
    // broadcast-wave UMID (hex). Each: 0 with a new string in *out, -19007
    // for an absent key, -19016 for a value of the wrong width.
    static int GetMovCaptionType(IProperties* bag, const char* key, CString** out);
    static int GetMovTimeCodeMode(IProperties* bag, const char* key, CString** out);
    static int GetMxfDataContainer(IProperties* bag, const char* key, CString** out);
    static int GetWavUmid(IProperties* bag, const char* key, CString** out);
    // The broadcast-wave time reference (samples since midnight, 8 bytes
    // little-endian) as a decimal number.
    static int GetWavTimeReference(IProperties* bag, const char* key, CString** out);

    // Virtual members in this order, then CContainerReader's.
    // A short static name of the format ("WAV", "AIFF" ...); never null.
    virtual const char* GetFormatName();
    // Shares `context` (null detaches). Readers open their streams from it.
    virtual int SetContext(CContainerContext* context);

    virtual CValueList<unsigned int>* GetVideoFormats();
    virtual int32_t GetVideoMediaCount();
    virtual CVideoProperties* GetVideoProperties(int32_t track);
    virtual CValueList<unsigned int>* GetAudioFormats();
    virtual int32_t GetAudioMediaCount();
    virtual CAudioProperties* GetAudioProperties(int32_t track);
    virtual CValueList<unsigned int>* GetSubtitleFormats();
    virtual int32_t GetSubtitleMediaCount();
    virtual CSubtitleProperties* GetSubtitleProperties(int32_t track);

    // Reads the headers (and, where a format needs it, the whole file) so
    // that counts, formats and descriptions are known. Once, before any
    // sample is read. 0 or a negative code; after a failure the container
    // has no tracks.
    virtual int BeginIndex();
    // Drops what only the pass needed; samples stay readable.
    virtual int EndIndex();

    virtual bool IsVideoReady(int32_t track);
    virtual bool IsAudioReady(int32_t track);
    virtual bool IsSubtitleReady(int32_t track);
    // True as soon as one track is ready; otherwise waits once for up to
    // `milliseconds` and looks again (no further retry). A container with
    // no tracks answers false after that one wait.
    virtual bool WaitForMedia(int32_t milliseconds);
    virtual bool IsReady();
    // Stores the flag and wakes every waiter.
    virtual int SetReady(bool ready);

    CContainerContext* GetContext() const { return m_context; }

    int32_t GetCacheSize() const { return m_cacheSize; }
    void SetCacheSize(int32_t size) { m_cacheSize = size; }
    int32_t GetQueueSize() const { return m_queueSize; }
    void SetQueueSize(int32_t size) { m_queueSize = size; }

protected:
    explicit CContainer(uint32_t type);
    ~CContainer() override;

    const Accessor* GetPropertyAccessors() const override;

    // The formats of `count` tracks as a new list, or null when count is 0
    // or memory runs out. For Get*Formats overrides.
    template <typename Properties, typename Getter>
    CValueList<unsigned int>* ListFormats(int32_t count, Getter getProperties);

private:
    bool AnyTrackReady();

    RObject<CContainerContext> m_context;
    bool m_ready = false;
    int32_t m_cacheSize = 0;
    int32_t m_queueSize = 0;
};

template <typename Properties, typename Getter>
CValueList<unsigned int>* CContainer::ListFormats(int32_t count, Getter getProperties)
{
    if (count <= 0)
        return nullptr;
    RObject<CValueList<unsigned int>> formats(CValueList<unsigned int>::Create());
    if (!formats || formats->Reserve(count) < 0)
        return nullptr;
    for (int32_t track = 0; track < count; ++track) {
        Properties* properties = getProperties(track);
        formats->Add(properties ? properties->GetFormat() : 0u);
    }
    return formats.Detach();
}

} // namespace Quorvex::Vek
