#pragma once

#include <string_view>

namespace nocta {

/// Facts about this build and its publisher. Stands for the info dictionary of
/// NSBundle.mainBundle.
struct Bundle {
    std::string_view shortVersionString; ///< for people
    std::string_view version;            ///< of the build; a newer one is greater
    std::string_view apiBase;            ///< server that takes feedback: https://HOST, or empty
    std::string_view feedUrl;            ///< of the appcast: https, or empty
    std::string_view publicEdKey;        ///< verifies updates: 32 bytes in Base64
    bool isPackageManaged = false;       ///< its updates come with those of the system
};

} // namespace nocta
