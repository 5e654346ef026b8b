#pragma once

// The "vek timecode" command: strict parsing of its arguments (rates, labels,
// frame counts, seconds, label expressions) and the computation, kept apart
// from the process's streams so that tests can run it in-process.
//
// The library reads labels leniently, as scanf would; the tool is strict:
// a label must be exactly HH:MM:SS:FF (';' before the frames for drop-frame)
// with every field in range, and a drop-frame label that the counting skips
// is refused rather than silently moved.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include <vek/media/CTimeCode.h>

namespace VekTool::TimecodeCli {

using Quorvex::Vek::CTimeCode;

constexpr int ExitOk = 0;
constexpr int ExitBadInput = 1;
constexpr int ExitUsage = 2;

// Labels carry two digits of frames, so rates stop at 100 frames per second.
constexpr int32_t MaxModulus = 100;
// Longest number the tool reads; keeps every count far from overflow.
constexpr size_t MaxDigits = 15;

inline const char* SynopsisText()
{
    return "usage: vek timecode --rate RATE [--drop | --ndf] LABEL\n"
           "       vek timecode --rate RATE [--drop | --ndf] LABEL (+|-) FRAMES\n"
           "       vek timecode --rate RATE [--drop | --ndf] LABEL (+|-) LABEL\n"
           "       vek timecode --rate RATE [--drop | --ndf] --frames N\n"
           "       vek timecode --rate RATE [--drop | --ndf] --seconds S\n";
}

inline std::string UsageText()
{
    return std::string(SynopsisText()) +
           "\n"
           "Converts between SMPTE timecode labels, frame counts since midnight and\n"
           "seconds, and adds or subtracts frames and labels. Prints the resulting\n"
           "label, its frame count and its time in seconds.\n"
           "\n"
           "  --rate RATE    frames per second: 23.976, 24, 25, 29.97, 30, 50, 59.94, 60,\n"
           "                 any decimal from 1 to 100 (a rate that is not whole counts in\n"
           "                 units of 1/1001 s, 29.97 meaning 30000/1001), or a ratio\n"
           "                 such as 30000/1001\n"
           "  --drop         drop-frame counting (rates of 30 frames or more): the first\n"
           "                 frame numbers of every minute not divisible by ten are skipped\n"
           "  --ndf          non-drop counting\n"
           "                 Without either, a label with ';' before the frames is\n"
           "                 drop-frame and one with ':' is not; --frames and --seconds\n"
           "                 count non-drop.\n"
           "  --frames N     the label of frame N (0 = midnight)\n"
           "  --seconds S    the label of the frame showing S seconds after midnight\n"
           "  --help         this text\n"
           "\n"
           "LABEL is HH:MM:SS:FF or HH:MM:SS;FF (quote ';' in a shell). FRAMES is a\n"
           "frame count. LABEL + FRAMES and LABEL - FRAMES wrap around midnight;\n"
           "LABEL - LABEL prints the signed difference.\n"
           "\n"
           "examples:\n"
           "  vek timecode --rate 29.97 '01:00:00;00'\n"
           "  vek timecode --rate 29.97 '00:59:59;29 + 1'\n"
           "  vek timecode --rate 25 01:00:00:00 - 00:59:30:00\n"
           "  vek timecode --rate 59.94 --drop --frames 215784\n"
           "\n"
           "exit status: 0 done, 1 a value was wrong (label, number, rate),\n"
           "2 the command line was wrong (unknown option, missing value).\n";
}

struct Rate {
    int64_t scale = 0;    // time units per second
    int64_t duration = 1; // time units per frame
    int32_t modulus = 0;  // nominal frames per second
};

struct Label {
    int hours = 0;
    int minutes = 0;
    int seconds = 0;
    int frames = 0;
    bool drop = false; // ';' before the frames
};

enum class Counting { FromLabel, Drop, NonDrop };

struct Operand {
    bool isLabel = false;
    Label label;
    int64_t frames = 0;
};

struct Expression {
    Label left;
    char op = 0; // 0 for a lone label, else '+' or '-'
    Operand right;
};

enum class Input { None, Expression, Frames, Seconds };

struct Options {
    bool help = false;
    std::string rateText;
    Counting counting = Counting::FromLabel;
    Input input = Input::None;
    std::string expression; // the expression arguments joined by blanks
    std::string number;     // the value of --frames or --seconds
};

inline bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

inline std::string Quoted(std::string_view text)
{
    std::string quoted(1, '\'');
    quoted.append(text.substr(0, 64));
    quoted += '\'';
    return quoted;
}

// A whole number of at most MaxDigits digits, no sign.
inline bool ParseCount(std::string_view text, int64_t& value)
{
    if (text.empty() || text.size() > MaxDigits)
        return false;
    int64_t result = 0;
    for (char c : text) {
        if (!IsDigit(c))
            return false;
        result = result * 10 + (c - '0');
    }
    value = result;
    return true;
}

// Digits with at most one decimal point and a digit somewhere; no sign,
// exponent, blanks or words such as "inf", which strtod would accept.
inline bool ParseDecimal(std::string_view text, double& value)
{
    if (text.empty() || text.size() > MaxDigits + 1)
        return false;
    bool point = false;
    bool digit = false;
    for (char c : text) {
        if (c == '.' && !point)
            point = true;
        else if (IsDigit(c))
            digit = true;
        else
            return false;
    }
    if (!digit)
        return false;
    value = std::strtod(std::string(text).c_str(), nullptr);
    return true;
}

// Empty on success, else the message for standard error.
inline std::string ParseRate(std::string_view text, Rate& rate)
{
    const std::string bad = "invalid rate " + Quoted(text) + ": expected frames per second from 1 to 100, "
                            "such as 25, 29.97 or 30000/1001";
    const size_t slash = text.find('/');
    if (slash != std::string_view::npos) {
        int64_t scale = 0, duration = 0;
        if (!ParseCount(text.substr(0, slash), scale) || !ParseCount(text.substr(slash + 1), duration) ||
            duration == 0 || scale < duration || scale > MaxModulus * duration)
            return bad;
        rate = Rate{scale, duration, static_cast<int32_t>((scale + duration - 1) / duration)};
        return {};
    }
    double value = 0;
    if (!ParseDecimal(text, value) || value < 1.0 || value > MaxModulus)
        return bad;
    const CTimeCode tc(value, false);
    rate = Rate{tc.GetTimeScale(), tc.GetDuration(), tc.GetModulus()};
    return {};
}

// Exactly HH:MM:SS:FF or HH:MM:SS;FF, two digits per field.
inline std::string ParseLabel(std::string_view text, Label& label)
{
    const std::string bad = "invalid label " + Quoted(text) + ": expected HH:MM:SS:FF, or HH:MM:SS;FF for "
                            "drop-frame";
    if (text.size() != 11 || text[2] != ':' || text[5] != ':' || (text[8] != ':' && text[8] != ';'))
        return bad;
    int fields[4];
    for (int i = 0; i < 4; ++i) {
        const char tens = text[3 * i];
        const char ones = text[3 * i + 1];
        if (!IsDigit(tens) || !IsDigit(ones))
            return bad;
        fields[i] = (tens - '0') * 10 + (ones - '0');
    }
    label = Label{fields[0], fields[1], fields[2], fields[3], text[8] == ';'};
    return {};
}

inline int DroppedPerMinute(const Rate& rate)
{
    return 2 * (rate.modulus / 30);
}

inline std::string LabelText(const Label& label, bool drop)
{
    char text[16];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d%c%02d", label.hours, label.minutes, label.seconds,
                  drop ? ';' : ':', label.frames);
    return text;
}

inline bool UsesDrop(Counting counting, bool labelDrop)
{
    return counting == Counting::Drop || (counting == Counting::FromLabel && labelDrop);
}

inline std::string CheckDropAllowed(const Rate& rate)
{
    if (DroppedPerMinute(rate) > 0)
        return {};
    return "drop-frame counting needs a rate of 30 frames per second or more (this rate counts " +
           std::to_string(rate.modulus) + ")";
}

// Field ranges at this rate, and the frame numbers drop-frame skips.
inline std::string CheckLabel(const Label& label, const Rate& rate, bool drop)
{
    const std::string text = LabelText(label, drop);
    if (label.hours > 23 || label.minutes > 59 || label.seconds > 59)
        return "label " + text + " is out of range: hours go to 23, minutes and seconds to 59";
    if (label.frames >= rate.modulus)
        return "label " + text + " is out of range: frames go to " + std::to_string(rate.modulus - 1) +
               " at this rate";
    if (!drop)
        return {};
    const int dropped = DroppedPerMinute(rate);
    if (label.seconds == 0 && label.minutes % 10 != 0 && label.frames < dropped) {
        char range[32];
        std::snprintf(range, sizeof range, "%02d to %02d", 0, dropped - 1);
        return "label " + text + " does not exist in drop-frame counting: frames " + range +
               " are skipped at the start of every minute not divisible by ten";
    }
    return {};
}

inline std::vector<std::string_view> Tokenize(std::string_view text)
{
    std::vector<std::string_view> tokens;
    size_t i = 0;
    while (i < text.size()) {
        if (text[i] == ' ' || text[i] == '\t') {
            ++i;
        } else if (text[i] == '+' || text[i] == '-') {
            tokens.push_back(text.substr(i, 1));
            ++i;
        } else {
            const size_t start = i;
            while (i < text.size() && text[i] != ' ' && text[i] != '\t' && text[i] != '+' && text[i] != '-')
                ++i;
            tokens.push_back(text.substr(start, i - start));
        }
    }
    return tokens;
}

inline std::string ParseOperand(std::string_view text, Operand& operand)
{
    if (text.find_first_of(":;") != std::string_view::npos) {
        operand.isLabel = true;
        return ParseLabel(text, operand.label);
    }
    operand.isLabel = false;
    if (!ParseCount(text, operand.frames))
        return "invalid frame count " + Quoted(text) + ": expected a whole number of at most " +
               std::to_string(MaxDigits) + " digits";
    return {};
}

// LABEL, LABEL + FRAMES, LABEL - FRAMES, LABEL + LABEL or LABEL - LABEL.
inline std::string ParseExpression(std::string_view text, Expression& expression)
{
    const std::vector<std::string_view> tokens = Tokenize(text);
    if (tokens.size() == 1)
        return ParseLabel(tokens[0], expression.left);
    if (tokens.size() != 3 || (tokens[1] != "+" && tokens[1] != "-"))
        return "invalid expression " + Quoted(text) + ": expected LABEL, LABEL + FRAMES, LABEL - FRAMES or "
               "LABEL - LABEL";
    std::string error = ParseLabel(tokens[0], expression.left);
    if (!error.empty())
        return error;
    expression.op = tokens[1][0];
    return ParseOperand(tokens[2], expression.right);
}

// The shape of the command line; values are checked later. Returns
// ExitOk, or ExitUsage with `error` set.
inline int ParseOptions(const std::vector<std::string>& args, Options& options, std::string& error)
{
    auto setInput = [&](Input input) {
        if (options.input != Input::None && !(options.input == Input::Expression && input == Input::Expression)) {
            error = "give one of a label expression, --frames or --seconds";
            return false;
        }
        options.input = input;
        return true;
    };
    for (size_t i = 0; i < args.size(); ++i) {
        std::string arg = args[i];
        std::string value;
        const size_t equals = arg.find('=');
        if (arg.rfind("--", 0) == 0 && equals != std::string::npos) {
            value = arg.substr(equals + 1);
            arg.resize(equals);
        }
        const bool takesValue = arg == "--rate" || arg == "--frames" || arg == "--seconds";
        if (takesValue && equals == std::string::npos) {
            if (i + 1 >= args.size()) {
                error = arg + " needs a value";
                return ExitUsage;
            }
            value = args[++i];
        } else if (!takesValue && !value.empty()) {
            error = "option " + Quoted(arg) + " takes no value";
            return ExitUsage;
        }
        if (arg == "--help" || arg == "-h") {
            options.help = true;
        } else if (arg == "--rate") {
            options.rateText = value;
        } else if (arg == "--drop" || arg == "--ndf") {
            const Counting counting = arg == "--drop" ? Counting::Drop : Counting::NonDrop;
            if (options.counting != Counting::FromLabel && options.counting != counting) {
                error = "--drop and --ndf exclude each other";
                return ExitUsage;
            }
            options.counting = counting;
        } else if (arg == "--frames" || arg == "--seconds") {
            if (!setInput(arg == "--frames" ? Input::Frames : Input::Seconds))
                return ExitUsage;
            options.number = value;
        } else if (arg.size() > 1 && arg[0] == '-' && !IsDigit(arg[1])) {
            error = "unknown option " + Quoted(arg);
            return ExitUsage;
        } else {
            if (!setInput(Input::Expression))
                return ExitUsage;
            options.expression += options.expression.empty() ? arg : " " + arg;
        }
    }
    if (options.help)
        return ExitOk;
    if (options.rateText.empty()) {
        error = "--rate is required";
        return ExitUsage;
    }
    if (options.input == Input::None) {
        error = "give a label expression, --frames or --seconds";
        return ExitUsage;
    }
    return ExitOk;
}

// Output of one run: what goes to standard output and standard error.
struct Outcome {
    int exitCode = ExitOk;
    std::string out;
    std::string err;
};

inline CTimeCode MakeTimeCode(const Rate& rate, bool drop)
{
    return CTimeCode(rate.scale, rate.duration, rate.modulus, drop);
}

inline CTimeCode TimeCodeOfLabel(const Rate& rate, bool drop, const Label& label)
{
    CTimeCode tc = MakeTimeCode(rate, drop);
    tc.FromString(LabelText(label, drop).c_str(), true);
    return tc;
}

inline std::string Describe(const Rate& rate, bool drop, int64_t frames)
{
    CTimeCode tc = MakeTimeCode(rate, drop);
    tc.FromFrames(static_cast<int32_t>(frames < 0 ? -frames : frames));
    const double seconds = static_cast<double>(frames) * static_cast<double>(rate.duration) /
                           static_cast<double>(rate.scale);
    char text[256];
    std::snprintf(text, sizeof text,
                  "rate     %lld/%lld (%.3f fps), %s\n"
                  "label    %s%s\n"
                  "frames   %lld\n"
                  "seconds  %.6f\n",
                  static_cast<long long>(rate.scale), static_cast<long long>(rate.duration),
                  static_cast<double>(rate.scale) / static_cast<double>(rate.duration),
                  drop ? "drop-frame" : "non-drop", frames < 0 ? "-" : "", tc.ToString(nullptr, ';'),
                  static_cast<long long>(frames), seconds);
    return text;
}

inline Outcome Failure(int code, const std::string& message)
{
    return Outcome{code, {}, "vek timecode: " + message + "\n"};
}

inline Outcome Success(const std::string& text)
{
    return Outcome{ExitOk, text, {}};
}

inline Outcome RunFrames(const Rate& rate, bool drop, const std::string& number)
{
    const int64_t day = MakeTimeCode(rate, drop).GetMidnightValue();
    int64_t frames = 0;
    if (!ParseCount(number, frames) || frames >= day)
        return Failure(ExitBadInput, "invalid frame number " + Quoted(number) + ": expected 0 to " +
                                         std::to_string(day - 1) + " at this rate");
    return Success(Describe(rate, drop, frames));
}

inline Outcome RunSeconds(const Rate& rate, bool drop, const std::string& number)
{
    const int64_t day = MakeTimeCode(rate, drop).GetMidnightValue();
    double seconds = 0;
    const std::string bad = "invalid seconds " + Quoted(number) + ": expected a time within one day of frames";
    if (!ParseDecimal(number, seconds))
        return Failure(ExitBadInput, bad);
    // The frame showing at that time. The allowance of a millionth of a
    // frame keeps a time that falls on a frame boundary (0.04 s at 25 fps)
    // from landing one frame short through decimal-to-binary rounding.
    const double exact = seconds * static_cast<double>(rate.scale) / static_cast<double>(rate.duration);
    const double whole = std::floor(exact + 1e-6);
    if (!(whole < static_cast<double>(day)))
        return Failure(ExitBadInput, bad);
    const int64_t frames = static_cast<int64_t>(whole);
    return Success(Describe(rate, drop, frames));
}

inline Outcome RunExpression(const Rate& rate, Counting counting, const std::string& text)
{
    Expression expression;
    std::string error = ParseExpression(text, expression);
    if (!error.empty())
        return Failure(ExitBadInput, error);
    const bool drop = UsesDrop(counting, expression.left.drop);
    if (expression.right.isLabel && counting == Counting::FromLabel && expression.right.label.drop != drop)
        return Failure(ExitBadInput, "one label is drop-frame (';') and the other is not (':'); use --drop "
                                     "or --ndf to count both the same way");
    if (drop && !(error = CheckDropAllowed(rate)).empty())
        return Failure(ExitBadInput, error);
    if (!(error = CheckLabel(expression.left, rate, drop)).empty())
        return Failure(ExitBadInput, error);
    if (expression.right.isLabel && !(error = CheckLabel(expression.right.label, rate, drop)).empty())
        return Failure(ExitBadInput, error);

    const CTimeCode left = TimeCodeOfLabel(rate, drop, expression.left);
    if (expression.op == 0)
        return Success(Describe(rate, drop, left.GetTotalFrames()));
    const int64_t day = left.GetMidnightValue();
    if (expression.right.isLabel) {
        const CTimeCode right = TimeCodeOfLabel(rate, drop, expression.right.label);
        if (expression.op == '-')
            return Success(Describe(rate, drop, int64_t(left.GetTotalFrames()) - right.GetTotalFrames()));
        return Success(Describe(rate, drop, (left + right).GetTotalFrames()));
    }
    // Whole days of frames change nothing on a 24-hour clock.
    const int frames = static_cast<int>(expression.right.frames % day);
    const CTimeCode result = expression.op == '+' ? left + frames : left - frames;
    return Success(Describe(rate, drop, result.GetTotalFrames()));
}

inline Outcome Run(const std::vector<std::string>& args)
{
    Options options;
    std::string error;
    if (ParseOptions(args, options, error) != ExitOk)
        return Outcome{ExitUsage, {}, "vek timecode: " + error + "\n" + SynopsisText() +
                                          "'vek timecode --help' explains the arguments.\n"};
    if (options.help)
        return Success(UsageText());
    Rate rate;
    if (!(error = ParseRate(options.rateText, rate)).empty())
        return Failure(ExitBadInput, error);
    if (options.input == Input::Expression)
        return RunExpression(rate, options.counting, options.expression);
    const bool drop = options.counting == Counting::Drop;
    if (drop && !(error = CheckDropAllowed(rate)).empty())
        return Failure(ExitBadInput, error);
    if (options.input == Input::Frames)
        return RunFrames(rate, drop, options.number);
    return RunSeconds(rate, drop, options.number);
}

} // namespace VekTool::TimecodeCli
