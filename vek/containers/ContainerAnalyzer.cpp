#include <vek/containers/ContainerAnalyzer.h>

#include <vek/containers/CAudioIndexer.h>
#include <vek/containers/CSubtitleIndexer.h>
#include <vek/containers/CVideoIndexer.h>

namespace Quorvex::Vek {

namespace {

ContainerAnalyzer Fail(int code, int* result)
{
    if (result)
        *result = code;
    return ContainerAnalyzer();
}

} // namespace

ContainerAnalyzer ContainerAnalyzer::Analyze(const char* path, int* result)
{
    ContainerReader reader = ContainerReader::Create(path);
    if (reader.IsNull())
        return Fail(RESULT_NULL_POINTER, result);
    return Analyze(reader, result);
}

ContainerAnalyzer ContainerAnalyzer::Analyze(const ContainerReader& reader, int* result)
{
    if (reader.IsNull())
        return Fail(RESULT_NULL_POINTER, result);
    ContainerAnalyzer analyzer(CIndexer::Create(reader.ToReader()));
    if (analyzer.IsNull())
        return Fail(RESULT_OUT_OF_MEMORY, result);
    int status = analyzer.Begin(false);
    if (status >= 0)
        status = analyzer.RunIndexPass();
    if (status < 0)
        return Fail(status, result);
    if (result)
        *result = RESULT_OK;
    return analyzer;
}

ContainerReader ContainerAnalyzer::GetReader() const
{
    return ToObject() ? ContainerReader::FromObject(ToObject()->GetContainerReader()) : ContainerReader();
}

const char* ContainerAnalyzer::GetFormatName() const
{
    CContainerReader* reader = ToObject() ? ToObject()->GetContainerReader() : nullptr;
    return reader ? reader->GetFormatName() : "";
}

int64_t ContainerAnalyzer::GetVideoSampleCount(int32_t track) const
{
    CMediaIndexer* index = GetVideoIndexer(track);
    return index ? index->GetSampleCount() : 0;
}

int64_t ContainerAnalyzer::GetAudioSampleCount(int32_t track) const
{
    CMediaIndexer* index = GetAudioIndexer(track);
    return index ? index->GetSampleCount() : 0;
}

int64_t ContainerAnalyzer::GetSubtitleSampleCount(int32_t track) const
{
    CMediaIndexer* index = GetSubtitleIndexer(track);
    return index ? index->GetSampleCount() : 0;
}

} // namespace Quorvex::Vek
