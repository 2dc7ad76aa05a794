#pragma once

#include "base/Uuid.h"
#include "platform/UuidSource.h"

#include <nlohmann/json_fwd.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace nocta {

struct Profile;
using BuiltInProfiles = std::array<Profile, 3>;

/// A named preset of the five settings that shape a user's day. Applying one copies its values
/// into the settings (`SettingsManager::applyProfile`); after that they are ordinary settings.
struct Profile {
    Uuid id;
    std::string name;
    double brightness = 0; ///< 0.0–1.0
    double warmth = 0;     ///< 0.0–1.0
    bool grayscaleEnabled = false;
    bool breakTimerEnabled = false;
    std::int64_t breakInterval = 0; ///< minutes
    bool isBuiltIn = false;

    /// The process's built-in profiles: Everyday, Night Owl and Focus, made on first use. Their
    /// ids are new in every run, so a stored id never matches one of them after a restart.
    static const BuiltInProfiles& builtInProfiles();

    /// The symbol that stands for a profile of this name.
    std::string_view icon() const;

    /// One line about a built-in profile; empty for every other name.
    std::string_view description() const;

    bool operator==(const Profile&) const = default;
};

BuiltInProfiles makeBuiltInProfiles(UuidSource& uuidSource);

/// A JSON object with the eight field names as keys and the id in canonical form. Reading throws
/// nlohmann::json::exception if a key is missing, a value has the wrong type, the id is not a UUID,
/// or the number of minutes does not fit the field. Fractions are not checked.
void to_json(nlohmann::json& json, const Profile& profile);
void from_json(const nlohmann::json& json, Profile& profile);

} // namespace nocta

template <>
struct std::hash<nocta::Profile> {
    std::size_t operator()(const nocta::Profile& profile) const noexcept {
        return std::hash<nocta::Uuid>()(profile.id); // equal profiles have equal ids
    }
};
