#include "backends/linux/backlight/SysfsBacklight.h"

#include "contracts/BacklightContract.h"
#include "support/Process.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace nocta {

/// A fake sysfs in a folder, and a display list with one built-in and one external display.
struct SysfsHarness : Displays {
    static constexpr DisplayId builtIn = 1;
    static constexpr DisplayId external = 2;

    TemporaryFolder sysfs;
    std::vector<std::pair<std::string, std::uint32_t>> askedOfSession;
    bool sessionAnswers = false;
    SysfsBacklight port{*this, [](DisplayId) { return std::string(); },
                        [this](const std::string& device, std::uint32_t level) {
                            askedOfSession.emplace_back(device, level);
                            return sessionAnswers;
                        },
                        sysfs.path()};

    SysfsHarness() { add("panel", "raw", "1000", "1000"); }

    std::string folder(const std::string& name) const {
        return sysfs.path() + "/class/backlight/" + name;
    }
    void add(const std::string& name, const std::string& type, const std::string& largest,
             const std::string& current) const {
        std::filesystem::create_directories(folder(name));
        writeFile(folder(name) + "/type", type + "\n");
        writeFile(folder(name) + "/max_brightness", largest + "\n");
        writeFile(folder(name) + "/brightness", current + "\n");
    }
    std::string level(const std::string& name) const {
        return contentOf(folder(name) + "/brightness");
    }
    void fail() const { std::filesystem::remove_all(folder("panel")); }
    float read() {
        float level = -1;
        port.getBrightness(builtIn, level);
        return level;
    }

    Backlight& backlight() { return port; }

    Status getActiveDisplayList(std::span<DisplayId>, std::uint32_t&) override { return 0; }
    Rect displayBounds(DisplayId) override { return {}; }
    bool displayIsMain(DisplayId) override { return false; }
    bool displayIsBuiltin(DisplayId display) override { return display == builtIn; }
    std::optional<DisplayMode> displayCopyDisplayMode(DisplayId) override { return {}; }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Sysfs, BacklightContract, SysfsHarness);

namespace {

TEST(SysfsBacklight, WritesTheFileIfItIsWritable) {
    SysfsHarness harness;
    harness.add("panel", "raw", "19393", "19393");
    EXPECT_EQ(harness.port.setBrightness(harness.builtIn, 0.55F), statusSuccess);
    EXPECT_EQ(std::stoi(harness.level("panel")), 10666);
    EXPECT_TRUE(harness.askedOfSession.empty());
}

TEST(SysfsBacklight, AsksTheSessionIfTheFileIsNotWritable) {
    SysfsHarness harness;
    // A folder in place of the file, because not even root can open a folder for writing.
    std::filesystem::remove(harness.folder("panel") + "/brightness");
    std::filesystem::create_directory(harness.folder("panel") + "/brightness");
    EXPECT_NE(harness.port.setBrightness(harness.builtIn, 0.1F), statusSuccess);
    harness.sessionAnswers = true;
    EXPECT_EQ(harness.port.setBrightness(harness.builtIn, 0.1F), statusSuccess);
    EXPECT_EQ(harness.askedOfSession,
              (std::vector<std::pair<std::string, std::uint32_t>>{{"panel", 100}, {"panel", 100}}));
}

TEST(SysfsBacklight, LowLevelOnACoarseDeviceIsNotOff) {
    SysfsHarness harness;
    harness.add("panel", "raw", "4", "4");
    harness.port.setBrightness(harness.builtIn, 0.1F);
    EXPECT_EQ(std::stoi(harness.level("panel")), 1);
    harness.port.setBrightness(harness.builtIn, 0.0F);
    EXPECT_EQ(std::stoi(harness.level("panel")), 0);
}

TEST(SysfsBacklight, InvalidFilesCannotBeRead) {
    for (const auto& [largest, current] :
         {std::pair{"", "5"}, std::pair{"0", "0"}, std::pair{"-7", "5"}, std::pair{"100", "dim"},
          std::pair{"99999999999999999999", "5"}}) {
        SysfsHarness harness;
        harness.add("panel", "raw", largest, current);
        EXPECT_EQ(harness.read(), -1.0F) << largest << " " << current;
    }
    SysfsHarness harness;
    harness.add("panel", "raw", "100", "250");
    EXPECT_EQ(harness.read(), 1.0F) << "a level above the maximum should read as 1";
}

TEST(SysfsBacklight, LevelOutsideTheRangeIsRejected) {
    SysfsHarness harness;
    for (const auto level : {-0.1F, 1.1F, std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_NE(harness.port.setBrightness(harness.builtIn, level), statusSuccess);
    }
    EXPECT_EQ(harness.level("panel"), "1000\n");
}

} // namespace
} // namespace nocta
