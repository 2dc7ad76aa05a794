// Fuzzes the JSON records, and the break timer, which reads its totals from the settings when it is
// constructed.

#include "Expect.h"
#include "app/SharedInstances.h"
#include "backends/virtual/VirtualDesktop.h"
#include "breaks/BreakRecords.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace nocta {
namespace {

using namespace std::chrono_literals;
using Bytes = std::vector<std::uint8_t>;

constexpr auto statisticsKey = "breakStatistics";

template <class Record>
std::optional<Record> read(const Bytes& bytes) {
    try {
        return nlohmann::json::parse(bytes).get<Record>();
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

template <class Record>
Bytes written(const Record& record) {
    const auto text = nlohmann::json(record).dump();
    return {text.begin(), text.end()};
}

void checkSession(const Bytes& bytes) {
    const auto session = read<BreakSession>(bytes);
    if (!session) {
        return;
    }
    const auto again = read<BreakSession>(written(*session));
    expect(again.has_value(), "a session that was written can be read");
    expect(again->id == session->id, "an ID reads back the same");
    expect(again->wasCompleted == session->wasCompleted &&
               again->wasSkipped == session->wasSkipped && again->wasSnoozed == session->wasSnoozed,
           "an outcome reads back the same");
    // A double in seconds cannot represent every nanosecond.
    expect(std::chrono::abs(again->startTime - session->startTime) < 5us &&
               std::chrono::abs(again->endTime - session->endTime) < 5us,
           "a time reads back the same");
}

void checkTimer(const Bytes& bytes) {
    const auto totals = read<BreakStatistics>(bytes);
    if (totals) {
        expect(read<BreakStatistics>(written(*totals)) == totals, "totals read back the same");
    }
    VirtualDesktop desktop;
    desktop.userDefaults.table.set(statisticsKey, DefaultsData{bytes});
    SharedInstances instances(desktop.ports);
    auto& timer = instances.breakTimer();
    auto expected = totals.value_or(BreakStatistics{});
    expect(timer.statistics.get() == expected, "unreadable totals start from zero");

    // Do not add one to the largest number: the sanitizer stops the program on every overflow.
    if (std::max(expected.totalBreaks, expected.skippedBreaks) ==
        std::numeric_limits<std::int64_t>::max()) {
        return;
    }
    instances.settingsManager().breakIntervalMinutes.set(0);
    timer.start();
    desktop.runLoop.advance(1s);
    timer.skip();
    ++expected.totalBreaks;
    ++expected.skippedBreaks;
    expect(timer.statistics.get() == expected, "a break counts once");
    expect(read<BreakStatistics>(desktop.userDefaults.dataForKey(statisticsKey).value().bytes) ==
               expected,
           "the new totals are stored");
}

} // namespace
} // namespace nocta

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const nocta::Bytes bytes(data, data + size);
    nocta::checkSession(bytes);
    nocta::checkTimer(bytes);
    return 0;
}
