#include "updates/UpdateRecord.h"

#include "backends/virtual/VirtualDesktop.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <limits>
#include <optional>

namespace nocta {
namespace {

using namespace std::chrono_literals;

class UpdateRecordTest : public ::testing::Test {
protected:
    VirtualDesktop desktop;
    MemoryDefaultsStore store{desktop.trace};
    UpdateRecord record{store};
};

TEST_F(UpdateRecordTest, NewRecordIsEmpty) {
    EXPECT_FALSE(record.hasLaunchedBefore());
    EXPECT_EQ(record.checksAutomatically(), std::nullopt);
    EXPECT_FALSE(record.downloadsAutomatically());
    EXPECT_EQ(record.lastCheck(), std::nullopt);
    EXPECT_EQ(record.skippedVersion(), "");
}

TEST_F(UpdateRecordTest, ValuesReadBackAsWritten) {
    const WallTime time{1234567890s + 250ms};
    for (const auto checks : {true, false}) {
        record.setHasLaunchedBefore();
        record.setChecksAutomatically(checks);
        record.setDownloadsAutomatically(!checks);
        record.setLastCheck(time);
        record.setSkippedVersion("1.3~rc1");
        const UpdateRecord other(store);
        EXPECT_TRUE(other.hasLaunchedBefore());
        EXPECT_EQ(other.checksAutomatically(), checks);
        EXPECT_EQ(other.downloadsAutomatically(), !checks);
        EXPECT_EQ(other.lastCheck(), WallTime{1234567890s});
        EXPECT_EQ(other.skippedVersion(), "1.3~rc1");
    }
}

TEST_F(UpdateRecordTest, InvalidValuesCountAsMissing) {
    store.setObject("perhaps", "automaticChecks");
    store.setObject("soon", "lastCheck");
    EXPECT_EQ(record.checksAutomatically(), std::nullopt);
    EXPECT_EQ(record.lastCheck(), std::nullopt);
    for (const auto seconds :
         {std::int64_t{-1}, std::int64_t{0}, std::numeric_limits<std::int64_t>::max(),
          std::numeric_limits<std::int64_t>::min()}) {
        store.setInteger(seconds, "lastCheck");
        EXPECT_EQ(record.lastCheck(), std::nullopt) << seconds;
    }
}

} // namespace
} // namespace nocta
