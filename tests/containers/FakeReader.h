#pragma once

// A reader of synthetic tracks for the indexer tests: one video track of
// given pictures, any number of audio tracks of equal samples, and knobs for
// the failures and pacing a test needs.
#include <vek/Vek.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace VekTest {

using namespace Quorvex::Vek;

struct Picture {
    int64_t compositionTime;
    int32_t duration;
    int32_t offset;
    int32_t type;
};

// Times in milliseconds: both media use a time scale of 1000.
class FakeReader : public CContainerReader {
public:
    using CContainerReader::ReadVideoData;
    using CContainerReader::ReadVideoSample;

    FakeReader() : CContainerReader(Four("fake")) {}

    std::vector<Picture> pictures;
    int32_t videoTracks = -1; // -1: one when there are pictures
    int32_t audioTracks = 0;
    int32_t audioSamples = 0;
    int32_t audioDuration = 100;
    int32_t bytesPerSample = 1000;
    int failOnRead = -1; // the read (counted from 0) that fails with -19100
    int beginResult = RESULT_OK;
    int32_t delayMilliseconds = 0;
    std::atomic<int> reads{0};
    int endIndexCalls = 0;
    std::string order; // "v0 a0 a1 ..." as the pass read them

    int BeginIndex() override
    {
        if (beginResult < 0)
            return beginResult;
        m_video = new (fallible) CVideoProperties();
        if (!m_video)
            return RESULT_OUT_OF_MEMORY;
        m_video->SetTimeScale(1000);
        m_video->SetDuration(Span());
        for (int32_t track = 0; track < audioTracks && track < 4; ++track) {
            m_audio[track] = new (fallible) CAudioProperties();
            if (!m_audio[track])
                return RESULT_OUT_OF_MEMORY;
            m_audio[track]->SetTimeScale(1000);
            m_audio[track]->SetDuration(int64_t(audioSamples) * audioDuration);
        }
        return RESULT_OK;
    }
    int EndIndex() override
    {
        ++endIndexCalls;
        return RESULT_OK;
    }
    int32_t GetVideoMediaCount() override { return videoTracks >= 0 ? videoTracks : (pictures.empty() ? 0 : 1); }
    CVideoProperties* GetVideoProperties(int32_t track) override { return m_video; }
    int32_t GetAudioMediaCount() override { return audioTracks; }
    CAudioProperties* GetAudioProperties(int32_t track) override
    {
        return track >= 0 && track < 4 ? m_audio[track].Get() : nullptr;
    }

    int ReadVideoSample(int32_t track, CVideoSample*& sample) override
    {
        sample = nullptr;
        const int result = CountRead("v", track);
        if (result < 0 || m_nextPicture >= pictures.size())
            return result;
        const Picture& picture = pictures[m_nextPicture++];
        RObject<CVideoSample> made(new (fallible) CVideoSample());
        RObject<CContainerDataReference> range(new (fallible) CContainerDataReference(0, bytesPerSample));
        if (!made || !range)
            return RESULT_OUT_OF_MEMORY;
        made->SetTime(picture.compositionTime - picture.offset);
        made->SetCompositionOffset(picture.offset);
        made->SetDuration(picture.duration);
        made->SetPictureType(picture.type);
        made->SetDataReference(range);
        sample = made.Detach();
        return RESULT_OK;
    }

    int ReadAudioSample(int32_t track, CAudioSample*& sample) override
    {
        sample = nullptr;
        const int result = CountRead("a", track);
        if (result < 0 || track >= 4 || m_nextAudio[track] >= audioSamples)
            return result;
        RObject<CAudioSample> made(new (fallible) CAudioSample(1, audioDuration));
        if (!made)
            return RESULT_OUT_OF_MEMORY;
        made->SetTime(int64_t(m_nextAudio[track]++) * audioDuration);
        sample = made.Detach();
        return RESULT_OK;
    }

    int ReadVideoData(int32_t track, CContainerDataReference* range, CMemoryDataReference*& data) override
    {
        RObject<CByteArray> bytes(new (fallible) CByteArray(range->GetLength()));
        data = bytes ? new (fallible) CMemoryDataReference(m_video, bytes) : nullptr;
        return data ? RESULT_OK : RESULT_OUT_OF_MEMORY;
    }

private:
    int64_t Span() const
    {
        int64_t end = 0;
        for (const Picture& picture : pictures)
            end = std::max(end, picture.compositionTime + picture.duration);
        return end;
    }

    int CountRead(const char* kind, int32_t track)
    {
        if (delayMilliseconds > 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(delayMilliseconds));
        const int read = reads++;
        order += std::string(kind) + std::to_string(track) + " ";
        return read == failOnRead ? RESULT_IO_ERROR : RESULT_OK;
    }

    RObject<CVideoProperties> m_video;
    RObject<CAudioProperties> m_audio[4];
    size_t m_nextPicture = 0;
    int32_t m_nextAudio[4] = {};
};

// Groups of four 10 ms pictures in decode order I P B B, shown I B B P:
// the P is decoded before the two Bs that are shown ahead of it.
inline std::vector<Picture> IpbbGroups(int groups)
{
    std::vector<Picture> pictures;
    for (int64_t base = 0; base < int64_t(groups) * 40; base += 40) {
        pictures.push_back({base, 10, 0, CVideoSample::I});
        pictures.push_back({base + 30, 10, 20, CVideoSample::P});
        pictures.push_back({base + 10, 10, -10, CVideoSample::B});
        pictures.push_back({base + 20, 10, -10, CVideoSample::B});
    }
    return pictures;
}

} // namespace VekTest
