#include <vek/media/IndexerProperty.h>

namespace Quorvex::Vek {

const char* const IndexerProperty::EnableVideoData = "indexer.enable_video_data";
const char* const IndexerProperty::EnableVideoMetadata = "indexer.enable_video_metadata";

// Built on first call rather than at load, so a caller in another
// translation unit may walk the keys from its own static initialisers.
PropertyKeyList IndexerProperty::GetKeys()
{
    static const PropertyKeyEntry entries[] = {
        {"EnableVideoData", IndexerProperty::EnableVideoData},
        {"EnableVideoMetadata", IndexerProperty::EnableVideoMetadata},
    };
    return PropertyKeyList{entries, static_cast<int32_t>(sizeof(entries) / sizeof(entries[0]))};
}

} // namespace Quorvex::Vek
