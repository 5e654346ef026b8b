#include <vek/media/ContainerProperty.h>

namespace Quorvex::Vek {

const char* const ContainerProperty::TimeCode = "timecode";
const char* const ContainerProperty::MovAlbum = "com.apple.quicktime.album";
const char* const ContainerProperty::MovArtist = "com.apple.quicktime.artist";
const char* const ContainerProperty::MovArtwork = "com.apple.quicktime.artwork";
const char* const ContainerProperty::MovAuthor = "com.apple.quicktime.author";
const char* const ContainerProperty::MovComment = "com.apple.quicktime.comment";
const char* const ContainerProperty::MovCopyright = "com.apple.quicktime.copyright";
const char* const ContainerProperty::MovCreationDate = "com.apple.quicktime.creationdate";
const char* const ContainerProperty::MovDescription = "com.apple.quicktime.description";
const char* const ContainerProperty::MovDirector = "com.apple.quicktime.director";
const char* const ContainerProperty::MovTitle = "com.apple.quicktime.title";
const char* const ContainerProperty::MovGenre = "com.apple.quicktime.genre";
const char* const ContainerProperty::MovInformation = "com.apple.quicktime.information";
const char* const ContainerProperty::MovKeywords = "com.apple.quicktime.keywords";
const char* const ContainerProperty::MovLocation = "com.apple.quicktime.location.ISO7609";
const char* const ContainerProperty::MovProducer = "com.apple.quicktime.producer";
const char* const ContainerProperty::MovPublisher = "com.apple.quicktime.publisher";
const char* const ContainerProperty::MovSoftware = "com.apple.quicktime.software";
const char* const ContainerProperty::MovYear = "com.apple.quicktime.year";
const char* const ContainerProperty::MovUserCollection = "com.apple.quicktime.collection.user";
const char* const ContainerProperty::MovUserRating = "com.apple.quicktime.rating.user";
const char* const ContainerProperty::MovTimeCodeMode = "mov.tmcd";
const char* const ContainerProperty::MovCaptionType = "mov.clcp";
const char* const ContainerProperty::Mpeg2TransportStreamId = "mpeg2.ts.id";
const char* const ContainerProperty::Mpeg2TransportStreamProgramNumber = "mpeg2.ts.program_number";
const char* const ContainerProperty::Mpeg2TransportStreamPmtPid = "mpeg2.ts.pmt_pid";
const char* const ContainerProperty::Mpeg2TransportStreamPcrPid = "mpeg2.ts.pcr_pid";
const char* const ContainerProperty::MxfCompanyName = "mxf.company_name";
const char* const ContainerProperty::MxfProductName = "mxf.product_name";
const char* const ContainerProperty::MxfVersion = "mxf.version";
const char* const ContainerProperty::MxfPlatform = "mxf.platform";
const char* const ContainerProperty::MxfDataContainer = "mxf.data_container";
const char* const ContainerProperty::MxfAs03Identifier = "mxf.as03.identifier";
const char* const ContainerProperty::MxfAs03IdentifierKind = "mxf.as03.identifier_kind";
const char* const ContainerProperty::MxfAs03ShimName = "mxf.as03.shim_name";
const char* const ContainerProperty::MxfAs03SignalStandard = "mxf.as03.signal_standard";
const char* const ContainerProperty::MxfAs03IntendedAfd = "mxf.as03.intended_afd";
const char* const ContainerProperty::MxfAs03SlateTitle = "mxf.as03.slate_title";
const char* const ContainerProperty::MxfAs03NolaCode = "mxf.as03.nola_code";
const char* const ContainerProperty::MxfAs03Rating = "mxf.as03.rating";
const char* const ContainerProperty::MxfAs03NielsenStreamIdentifier = "mxf.as03.nielsen_stream_identifier";
const char* const ContainerProperty::MxfAs11UkDppProgramme = "mxf.as11.ukdpp.programme";
const char* const ContainerProperty::MxfAs12ShimName = "mxf.as12.shim_name";
const char* const ContainerProperty::MxfAs12AdIdPrefix = "mxf.as12.adid.prefix";
const char* const ContainerProperty::MxfAs12AdIdCode = "mxf.as12.adid.code";
const char* const ContainerProperty::MxfAs12AdIdTitle = "mxf.as12.adid.title";
const char* const ContainerProperty::MxfAs12AdIdBrand = "mxf.as12.adid.brand";
const char* const ContainerProperty::MxfAs12AdIdProduct = "mxf.as12.adid.product";
const char* const ContainerProperty::MxfAs12AdIdAdvertiser = "mxf.as12.adid.advertiser";
const char* const ContainerProperty::MxfAs12AdIdAgencyOfficeLocation = "mxf.as12.adid.agency_office_location";
const char* const ContainerProperty::MxfAs12AdIdLength = "mxf.as12.adid.length";
const char* const ContainerProperty::MxfAs12AdIdMedium = "mxf.as12.adid.medium";
const char* const ContainerProperty::MxfAs12AdIdSdFlag = "mxf.as12.adid.sd_flag";
const char* const ContainerProperty::MxfAs12AdIdParent = "mxf.as12.adid.parent";
const char* const ContainerProperty::ZifoVersion = "zifo.version";
const char* const ContainerProperty::WavDescription = "wav.bext.description";
const char* const ContainerProperty::WavOriginator = "wav.bext.originator";
const char* const ContainerProperty::WavOriginatorReference = "wav.bext.originator_reference";
const char* const ContainerProperty::WavOriginationDate = "wav.bext.origination_date";
const char* const ContainerProperty::WavOriginationTime = "wav.bext.origination_time";
const char* const ContainerProperty::WavUmid = "wav.bext.umid";
const char* const ContainerProperty::WavCodingHistory = "wav.bext.coding_history";
const char* const ContainerProperty::QueueSize = "queue_size";
const char* const ContainerProperty::CacheSize = "cache_size";
const char* const ContainerProperty::Mpeg2TransportStreamRate = "mpeg2.transport_stream.rate";
const char* const ContainerProperty::Mpeg2TransportStreamHeadroom = "mpeg2.transport_stream.headroom";
const char* const ContainerProperty::Mpeg2TransportRandomAccessIndicator = "mpeg2.transport_stream.random_access_indicator";
const char* const ContainerProperty::Mpeg2TransportPatVersion = "mpeg2.transport_stream.pat_version";

// Built on first call rather than at load, so a caller in another
// translation unit may walk the keys from its own static initialisers.
PropertyKeyList ContainerProperty::GetKeys()
{
    static const PropertyKeyEntry entries[] = {
        {"TimeCode", ContainerProperty::TimeCode},
        {"MovAlbum", ContainerProperty::MovAlbum},
        {"MovArtist", ContainerProperty::MovArtist},
        {"MovArtwork", ContainerProperty::MovArtwork},
        {"MovAuthor", ContainerProperty::MovAuthor},
        {"MovComment", ContainerProperty::MovComment},
        {"MovCopyright", ContainerProperty::MovCopyright},
        {"MovCreationDate", ContainerProperty::MovCreationDate},
        {"MovDescription", ContainerProperty::MovDescription},
        {"MovDirector", ContainerProperty::MovDirector},
        {"MovTitle", ContainerProperty::MovTitle},
        {"MovGenre", ContainerProperty::MovGenre},
        {"MovInformation", ContainerProperty::MovInformation},
        {"MovKeywords", ContainerProperty::MovKeywords},
        {"MovLocation", ContainerProperty::MovLocation},
        {"MovProducer", ContainerProperty::MovProducer},
        {"MovPublisher", ContainerProperty::MovPublisher},
        {"MovSoftware", ContainerProperty::MovSoftware},
        {"MovYear", ContainerProperty::MovYear},
        {"MovUserCollection", ContainerProperty::MovUserCollection},
        {"MovUserRating", ContainerProperty::MovUserRating},
        {"MovTimeCodeMode", ContainerProperty::MovTimeCodeMode},
        {"MovCaptionType", ContainerProperty::MovCaptionType},
        {"Mpeg2TransportStreamId", ContainerProperty::Mpeg2TransportStreamId},
        {"Mpeg2TransportStreamProgramNumber", ContainerProperty::Mpeg2TransportStreamProgramNumber},
        {"Mpeg2TransportStreamPmtPid", ContainerProperty::Mpeg2TransportStreamPmtPid},
        {"Mpeg2TransportStreamPcrPid", ContainerProperty::Mpeg2TransportStreamPcrPid},
        {"MxfCompanyName", ContainerProperty::MxfCompanyName},
        {"MxfProductName", ContainerProperty::MxfProductName},
        {"MxfVersion", ContainerProperty::MxfVersion},
        {"MxfPlatform", ContainerProperty::MxfPlatform},
        {"MxfDataContainer", ContainerProperty::MxfDataContainer},
        {"MxfAs03Identifier", ContainerProperty::MxfAs03Identifier},
        {"MxfAs03IdentifierKind", ContainerProperty::MxfAs03IdentifierKind},
        {"MxfAs03ShimName", ContainerProperty::MxfAs03ShimName},
        {"MxfAs03SignalStandard", ContainerProperty::MxfAs03SignalStandard},
        {"MxfAs03IntendedAfd", ContainerProperty::MxfAs03IntendedAfd},
        {"MxfAs03SlateTitle", ContainerProperty::MxfAs03SlateTitle},
        {"MxfAs03NolaCode", ContainerProperty::MxfAs03NolaCode},
        {"MxfAs03Rating", ContainerProperty::MxfAs03Rating},
        {"MxfAs03NielsenStreamIdentifier", ContainerProperty::MxfAs03NielsenStreamIdentifier},
        {"MxfAs11UkDppProgramme", ContainerProperty::MxfAs11UkDppProgramme},
        {"MxfAs12ShimName", ContainerProperty::MxfAs12ShimName},
        {"MxfAs12AdIdPrefix", ContainerProperty::MxfAs12AdIdPrefix},
        {"MxfAs12AdIdCode", ContainerProperty::MxfAs12AdIdCode},
        {"MxfAs12AdIdTitle", ContainerProperty::MxfAs12AdIdTitle},
        {"MxfAs12AdIdBrand", ContainerProperty::MxfAs12AdIdBrand},
        {"MxfAs12AdIdProduct", ContainerProperty::MxfAs12AdIdProduct},
        {"MxfAs12AdIdAdvertiser", ContainerProperty::MxfAs12AdIdAdvertiser},
        {"MxfAs12AdIdAgencyOfficeLocation", ContainerProperty::MxfAs12AdIdAgencyOfficeLocation},
        {"MxfAs12AdIdLength", ContainerProperty::MxfAs12AdIdLength},
        {"MxfAs12AdIdMedium", ContainerProperty::MxfAs12AdIdMedium},
        {"MxfAs12AdIdSdFlag", ContainerProperty::MxfAs12AdIdSdFlag},
        {"MxfAs12AdIdParent", ContainerProperty::MxfAs12AdIdParent},
        {"ZifoVersion", ContainerProperty::ZifoVersion},
        {"WavDescription", ContainerProperty::WavDescription},
        {"WavOriginator", ContainerProperty::WavOriginator},
        {"WavOriginatorReference", ContainerProperty::WavOriginatorReference},
        {"WavOriginationDate", ContainerProperty::WavOriginationDate},
        {"WavOriginationTime", ContainerProperty::WavOriginationTime},
        {"WavUmid", ContainerProperty::WavUmid},
        {"WavCodingHistory", ContainerProperty::WavCodingHistory},
        {"QueueSize", ContainerProperty::QueueSize},
        {"CacheSize", ContainerProperty::CacheSize},
        {"Mpeg2TransportStreamRate", ContainerProperty::Mpeg2TransportStreamRate},
        {"Mpeg2TransportStreamHeadroom", ContainerProperty::Mpeg2TransportStreamHeadroom},
        {"Mpeg2TransportRandomAccessIndicator", ContainerProperty::Mpeg2TransportRandomAccessIndicator},
        {"Mpeg2TransportPatVersion", ContainerProperty::Mpeg2TransportPatVersion},
    };
    return PropertyKeyList{entries, static_cast<int32_t>(sizeof(entries) / sizeof(entries[0]))};
}

} // namespace Quorvex::Vek
