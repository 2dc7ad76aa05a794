#include "base/Deferred.h"

#include "backends/virtual/VirtualRunLoop.h"

#include <gtest/gtest.h>

#include <optional>

namespace nocta {
namespace {

TEST(Deferred, RepeatedRequestsRunTheActionOnceAtTheEndOfTheTurn) {
    VirtualRunLoop runLoop;
    int runs = 0;
    Deferred deferred(runLoop, [&] { ++runs; });
    deferred.request();
    deferred.request();
    EXPECT_EQ(runs, 0);
    runLoop.advance(Duration::zero());
    EXPECT_EQ(runs, 1);
    deferred.request();
    runLoop.advance(Duration::zero());
    EXPECT_EQ(runs, 2);
}

TEST(Deferred, RequestFromTheActionRunsItAgain) {
    VirtualRunLoop runLoop;
    int runs = 0;
    std::optional<Deferred> deferred;
    deferred.emplace(runLoop, [&] {
        if (++runs == 1) {
            deferred->request();
        }
    });
    deferred->request();
    runLoop.advance(Duration::zero());
    EXPECT_EQ(runs, 2);
}

TEST(Deferred, DestructionDropsAPendingRequest) {
    VirtualRunLoop runLoop;
    std::optional<Deferred> deferred;
    deferred.emplace(runLoop, [] { FAIL(); });
    deferred->request();
    deferred.reset();
    runLoop.advance(Duration::zero());
}

} // namespace
} // namespace nocta
