#include "support/LogCapture.h"
#include "support/TestSupport.h"

#include <vek/core/Log.h>

#include <gtest/gtest.h>

using namespace Quorvex::Vek;

TEST(DebugLog, LevelFiltersMessages)
{
    VekTest::LogCapture log(2);
    EXPECT_EQ(GetLogLevel(), 2);
    Log(1, "Test::Error: %d\n", 1);
    Log(2, "Test::Warning: %s\n", "two");
    Log(3, "Test::Detail: hidden\n");
    EXPECT_EQ(log.Text(), "Test::Error: 1\nTest::Warning: two\n");
}

TEST(DebugLog, LevelSourcesFallBackAndClamp)
{
    struct Case {
        const char* logLevel;
        const char* debugLevel;
        int expected;
    };
    const Case cases[] = {
        {"3", "", 3},
        {"", "4", 4},  // LogLevel absent: DebugLevel
        {"1", "4", 1}, // LogLevel wins
        {"9", "", 5},  // clamped
        {"-2", "", 0},
        {"abc", "", 0}, // atoi of text
        {"", "", 0},
    };
    for (const Case& c : cases) {
        VekTest::SetLogSetting("LogLevel", c.logLevel);
        VekTest::SetLogSetting("DebugLevel", c.debugLevel);
        ReloadLogSettings();
        EXPECT_EQ(GetLogLevel(), c.expected) << c.logLevel << "/" << c.debugLevel;
    }
    VekTest::SetLogSetting("LogLevel", "");
    VekTest::SetLogSetting("DebugLevel", "");
    ReloadLogSettings();
}

TEST(DebugLog, UnopenableFileFallsBackToStandardError)
{
    VekTest::TempDir dir;
    VekTest::SetLogSetting("LogLevel", "1");
    // A folder cannot be opened as the log file.
    VekTest::SetLogSetting("LogFile", dir.Path());
    ReloadLogSettings();
    testing::internal::CaptureStderr();
    Log(1, "Test::Fallback: to stderr\n");
    const std::string captured = testing::internal::GetCapturedStderr();
    VekTest::SetLogSetting("LogLevel", "");
    VekTest::SetLogSetting("LogFile", "");
    ReloadLogSettings();
    EXPECT_NE(captured.find("Test::Fallback: to stderr\n"), std::string::npos);
}

TEST(DebugLog, FileIsTruncatedWhenOpened)
{
    VekTest::TempDir dir;
    const std::string path = dir.File("old.log");
    ASSERT_TRUE(VekTest::WriteFile(path, "stale text\n"));
    VekTest::SetLogSetting("LogLevel", "1");
    VekTest::SetLogSetting("LogFile", path);
    ReloadLogSettings();
    Log(1, "Test::Fresh: new\n");
    const std::string text = VekTest::ReadFile(path);
    VekTest::SetLogSetting("LogLevel", "");
    VekTest::SetLogSetting("LogFile", "");
    ReloadLogSettings();
    EXPECT_EQ(text, "Test::Fresh: new\n");
}
