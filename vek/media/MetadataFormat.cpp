#include <vek/media/MetadataFormat.h>

#include <iterator>

namespace Quorvex::Vek {

namespace {

constexpr FormatConstant kConstants[] = {
    {"Unknown", MetadataFormat::Unknown},
    {"AvcHd", MetadataFormat::AvcHd},
    {"A53UserData", MetadataFormat::A53UserData},
    {"A53Afd", MetadataFormat::A53Afd},
    {"A53Bar", MetadataFormat::A53Bar},
    {"A53C708", MetadataFormat::A53C708},
    {"A72UserData", MetadataFormat::A72UserData},
    {"A72Afd", MetadataFormat::A72Afd},
    {"A72Bar", MetadataFormat::A72Bar},
    {"A72C708", MetadataFormat::A72C708},
    {"Afd", MetadataFormat::Afd},
    {"AfdBar", MetadataFormat::AfdBar},
    {"Ancillary", MetadataFormat::Ancillary},
    {"AncillaryC608Packet", MetadataFormat::AncillaryC608Packet},
    {"AncillaryDarkPacket", MetadataFormat::AncillaryDarkPacket},
    {"AncillaryAfdBarPacket", MetadataFormat::AncillaryAfdBarPacket},
    {"AncillaryCdpPacket", MetadataFormat::AncillaryCdpPacket},
    {"AncillaryTimeCodePacket", MetadataFormat::AncillaryTimeCodePacket},
    {"AvcIntraUmid", MetadataFormat::AvcIntraUmid},
    {"AvcIntraVanc", MetadataFormat::AvcIntraVanc},
    {"Bar", MetadataFormat::Bar},
    {"C608", MetadataFormat::C608},
    {"C608Field1", MetadataFormat::C608Field1},
    {"C608Field2", MetadataFormat::C608Field2},
    {"C608Field3", MetadataFormat::C608Field3},
    {"C708", MetadataFormat::C708},
    {"Cdp", MetadataFormat::Cdp},
    {"CdpC708Section", MetadataFormat::CdpC708Section},
    {"CdpDarkSection", MetadataFormat::CdpDarkSection},
    {"CdpCcsdSection", MetadataFormat::CdpCcsdSection},
    {"CdpTimeCodeSection", MetadataFormat::CdpTimeCodeSection},
    {"DifAncillary", MetadataFormat::DifAncillary},
    {"DifC608", MetadataFormat::DifC608},
    {"DifTimeCode", MetadataFormat::DifTimeCode},
    {"Divicom", MetadataFormat::Divicom},
    {"Dvd", MetadataFormat::Dvd},
    {"EsiAncillaryDataSection", MetadataFormat::EsiAncillaryDataSection},
    {"EsiControlFlagsSection", MetadataFormat::EsiControlFlagsSection},
    {"EsiHistoryDataSection", MetadataFormat::EsiHistoryDataSection},
    {"EsiHPhaseSection", MetadataFormat::EsiHPhaseSection},
    {"Esi", MetadataFormat::Esi},
    {"EsiPictureOrderSection", MetadataFormat::EsiPictureOrderSection},
    {"EsiTimeCode1Section", MetadataFormat::EsiTimeCode1Section},
    {"EsiTimeCode2Section", MetadataFormat::EsiTimeCode2Section},
    {"EsiUserDataSection", MetadataFormat::EsiUserDataSection},
    {"EsiVideoIndexSection", MetadataFormat::EsiVideoIndexSection},
    {"EsiVPhaseSection", MetadataFormat::EsiVPhaseSection},
    {"Mpeg2GopTimeCode", MetadataFormat::Mpeg2GopTimeCode},
    {"GxfAncillary", MetadataFormat::GxfAncillary},
    {"GxfTimeCode", MetadataFormat::GxfTimeCode},
    {"GxfVbi", MetadataFormat::GxfVbi},
    {"Ipv", MetadataFormat::Ipv},
    {"LtcTimeCode", MetadataFormat::LtcTimeCode},
    {"LxfAncillary", MetadataFormat::LxfAncillary},
    {"LxfTimeCode", MetadataFormat::LxfTimeCode},
    {"MovC608", MetadataFormat::MovC608},
    {"MovCdp", MetadataFormat::MovCdp},
    {"MovTimeCode", MetadataFormat::MovTimeCode},
    {"MxfAncillary", MetadataFormat::MxfAncillary},
    {"MxfSystemItemTimeCode", MetadataFormat::MxfSystemItemTimeCode},
    {"MxfTimeCode", MetadataFormat::MxfTimeCode},
    {"MxfVbi", MetadataFormat::MxfVbi},
    {"Omneon", MetadataFormat::Omneon},
    {"SeiPictureTiming", MetadataFormat::SeiPictureTiming},
    {"GxfVbiLine", MetadataFormat::GxfVbiLine},
    {"GxfC608", MetadataFormat::GxfC608},
    {"Scte20", MetadataFormat::Scte20},
    {"Scte21", MetadataFormat::Scte21},
    {"Seachange", MetadataFormat::Seachange},
    {"T35UserData", MetadataFormat::T35UserData},
    {"TimeCode", MetadataFormat::TimeCode},
    {"UuidUserData", MetadataFormat::UuidUserData},
    {"Vbi", MetadataFormat::Vbi},
    {"VbiC608Line", MetadataFormat::VbiC608Line},
    {"VbiDarkLine", MetadataFormat::VbiDarkLine},
    {"VbiVitcLine", MetadataFormat::VbiVitcLine},
    {"Vitc1TimeCode", MetadataFormat::Vitc1TimeCode},
    {"Vitc2TimeCode", MetadataFormat::Vitc2TimeCode},
    {"X264", MetadataFormat::X264},
};

} // namespace

const FormatConstant* MetadataFormat::GetConstants()
{
    return kConstants;
}

size_t MetadataFormat::GetConstantCount()
{
    return std::size(kConstants);
}

} // namespace Quorvex::Vek
