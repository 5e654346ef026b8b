#include <vek/samples/CMediaSample.h>

#include <vek/core/Log.h>

#include <climits>

namespace Quorvex::Vek {

CMediaSample::CMediaSample(uint32_t type) : CPoolObject(type) {}

CMediaSample::~CMediaSample() = default;

void CMediaSample::ReclaimCleanUp()
{
    m_hint = 0;
    m_time = 0;
    m_trim = 0;
    m_dataReference.SafeRelease();
    m_metadata.SafeRelease();
    m_original.SafeRelease();
    ClearProperties();
}

int CMediaSample::SetCompositionTrim(int32_t leading, int32_t trailing)
{
    if (leading < 0 || trailing < 0 || (leading > 0 && trailing > 0)) {
        Log(LogLevel::Error, "CMediaSample::SetCompositionTrim: leading %d and trailing %d: a sample trims one "
            "end by a positive amount\n", leading, trailing);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    if (leading > 0)
        m_trim = -leading;
    else if (trailing > 0)
        m_trim = trailing;
    return RESULT_OK;
}

void CMediaSample::GetCompositionTrim(int32_t& leading, int32_t& trailing) const
{
    // The most negative trim has no positive twin in 32 bits; report the
    // largest leading trim there is.
    leading = m_trim < 0 ? (m_trim == INT32_MIN ? INT32_MAX : -m_trim) : 0;
    trailing = m_trim > 0 ? m_trim : 0;
}

int64_t CMediaSample::GetCompositionTime() const
{
    return m_time;
}

int64_t CMediaSample::GetCompositionDuration() const
{
    if (IsExcluded())
        return 0;
    const int64_t trimmed = m_trim < 0 ? -int64_t(m_trim) : int64_t(m_trim);
    return GetDuration() - trimmed;
}

bool CMediaSample::ContainsCompositionTime(int64_t time) const
{
    if (IsExcluded())
        return false;
    const int64_t start = GetCompositionTime();
    if (time < start)
        return false;
    // time - start cannot overflow as an unsigned distance.
    const uint64_t distance = static_cast<uint64_t>(time) - static_cast<uint64_t>(start);
    const int64_t duration = GetCompositionDuration();
    return duration > 0 && distance < static_cast<uint64_t>(duration);
}

int CMediaSample::SetDataReference(CMediaSampleDataReference* reference)
{
    m_dataReference = RObject<CMediaSampleDataReference>::FromObject(reference);
    return RESULT_OK;
}

CLockedDataReference* CMediaSample::GetLockedDataReference() const
{
    if (!m_dataReference) {
        Log(LogLevel::Error, "CMediaSample::GetLockedDataReference: sample of type 0x%08x has no data reference\n",
            GetType());
        return nullptr;
    }
    return CLockedDataReference::Create(m_dataReference);
}

int CMediaSample::SetMetadata(CMetadata* metadata)
{
    m_metadata = RObject<CMetadata>::FromObject(metadata);
    return RESULT_OK;
}

int CMediaSample::MakeLocalMetadataCopy()
{
    if (!m_metadata)
        return RESULT_OK;
    CMetadata* copy = m_metadata->Clone();
    if (!copy) {
        Log(LogLevel::Error, "CMediaSample::MakeLocalMetadataCopy: no memory for a copy of %d elements\n",
            m_metadata->GetElementCount());
        return RESULT_OUT_OF_MEMORY;
    }
    copy->SetHasLocalDataCopy(true);
    m_metadata = copy;
    return RESULT_OK;
}

int CMediaSample::SetOriginal(const CMediaSample* original)
{
    for (const CMediaSample* link = original; link; link = link->m_original) {
        if (link == this) {
            Log(LogLevel::Error, "CMediaSample::SetOriginal: sample %p would become its own original\n",
                static_cast<const void*>(this));
            return RESULT_ARGUMENT_OUT_OF_RANGE;
        }
    }
    m_original = RObject<const CMediaSample>::FromObject(original);
    return RESULT_OK;
}

} // namespace Quorvex::Vek
