#include "settings/SettingsManager.h"

#include "support/TestDesktop.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace nocta {
namespace {

using Calls = std::vector<std::string>;

constexpr auto lowerCaseId = "0f8fad5b-d9cb-469f-a165-70867728950e";
constexpr auto canonicalId = "0F8FAD5B-D9CB-469F-A165-70867728950E";

class SettingsManagerTest : public TestDesktop {
protected:
    DefaultsTable& stored() { return desktop.userDefaults.table; }

    /// Counts the changes of every setting by its key, in order.
    std::vector<std::string> changes;
    Cancellables cancellables;

    template <class T>
    void watch(Setting<T>& setting, std::string key) {
        cancellables.push_back(
            setting.subscribe([this, key](const T& /*value*/) { changes.push_back(key); }));
    }
    void watchAll() {
        auto& s = settings();
        watch(s.unifiedBrightness, "unifiedBrightness");
        watch(s.warmthLevel, "warmthLevel");
        watch(s.grayscaleEnabled, "grayscaleEnabled");
        watch(s.breakTimerEnabled, "breakTimerEnabled");
        watch(s.breakIntervalMinutes, "breakIntervalMinutes");
        watch(s.breakDurationSeconds, "breakDurationSeconds");
        watch(s.suspendDuringMeetings, "suspendDuringMeetings");
        watch(s.colorTemperatureDay, "colorTemperatureDay");
        watch(s.colorTemperatureNight, "colorTemperatureNight");
        watch(s.autoWarmthEnabled, "autoWarmthEnabled");
        watch(s.locationEnabled, "locationEnabled");
        watch(s.launchAtLogin, "launchAtLogin");
        watch(s.isFirstLaunch, "isFirstLaunch");
        watch(s.allowFullBlack, "allowFullBlack");
        watch(s.menuBarIcon, "menuBarIcon");
        watch(s.activeProfileId, "activeProfileId");
    }
    void expectDefaults() {
        auto& s = settings();
        EXPECT_EQ(s.unifiedBrightness.get(), 0.75);
        EXPECT_EQ(s.warmthLevel.get(), 0.5);
        EXPECT_FALSE(s.grayscaleEnabled.get());
        EXPECT_TRUE(s.breakTimerEnabled.get());
        EXPECT_EQ(s.breakIntervalMinutes.get(), 20);
        EXPECT_EQ(s.breakDurationSeconds.get(), 20);
        EXPECT_TRUE(s.suspendDuringMeetings.get());
        EXPECT_EQ(s.colorTemperatureDay.get(), 6500);
        EXPECT_EQ(s.colorTemperatureNight.get(), 2700);
        EXPECT_TRUE(s.autoWarmthEnabled.get());
        EXPECT_FALSE(s.locationEnabled.get());
        EXPECT_FALSE(s.launchAtLogin.get());
        EXPECT_FALSE(s.allowFullBlack.get());
        EXPECT_EQ(s.menuBarIcon.get(), MenuBarIcon::eye);
        EXPECT_EQ(s.activeProfileId.get(), std::nullopt);
    }
};

TEST_F(SettingsManagerTest, EmptyStoreReadsAsTheDefaults) {
    expectDefaults();
    EXPECT_TRUE(settings().isFirstLaunch.get());
    EXPECT_TRUE(stored().stored().empty()) << "loading writes nothing back";
}

TEST_F(SettingsManagerTest, FifteenDefaultsAreRegisteredAndThenEveryKeyIsLoadedInOrder) {
    settings();
    EXPECT_EQ(
        calls(),
        (Calls{"registerDefaults 15", "doubleForKey unifiedBrightness", "doubleForKey warmthLevel",
               "boolForKey grayscaleEnabled", "boolForKey breakTimerEnabled",
               "integerForKey breakIntervalMinutes", "integerForKey breakDurationSeconds",
               "boolForKey suspendDuringMeetings", "integerForKey colorTemperatureDay",
               "integerForKey colorTemperatureNight", "boolForKey autoWarmthEnabled",
               "boolForKey locationEnabled", "boolForKey launchAtLogin", "boolForKey isFirstLaunch",
               "boolForKey allowFullBlack", "stringForKey menuBarIcon",
               "stringForKey activeProfileId", "removeObjectForKey activeProfileId"}));
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

TEST_F(SettingsManagerTest, ValueOfAWrongTypeReadsAsTheGettersZero) {
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
    EXPECT_EQ(storedWhenPublished, 0.75) << "still the registered default";
    EXPECT_EQ(stored().doubleForKey("unifiedBrightness"), 0.3);
}

TEST_F(SettingsManagerTest, WriteMadeBySubscriberIsWhatIsPersistedLast) {
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

TEST_F(SettingsManagerTest, StoredProfileIdThatIsNoneIsRemoved) {
    stored().set("activeProfileId", "everyday");
    EXPECT_EQ(settings().activeProfileId.get(), std::nullopt);
    EXPECT_FALSE(stored().stored().contains("activeProfileId"));
}

TEST_F(SettingsManagerTest, ResetMakesFifteenSeparateChangesAndLeavesFirstLaunchAlone) {
    settings().isFirstLaunch.set(false);
    settings().unifiedBrightness.set(0.1);
    settings().menuBarIcon.set(MenuBarIcon::leaf);
    settings().activeProfileId.set(Uuid::parse(lowerCaseId));
    watchAll();
    settings().resetToDefaults();
    EXPECT_EQ(changes,
              (Calls{"unifiedBrightness", "warmthLevel", "grayscaleEnabled", "breakTimerEnabled",
                     "breakIntervalMinutes", "breakDurationSeconds", "suspendDuringMeetings",
                     "colorTemperatureDay", "colorTemperatureNight", "autoWarmthEnabled",
                     "locationEnabled", "launchAtLogin", "activeProfileId", "allowFullBlack",
                     "menuBarIcon"}));
    expectDefaults();
    EXPECT_FALSE(settings().isFirstLaunch.get());
    EXPECT_FALSE(stored().stored().contains("activeProfileId"));
}

/// The keys of a trace of the store, in alphabetical order.
std::set<std::string> keysOf(const Calls& calls, const std::string& operation) {
    std::set<std::string> keys;
    for (const auto& call : calls) {
        if (call.find(operation) != std::string::npos) {
            keys.insert(call.substr(call.find(' ') + 1));
        }
    }
    return keys;
}

TEST_F(SettingsManagerTest, ResetForgetsNoSettingThatIsLoaded) {
    settings();
    auto keys = keysOf(calls(), "ForKey ");
    EXPECT_EQ(keys.erase("isFirstLaunch"), 1U);
    desktop.trace.clear();
    settings().resetToDefaults();
    auto written = keysOf(calls(), "set");
    written.merge(keysOf(calls(), "removeObjectForKey "));
    EXPECT_EQ(written, keys);
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

TEST_F(SettingsManagerTest, ChangingASettingKeepsTheActiveProfile) {
    const auto nightOwl = instances().builtInProfiles()[1];
    settings().applyProfile(nightOwl);
    settings().unifiedBrightness.set(0.9);
    EXPECT_EQ(settings().activeProfileId.get(), nightOwl.id);
}

TEST_F(SettingsManagerTest, WarmthInOneWord) {
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
