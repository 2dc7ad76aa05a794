#include "settings/SettingsManager.h"

#include "support/TestDesktop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace nocta {
namespace {

using Calls = std::vector<std::string>;

constexpr auto lowerCaseId = "0f8fad5b-d9cb-469f-a165-70867728950e";
constexpr auto canonicalId = "0F8FAD5B-D9CB-469F-A165-70867728950E";

/// A setting with its expected key and default.
template <class T>
struct Row {
    Setting<T> SettingsManager::*setting;
    std::string key;
    T defaultValue;
};

/// Every setting, in the order in which the settings are loaded.
const std::tuple rows = {
    Row<double>{&SettingsManager::unifiedBrightness, "unifiedBrightness", 0.75},
    Row<double>{&SettingsManager::warmthLevel, "warmthLevel", 0.5},
    Row<bool>{&SettingsManager::grayscaleEnabled, "grayscaleEnabled", false},
    Row<bool>{&SettingsManager::breakTimerEnabled, "breakTimerEnabled", true},
    Row<std::int64_t>{&SettingsManager::breakIntervalMinutes, "breakIntervalMinutes", 20},
    Row<std::int64_t>{&SettingsManager::breakDurationSeconds, "breakDurationSeconds", 20},
    Row<bool>{&SettingsManager::suspendDuringMeetings, "suspendDuringMeetings", true},
    Row<std::int64_t>{&SettingsManager::colorTemperatureDay, "colorTemperatureDay", 6500},
    Row<std::int64_t>{&SettingsManager::colorTemperatureNight, "colorTemperatureNight", 2700},
    Row<bool>{&SettingsManager::autoWarmthEnabled, "autoWarmthEnabled", true},
    Row<bool>{&SettingsManager::locationEnabled, "locationEnabled", false},
    Row<bool>{&SettingsManager::launchAtLogin, "launchAtLogin", false},
    Row<bool>{&SettingsManager::isFirstLaunch, "isFirstLaunch", true},
    Row<bool>{&SettingsManager::allowFullBlack, "allowFullBlack", false},
    Row<MenuBarIcon>{&SettingsManager::menuBarIcon, "menuBarIcon", MenuBarIcon::eye},
    Row<std::optional<Uuid>>{&SettingsManager::activeProfileId, "activeProfileId", std::nullopt},
};

void forEachRow(const auto& action) {
    std::apply([&](const auto&... row) { (action(row), ...); }, rows);
}

/// Returns the name of the store's getter for the type of a setting, as the trace shows it.
std::string getter(const Row<double>& /*row*/) {
    return "doubleForKey";
}
std::string getter(const Row<bool>& /*row*/) {
    return "boolForKey";
}
std::string getter(const Row<std::int64_t>& /*row*/) {
    return "integerForKey";
}
std::string getter(const auto& /*row*/) {
    return "stringForKey";
}

/// Returns the keys that a reset writes, in order.
Calls keysOfReset() {
    Calls keys;
    forEachRow([&](const auto& row) {
        if (row.key != "isFirstLaunch" && row.key != "activeProfileId") {
            keys.push_back(row.key);
        }
    });
    keys.insert(std::ranges::find(keys, "allowFullBlack"), "activeProfileId");
    return keys;
}

class SettingsManagerTest : public TestDesktop {
protected:
    DefaultsTable& stored() { return desktop.userDefaults.table; }

    /// The keys of the settings that were published, in order.
    Calls changes;
    Cancellables cancellables;

    void watchAll() {
        forEachRow([this](const auto& row) {
            cancellables.push_back(
                (settings().*row.setting).subscribe([this, &row](const auto& /*value*/) {
                    changes.push_back(row.key);
                }));
        });
    }
    void expectDefaultsBut(const std::string& exception = {}) {
        forEachRow([&](const auto& row) {
            if (row.key != exception) {
                EXPECT_TRUE((settings().*row.setting).get() == row.defaultValue) << row.key;
            }
        });
    }
};

TEST_F(SettingsManagerTest, EmptyStoreReadsAsTheDefaults) {
    expectDefaultsBut();
    EXPECT_TRUE(stored().stored().empty()) << "loading should write nothing";
}

TEST_F(SettingsManagerTest, DefaultsAreRegisteredAndThenEveryKeyIsLoadedInOrder) {
    settings();
    Calls expected = {"registerDefaults " + std::to_string(std::tuple_size_v<decltype(rows)> - 1)};
    forEachRow([&](const auto& row) { expected.push_back(getter(row) + " " + row.key); });
    expected.push_back("removeObjectForKey activeProfileId");
    EXPECT_EQ(calls(), expected);
}

TEST_F(SettingsManagerTest, StoredValuesAreLoadedEvenOutOfRange) {
    stored().set("unifiedBrightness", 7.5);
    stored().set("breakIntervalMinutes", std::int64_t{-3});
    stored().set("colorTemperatureDay", std::int64_t{123456});
    stored().set("isFirstLaunch", false);
    stored().set("menuBarIcon", "sparkles");
    EXPECT_EQ(settings().unifiedBrightness.get(), 7.5);
    EXPECT_EQ(settings().breakIntervalMinutes.get(), -3);
    EXPECT_EQ(settings().colorTemperatureDay.get(), 123456);
    EXPECT_FALSE(settings().isFirstLaunch.get());
    EXPECT_EQ(settings().menuBarIcon.get(), MenuBarIcon::sparkles);
}

TEST_F(SettingsManagerTest, ValueOfTheWrongTypeReadsAsZeroOfTheGettersType) {
    stored().set("unifiedBrightness", "bright");
    stored().set("breakTimerEnabled", "yes");
    stored().set("breakIntervalMinutes", "often");
    stored().set("menuBarIcon", std::int64_t{1});
    stored().set("activeProfileId", 0.5);
    EXPECT_EQ(settings().unifiedBrightness.get(), 0.0);
    EXPECT_FALSE(settings().breakTimerEnabled.get());
    EXPECT_EQ(settings().breakIntervalMinutes.get(), 0);
    EXPECT_EQ(settings().menuBarIcon.get(), MenuBarIcon::eye);
    EXPECT_EQ(settings().activeProfileId.get(), std::nullopt);
}

TEST_F(SettingsManagerTest, EveryWriteIsPersistedWithItsTypedSetter) {
    settings();
    desktop.trace.clear();
    settings().unifiedBrightness.set(0.3);
    settings().grayscaleEnabled.set(true);
    settings().colorTemperatureNight.set(3000);
    settings().menuBarIcon.set(MenuBarIcon::leaf);
    settings().activeProfileId.set(Uuid::parse(lowerCaseId));
    settings().activeProfileId.set(std::nullopt);
    EXPECT_EQ(calls(), (Calls{"setDouble unifiedBrightness", "setBool grayscaleEnabled",
                              "setInteger colorTemperatureNight", "setObject menuBarIcon",
                              "setObject activeProfileId", "removeObjectForKey activeProfileId"}));
    EXPECT_EQ(stored().stringForKey("menuBarIcon"), "leaf");
    EXPECT_EQ(stored().doubleForKey("unifiedBrightness"), 0.3);
}

TEST_F(SettingsManagerTest, WriteIsPublishedBeforeItIsPersisted) {
    double storedWhenPublished = -1;
    const auto subscription = settings().unifiedBrightness.subscribe([&](double /*value*/) {
        storedWhenPublished = stored().doubleForKey("unifiedBrightness");
    });
    settings().unifiedBrightness.set(0.3);
    EXPECT_EQ(storedWhenPublished, 0.75) << "the store should still have the registered default";
    EXPECT_EQ(stored().doubleForKey("unifiedBrightness"), 0.3);
}

TEST_F(SettingsManagerTest, WriteByASubscriberIsPersistedLast) {
    const auto subscription = settings().unifiedBrightness.subscribe([&](double value) {
        if (value > 1) {
            settings().unifiedBrightness.set(1);
        }
    });
    settings().unifiedBrightness.set(4);
    EXPECT_EQ(settings().unifiedBrightness.get(), 1.0);
    EXPECT_EQ(stored().doubleForKey("unifiedBrightness"), 1.0);
}

TEST_F(SettingsManagerTest, UnknownIconReadsAsEyeAndIsNotRewritten) {
    stored().set("menuBarIcon", "moon");
    EXPECT_EQ(settings().menuBarIcon.get(), MenuBarIcon::eye);
    EXPECT_EQ(stored().stringForKey("menuBarIcon"), "moon");
    settings().menuBarIcon.set(MenuBarIcon::eye);
    EXPECT_EQ(stored().stringForKey("menuBarIcon"), "eye");
}

TEST_F(SettingsManagerTest, StoredProfileIdIsRewrittenInCanonicalForm) {
    stored().set("activeProfileId", lowerCaseId);
    EXPECT_EQ(settings().activeProfileId.get(), Uuid::parse(canonicalId));
    EXPECT_EQ(stored().stringForKey("activeProfileId"), canonicalId);
}

TEST_F(SettingsManagerTest, InvalidStoredProfileIdIsRemoved) {
    stored().set("activeProfileId", "everyday");
    EXPECT_EQ(settings().activeProfileId.get(), std::nullopt);
    EXPECT_FALSE(stored().stored().contains("activeProfileId"));
}

TEST_F(SettingsManagerTest, ResetChangesEachSettingSeparatelyExceptFirstLaunch) {
    settings().isFirstLaunch.set(false);
    settings().unifiedBrightness.set(0.1);
    settings().menuBarIcon.set(MenuBarIcon::leaf);
    settings().activeProfileId.set(Uuid::parse(lowerCaseId));
    watchAll();
    settings().resetToDefaults();
    EXPECT_EQ(changes, keysOfReset());
    expectDefaultsBut("isFirstLaunch");
    EXPECT_FALSE(settings().isFirstLaunch.get());
    EXPECT_FALSE(stored().stored().contains("activeProfileId"));
}

TEST_F(SettingsManagerTest, ApplyingAProfileCopiesItsFiveValuesAndThenItsId) {
    settings().breakDurationSeconds.set(45);
    watchAll();
    const auto focus = instances().builtInProfiles()[2];
    settings().applyProfile(focus);
    EXPECT_EQ(changes, (Calls{"unifiedBrightness", "warmthLevel", "grayscaleEnabled",
                              "breakTimerEnabled", "breakIntervalMinutes", "activeProfileId"}));
    EXPECT_EQ(settings().unifiedBrightness.get(), 0.6);
    EXPECT_EQ(settings().warmthLevel.get(), 0.3);
    EXPECT_TRUE(settings().grayscaleEnabled.get());
    EXPECT_EQ(settings().breakIntervalMinutes.get(), 25);
    EXPECT_EQ(settings().activeProfileId.get(), focus.id);
    EXPECT_EQ(settings().breakDurationSeconds.get(), 45);
    EXPECT_EQ(settings().colorTemperatureDay.get(), 6500);
    EXPECT_EQ(settings().colorTemperatureNight.get(), 2700);
    EXPECT_TRUE(settings().autoWarmthEnabled.get());
}

TEST_F(SettingsManagerTest, ProfileWithoutBreaksOrGrayTurnsThemOff) {
    settings().grayscaleEnabled.set(true);
    ASSERT_TRUE(settings().breakTimerEnabled.get());
    const Profile reading{.id = Uuid::parse(canonicalId).value(),
                          .name = "Reading",
                          .brightness = 0.2,
                          .warmth = 0.9,
                          .grayscaleEnabled = false,
                          .breakTimerEnabled = false,
                          .breakInterval = 50};
    settings().applyProfile(reading);
    EXPECT_EQ(settings().unifiedBrightness.get(), 0.2);
    EXPECT_EQ(settings().warmthLevel.get(), 0.9);
    EXPECT_FALSE(settings().grayscaleEnabled.get());
    EXPECT_FALSE(settings().breakTimerEnabled.get());
    EXPECT_EQ(settings().breakIntervalMinutes.get(), 50);
    EXPECT_EQ(settings().activeProfileId.get(), reading.id);
}

TEST_F(SettingsManagerTest, ChangingASettingKeepsTheActiveProfile) {
    const auto nightOwl = instances().builtInProfiles()[1];
    settings().applyProfile(nightOwl);
    settings().unifiedBrightness.set(0.9);
    EXPECT_EQ(settings().activeProfileId.get(), nightOwl.id);
}

TEST_F(SettingsManagerTest, WarmthIsDescribedInOneWord) {
    struct Row {
        double warmth;
        std::string_view word;
    };
    for (const auto& [warmth, word] :
         {Row{0.0, "Cool"}, Row{0.3299, "Cool"}, Row{0.33, "Neutral"}, Row{0.6599, "Neutral"},
          Row{0.66, "Warm"}, Row{1.0, "Warm"}}) {
        settings().warmthLevel.set(warmth);
        EXPECT_EQ(settings().warmthDescription(), word) << warmth;
    }
}

} // namespace
} // namespace nocta
