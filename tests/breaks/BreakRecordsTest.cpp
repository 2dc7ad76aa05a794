#include "breaks/BreakRecords.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <limits>
#include <string>

namespace nocta {
namespace {

using namespace std::chrono_literals;
using Json = nlohmann::json;

TEST(BreakRecords, NewValuesAreZero) {
    EXPECT_EQ(Json(BreakStatistics{}),
              Json::parse(R"({"totalBreaks":0,"completedBreaks":0,"skippedBreaks":0,
                              "snoozedBreaks":0,"totalBreakTime":0.0})"));
}

TEST(BreakRecords, StatisticsReadBackExactly) {
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    const BreakStatistics statistics{most, 3, 2, std::numeric_limits<std::int64_t>::min(),
                                     1234567.875};
    EXPECT_EQ(Json::parse(Json(statistics).dump()).get<BreakStatistics>(), statistics);
}

TEST(BreakRecords, MalformedStatisticsAreRejected) {
    const Json good = BreakStatistics{6, 1, 2, 3, 20.5};
    for (const auto* const key :
         {"totalBreaks", "completedBreaks", "skippedBreaks", "snoozedBreaks", "totalBreakTime"}) {
        for (const auto& value : {Json("1"), Json(true), Json(nullptr), Json::array(), Json()}) {
            auto bad = good;
            bad[key] = value;
            EXPECT_THROW(bad.get<BreakStatistics>(), Json::exception) << bad;
        }
        auto missing = good;
        missing.erase(key);
        EXPECT_THROW(missing.get<BreakStatistics>(), Json::exception) << key;
    }
    auto bad = good;
    bad["totalBreaks"] = 1.5;
    EXPECT_THROW(bad.get<BreakStatistics>(), Json::exception);
    bad["totalBreaks"] = std::numeric_limits<std::uint64_t>::max();
    EXPECT_THROW(bad.get<BreakStatistics>(), Json::exception);
    auto more = good;
    more["another"] = 1;
    EXPECT_EQ(more.get<BreakStatistics>(), good.get<BreakStatistics>());
    more["totalBreakTime"] = 20; // a whole number of seconds
    EXPECT_EQ(more.get<BreakStatistics>().totalBreakTime, 20.0);
}

TEST(BreakRecords, SessionReadsBack) {
    const WallTime start = std::chrono::sys_days(std::chrono::year(2026) / 11 / 21) + 9h + 500ms;
    const BreakSession session{
        .id = Uuid::parse("C1C1C1C1-0000-4000-8000-000000000001").value(),
        .startTime = start,
        .endTime = start + 20s,
        .wasSkipped = true,
    };
    const Json json = session;
    EXPECT_EQ(json.at("id"), "C1C1C1C1-0000-4000-8000-000000000001");
    EXPECT_EQ(json.at("endTime").get<double>() - json.at("startTime").get<double>(), 20.0);
    EXPECT_EQ(json.at("wasCompleted"), false);
    EXPECT_EQ(json.at("wasSkipped"), true);
    EXPECT_EQ(json.at("wasSnoozed"), false);
    EXPECT_EQ(json.size(), 6U);
    const auto back = Json::parse(json.dump()).get<BreakSession>();
    EXPECT_EQ(back.id, session.id);
    EXPECT_LT(std::chrono::abs(back.startTime - session.startTime), 1us);
    EXPECT_TRUE(back.wasSkipped);
}

TEST(BreakRecords, MalformedSessionIsRejected) {
    const Json good = BreakSession{};
    for (const auto& [key, value] :
         {std::pair("id", Json("nobody")), std::pair("startTime", Json("now")),
          std::pair("endTime", Json(1e300)), std::pair("endTime", Json(-1e300)),
          std::pair("endTime", Json(9.9e9)), std::pair("wasSkipped", Json(1))}) {
        auto bad = good;
        bad[key] = value;
        EXPECT_THROW(bad.get<BreakSession>(), Json::exception) << bad;
    }
}

TEST(BreakRecords, SessionReadsBackAtTheLimitsOfTheClock) {
    for (const auto seconds : {-999'999'999.0, 7'999'999'999.0}) {
        Json json = BreakSession{};
        json["startTime"] = seconds;
        const Json back = json.get<BreakSession>();
        EXPECT_NEAR(back.at("startTime").get<double>(), seconds, 1e-5);
    }
}

} // namespace
} // namespace nocta
