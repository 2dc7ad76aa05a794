#include "base/Checked.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace nocta {
namespace {

constexpr auto most = std::numeric_limits<std::int64_t>::max();
constexpr auto least = std::numeric_limits<std::int64_t>::min();

TEST(Checked, ResultsThatFitAreReturned) {
    EXPECT_EQ(truncated(-2.9), -2);
    EXPECT_EQ(truncated(-9223372036854775808.0), least);
    EXPECT_EQ(truncated(9223372036854774784.0), 9223372036854774784);
    EXPECT_EQ(checkedSum(most, 0), most);
    EXPECT_EQ(checkedDifference(least, 0), least);
    EXPECT_EQ(checkedProduct(most, -1), -most);
}

TEST(Checked, OverflowStopsTheProgramWithOneLine) {
    EXPECT_DEATH(truncated(9223372036854775808.0),
                 "^nocta: stopped: a number is too large for an integer\n$");
    EXPECT_DEATH(truncated(-9223372036854777856.0), "a number is too large");
    EXPECT_DEATH(truncated(std::nan("")), "a number is too large");
    EXPECT_DEATH(checkedSum(most, 1), "^nocta: stopped: a sum is too large for an integer\n$");
    EXPECT_DEATH(checkedDifference(least, 1), "a difference is too large for an integer\n$");
    EXPECT_DEATH(checkedProduct(most, 2), "a product is too large for an integer\n$");
}

TEST(FaultContext, EveryMessageNamesTheStoredValues) {
    const FaultContext context({{"minutes", most}, {"warmth", 1.25e300}});
    const auto* const line =
        "^nocta: stopped: minutes is 9223372036854775807, warmth is 1.25e\\+300: "
        "a .* is too large for an integer\n$";
    EXPECT_DEATH(truncated(1e300), line);
    EXPECT_DEATH(checkedSum(most, 1), line);
    EXPECT_DEATH(checkedDifference(least, 1), line);
    EXPECT_DEATH(checkedProduct(most, 2), line);
}

TEST(FaultContext, InnermostContextAppliesWhileItExists) {
    const FaultContext outer({{"minutes", most}});
    {
        const FaultContext inner({{"warmth", 1e300}});
        EXPECT_DEATH(truncated(1e300), "^nocta: stopped: warmth is 1e\\+300: a number");
    }
    EXPECT_DEATH(truncated(1e300), "^nocta: stopped: minutes is 9223372036854775807: a number");
}

TEST(FaultContext, DestroyedContextIsNotInTheMessage) {
    { const FaultContext context({{"minutes", most}}); }
    EXPECT_DEATH(truncated(1e300), "^nocta: stopped: a number is too large for an integer\n$");
}

TEST(FaultContext, AdviceIsAppendedIfAStoredValueIsNamed) {
    const auto stopWith = [](std::vector<Origin> origins) {
        const FaultContext context(std::move(origins));
        setOriginAdvice("correct it in /the/file");
        checkedSum(most, 1);
    };
    EXPECT_DEATH(stopWith({{"minutes", most}}),
                 "^nocta: stopped: minutes is 9223372036854775807: a sum is too large for an "
                 "integer; correct it in /the/file\n$");
    EXPECT_DEATH(stopWith({}), "^nocta: stopped: a sum is too large for an integer\n$");
}

} // namespace
} // namespace nocta
