#include <vek/samples/CVideoSample.h>

#include <vek/core/CheckedMath.h>
#include <vek/core/Log.h>
#include <vek/samples/SharedPool.h>

#include <cstring>

namespace Quorvex::Vek {

namespace {

// Free video samples kept for reuse across the process.
constexpr int32_t SharedPoolSize = 64;
std::atomic<CPool<CVideoSample>*> s_pool{nullptr};

// Two's complement sums without undefined overflow.
int64_t WrappingAdd(int64_t a, int64_t b)
{
    return static_cast<int64_t>(static_cast<uint64_t>(a) + static_cast<uint64_t>(b));
}

int32_t WrappingSubtract(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

bool IsPictureCode(int32_t value)
{
    return value >= 0 && value <= 2;
}

} // namespace

const char* const CVideoSample::PictureType[3] = {"I", "P", "B"};
const char* const CVideoSample::PictureStructure[3] = {"F", "U", "L"};

CVideoSample* CVideoSample::Create()
{
    return Detail::TakeFromSharedPool(s_pool, SharedPoolSize);
}

CVideoSample::CVideoSample() : CMediaSample(Type) {}

CVideoSample::~CVideoSample()
{
    delete[] m_atom;
}

void CVideoSample::ReclaimCleanUp()
{
    CMediaSample::ReclaimCleanUp();
    m_pictureType = I;
    m_pictureStructure = Frame;
    m_duration = 0;
    m_compositionOffset = 0;
    m_frameNumber = 0;
    m_atomLength = 0; // the buffer stays for the next user
}

int64_t CVideoSample::GetCompositionTime() const
{
    return WrappingAdd(GetTime(), m_compositionOffset);
}

int CVideoSample::AdjustTime(int32_t delta)
{
    int32_t offset = 0;
    if (!Checked::Subtract(m_compositionOffset, delta, &offset))
        Log(LogLevel::Warning, "CVideoSample::AdjustTime: offset %d less %d leaves 32 bits; the composition time "
            "moves\n", m_compositionOffset, delta);
    SetTime(WrappingAdd(GetTime(), delta));
    m_compositionOffset = WrappingSubtract(m_compositionOffset, delta);
    return RESULT_OK;
}

int CVideoSample::SetPictureType(int32_t type)
{
    if (!IsPictureCode(type)) {
        Log(LogLevel::Error, "CVideoSample::SetPictureType: picture type %d is not I (0), P (1) or B (2)\n", type);
        return RESULT_NOT_SUPPORTED;
    }
    m_pictureType = type;
    return RESULT_OK;
}

int CVideoSample::SetPictureStructure(int32_t structure)
{
    if (!IsPictureCode(structure)) {
        Log(LogLevel::Error, "CVideoSample::SetPictureStructure: picture structure %d is not F (0), U (1) or "
            "L (2)\n", structure);
        return RESULT_NOT_SUPPORTED;
    }
    m_pictureStructure = structure;
    return RESULT_OK;
}

int CVideoSample::SetAtom(CByteArray* atom)
{
    if (!atom)
        return SetAtomData(nullptr, 0);
    const unsigned char* data = atom->GetData();
    if (!data && atom->GetLength() > 0) {
        Log(LogLevel::Error, "CVideoSample::SetAtom: no memory for an atom of %d bytes\n", atom->GetLength());
        return RESULT_OUT_OF_MEMORY;
    }
    return SetAtomData(data, data ? atom->GetLength() : 0);
}

CByteArray* CVideoSample::GetAtom() const
{
    return m_atomLength > 0 ? CByteArray::Create(m_atom, m_atomLength) : nullptr;
}

int CVideoSample::SetAtomData(const unsigned char* data, int32_t length)
{
    if (length < 0) {
        Log(LogLevel::Error, "CVideoSample::SetAtomData: length %d is negative\n", length);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    if (!data || length == 0) {
        m_atomLength = 0;
        return RESULT_OK;
    }
    if (length > m_atomCapacity) {
        auto* larger = new (fallible) unsigned char[length];
        if (!larger) {
            Log(LogLevel::Error, "CVideoSample::SetAtomData: no memory for an atom of %d bytes\n", length);
            return RESULT_OUT_OF_MEMORY;
        }
        delete[] m_atom;
        m_atom = larger;
        m_atomCapacity = length;
    }
    std::memmove(m_atom, data, static_cast<size_t>(length));
    m_atomLength = length;
    return RESULT_OK;
}

} // namespace Quorvex::Vek
