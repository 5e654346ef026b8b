#include <vek/containers/Indexer.h>

namespace Quorvex::Vek {

Indexer Indexer::Create(CContainerReader* reader)
{
    return Indexer(CIndexer::Create(reader));
}

Indexer Indexer::FromObject(CIndexer* object)
{
    if (object)
        object->Acquire();
    return Indexer(object);
}

int Indexer::Begin(bool background) const
{
    return ToObject() ? ToObject()->Begin(background) : RESULT_NULL_POINTER;
}

int Indexer::RunIndexPass() const
{
    return ToObject() ? ToObject()->RunIndexPass() : RESULT_NULL_POINTER;
}

int Indexer::End() const
{
    return ToObject() ? ToObject()->End() : RESULT_NULL_POINTER;
}

bool Indexer::WaitForIndex(int32_t milliseconds) const
{
    return ToObject() ? ToObject()->WaitForIndex(milliseconds) : false;
}

int Indexer::Seek(double seconds, int32_t flags, IndexerTraverser& traverser) const
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    CIndexerTraverser* made = nullptr;
    const int result = ToObject()->Seek(seconds, flags, made);
    traverser = IndexerTraverser(made);
    return result;
}

uint32_t Indexer::GetState() const
{
    return ToObject() ? ToObject()->GetState() : 0;
}

double Indexer::GetDuration() const
{
    return ToObject() ? ToObject()->GetDuration() : 0.0;
}

int Indexer::SetReadVideoData(bool enable) const
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    ToObject()->SetReadVideoData(enable);
    return RESULT_OK;
}

bool Indexer::GetReadVideoData() const
{
    return ToObject() ? ToObject()->GetReadVideoData() : false;
}

int Indexer::SetReadVideoMetadata(bool enable) const
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    ToObject()->SetReadVideoMetadata(enable);
    return RESULT_OK;
}

bool Indexer::GetReadVideoMetadata() const
{
    return ToObject() ? ToObject()->GetReadVideoMetadata() : false;
}

int Indexer::SetProgressCallback(CIndexer::ProgressCallback callback, void* context) const
{
    return ToObject() ? ToObject()->SetProgressCallback(callback, context) : RESULT_NULL_POINTER;
}

int32_t Indexer::GetVideoMediaCount() const
{
    return ToObject() ? ToObject()->GetVideoMediaCount() : 0;
}

int32_t Indexer::GetAudioMediaCount() const
{
    return ToObject() ? ToObject()->GetAudioMediaCount() : 0;
}

int32_t Indexer::GetSubtitleMediaCount() const
{
    return ToObject() ? ToObject()->GetSubtitleMediaCount() : 0;
}

CVideoIndexer* Indexer::GetVideoIndexer(int32_t track) const
{
    return ToObject() ? ToObject()->GetVideoIndexer(track) : nullptr;
}

CAudioIndexer* Indexer::GetAudioIndexer(int32_t track) const
{
    return ToObject() ? ToObject()->GetAudioIndexer(track) : nullptr;
}

CSubtitleIndexer* Indexer::GetSubtitleIndexer(int32_t track) const
{
    return ToObject() ? ToObject()->GetSubtitleIndexer(track) : nullptr;
}

} // namespace Quorvex::Vek
