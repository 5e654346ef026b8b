#pragma once

// Identifiers of the per-sample metadata kinds that readers find and
// filters carry along: timecodes, captions and AFD/bar data in their many
// carriages (ancillary packets, VBI lines, user data, container-specific
// items). The codes only identify; they have no names or parents.
#include <cstddef>

#include <vek/media/FormatDescription.h>

namespace Quorvex::Vek {

class VEK_API MetadataFormat {
public:
    static constexpr uint32_t Unknown = 0x00000000;
    static constexpr uint32_t AvcHd = Four("MDPM");
    static constexpr uint32_t A53UserData = Four("a53_");
    static constexpr uint32_t A53Afd = Four("a53a");
    static constexpr uint32_t A53Bar = Four("a53b");
    static constexpr uint32_t A53C708 = Four("a53c");
    static constexpr uint32_t A72UserData = Four("a72_");
    static constexpr uint32_t A72Afd = Four("a72a");
    static constexpr uint32_t A72Bar = Four("a72b");
    static constexpr uint32_t A72C708 = Four("a72c");
    static constexpr uint32_t Afd = Four("afd ");
    static constexpr uint32_t AfdBar = Four("afdb");
    static constexpr uint32_t Ancillary = Four("anc ");
    static constexpr uint32_t AncillaryC608Packet = Four("anc6");
    static constexpr uint32_t AncillaryDarkPacket = Four("anc_");
    static constexpr uint32_t AncillaryAfdBarPacket = Four("anca");
    static constexpr uint32_t AncillaryCdpPacket = Four("ancc");
    static constexpr uint32_t AncillaryTimeCodePacket = Four("anct");
    static constexpr uint32_t AvcIntraUmid = Four("avc1");
    static constexpr uint32_t AvcIntraVanc = Four("avc2");
    static constexpr uint32_t Bar = Four("bar ");
    static constexpr uint32_t C608 = Four("c608");
    static constexpr uint32_t C608Field1 = Four("c618");
    static constexpr uint32_t C608Field2 = Four("c628");
    static constexpr uint32_t C608Field3 = Four("c638");
    static constexpr uint32_t C708 = Four("c708");
    static constexpr uint32_t Cdp = Four("cdp ");
    static constexpr uint32_t CdpC708Section = Four("cdp7");
    static constexpr uint32_t CdpDarkSection = Four("cdp_");
    static constexpr uint32_t CdpCcsdSection = Four("cdps");
    static constexpr uint32_t CdpTimeCodeSection = Four("cdpt");
    static constexpr uint32_t DifAncillary = Four("difa");
    static constexpr uint32_t DifC608 = Four("difc");
    static constexpr uint32_t DifTimeCode = Four("dift");
    static constexpr uint32_t Divicom = Four("divi");
    static constexpr uint32_t Dvd = Four("dvd ");
    static constexpr uint32_t EsiAncillaryDataSection = Four("esad");
    static constexpr uint32_t EsiControlFlagsSection = Four("escf");
    static constexpr uint32_t EsiHistoryDataSection = Four("eshd");
    static constexpr uint32_t EsiHPhaseSection = Four("eshp");
    static constexpr uint32_t Esi = Four("esi ");
    static constexpr uint32_t EsiPictureOrderSection = Four("espo");
    static constexpr uint32_t EsiTimeCode1Section = Four("est1");
    static constexpr uint32_t EsiTimeCode2Section = Four("est2");
    static constexpr uint32_t EsiUserDataSection = Four("esud");
    static constexpr uint32_t EsiVideoIndexSection = Four("esvi");
    static constexpr uint32_t EsiVPhaseSection = Four("esvp");
    static constexpr uint32_t Mpeg2GopTimeCode = Four("gopt");
    static constexpr uint32_t GxfAncillary = Four("gxfa");
    static constexpr uint32_t GxfTimeCode = Four("gxft");
    static constexpr uint32_t GxfVbi = Four("gxfv");
    static constexpr uint32_t Ipv = Four("ipv ");
    static constexpr uint32_t LtcTimeCode = Four("ltc ");
    static constexpr uint32_t LxfAncillary = Four("lxfa");
    static constexpr uint32_t LxfTimeCode = Four("lxft");
    static constexpr uint32_t MovC608 = Four("mov6");
    static constexpr uint32_t MovCdp = Four("movc");
    static constexpr uint32_t MovTimeCode = Four("movt");
    static constexpr uint32_t MxfAncillary = Four("mxfa");
    static constexpr uint32_t MxfSystemItemTimeCode = Four("mxfs");
    static constexpr uint32_t MxfTimeCode = Four("mxft");
    static constexpr uint32_t MxfVbi = Four("mxfv");
    static constexpr uint32_t Omneon = Four("neon");
    static constexpr uint32_t SeiPictureTiming = Four("pic ");
    static constexpr uint32_t GxfVbiLine = 0x73522106;
    static constexpr uint32_t GxfC608 = 0x73522107;
    static constexpr uint32_t Scte20 = Four("sc20");
    static constexpr uint32_t Scte21 = Four("sc21");
    static constexpr uint32_t Seachange = Four("sea ");
    static constexpr uint32_t T35UserData = Four("t35_");
    static constexpr uint32_t TimeCode = Four("tc  ");
    static constexpr uint32_t UuidUserData = Four("uid_");
    static constexpr uint32_t Vbi = Four("vbi ");
    static constexpr uint32_t VbiC608Line = Four("vbi6");
    static constexpr uint32_t VbiDarkLine = Four("vbi_");
    static constexpr uint32_t VbiVitcLine = Four("vbit");
    static constexpr uint32_t Vitc1TimeCode = Four("vtc1");
    static constexpr uint32_t Vitc2TimeCode = Four("vtc2");
    static constexpr uint32_t X264 = Four("x264");

    // Every constant above as (name, code); GetConstantCount() of them.
    static const FormatConstant* GetConstants();
    static size_t GetConstantCount();
};

} // namespace Quorvex::Vek
