#pragma once

// The reader of raw MPEG-2 video streams: sequence headers each followed by
// a sequence extension (a stream without one is MPEG-1 and left to its reader). See
// CMpegVideoStreamReader for the walk, the samples and the track facts.
#include <vek/containers/readers/mpegvideo/CMpegVideoStreamReader.h>

namespace Quorvex::Vek {

class VEK_API CMpeg2VideoContainerReader : public CMpegVideoStreamReader {
public:
    enum : uint32_t { Type = Four("m2v ") };

    CMpeg2VideoContainerReader();
    explicit CMpeg2VideoContainerReader(unsigned int flags);

    const char* GetFormatName() override { return "MPEG-2 Video"; }

protected:
    ~CMpeg2VideoContainerReader() override;
};

} // namespace Quorvex::Vek
