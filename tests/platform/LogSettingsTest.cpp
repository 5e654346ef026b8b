#include <vek/core/Log.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "support/TestSupport.h"

using namespace Quorvex::Vek;

#if !VEK_PLATFORM_WINDOWS
// Settings are read into 256 bytes, terminator included, as the registry
// strings of the Windows build are; a longer value is as good as absent. A
// log file named by a longer text must not be opened under a shortened name.
TEST(LogSettings, ValuesThatDoNotFitAreAbsent)
{
    VekTest::TempDir dir;
    struct Case {
        size_t length;
        bool opened;
    };
    const Case cases[] = {{255, true}, {256, false}, {300, false}};
    // Folders keep every name within the file system's component limit.
    const std::string folders = dir.Path() + "/" + std::string(100, 'd') + "/" + std::string(100, 'e');
    std::filesystem::create_directories(folders);
    for (const Case& c : cases) {
        std::string path = folders + "/";
        ASSERT_LT(path.size(), 250u);
        path.append(c.length - path.size(), 'a');
        const std::string shortened = path.substr(0, 255);
        setenv("VEK_LOG_LEVEL", "1", 1);
        setenv("VEK_LOG_FILE", path.c_str(), 1);
        ReloadLogSettings();
        Log(LogLevel::Error, "LogSettingsTest::Values: %zu\n", c.length);
        unsetenv("VEK_LOG_FILE");
        unsetenv("VEK_LOG_LEVEL");
        ReloadLogSettings();
        EXPECT_EQ(std::filesystem::exists(path), c.opened) << c.length;
        if (c.length > 255) {
            EXPECT_FALSE(std::filesystem::exists(shortened)) << c.length;
        }
        std::filesystem::remove(path);
    }
}
#endif
