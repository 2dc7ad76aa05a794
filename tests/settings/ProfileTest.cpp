#include "settings/Profile.h"

#include "settings/MenuBarIcon.h"
#include "support/TestDesktop.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <limits>
#include <unordered_set>

namespace nocta {
namespace {

class ProfileTest : public TestDesktop {
protected:
    const Profile& everyday() { return instances().builtInProfiles()[0]; }
};

TEST_F(ProfileTest, BuiltInProfilesHaveTheExpectedValues) {
    const auto& [everydayProfile, nightOwl, focus] = instances().builtInProfiles();
    EXPECT_EQ(everydayProfile,
              (Profile{everydayProfile.id, "Everyday", 0.75, 0.5, false, true, 20, true}));
    EXPECT_EQ(nightOwl, (Profile{nightOwl.id, "Night Owl", 0.4, 0.8, false, true, 30, true}));
    EXPECT_EQ(focus, (Profile{focus.id, "Focus", 0.6, 0.3, true, true, 25, true}));
}

TEST_F(ProfileTest, EverydayMatchesTheDefaultSettings) {
    EXPECT_EQ(everyday().brightness, settings().unifiedBrightness.get());
    EXPECT_EQ(everyday().warmth, settings().warmthLevel.get());
    EXPECT_EQ(everyday().grayscaleEnabled, settings().grayscaleEnabled.get());
    EXPECT_EQ(everyday().breakTimerEnabled, settings().breakTimerEnabled.get());
    EXPECT_EQ(everyday().breakInterval, settings().breakIntervalMinutes.get());
}

TEST_F(ProfileTest, IdsAreCreatedOncePerRun) {
    const auto id = everyday().id;
    EXPECT_EQ(Profile::builtInProfiles()[0].id, id) << "the id should not change during a run";
    settings().applyProfile(everyday());
    launch();
    restart();
    ASSERT_EQ(settings().activeProfileId.get(), id) << "the id of the last run should be loaded";
    for (const auto& profile : instances().builtInProfiles()) {
        EXPECT_NE(profile.id, id);
    }
}

TEST_F(ProfileTest, IconAndDescriptionDependOnTheExactName) {
    struct Row {
        std::string_view name;
        std::string_view icon;
        std::string_view description;
    };
    for (const auto& [name, icon, description] :
         {Row{"Everyday", "sun.max", "Balanced for daily use"},
          Row{"Night Owl", "moon.stars", "Warmer & dimmer for night"},
          Row{"Focus", "brain.head.profile", "Minimal distractions"}, Row{"Custom", "circle", ""},
          Row{"focus", "circle", ""}, Row{"", "circle", ""}}) {
        Profile profile;
        profile.name = name;
        EXPECT_EQ(profile.icon(), icon) << name;
        EXPECT_EQ(profile.description(), description) << name;
    }
}

TEST_F(ProfileTest, JsonHasExactlyTheEightFieldsAndReadsBack) {
    nlohmann::json const json = everyday();
    EXPECT_EQ(json, (nlohmann::json{{"id", everyday().id.toString()},
                                    {"name", "Everyday"},
                                    {"brightness", 0.75},
                                    {"warmth", 0.5},
                                    {"grayscaleEnabled", false},
                                    {"breakTimerEnabled", true},
                                    {"breakInterval", 20},
                                    {"isBuiltIn", true}}));
    EXPECT_EQ(json.get<Profile>(), everyday());
}

TEST_F(ProfileTest, CustomProfileKeepsEveryValueInJson) {
    const Profile reading{.id = desktop.uuidSource.makeUuid(),
                          .name = "Lesen \"spät\"",
                          .brightness = 0.1,
                          .warmth = 1.0 / 3,
                          .grayscaleEnabled = true,
                          .breakTimerEnabled = false,
                          .breakInterval = std::numeric_limits<std::int64_t>::min(),
                          .isBuiltIn = false};
    nlohmann::json const json = reading;
    EXPECT_EQ(json.at("isBuiltIn"), false);
    EXPECT_EQ(json.at("breakTimerEnabled"), false);
    EXPECT_EQ(nlohmann::json::parse(json.dump()).get<Profile>(), reading);
}

TEST_F(ProfileTest, NumberThatDoesNotFitItsFieldIsRejected) {
    nlohmann::json const good = everyday();
    const auto read = [&](const char* key, const char* number) {
        auto json = good;
        json[key] = nlohmann::json::parse(number);
        return json.get<Profile>();
    };
    for (const auto* const interval :
         {"1e300", "-1e300", "18446744073709551615", "9223372036854775808", "20.7", "20.0", "true",
          "null", "\"20\""}) {
        EXPECT_THROW(read("breakInterval", interval), nlohmann::json::exception) << interval;
    }
    for (const auto* const fraction : {"true", "null", "\"0.5\""}) {
        EXPECT_THROW(read("brightness", fraction), nlohmann::json::exception) << fraction;
        EXPECT_THROW(read("warmth", fraction), nlohmann::json::exception) << fraction;
    }
    for (const auto* const flag : {"1", "0", "null", "\"true\""}) {
        for (const auto* const key : {"grayscaleEnabled", "breakTimerEnabled", "isBuiltIn"}) {
            EXPECT_THROW(read(key, flag), nlohmann::json::exception) << key << " " << flag;
        }
    }
    EXPECT_EQ(read("breakInterval", "9223372036854775807").breakInterval,
              std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(read("breakInterval", "-3").breakInterval, -3)
        << "an unusual value should be read as is";
    EXPECT_EQ(read("brightness", "1").brightness, 1.0)
        << "a whole number should be a valid fraction";
    EXPECT_EQ(read("warmth", "7.5").warmth, 7.5) << "an unusual value should be read as is";
}

TEST_F(ProfileTest, JsonThatIsNotAProfileIsRejected) {
    nlohmann::json const good = everyday();
    for (const auto& [key, value] : good.items()) {
        auto json = good;
        json.erase(key);
        EXPECT_THROW(json.get<Profile>(), nlohmann::json::exception)
            << key << " is missing and should be rejected";
        json[key] = nlohmann::json::array();
        EXPECT_THROW(json.get<Profile>(), nlohmann::json::exception)
            << key << " has the wrong type and should be rejected";
    }
    auto json = good;
    json["id"] = "everyday";
    EXPECT_THROW(json.get<Profile>(), nlohmann::json::exception);
}

TEST_F(ProfileTest, EqualityIncludesTheId) {
    auto twin = everyday();
    EXPECT_EQ(twin, everyday());
    twin.id = desktop.uuidSource.makeUuid();
    EXPECT_NE(twin, everyday());
    EXPECT_EQ(std::unordered_set<Profile>({everyday(), twin, everyday()}).size(), 2U);
}

TEST(MenuBarIconTest, RawValuesAreTheSymbolNamesInOrder) {
    std::vector<std::string_view> names;
    for (const auto icon : allMenuBarIcons) {
        names.push_back(rawValue(icon));
        EXPECT_EQ(menuBarIconFromRawValue(rawValue(icon)), icon);
    }
    EXPECT_EQ(names, (std::vector<std::string_view>{"eye", "leaf", "sparkles"}));
    EXPECT_EQ(menuBarIconFromRawValue("moon"), std::nullopt);
    EXPECT_EQ(menuBarIconFromRawValue("Eye"), std::nullopt);
}

} // namespace
} // namespace nocta
