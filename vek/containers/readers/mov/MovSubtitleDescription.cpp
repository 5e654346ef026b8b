// Subtitle and caption sample entries. Their samples carry everything a
// decoder needs, so an entry gives little more than the format: its fixed
// fields are checked so that a truncated entry is refused, not guessed.
#include <vek/containers/readers/mov/MovSampleDescription.h>

#include <vek/core/FourCCText.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/media/SubtitleFormat.h>

namespace Quorvex::Vek {

namespace {

constexpr const char* Owner = "MovSubtitleDescription";

struct SubtitleRow {
    uint32_t type;
    uint32_t format;
    size_t fixedBytes; // reserved, data reference index and the entry's own fields
};

constexpr SubtitleRow Subtitles[] = {
    {Four("c608"), SubtitleFormat::C608, 8},
    {Four("c708"), SubtitleFormat::C708, 8},
    // Display flags, justification, background colour, text box, style record.
    {Four("tx3g"), Four("tx3g"), 38},
    // Display flags, justification, colours, text box, font, then the name.
    {Four("text"), Four("text"), 51},
    {Four("wvtt"), SubtitleFormat::VTT, 8},
};

} // namespace

int ReadSubtitleDescription(const MovBox& entry, CSubtitleProperties* subtitle)
{
    if (!subtitle)
        return RESULT_ARGUMENT_NULL;
    for (const SubtitleRow& row : Subtitles) {
        if (row.type != entry.type)
            continue;
        if (entry.size < row.fixedBytes) {
            Log(LogLevel::Error, "%s: '%s' entry of %zu bytes is shorter than its %zu bytes of fields\n", Owner,
                FourCCText(entry.type).c_str(), entry.size, row.fixedBytes);
            return RESULT_FORMAT_ERROR;
        }
        subtitle->SetFormat(row.format);
        return RESULT_OK;
    }
    Log(LogLevel::Info, "%s: subtitle format '%s' is not described\n", Owner, FourCCText(entry.type).c_str());
    return 1;
}

} // namespace Quorvex::Vek
