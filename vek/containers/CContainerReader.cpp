#include <vek/containers/CContainerReader.h>

#include <cstring>

#include <vek/containers/CContainerReaderInventory.h>
#include <vek/core/Log.h>
#include <vek/io/CContainerDirectoryContext.h>
#include <vek/media/ContainerReaderProperty.h>

VEK_DEFINE_COMPONENT_INVENTORY(::Quorvex::Vek::CContainerReader);

namespace Quorvex::Vek {

CContainerReader::CContainerReader(uint32_t type, unsigned int flags) : CContainer(type), m_flags(flags) {}

CContainerReader::~CContainerReader() = default;

CContainerReader* CContainerReader::Create(CContainerContext* context)
{
    return Create(context, 0);
}

CContainerReader* CContainerReader::Create(CContainerContext* context, unsigned int flags)
{
    if (!context) {
        Log(LogLevel::Error, "CContainerReader::Create: the context is null\n");
        return nullptr;
    }
    CAutoLock lock(context);
    RObject<CString> name(context->GetCurrentFileName());
    if (!name) {
        Log(LogLevel::Error, "CContainerReader::Create: the context names no file\n");
        return nullptr;
    }
    CStream* opened = nullptr;
    const int result = context->OpenStream(CContainerContext::ReaderSettings{}, name, opened);
    RObject<CStream> stream(opened);
    if (result < 0) {
        Log(LogLevel::Error, "CContainerReader::Create: opening '%s' failed with %s\n", name->GetChars(),
            GetResultName(result));
        return nullptr;
    }
    RObject<CContainerReader> reader(CContainerReaderInventory::Create(stream));
    if (!reader) {
        Log(LogLevel::Error, "CContainerReader::Create: no registered reader accepts '%s'\n", name->GetChars());
        return nullptr;
    }
    reader->m_flags = flags;
    if (reader->SetContext(context) < 0)
        return nullptr;
    // The reader opens this file again in BeginIndex, normally with these
    // same settings: keep the stream for it (see OpenStream).
    reader->m_probeStream = RObject<CStream>::FromObject(stream);
    reader->m_probeName = RObject<CString>::FromObject(name);
    return reader.Detach();
}

CContainerReader* CContainerReader::Create(CString* path)
{
    return Create(path, 0);
}

CContainerReader* CContainerReader::Create(CString* path, unsigned int flags)
{
    if (!path) {
        Log(LogLevel::Error, "CContainerReader::Create: the path is null\n");
        return nullptr;
    }
    RObject<CContainerDirectoryContext> context(CContainerDirectoryContext::CreateForFile(path));
    if (!context) {
        Log(LogLevel::Error, "CContainerReader::Create: no context for '%s'\n", path->GetChars());
        return nullptr;
    }
    return Create(context, flags);
}

int CContainerReader::Validate(CStream*)
{
    return 0;
}

int CContainerReader::ReadVideoSample(int32_t track, CVideoSample*& sample)
{
    sample = nullptr;
    return track == 0 ? ReadVideoSample(sample) : RESULT_NOT_SUPPORTED;
}

int CContainerReader::ReadVideoSample(CVideoSample*& sample)
{
    // A format overrides one of the two forms; with neither, the track form
    // would call back here, so the base answers for both.
    static thread_local int depth = 0;
    if (depth > 0) {
        sample = nullptr;
        return RESULT_NOT_SUPPORTED;
    }
    ++depth;
    const int result = ReadVideoSample(0, sample);
    --depth;
    return result;
}

int CContainerReader::ReadVideoData(int32_t, CContainerDataReference*, CMemoryDataReference*& data)
{
    data = nullptr;
    return RESULT_NOT_IMPLEMENTED;
}

int CContainerReader::ReadVideoData(CVideoSample* sample)
{
    return ReadVideoData(0, sample);
}

int CContainerReader::ReadVideoMetadata(int32_t, unsigned int, CContainerDataReference*,
                                        CMemoryDataReference*& data)
{
    data = nullptr;
    return RESULT_NOT_IMPLEMENTED;
}

int CContainerReader::ReadVideoMetadata(CVideoSample* sample)
{
    return ReadVideoMetadata(0, sample);
}

int CContainerReader::ReadAudioSample(int32_t, CAudioSample*& sample)
{
    sample = nullptr;
    return RESULT_NOT_SUPPORTED;
}

int CContainerReader::ReadAudioData(int32_t, CContainerDataReference*, CMemoryDataReference*& data)
{
    data = nullptr;
    return RESULT_NOT_IMPLEMENTED;
}

int CContainerReader::ReadAudioMetadata(int32_t, unsigned int, CContainerDataReference*,
                                        CMemoryDataReference*& data)
{
    data = nullptr;
    return RESULT_NOT_IMPLEMENTED;
}

int CContainerReader::ReadSubtitleSample(int32_t, CSubtitleSample*& sample)
{
    sample = nullptr;
    return RESULT_NOT_SUPPORTED;
}

int CContainerReader::ReadSubtitleData(int32_t, CContainerDataReference*, CMemoryDataReference*& data)
{
    data = nullptr;
    return RESULT_NOT_IMPLEMENTED;
}

int CContainerReader::ReadSubtitleMetadata(int32_t, unsigned int, CContainerDataReference*,
                                           CMemoryDataReference*& data)
{
    data = nullptr;
    return RESULT_NOT_IMPLEMENTED;
}

namespace {

// Fetches the bytes of a sample whose data reference is still a container
// range and hands them to `use`; any other sample is left as it is (0).
template <typename Fetch, typename Use>
int ResolveRange(CMediaSample* sample, Fetch fetch, Use use)
{
    if (!sample)
        return RESULT_ARGUMENT_NULL;
    CMediaSampleDataReference* reference = sample->GetDataReference();
    if (!reference || !reference->IsType(CContainerDataReference::Type))
        return RESULT_OK;
    CMemoryDataReference* fetched = nullptr;
    const int result = fetch(static_cast<CContainerDataReference*>(reference), fetched);
    RObject<CMemoryDataReference> data(fetched);
    return result < 0 ? result : use(data.Get());
}

} // namespace

template <typename Sample, typename Fetch>
int CContainerReader::ResolveData(Sample* sample, Fetch fetch)
{
    return ResolveRange(sample, fetch, [sample](CMemoryDataReference* data) { return sample->SetDataReference(data); });
}

int CContainerReader::ReadVideoData(int32_t track, CVideoSample* sample)
{
    return ResolveData(sample, [&](CContainerDataReference* range, CMemoryDataReference*& data) {
        return ReadVideoData(track, range, data);
    });
}

int CContainerReader::ReadAudioData(int32_t track, CAudioSample* sample)
{
    return ResolveData(sample, [&](CContainerDataReference* range, CMemoryDataReference*& data) {
        return ReadAudioData(track, range, data);
    });
}

int CContainerReader::ReadSubtitleData(int32_t track, CSubtitleSample* sample)
{
    return ResolveData(sample, [&](CContainerDataReference* range, CMemoryDataReference*& data) {
        return ReadSubtitleData(track, range, data);
    });
}

namespace {

// The metadata a reader fetches for a sample comes as an "mfrm" atom; it
// becomes the sample's metadata, and the sample's bytes stay where they are.
int AttachMetadata(CMediaSample* sample, CMemoryDataReference* data)
{
    RObject<CMetadata> metadata(CMetadata::FromAtom(data ? data->GetBuffer() : nullptr));
    if (!metadata) {
        Log(LogLevel::Error, "CContainerReader::ReadMetadata: the reader's metadata is not a valid atom\n");
        return RESULT_FORMAT_ERROR;
    }
    return sample->SetMetadata(metadata);
}

} // namespace

int CContainerReader::ReadVideoMetadata(int32_t track, CVideoSample* sample)
{
    return ResolveRange(sample, [&](CContainerDataReference* range, CMemoryDataReference*& data) {
        return ReadVideoMetadata(track, CMetadata::Type, range, data);
    }, [sample](CMemoryDataReference* data) { return AttachMetadata(sample, data); });
}

int CContainerReader::ReadAudioMetadata(int32_t track, CAudioSample* sample)
{
    return ResolveRange(sample, [&](CContainerDataReference* range, CMemoryDataReference*& data) {
        return ReadAudioMetadata(track, CMetadata::Type, range, data);
    }, [sample](CMemoryDataReference* data) { return AttachMetadata(sample, data); });
}

int CContainerReader::ReadData(CStream* stream, int64_t position, CByteArray* data)
{
    if (!stream || !data)
        return RESULT_ARGUMENT_NULL;
    if (position < 0)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    unsigned char* bytes = data->GetData();
    const int32_t length = data->GetLength();
    if (!bytes && length > 0)
        return RESULT_OUT_OF_MEMORY;
    CAutoLock lock(stream);
    int result = stream->Seek(position, CStream::Begin);
    for (int32_t got = 0; result >= 0 && got < length; got += result) {
        result = stream->Read(bytes + got, length - got);
        if (result == 0)
            result = RESULT_END_OF_STREAM;
    }
    if (result < 0)
        Log(LogLevel::Error, "CContainerReader::ReadData: reading %d bytes at %lld failed with %s\n", length,
            static_cast<long long>(position), GetResultName(result));
    return result < 0 ? result : RESULT_OK;
}

namespace {

// The memory of a range about to be read. A CByteArray of its own would
// zero-fill its bytes first, a second pass over every byte of sound data
// that the read overwrites at once; this memory is left as it comes, and
// ReadData fills every byte or fails. The array handed out is a view that
// keeps it alive.
class CRangeMemory final : public CObject {
public:
    explicit CRangeMemory(int32_t length)
        : CObject(Four("rngm")), m_bytes(new (fallible) unsigned char[size_t(length)])
    {
    }
    unsigned char* GetBytes() const { return m_bytes; }

protected:
    ~CRangeMemory() override { delete[] m_bytes; }

private:
    unsigned char* m_bytes;
};

CByteArray* CreateRangeArray(int32_t length)
{
    if (length <= 0)
        return CByteArray::Create(nullptr, length);
    RObject<CRangeMemory> memory(new (fallible) CRangeMemory(length));
    if (!memory || !memory->GetBytes())
        return nullptr;
    return new (fallible) CByteArray(length, memory->GetBytes(), memory);
}

} // namespace

int CContainerReader::ReadData(CStream* stream, CContainerDataReference* range, CByteArray*& data)
{
    data = nullptr;
    if (!stream || !range)
        return RESULT_ARGUMENT_NULL;
    RObject<CByteArray> bytes(CreateRangeArray(range->GetLength()));
    if (!bytes) {
        Log(LogLevel::Error, "CContainerReader::ReadData: no memory for %d bytes\n", range->GetLength());
        return RESULT_OUT_OF_MEMORY;
    }
    const int result = ReadData(stream, range->GetPosition(), bytes);
    if (result < 0)
        return result;
    data = bytes.Detach();
    return RESULT_OK;
}

int CContainerReader::ReadVideoData(CStream* stream, CVideoProperties* properties, CContainerDataReference* range,
                                    CMemoryDataReference*& data)
{
    data = nullptr;
    CByteArray* fetched = nullptr;
    const int result = ReadData(stream, range, fetched);
    RObject<CByteArray> bytes(fetched);
    if (result < 0)
        return result;
    data = new (fallible) CMemoryDataReference(properties, bytes);
    return data ? RESULT_OK : RESULT_OUT_OF_MEMORY;
}

int CContainerReader::ReadData(CStream* stream, CContainerDataReference* range, CMemoryDataReference*& data)
{
    return ReadVideoData(stream, nullptr, range, data);
}

int CContainerReader::OpenStream(CStream*& stream)
{
    stream = nullptr;
    RObject<CStream> probed(m_probeStream.Detach());
    RObject<CString> probedName(m_probeName.Detach());
    CContainerContext* context = GetContext();
    if (!context)
        return RESULT_NULL_POINTER;
    RObject<CString> name(context->GetCurrentFileName());
    if (!name)
        return RESULT_ERROR;
    if (probed && probedName && m_streamBlockSize == 0 && m_readTimeout == 0 &&
        std::strcmp(name->GetChars(), probedName->GetChars()) == 0 && probed->Seek(0, CStream::Begin) >= 0) {
        stream = probed.Detach();
        return RESULT_OK;
    }
    return context->OpenStream(this, name, stream);
}

int CContainerReader::OpenStream(CString* name, CStream*& stream)
{
    stream = nullptr;
    CContainerContext* context = GetContext();
    return context ? context->OpenStream(this, name, stream) : RESULT_NULL_POINTER;
}

int CContainerReader::SetReadTimeout(int32_t milliseconds)
{
    if (milliseconds < 0 || milliseconds > MaxReadTimeout)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    m_readTimeout = milliseconds;
    return RESULT_OK;
}

int CContainerReader::GetProperty(const char* key, int32_t capacity, unsigned char* out)
{
    if (!key || std::strcmp(key, ContainerReaderProperty::ReadTimeout) != 0)
        return CContainer::GetProperty(key, capacity, out);
    if (!out)
        return 4;
    if (capacity < 4)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    std::memcpy(out, &m_readTimeout, 4);
    return 4;
}

int CContainerReader::SetProperty(const char* key, int32_t length, const unsigned char* data)
{
    if (!key || std::strcmp(key, ContainerReaderProperty::ReadTimeout) != 0)
        return CContainer::SetProperty(key, length, data);
    if (length != 4 || !data) {
        Log(LogLevel::Error, "CContainerReader::SetProperty: '%s' takes 4 bytes, not %d\n", key, length);
        return RESULT_ERROR;
    }
    int32_t milliseconds = 0;
    std::memcpy(&milliseconds, data, 4);
    return SetReadTimeout(milliseconds);
}

} // namespace Quorvex::Vek
