#pragma once

// Descriptive metadata and settings shared by container readers and writers.
// QuickTime user-data keys carry that format's reverse-domain names.
// Every key is a fixed string; components find values by string equality.
#include <vek/media/PropertyKeyList.h>

namespace Quorvex::Vek {

class VEK_API ContainerProperty {
public:
    ContainerProperty() = delete;

    static const char* const TimeCode; // "timecode"
    static const char* const MovAlbum; // "com.apple.quicktime.album"
    static const char* const MovArtist; // "com.apple.quicktime.artist"
    static const char* const MovArtwork; // "com.apple.quicktime.artwork"
    static const char* const MovAuthor; // "com.apple.quicktime.author"
    static const char* const MovComment; // "com.apple.quicktime.comment"
    static const char* const MovCopyright; // "com.apple.quicktime.copyright"
    static const char* const MovCreationDate; // "com.apple.quicktime.creationdate"
    static const char* const MovDescription; // "com.apple.quicktime.description"
    static const char* const MovDirector; // "com.apple.quicktime.director"
    static const char* const MovTitle; // "com.apple.quicktime.title"
    static const char* const MovGenre; // "com.apple.quicktime.genre"
    static const char* const MovInformation; // "com.apple.quicktime.information"
    static const char* const MovKeywords; // "com.apple.quicktime.keywords"
    static const char* const MovLocation; // "com.apple.quicktime.location.ISO7609"
    static const char* const MovProducer; // "com.apple.quicktime.producer"
    static const char* const MovPublisher; // "com.apple.quicktime.publisher"
    static const char* const MovSoftware; // "com.apple.quicktime.software"
    static const char* const MovYear; // "com.apple.quicktime.year"
    static const char* const MovUserCollection; // "com.apple.quicktime.collection.user"
    static const char* const MovUserRating; // "com.apple.quicktime.rating.user"
    static const char* const MovTimeCodeMode; // "mov.tmcd"
    static const char* const MovCaptionType; // "mov.clcp"
    static const char* const Mpeg2TransportStreamId; // "mpeg2.ts.id"
    static const char* const Mpeg2TransportStreamProgramNumber; // "mpeg2.ts.program_number"
    static const char* const Mpeg2TransportStreamPmtPid; // "mpeg2.ts.pmt_pid"
    static const char* const Mpeg2TransportStreamPcrPid; // "mpeg2.ts.pcr_pid"
    static const char* const MxfCompanyName; // "mxf.company_name"
    static const char* const MxfProductName; // "mxf.product_name"
    static const char* const MxfVersion; // "mxf.version"
    static const char* const MxfPlatform; // "mxf.platform"
    static const char* const MxfDataContainer; // "mxf.data_container"
    static const char* const MxfAs03Identifier; // "mxf.as03.identifier"
    static const char* const MxfAs03IdentifierKind; // "mxf.as03.identifier_kind"
    static const char* const MxfAs03ShimName; // "mxf.as03.shim_name"
    static const char* const MxfAs03SignalStandard; // "mxf.as03.signal_standard"
    static const char* const MxfAs03IntendedAfd; // "mxf.as03.intended_afd"
    static const char* const MxfAs03SlateTitle; // "mxf.as03.slate_title"
    static const char* const MxfAs03NolaCode; // "mxf.as03.nola_code"
    static const char* const MxfAs03Rating; // "mxf.as03.rating"
    static const char* const MxfAs03NielsenStreamIdentifier; // "mxf.as03.nielsen_stream_identifier"
    static const char* const MxfAs11UkDppProgramme; // "mxf.as11.ukdpp.programme"
    static const char* const MxfAs12ShimName; // "mxf.as12.shim_name"
    static const char* const MxfAs12AdIdPrefix; // "mxf.as12.adid.prefix"
    static const char* const MxfAs12AdIdCode; // "mxf.as12.adid.code"
    static const char* const MxfAs12AdIdTitle; // "mxf.as12.adid.title"
    static const char* const MxfAs12AdIdBrand; // "mxf.as12.adid.brand"
    static const char* const MxfAs12AdIdProduct; // "mxf.as12.adid.product"
    static const char* const MxfAs12AdIdAdvertiser; // "mxf.as12.adid.advertiser"
    static const char* const MxfAs12AdIdAgencyOfficeLocation; // "mxf.as12.adid.agency_office_location"
    static const char* const MxfAs12AdIdLength; // "mxf.as12.adid.length"
    static const char* const MxfAs12AdIdMedium; // "mxf.as12.adid.medium"
    static const char* const MxfAs12AdIdSdFlag; // "mxf.as12.adid.sd_flag"
    static const char* const MxfAs12AdIdParent; // "mxf.as12.adid.parent"
    static const char* const ZifoVersion; // "zifo.version"
    static const char* const WavDescription; // "wav.bext.description"
    static const char* const WavOriginator; // "wav.bext.originator"
    static const char* const WavOriginatorReference; // "wav.bext.originator_reference"
    static const char* const WavOriginationDate; // "wav.bext.origination_date"
    static const char* const WavOriginationTime; // "wav.bext.origination_time"
    static const char* const WavUmid; // "wav.bext.umid"
    static const char* const WavCodingHistory; // "wav.bext.coding_history"
    static const char* const QueueSize; // "queue_size"
    static const char* const CacheSize; // "cache_size"
    static const char* const Mpeg2TransportStreamRate; // "mpeg2.transport_stream.rate"
    static const char* const Mpeg2TransportStreamHeadroom; // "mpeg2.transport_stream.headroom"
    static const char* const Mpeg2TransportRandomAccessIndicator; // "mpeg2.transport_stream.random_access_indicator"
    static const char* const Mpeg2TransportPatVersion; // "mpeg2.transport_stream.pat_version"

    // Every (constant name, key) pair of the family, in declaration order.
    static PropertyKeyList GetKeys();
};

} // namespace Quorvex::Vek
