#pragma once

// Settings of a container reader's indexer: which extra data it collects.
// Every key is a fixed string; components find values by string equality.
#include <vek/media/PropertyKeyList.h>

namespace Quorvex::Vek {

class VEK_API IndexerProperty {
public:
    IndexerProperty() = delete;

    static const char* const EnableVideoData; // "indexer.enable_video_data"
    static const char* const EnableVideoMetadata; // "indexer.enable_video_metadata"

    // Every (constant name, key) pair of the family, in declaration order.
    static PropertyKeyList GetKeys();
};

} // namespace Quorvex::Vek
