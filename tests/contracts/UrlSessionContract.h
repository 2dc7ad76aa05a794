#pragma once

#include "platform/UrlSession.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace nocta {

/// The contract of the network on every desktop. `Harness` has a `urlSession()` and a `request()`
/// that the session can load. `answer(status, body)` sets the server's response to later requests;
/// after `breakConnections()` the server closes every connection without a response.
/// `runUntil(condition)` runs the run loop until the condition holds, and returns false if it times
/// out.
template <class Harness>
class UrlSessionContract : public ::testing::Test {
protected:
    using Responses = std::vector<UrlResponse>;

    [[nodiscard]] Subscription start(Responses& responses) {
        auto task = harness.urlSession().dataTask(
            harness.request(),
            [&responses](const UrlResponse& response) { responses.push_back(response); });
        EXPECT_TRUE(responses.empty()) << "the completion should come from the run loop";
        return task;
    }
    bool waitFor(const Responses& responses) {
        return harness.runUntil([&] { return !responses.empty(); });
    }
    /// Runs another task to its end, so that late reports from earlier tasks can arrive.
    void loadAnother() {
        Responses other;
        const auto task = start(other);
        ASSERT_TRUE(waitFor(other));
    }

    Harness harness;
};

TYPED_TEST_SUITE_P(UrlSessionContract);

TYPED_TEST_P(UrlSessionContract, EveryStatusIsReportedOnceAsAResponse) {
    for (const auto status : {200, 201, 204, 400, 403, 404, 500, 503}) {
        this->harness.answer(status, "");
        typename TestFixture::Responses responses;
        const auto task = this->start(responses);
        ASSERT_TRUE(this->waitFor(responses));
        this->loadAnother();
        ASSERT_EQ(responses.size(), 1U);
        EXPECT_EQ(responses[0].statusCode, status);
        EXPECT_EQ(responses[0].error, std::nullopt);
    }
}

TYPED_TEST_P(UrlSessionContract, BrokenConnectionIsReportedOnceAsAnError) {
    this->harness.breakConnections();
    typename TestFixture::Responses responses;
    const auto task = this->start(responses);
    ASSERT_TRUE(this->waitFor(responses));
    this->loadAnother();
    ASSERT_EQ(responses.size(), 1U);
    EXPECT_EQ(responses[0].statusCode, std::nullopt);
    EXPECT_NE(responses[0].error.value_or(""), "");
}

TYPED_TEST_P(UrlSessionContract, CanceledTaskReportsNothing) {
    this->harness.answer(200, "body");
    typename TestFixture::Responses responses;
    auto task = this->start(responses);
    task.cancel();
    // Even if the tasks run in parallel, the canceled one would be done by the end of this loop.
    for (int i = 0; i < 3; ++i) {
        this->loadAnother();
    }
    EXPECT_TRUE(responses.empty());
}

TYPED_TEST_P(UrlSessionContract, TaskMayBeDestroyedByItsCompletion) {
    this->harness.answer(200, "body");
    Subscription task;
    bool isComplete = false;
    task = this->harness.urlSession().dataTask(this->harness.request(), [&](const UrlResponse&) {
        isComplete = true;
        task.cancel();
    });
    EXPECT_TRUE(this->harness.runUntil([&] { return isComplete; }));
    this->loadAnother();
}

TYPED_TEST_P(UrlSessionContract, SimultaneousTasksAreAllCompleted) {
    this->harness.answer(200, "body");
    typename TestFixture::Responses first;
    typename TestFixture::Responses second;
    const auto one = this->start(first);
    const auto other = this->start(second);
    EXPECT_TRUE(this->waitFor(first));
    EXPECT_TRUE(this->waitFor(second));
    EXPECT_EQ(first.at(0).statusCode, 200);
    EXPECT_EQ(second.at(0).statusCode, 200);
}

REGISTER_TYPED_TEST_SUITE_P(UrlSessionContract, EveryStatusIsReportedOnceAsAResponse,
                            BrokenConnectionIsReportedOnceAsAnError, CanceledTaskReportsNothing,
                            TaskMayBeDestroyedByItsCompletion, SimultaneousTasksAreAllCompleted);

} // namespace nocta
