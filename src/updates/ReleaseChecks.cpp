#include "updates/ReleaseChecks.h"

#include "base/Translatable.h"
#include "updates/VersionOrder.h"

#include <compare>

namespace nocta {

std::string_view upstreamVersion(std::string_view packageVersion) {
    if (const auto colon = packageVersion.find(':'); colon != std::string_view::npos) {
        packageVersion.remove_prefix(colon + 1);
    }
    return packageVersion.substr(0, packageVersion.rfind('-'));
}

bool isForThisSystem(const AppcastItem& item, const UpdateSystem& system) {
    return item.channel.empty() && (item.os.empty() || item.os == "linux") &&
           std::is_lteq(compareVersions(item.minimumSystemVersion, system.version));
}

std::optional<std::string> problemWith(const AppcastItem& item) {
    if (!item.url.starts_with("https://")) {
        return translatable("Nocta", "The file's address does not use HTTPS");
    }
    if (!item.url.ends_with(".deb")) {
        return translatable("Nocta", "The file is not a package");
    }
    if (item.edSignature.empty()) {
        return translatable("Nocta", "The file is not signed");
    }
    if (item.length <= 0 || item.length > maxPackageSize) {
        return translatable("Nocta", "The feed gives no valid length for the file");
    }
    return std::nullopt;
}

std::optional<std::string> problemWith(const Package& package, const AppcastItem& item,
                                       std::string_view current, const UpdateSystem& system) {
    const auto version = upstreamVersion(package.version);
    if (package.name != "nocta") {
        return translatable("Nocta", "The package does not contain Nocta");
    }
    if (package.architecture != system.architecture) {
        return translatable("Nocta", "The package is for another kind of computer");
    }
    if (version != item.shortVersionString) {
        return translatable("Nocta", "The package contains another version than the feed says");
    }
    if (std::is_lteq(compareVersions(version, current))) {
        return translatable("Nocta", "The package is not newer than this version");
    }
    return std::nullopt;
}

} // namespace nocta
