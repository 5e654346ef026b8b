#pragma once

// Public wrapper of CIndexer. Calls forward and return the indexer's
// results unchanged; a null wrapper answers -19001 to every call that acts,
// and 0, false or null to the getters. The per-track getters lend the
// internal indexes and descriptions (valid while the indexer lives).
#include <vek/containers/CIndexer.h>
#include <vek/containers/IndexerTraverser.h>
#include <vek/core/BaseObject.h>

namespace Quorvex::Vek {

class VEK_API Indexer : public Object<CIndexer, IProperties> {
public:
    Indexer() = default;
    // Adopts the caller's reference.
    Indexer(CIndexer* object) : BaseObject(object), Object<CIndexer, IProperties>(object) {}
    // A new indexer over `reader` (shared); null without memory.
    static Indexer Create(CContainerReader* reader);
    // A wrapper sharing `object` (its count goes up by one).
    static Indexer FromObject(CIndexer* object);

    int Begin(bool background) const;
    int RunIndexPass() const;
    int End() const;
    bool WaitForIndex(int32_t milliseconds) const;
    int Seek(double seconds, int32_t flags, IndexerTraverser& traverser) const;

    uint32_t GetState() const;
    double GetDuration() const;
    int SetReadVideoData(bool enable) const;
    bool GetReadVideoData() const;
    int SetReadVideoMetadata(bool enable) const;
    bool GetReadVideoMetadata() const;
    int SetProgressCallback(CIndexer::ProgressCallback callback, void* context) const;

    int32_t GetVideoMediaCount() const;
    int32_t GetAudioMediaCount() const;
    int32_t GetSubtitleMediaCount() const;
    CVideoIndexer* GetVideoIndexer(int32_t track) const;
    CAudioIndexer* GetAudioIndexer(int32_t track) const;
    CSubtitleIndexer* GetSubtitleIndexer(int32_t track) const;
};

} // namespace Quorvex::Vek
