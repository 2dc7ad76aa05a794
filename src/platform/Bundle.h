#pragma once

#include <string_view>

namespace nocta {

/// Facts about this build and its publisher. Corresponds to the info dictionary of
/// NSBundle.mainBundle on macOS.
struct Bundle {
    std::string_view shortVersionString; ///< as shown to the user
    std::string_view version;            ///< of this build; higher in newer builds
    std::string_view apiBase;            ///< receives feedback: https://HOST[:PORT], or empty
    std::string_view feedUrl;            ///< URL of the appcast: https, or empty
    std::string_view publicEdKey;        ///< verifies updates: 32 bytes in Base64
    bool isPackageManaged = false;       ///< the system's package manager updates it
};

} // namespace nocta
