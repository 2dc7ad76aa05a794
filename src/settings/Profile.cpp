#include "settings/Profile.h"

#include "base/Translatable.h"
#include "settings/JsonInteger.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace nocta {

namespace {

struct Presentation {
    std::string_view name;
    std::string_view icon;
    std::string_view description;
};

constexpr std::array presentations = {
    Presentation{translatable("Nocta", "Everyday"), "sun.max",
                 translatable("Nocta", "Balanced for daily use")},
    Presentation{translatable("Nocta", "Night Owl"), "moon.stars",
                 translatable("Nocta", "Warmer & dimmer for night")},
    Presentation{translatable("Nocta", "Focus"), "brain.head.profile",
                 translatable("Nocta", "Minimal distractions")},
};

constexpr Presentation otherPresentation = {"", "circle", ""};

const Presentation& presentationOf(std::string_view name) {
    const auto* const found = std::ranges::find(presentations, name, &Presentation::name);
    return found == presentations.end() ? otherPresentation : *found;
}

} // namespace

std::string_view Profile::icon() const {
    return presentationOf(name).icon;
}

std::string_view Profile::description() const {
    return presentationOf(name).description;
}

BuiltInProfiles makeBuiltInProfiles(UuidSource& uuidSource) {
    const auto preset = [&](std::string_view name, double brightness, double warmth, bool grayscale,
                            std::int64_t breakInterval) {
        return Profile{.id = uuidSource.makeUuid(),
                       .name = std::string(name),
                       .brightness = brightness,
                       .warmth = warmth,
                       .grayscaleEnabled = grayscale,
                       .breakTimerEnabled = true,
                       .breakInterval = breakInterval,
                       .isBuiltIn = true};
    };
    return {
        preset("Everyday", 0.75, 0.5, false, 20),
        preset("Night Owl", 0.4, 0.8, false, 30),
        preset("Focus", 0.6, 0.3, true, 25),
    };
}

void to_json(nlohmann::json& json, const Profile& profile) {
    json = {
        {"id", profile.id.toString()},
        {"name", profile.name},
        {"brightness", profile.brightness},
        {"warmth", profile.warmth},
        {"grayscaleEnabled", profile.grayscaleEnabled},
        {"breakTimerEnabled", profile.breakTimerEnabled},
        {"breakInterval", profile.breakInterval},
        {"isBuiltIn", profile.isBuiltIn},
    };
}

void from_json(const nlohmann::json& json, Profile& profile) {
    const auto id = Uuid::parse(json.at("id").get<std::string>());
    if (!id) {
        throw nlohmann::json::other_error::create(500, "id is not a UUID", &json);
    }
    profile.id = *id;
    json.at("name").get_to(profile.name);
    json.at("brightness").get_to(profile.brightness);
    json.at("warmth").get_to(profile.warmth);
    json.at("grayscaleEnabled").get_to(profile.grayscaleEnabled);
    json.at("breakTimerEnabled").get_to(profile.breakTimerEnabled);
    profile.breakInterval = integerFrom(json.at("breakInterval"));
    json.at("isBuiltIn").get_to(profile.isBuiltIn);
}

} // namespace nocta
