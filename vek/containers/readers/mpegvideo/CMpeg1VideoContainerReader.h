#pragma once

// The reader of raw MPEG-1 video streams: sequence headers without a sequence
// extension (a stream with one is MPEG-2 and left to its reader). See
// CMpegVideoStreamReader for the walk, the samples and the track facts.
#include <vek/containers/readers/mpegvideo/CMpegVideoStreamReader.h>

namespace Quorvex::Vek {

class VEK_API CMpeg1VideoContainerReader : public CMpegVideoStreamReader {
public:
    enum : uint32_t { Type = Four("m1v ") };

    CMpeg1VideoContainerReader();
    explicit CMpeg1VideoContainerReader(unsigned int flags);

    const char* GetFormatName() override { return "MPEG-1 Video"; }

protected:
    ~CMpeg1VideoContainerReader() override;
};

} // namespace Quorvex::Vek
