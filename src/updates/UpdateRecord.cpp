#include "updates/UpdateRecord.h"

#include <chrono>

namespace nocta {

namespace {

constexpr auto hasLaunchedBeforeKey = "hasLaunchedBefore";
constexpr auto automaticChecksKey = "automaticChecks"; // one of the two words below
constexpr auto downloadsAutomaticallyKey = "downloadsAutomatically";
constexpr auto lastCheckKey = "lastCheck"; // seconds since 1970
constexpr auto skippedVersionKey = "skippedVersion";

constexpr auto allowed = "allowed";
constexpr auto denied = "denied";

} // namespace

bool UpdateRecord::hasLaunchedBefore() const {
    return store_.boolForKey(hasLaunchedBeforeKey);
}

void UpdateRecord::setHasLaunchedBefore() {
    store_.setBool(true, hasLaunchedBeforeKey);
}

std::optional<bool> UpdateRecord::checksAutomatically() const {
    const auto decision = store_.stringForKey(automaticChecksKey);
    return decision == allowed || decision == denied ? std::optional(decision == allowed)
                                                     : std::nullopt;
}

void UpdateRecord::setChecksAutomatically(bool checks) {
    store_.setObject(checks ? allowed : denied, automaticChecksKey);
}

bool UpdateRecord::downloadsAutomatically() const {
    return store_.boolForKey(downloadsAutomaticallyKey);
}

void UpdateRecord::setDownloadsAutomatically(bool downloads) {
    store_.setBool(downloads, downloadsAutomaticallyKey);
}

std::optional<WallTime> UpdateRecord::lastCheck() const {
    constexpr auto latest = std::chrono::floor<std::chrono::seconds>(WallTime::max());
    const auto seconds = store_.integerForKey(lastCheckKey);
    if (seconds <= 0 || seconds > latest.time_since_epoch().count()) {
        return std::nullopt;
    }
    return WallTime(std::chrono::seconds(seconds));
}

void UpdateRecord::setLastCheck(WallTime time) {
    store_.setInteger(std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count(),
                      lastCheckKey);
}

std::string UpdateRecord::skippedVersion() const {
    return store_.stringForKey(skippedVersionKey).value_or("");
}

void UpdateRecord::setSkippedVersion(const std::string& version) {
    store_.setObject(version, skippedVersionKey);
}

} // namespace nocta
