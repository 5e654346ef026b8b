// The "vek timecode" command, run in-process through the same code the tool
// uses, so that its parsing and exit codes are checked in every build
// (including the Windows one under Wine) without spawning the executable.
#include <tools/vek/TimecodeCli.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

using namespace VekTool::TimecodeCli;

namespace {

std::vector<std::string> Words(const std::string& line)
{
    std::istringstream in(line);
    std::vector<std::string> words;
    for (std::string word; in >> word;)
        words.push_back(word);
    return words;
}

// The value of one "key  value" line of the command's output.
std::string Field(const std::string& out, const std::string& key)
{
    std::istringstream in(out);
    for (std::string line; std::getline(in, line);)
        if (line.rfind(key + " ", 0) == 0)
            return line.substr(line.find_first_not_of(' ', key.size()));
    return "(missing)";
}

} // namespace

TEST(TimecodeCli, Rates)
{
    struct Case {
        const char* text;
        bool ok;
        int64_t scale;
        int64_t duration;
        int32_t modulus;
    };
    const Case cases[] = {
        {"29.97", true, 30000, 1001, 30}, {"25", true, 25, 1, 25}, {"23.976", true, 24000, 1001, 24},
        {"59.94", true, 60000, 1001, 60}, {"30000/1001", true, 30000, 1001, 30}, {"50/1", true, 50, 1, 50},
        {"1", true, 1, 1, 1}, {"100", true, 100, 1, 100},
        {"0", false}, {"0.5", false}, {"101", false}, {"-25", false}, {"1e2", false}, {"inf", false},
        {"nan", false}, {"", false}, {".", false}, {"2.9.97", false}, {" 25", false}, {"30000/0", false},
        {"1/2", false}, {"10001/100", false}, {"/1001", false}, {"30000/", false},
        {"9999999999999999/1", false},
    };
    for (const Case& c : cases) {
        Rate rate;
        const std::string error = ParseRate(c.text, rate);
        EXPECT_EQ(error.empty(), c.ok) << c.text << ": " << error;
        if (c.ok) {
            EXPECT_EQ(rate.scale, c.scale) << c.text;
            EXPECT_EQ(rate.duration, c.duration) << c.text;
            EXPECT_EQ(rate.modulus, c.modulus) << c.text;
        }
    }
}

// The library reads labels as leniently as scanf; the tool accepts only
// well-formed labels with every field in range at the given rate.
TEST(TimecodeCli, LabelsAreStrict)
{
    struct Case {
        const char* text;
        const char* rate;
        bool drop;
        bool ok;
    };
    const Case cases[] = {
        {"01:02:03:04", "25", false, true},
        {"23:59:59:24", "25", false, true},
        {"23:59:59;29", "29.97", true, true},
        {"00:10:00;00", "29.97", true, true},
        {"00:01:00;02", "29.97", true, true},
        {"00:01:00;00", "29.97", true, false}, // skipped by drop-frame counting
        {"00:01:00;01", "29.97", true, false},
        {"00:01:00;03", "59.94", true, false},
        {"00:01:00;04", "59.94", true, true},
        {"00:01:00:00", "29.97", false, true},
        {"00:00:00:25", "25", false, false},
        {"24:00:00:00", "25", false, false},
        {"00:60:00:00", "25", false, false},
        {"00:00:60:00", "25", false, false},
        {"1:02:03:04", "25", false, false},
        {"01:02:03:4", "25", false, false},
        {"01:02:03:044", "25", false, false},
        {"01-02-03:04", "25", false, false},
        {"01:02:03.04", "25", false, false},
        {"0a:02:03:04", "25", false, false},
        {"-1:02:03:04", "25", false, false},
        {"+1:02:03:04", "25", false, false},
        {" 1:02:03:04", "25", false, false},
        {"", "25", false, false},
    };
    for (const Case& c : cases) {
        Rate rate;
        ASSERT_TRUE(ParseRate(c.rate, rate).empty());
        Label label;
        std::string error = ParseLabel(c.text, label);
        if (error.empty())
            error = CheckLabel(label, rate, c.drop);
        EXPECT_EQ(error.empty(), c.ok) << c.text << " at " << c.rate << ": " << error;
    }
}

// Whole runs: the printed label and frame count, and the exit code.
TEST(TimecodeCli, Runs)
{
    struct Case {
        const char* line;
        int exitCode;
        const char* label;
        const char* frames;
    };
    const Case cases[] = {
        {"--rate 29.97 01:00:00;00", ExitOk, "01:00:00;00", "107892"},
        {"--rate 29.97 00:10:00;00", ExitOk, "00:10:00;00", "17982"},
        {"--rate 29.97 00:00:59;29 + 1", ExitOk, "00:01:00;02", "1800"},
        {"--rate 29.97 00:01:00;02 - 1", ExitOk, "00:00:59;29", "1799"},
        {"--rate 29.97 00:00:00;00 - 1", ExitOk, "23:59:59;29", "2589407"},
        {"--rate 29.97 23:59:59;29 + 2589409", ExitOk, "00:00:00;00", "0"},
        {"--rate 29.97 00:10:00;00 - 00:09:59;29", ExitOk, "00:00:00;01", "1"},
        {"--rate 25 00:59:30:00 - 01:00:00:00", ExitOk, "-00:00:30:00", "-750"},
        {"--rate 29.97 01:00:00;00 + 00:30:00;00", ExitOk, "01:30:00;00", "161838"},
        {"--rate 25 00:00:01:00+10", ExitOk, "00:00:01:10", "35"},
        {"--rate 25 00:00:01:00-00:00:00:10", ExitOk, "00:00:00:15", "15"},
        {"--rate 29.97 --ndf 01:00:00;00", ExitOk, "01:00:00:00", "108000"},
        {"--rate 29.97 --drop 00:10:00:00", ExitOk, "00:10:00;00", "17982"},
        {"--rate 59.94 --drop --frames 3600", ExitOk, "00:01:00;04", "3600"},
        {"--rate 25 --frames 2159999", ExitOk, "23:59:59:24", "2159999"},
        {"--rate=30000/1001 --drop --frames=1800", ExitOk, "00:01:00;02", "1800"},
        {"--rate 29.97 --drop --seconds 3600", ExitOk, "01:00:00;00", "107892"},
        {"--rate 25 --seconds 0.039", ExitOk, "00:00:00:00", "0"},
        {"--rate 25 --seconds 0.04", ExitOk, "00:00:00:01", "1"},
        {"--rate 29.97 00:01:00;00", ExitBadInput},
        {"--rate 29.97 1:00:00;00", ExitBadInput},
        {"--rate 29.97 01:00:00;00 - 00:30:00:00", ExitBadInput},
        {"--rate 25 --drop 00:00:00:00", ExitBadInput},
        {"--rate 25 --drop --frames 0", ExitBadInput},
        {"--rate 25 --frames 2160000", ExitBadInput},
        {"--rate 25 --frames -1", ExitBadInput},
        {"--rate 25 --seconds 86400", ExitBadInput},
        {"--rate 25 --seconds 1e3", ExitBadInput},
        {"--rate abc 00:00:00:00", ExitBadInput},
        {"--rate 25 00:00:00:00 / 2", ExitBadInput},
        {"--rate 25 00:00:00:00 + -10", ExitBadInput},
        {"--rate 25 00:00:00:00 + 10 + 10", ExitBadInput},
        {"--rate 25 00:00:00:00 +", ExitBadInput},
        {"--rate 25 + 10", ExitBadInput},
        {"--rate 25 00:00:00:00 + 1234567890123456", ExitBadInput},
        {"--rate 25 00:00:00:00 + 1x", ExitBadInput},
        {"00:00:00:00", ExitUsage},
        {"--rate 25", ExitUsage},
        {"--rate", ExitUsage},
        {"--rate 25 --drop --ndf 00:00:00:00", ExitUsage},
        {"--rate 25 --frames 1 --seconds 1", ExitUsage},
        {"--rate 25 --frames 1 00:00:00:00", ExitUsage},
        {"--rate 25 --bogus 00:00:00:00", ExitUsage},
        {"--rate 25 --drop=yes 00:00:00:00", ExitUsage},
        {"--rate 25 -x 00:00:00:00", ExitUsage},
    };
    for (const Case& c : cases) {
        const Outcome outcome = VekTool::TimecodeCli::Run(Words(c.line));
        EXPECT_EQ(outcome.exitCode, c.exitCode) << c.line << "\n" << outcome.err;
        if (c.exitCode == ExitOk) {
            EXPECT_EQ(Field(outcome.out, "label"), c.label) << c.line;
            EXPECT_EQ(Field(outcome.out, "frames"), c.frames) << c.line;
            EXPECT_TRUE(outcome.err.empty()) << c.line;
        } else {
            EXPECT_TRUE(outcome.out.empty()) << c.line;
            EXPECT_EQ(outcome.err.rfind("vek timecode: ", 0), 0u) << c.line << "\n" << outcome.err;
        }
    }
}

TEST(TimecodeCli, HelpAndSeconds)
{
    const Outcome help = VekTool::TimecodeCli::Run({"--help"});
    EXPECT_EQ(help.exitCode, ExitOk);
    EXPECT_NE(help.out.find("usage: vek timecode"), std::string::npos);
    EXPECT_NE(help.out.find("--drop"), std::string::npos);

    const Outcome hour = VekTool::TimecodeCli::Run(Words("--rate 29.97 01:00:00;00"));
    EXPECT_EQ(Field(hour.out, "seconds"), "3599.996400");
    EXPECT_EQ(Field(hour.out, "rate"), "30000/1001 (29.970 fps), drop-frame");
}
