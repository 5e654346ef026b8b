#pragma once

// QuickTime and MP4 files from a writer other than ffmpeg, so the readers'
// tests compare what several muxers make of the same streams: GStreamer's
// qtmux and mp4mux (gst-launch-1.0). The streams are H.264 and AAC encoded
// by ffmpeg, handed over in Matroska (raw H.264 carries no timestamps for
// GStreamer's muxers to use).
//
// Every writer returns the file's bytes, or empty when a program is missing
// or fails; tests call the Require macros first so that a missing tool is a
// skip, not a failure. Windows builds (under Wine) always skip.
#include <string>

#include "elementary/ExternalStreams.h"

#include <gtest/gtest.h>

namespace VekTest {

inline bool HasProgram(const std::string& versionCommand)
{
#if defined(_WIN32)
    (void)versionCommand;
    return false;
#else
    return std::system(("(" + versionCommand + ") >/dev/null 2>&1").c_str()) == 0;
#endif
}

// gst-launch-1.0 with the elements the writers below use.
inline bool HasGstreamer()
{
    static const bool has = HasProgram("gst-launch-1.0 --version") &&
                            HasProgram("gst-inspect-1.0 qtmux && gst-inspect-1.0 mp4mux && "
                                       "gst-inspect-1.0 matroskademux && gst-inspect-1.0 h264parse && "
                                       "gst-inspect-1.0 aacparse");
    return has;
}

#define VEK_REQUIRE_GSTREAMER()                                                                                        \
    do {                                                                                                               \
        if (!VekTest::HasGstreamer() || !VekTest::HasFfmpeg())                                                         \
            GTEST_SKIP() << "GStreamer (gst-launch-1.0 with qtmux, mp4mux) or ffmpeg not available";                   \
    } while (false)
// One second of H.264 (25 fps, B-frames) and AAC in Matroska, for
// GStreamer, with ffmpeg `options` such as "-metadata title=T": Matroska's
// file tags reach GStreamer's muxers as global tags, which they write as the
// movie's metadata. Its path, or empty when ffmpeg fails.
inline std::string WriterSourceMatroska(const TempDir& dir, const std::string& options = std::string())
{
    const std::string path = dir.File("source.mkv");
    const std::string command = "ffmpeg -v error -nostdin -y -f lavfi -i testsrc=d=1:r=25:s=128x96 -f lavfi -i "
                                "sine=d=1 -c:v libx264 -bf 2 -c:a aac " + options + " -f matroska '" +
                                path + "' >/dev/null 2>&1";
    return std::system(command.c_str()) == 0 ? path : std::string();
}

// GStreamer's `muxer` ("qtmux" or "mp4mux", with its properties, e.g.
// "mp4mux fragment-duration=200") over the Matroska source. The file's
// bytes, or empty.
inline std::string GstMux(const TempDir& dir, const std::string& source, const std::string& muxer,
                          const std::string& name)
{
    const std::string path = dir.File(name);
    const std::string command = "gst-launch-1.0 -q filesrc location='" + source +
                                "' ! matroskademux name=d d.video_0 ! queue ! h264parse ! " + muxer +
                                " name=m ! filesink location='" + path +
                                "' d.audio_0 ! queue ! aacparse ! m. >/dev/null 2>&1";
    if (std::system(command.c_str()) != 0)
        return {};
    return ReadFile(path);
}

// qtmux with a timecode track: `frames` of GStreamer's test video at `rate`
// ("30000/1001"), stamped from `startFrame` on. The file's bytes, or empty.
inline std::string GstTimeCodeMux(const TempDir& dir, const std::string& rate, bool dropFrame, int startFrame,
                                  const std::string& name)
{
    const std::string path = dir.File(name);
    const std::string command =
        "gst-launch-1.0 -q videotestsrc num-buffers=5 ! video/x-raw,width=64,height=48,framerate=" + rate +
        " ! timecodestamper drop-frame=" + (dropFrame ? "true" : "false") +
        " timecode-offset=" + std::to_string(startFrame) + " ! x264enc ! h264parse ! qtmux ! filesink location='" +
        path + "' >/dev/null 2>&1";
    if (std::system(command.c_str()) != 0)
        return {};
    return ReadFile(path);
}

} // namespace VekTest
