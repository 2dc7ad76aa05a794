#include "breaks/BreakRecords.h"

#include "settings/JsonInteger.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <ratio>

namespace nocta {

namespace {

constexpr WallTime referenceTime{std::chrono::sys_days(std::chrono::year(2001) / 1 / 1)};

using Seconds = std::chrono::duration<double>;

double sinceReference(WallTime time) {
    return Seconds(time - referenceTime).count();
}

[[noreturn]] void refuse(const char* reason, const nlohmann::json& json) {
    throw nlohmann::json::other_error::create(500, reason, &json);
}

WallTime timeFrom(const nlohmann::json& json) {
    const auto seconds = json.get<double>();
    // These limits are in 1969 and 2254. Nanoseconds in 64 bits overflow in 2262.
    constexpr auto earliest = -1e9;
    constexpr auto latest = 8e9;
    if (!(seconds > earliest && seconds < latest)) {
        refuse("not a time", json);
    }
    return referenceTime + std::chrono::round<Duration>(Seconds(seconds));
}

} // namespace

std::vector<Origin> originsOf(const BreakStatistics& statistics) {
    return {{"totalBreaks in breakStatistics", statistics.totalBreaks},
            {"completedBreaks in breakStatistics", statistics.completedBreaks},
            {"skippedBreaks in breakStatistics", statistics.skippedBreaks},
            {"snoozedBreaks in breakStatistics", statistics.snoozedBreaks}};
}

void to_json(nlohmann::json& json, const BreakSession& session) {
    json = {
        {"id", session.id.toString()},
        {"startTime", sinceReference(session.startTime)},
        {"endTime", sinceReference(session.endTime)},
        {"wasCompleted", session.wasCompleted},
        {"wasSkipped", session.wasSkipped},
        {"wasSnoozed", session.wasSnoozed},
    };
}

void from_json(const nlohmann::json& json, BreakSession& session) {
    const auto id = Uuid::parse(json.at("id").get<std::string>());
    if (!id) {
        refuse("id is not a UUID", json);
    }
    session.id = *id;
    session.startTime = timeFrom(json.at("startTime"));
    session.endTime = timeFrom(json.at("endTime"));
    json.at("wasCompleted").get_to(session.wasCompleted);
    json.at("wasSkipped").get_to(session.wasSkipped);
    json.at("wasSnoozed").get_to(session.wasSnoozed);
}

void to_json(nlohmann::json& json, const BreakStatistics& statistics) {
    json = {
        {"totalBreaks", statistics.totalBreaks},
        {"completedBreaks", statistics.completedBreaks},
        {"skippedBreaks", statistics.skippedBreaks},
        {"snoozedBreaks", statistics.snoozedBreaks},
        {"totalBreakTime", statistics.totalBreakTime},
    };
}

void from_json(const nlohmann::json& json, BreakStatistics& statistics) {
    statistics.totalBreaks = integerFrom(json.at("totalBreaks"));
    statistics.completedBreaks = integerFrom(json.at("completedBreaks"));
    statistics.skippedBreaks = integerFrom(json.at("skippedBreaks"));
    statistics.snoozedBreaks = integerFrom(json.at("snoozedBreaks"));
    json.at("totalBreakTime").get_to(statistics.totalBreakTime);
}

} // namespace nocta
