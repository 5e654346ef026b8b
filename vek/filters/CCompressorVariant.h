#pragma once

// One output rendition of a fan-out compressor (one size or bit rate of an
// adaptive ladder): its own output description and its own queue of coded
// pictures. The fan-out compressor hands it its input description when it
// begins and delivers each coded picture to it; the host reads them with
// ReadSample or through the fan-out compressor's GetVariantSample.
#include <vek/filters/CVideoFilter.h>

namespace Quorvex::Vek {

class VEK_API CCompressorVariant : public CVideoFilter {
public:
    enum : uint32_t { Type = Four("cvar") };

    // A new variant (one reference) producing `output` (shared); null
    // without memory or for null properties.
    static CCompressorVariant* Create(CVideoProperties* output);

    // The variant produces the format it was made for, and only that.
    FormatList* GetOutputFormats() override;
    // Queues a coded picture for the host (shared). -19004 for null.
    int Deliver(CVideoSample* sample);
    int32_t GetPendingSampleCount();

protected:
    CCompressorVariant();
    ~CCompressorVariant() override;

    int CreateOutputProperties(unsigned int format, CVideoProperties*& properties) override;

private:
    RObject<CVideoProperties> m_output;
};

} // namespace Quorvex::Vek
