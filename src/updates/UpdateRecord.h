#pragma once

#include "base/RunLoop.h"
#include "platform/DefaultsStore.h"

#include <optional>
#include <string>

namespace nocta {

/// The data that the update service keeps between runs. A value of the wrong type or out of range
/// counts as missing.
class UpdateRecord {
public:
    explicit UpdateRecord(DefaultsStore& store) : store_(store) {}

    bool hasLaunchedBefore() const;
    void setHasLaunchedBefore();

    /// Empty until the user has decided.
    std::optional<bool> checksAutomatically() const;
    void setChecksAutomatically(bool checks);

    bool downloadsAutomatically() const;
    void setDownloadsAutomatically(bool downloads);

    /// The last check that got an answer, in whole seconds.
    std::optional<WallTime> lastCheck() const;
    void setLastCheck(WallTime time);

    /// Empty if no version was skipped.
    std::string skippedVersion() const;
    void setSkippedVersion(const std::string& version);

private:
    DefaultsStore& store_;
};

} // namespace nocta
