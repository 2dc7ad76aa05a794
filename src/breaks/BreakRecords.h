#pragma once

#include "base/Checked.h"
#include "base/RunLoop.h"
#include "base/Uuid.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <variant>
#include <vector>

namespace nocta {

/// Why the countdown is paused.
enum class PauseReason { meeting, userPaused };

/// The countdown to the next break is running.
struct Counting {
    double timeUntilBreak = 0; ///< seconds
    bool operator==(const Counting&) const = default;
};

/// A break is in progress.
struct Active {
    double timeRemaining = 0; ///< seconds
    bool operator==(const Active&) const = default;
};

struct Paused {
    PauseReason reason = PauseReason::meeting;
    bool operator==(const Paused&) const = default;
};

/// The user postponed the break.
struct Snoozed {
    WallTime until;
    bool operator==(const Snoozed&) const = default;
};

/// Break reminders are off or have not been started.
struct Idle {
    bool operator==(const Idle&) const = default;
};

using BreakState = std::variant<Counting, Active, Paused, Snoozed, Idle>;

/// One break. After it has ended, exactly one of the three outcomes is true.
struct BreakSession {
    Uuid id;
    WallTime startTime;
    WallTime endTime; ///< equals startTime until the break has ended
    bool wasCompleted = false;
    bool wasSkipped = false;
    bool wasSnoozed = false;
    bool operator==(const BreakSession&) const = default;
};

/// Running totals over all breaks since the program was installed.
struct BreakStatistics {
    std::int64_t totalBreaks = 0;
    std::int64_t completedBreaks = 0;
    std::int64_t skippedBreaks = 0;
    std::int64_t snoozedBreaks = 0;
    double totalBreakTime = 0; ///< seconds, of completed breaks only
    bool operator==(const BreakStatistics&) const = default;
};

/// The counts, for a `FaultContext`: the message names them if they cause a fault.
std::vector<Origin> originsOf(const BreakStatistics& statistics);

// JSON objects whose keys are the names of the fields. Times are seconds since 2001-01-01 00:00
// UTC. Reading ignores unknown keys, and throws nlohmann::json::exception if a field is missing or
// invalid.
void to_json(nlohmann::json& json, const BreakSession& session);
void from_json(const nlohmann::json& json, BreakSession& session);
void to_json(nlohmann::json& json, const BreakStatistics& statistics);
void from_json(const nlohmann::json& json, BreakStatistics& statistics);

} // namespace nocta
