#include "backends/linux/kde/ConfigGroup.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace nocta {
namespace {

constexpr auto settings = "[Desktops]\n"
                          "Number=1\n"
                          "\n"
                          "[NightColor]\n"
                          "# a remark\n"
                          " Mode = Times \n"
                          "NightTemperature=4000\n"
                          "NightTemperature=4100\n"
                          "\n"
                          "[Tiling][285712a6-31d1]\n"
                          "Mode=other\n"
                          "tiles={\"layoutDirection\":\"horizontal\"}\\n\n"
                          "[NightColor]\n"
                          "Active[$i]=true\n"
                          "Mode=Automatic\n";

TEST(ConfigGroup, LastEntryForAKeyIsUsed) {
    const ConfigGroup group(settings, "NightColor");
    EXPECT_EQ(group.value("Mode"), "Automatic");
    EXPECT_EQ(group.value("NightTemperature"), "4100");
    EXPECT_EQ(group.value("Active"), std::nullopt);
    EXPECT_EQ(group.value("Number"), std::nullopt);
    EXPECT_EQ(ConfigGroup(settings, "Desktops").value("Number"), "1");
}

TEST(ConfigGroup, UnchangedTextIsPreserved) {
    for (const std::string text : {settings, "", "\n\n", "no group=1\n[\n]\n[]\n=\n"}) {
        EXPECT_EQ(ConfigGroup(text, "NightColor").text(), text);
    }
    EXPECT_EQ(ConfigGroup("[A]\nkey=no line end", "A").text(), "[A]\nkey=no line end\n");
}

TEST(ConfigGroup, SettingAKeyReplacesAllItsEntries) {
    ConfigGroup group(settings, "NightColor");
    group.set("NightTemperature", "3000");
    group.set("Mode", "Constant");
    EXPECT_EQ(group.text(), "[Desktops]\n"
                            "Number=1\n"
                            "\n"
                            "[NightColor]\n"
                            "Mode=Constant\n"
                            "NightTemperature=3000\n"
                            "# a remark\n"
                            "\n"
                            "[Tiling][285712a6-31d1]\n"
                            "Mode=other\n"
                            "tiles={\"layoutDirection\":\"horizontal\"}\\n\n"
                            "[NightColor]\n"
                            "Active[$i]=true\n");
}

TEST(ConfigGroup, AddedGroupIsRemovedWithItsLastEntry) {
    const std::string before = "[Desktops]\nNumber=1\n";
    ConfigGroup group(before, "NightColor");
    group.set("Mode", "Constant");
    group.set("Active", "true");
    EXPECT_EQ(group.text(), before + "[NightColor]\nActive=true\nMode=Constant\n");
    EXPECT_EQ(group.value("Mode"), "Constant");
    group.set("Mode", std::nullopt);
    group.set("Active", std::nullopt);
    EXPECT_EQ(group.text(), before);
    group.set("Active", std::nullopt);
    EXPECT_EQ(group.text(), before);
}

TEST(ConfigGroup, GroupWithOtherEntriesIsKept) {
    ConfigGroup group("[NightColor]\nMode=Times\nMorning=06:00\n", "NightColor");
    group.set("Mode", std::nullopt);
    EXPECT_EQ(group.text(), "[NightColor]\nMorning=06:00\n");
}

} // namespace
} // namespace nocta
