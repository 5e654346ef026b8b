// Timecode text from anywhere (sidecar files, container metadata, the
// command line): CTimeCode::FromString must take any bytes at any rate, and
// a label it prints for a total within the day must read back to the same
// total and the same text. The same bytes, split into arguments at line
// feeds, also drive the "vek timecode" command's parser.
#include <vek/media/CTimeCode.h>

#include <tools/vek/TimecodeCli.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

using Quorvex::Vek::CTimeCode;

namespace {

struct RateCase {
    int64_t scale;
    int64_t duration;
    int32_t modulus;
    bool drop;
};

constexpr RateCase Rates[] = {
    {30000, 1001, 30, true}, {60000, 1001, 60, true}, {30000, 1001, 30, false}, {25, 1, 25, false},
    {24000, 1001, 24, true}, {120000, 1001, 120, true}, {1, 1, 1, false}, {0, 1, 0, true},
};

void Check(bool condition)
{
    if (!condition)
        std::abort();
}

void RoundTrip(const RateCase& rate, const char* text, bool keepDropFlag)
{
    CTimeCode tc(rate.scale, rate.duration, rate.modulus, rate.drop);
    tc.FromString(text, keepDropFlag);
    char small[CTimeCode::LabelCapacity];
    Check(std::strlen(tc.ToString(small, ';')) < sizeof small);
    // Each derivation may move a far-out total by another day, so the text
    // and the total are taken together.
    const std::string printed = tc.ToString(nullptr, ';');
    Check(printed.size() < size_t(CTimeCode::TextCapacity));

    // Within the day, and with frame numbers of two digits, the printed label
    // is canonical: it reads back to the same total, flag and text.
    const int32_t total = tc.GetTotalFrames();
    if (rate.modulus <= 0 || rate.modulus > 100 || total < 0 || total >= tc.GetMidnightValue())
        return;
    CTimeCode again(rate.scale, rate.duration, rate.modulus, false);
    again.FromString(printed.c_str());
    Check(again.IsDropFrame() == tc.IsDropFrame());
    Check(again.GetTotalFrames() == total);
    Check(printed == again.ToString(nullptr, ';'));
}

void RunCommand(const uint8_t* data, size_t size)
{
    std::vector<std::string> args(1);
    for (size_t i = 0; i < size; ++i) {
        if (data[i] == '\n')
            args.emplace_back();
        else
            args.back() += static_cast<char>(data[i]);
    }
    const VekTool::TimecodeCli::Outcome outcome = VekTool::TimecodeCli::Run(args);
    if (outcome.exitCode == VekTool::TimecodeCli::ExitOk)
        Check(!outcome.out.empty() && outcome.err.empty());
    else
        Check(outcome.out.empty() && !outcome.err.empty() && outcome.exitCode <= 2);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > 256)
        return 0;
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (const RateCase& rate : Rates) {
        RoundTrip(rate, text.c_str(), false);
        RoundTrip(rate, text.c_str(), true);
    }
    RunCommand(data, size);
    return 0;
}
