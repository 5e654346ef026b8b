#include <vek/media/MediaProperty.h>

namespace Quorvex::Vek {

const char* const MediaProperty::Duration = "duration";
const char* const MediaProperty::Mpeg2FormatIdentifier = "mpeg2.format_identifier";
const char* const MediaProperty::Mpeg2TransportStreamPid = "mpeg2.ts.pid";

// Built on first call rather than at load, so a caller in another
// translation unit may walk the keys from its own static initialisers.
PropertyKeyList MediaProperty::GetKeys()
{
    static const PropertyKeyEntry entries[] = {
        {"Duration", MediaProperty::Duration},
        {"Mpeg2FormatIdentifier", MediaProperty::Mpeg2FormatIdentifier},
        {"Mpeg2TransportStreamPid", MediaProperty::Mpeg2TransportStreamPid},
    };
    return PropertyKeyList{entries, static_cast<int32_t>(sizeof(entries) / sizeof(entries[0]))};
}

} // namespace Quorvex::Vek
