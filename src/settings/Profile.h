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

/// A named preset for five settings. `SettingsManager::applyProfile` copies its values into the
/// settings; after that, the user can change each of them as usual.
struct Profile {
    Uuid id;
    std::string name;
    double brightness = 0; ///< 0.0–1.0
    double warmth = 0;     ///< 0.0–1.0
    bool grayscaleEnabled = false;
    bool breakTimerEnabled = false;
    std::int64_t breakInterval = 0; ///< minutes
    bool isBuiltIn = false;

    /// The built-in profiles Everyday, Night Owl and Focus, created on first use. Their ids are
    /// different in every run, so a stored id never matches a built-in profile after a restart.
    static const BuiltInProfiles& builtInProfiles();

    /// Returns the name of the profile's symbol, which depends only on the name of the profile.
    std::string_view icon() const;

    /// Returns a one-line description of a built-in profile, or an empty string for any other name.
    std::string_view description() const;

    bool operator==(const Profile&) const = default;
};

BuiltInProfiles makeBuiltInProfiles(UuidSource& uuidSource);

/// The JSON form is an object with the eight field names as keys and the id in canonical form.
/// Reading throws nlohmann::json::exception if a key is missing, a value has the wrong type, the id
/// is not a UUID, or the number of minutes does not fit the field. The ranges of `brightness` and
/// `warmth` are not checked.
void to_json(nlohmann::json& json, const Profile& profile);
void from_json(const nlohmann::json& json, Profile& profile);

} // namespace nocta

template <>
struct std::hash<nocta::Profile> {
    std::size_t operator()(const nocta::Profile& profile) const noexcept {
        return std::hash<nocta::Uuid>()(profile.id); // equal profiles have the same id
    }
};
