#pragma once

#include <string_view>

namespace nocta {

/// What this build says of itself and of its publisher. Stands for the info dictionary of
/// NSBundle.mainBundle.
struct Bundle {
    std::string_view shortVersionString; ///< for people
    std::string_view version;            ///< of the build; a newer one is greater
    std::string_view apiBase;            ///< takes feedback: https://HOST, or nothing
    std::string_view feedUrl;            ///< of the appcast: https, or nothing
    std::string_view publicEdKey;        ///< that updates are signed with: 32 bytes in Base64
    bool isPackageManaged = false;       ///< its updates come with those of the system
};

} // namespace nocta
