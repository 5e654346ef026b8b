#pragma once

// The unit of media that flows between readers, filters and writers: one
// picture, one run of audio frames or one subtitle event, with its decode
// time, composition trim, hint flags, a reference to its bytes, optional
// metadata, the sample it was derived from, and a property bag.
//
// Samples are pooled: Create takes one from the class's pool and the last
// Release hands it back, where ReclaimCleanUp drops everything it refers to
// (data reference, metadata, original, properties) and zeroes its fields
// while keeping buffers of its own. A sample made with `new` outside a pool
// is destroyed by its last Release as usual.
//
// Times are counts of units of the medium's time scale. A sample takes no
// lock: one thread works on it at a time.
//
// Ownership: SetDataReference, SetMetadata and SetOriginal share their
// argument (the sample takes its own reference, the caller keeps his);
// GetDataReference, GetMetadata and GetOriginal lend (borrowed pointers);
// GetLockedDataReference makes a new guard the caller releases.
#include <climits>

#include <vek/core/CPoolObject.h>
#include <vek/media/IProperties.h>
#include <vek/samples/CLockedDataReference.h>
#include <vek/samples/CMetadata.h>

namespace Quorvex::Vek {

class VEK_API CMediaSample : public CPoolObject, public IProperties {
public:
    // Hint flags. Enumerators, not static data: a DLL client can bind them
    // to references without importing data.
    enum : int32_t {
        KeyFrameAligned = 1,
        Discontinuity = 2,
        Hold = 4,
        Reuse = 8,
        Splice = 0x40000000,
        // The sign bit: the sample is decoded but not presented.
        Exclude = INT32_MIN,
    };

    int SetTime(int64_t time)
    {
        m_time = time;
        return RESULT_OK;
    }
    int64_t GetTime() const { return m_time; }
    int SetHint(int32_t hint)
    {
        m_hint = hint;
        return RESULT_OK;
    }
    int32_t GetHint() const { return m_hint; }
    bool IsExcluded() const { return (m_hint & Exclude) != 0; }

    // Negative: that many units trimmed from the start; positive: from the end.
    int SetTrim(int32_t trim)
    {
        m_trim = trim;
        return RESULT_OK;
    }
    int32_t GetTrim() const { return m_trim; }
    // Trims one end: -19003 when either value is negative or both are
    // positive (the trim is then unchanged); both zero changes nothing.
    int SetCompositionTrim(int32_t leading, int32_t trailing);
    void GetCompositionTrim(int32_t& leading, int32_t& trailing) const;

    // The sample's length in time units, from the subclass's own fields.
    virtual int64_t GetDuration() const = 0;
    // When the sample is presented; the decode time unless a subclass
    // says otherwise.
    virtual int64_t GetCompositionTime() const;
    // 0 when excluded, otherwise the duration less the trimmed units.
    int64_t GetCompositionDuration() const;
    // True when `time` falls within [composition time, + composition duration).
    bool ContainsCompositionTime(int64_t time) const;

    // Shares `reference` (may be null: the sample then has no bytes).
    int SetDataReference(CMediaSampleDataReference* reference);
    CMediaSampleDataReference* GetDataReference() const { return m_dataReference; }
    bool HasDataReference() const { return m_dataReference != nullptr; }
    // A new guard over the data reference with its bytes locked (new
    // reference); null without a data reference or without memory.
    CLockedDataReference* GetLockedDataReference() const;

    // Shares `metadata` (may be null).
    int SetMetadata(CMetadata* metadata);
    CMetadata* GetMetadata() const { return m_metadata; }
    // Replaces shared metadata by a copy of its own, so that changes made
    // through this sample reach no other. 0 (also without metadata), -19002.
    int MakeLocalMetadataCopy();

    // Shares `original` (may be null). -19003 when the sample is its own
    // original, directly or through the original's chain: the samples would
    // keep each other alive for ever.
    int SetOriginal(const CMediaSample* original);
    const CMediaSample* GetOriginal() const { return m_original; }

protected:
    explicit CMediaSample(uint32_t type);
    ~CMediaSample() override;

    // Drops every reference and zeroes the common fields; subclasses call it
    // from their own ReclaimCleanUp.
    void ReclaimCleanUp() override;

private:
    int32_t m_hint = 0;
    int64_t m_time = 0;
    int32_t m_trim = 0;
    RObject<CMediaSampleDataReference> m_dataReference;
    RObject<CMetadata> m_metadata;
    RObject<const CMediaSample> m_original;
};

} // namespace Quorvex::Vek
