#pragma once

#include "platform/UrlSession.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
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
    /// The reports of a task so far.
    struct Report {
        std::vector<UrlResponse> responses;
        std::string body;
        int pieces = 0;
    };

    [[nodiscard]] Subscription start(
        Report& report, const std::function<void()>& afterPiece = [] {}) {
        auto task = harness.urlSession().dataTask(
            harness.request(),
            [&report](const UrlResponse& response) { report.responses.push_back(response); },
            [&report, afterPiece](std::string_view piece) {
                EXPECT_TRUE(report.responses.empty()) << "the completion should come last";
                report.body += piece;
                ++report.pieces;
                afterPiece();
            });
        EXPECT_TRUE(report.responses.empty()) << "the completion should come from the run loop";
        EXPECT_EQ(report.pieces, 0);
        return task;
    }
    bool waitFor(const Report& report) {
        return harness.runUntil([&] { return !report.responses.empty(); });
    }
    /// Runs another task to its end, so that late reports from earlier tasks can arrive.
    void loadAnother() {
        Report other;
        const auto task = start(other);
        ASSERT_TRUE(waitFor(other));
    }

    Harness harness;
};

TYPED_TEST_SUITE_P(UrlSessionContract);

TYPED_TEST_P(UrlSessionContract, EveryStatusIsReportedOnceAsAResponse) {
    for (const auto status : {200, 201, 204, 400, 403, 404, 500, 503}) {
        this->harness.answer(status, "");
        typename TestFixture::Report report;
        const auto task = this->start(report);
        ASSERT_TRUE(this->waitFor(report));
        this->loadAnother();
        ASSERT_EQ(report.responses.size(), 1U);
        EXPECT_EQ(report.responses[0].statusCode, status);
        EXPECT_EQ(report.responses[0].error, std::nullopt);
    }
}

TYPED_TEST_P(UrlSessionContract, BrokenConnectionIsReportedOnceAsAnError) {
    this->harness.breakConnections();
    typename TestFixture::Report report;
    const auto task = this->start(report);
    ASSERT_TRUE(this->waitFor(report));
    this->loadAnother();
    ASSERT_EQ(report.responses.size(), 1U);
    EXPECT_EQ(report.responses[0].statusCode, std::nullopt);
    EXPECT_NE(report.responses[0].error.value_or(""), "");
}

TYPED_TEST_P(UrlSessionContract, CompleteBodyArrivesInOrderBeforeTheCompletion) {
    std::string content(3'000'001, '\0');
    for (std::size_t i = 0; i < content.size(); ++i) {
        content[i] = static_cast<char>(i * 2654435761U >> 24);
    }
    this->harness.answer(200, content);
    typename TestFixture::Report report;
    const auto task = this->start(report);
    ASSERT_TRUE(this->waitFor(report));
    EXPECT_EQ(report.responses[0].statusCode, 200);
    EXPECT_TRUE(report.body == content);
    EXPECT_GT(report.pieces, 1);
}

TYPED_TEST_P(UrlSessionContract, CanceledTaskReportsNothing) {
    this->harness.answer(200, "body");
    typename TestFixture::Report report;
    auto task = this->start(report);
    task.cancel();
    // Even if the tasks run in parallel, the canceled one would be done by the end of this loop.
    for (int i = 0; i < 3; ++i) {
        this->loadAnother();
    }
    EXPECT_TRUE(report.responses.empty());
    EXPECT_EQ(report.pieces, 0);
}

TYPED_TEST_P(UrlSessionContract, TaskMayBeCanceledByItsReceiver) {
    this->harness.answer(200, std::string(1'000'000, 'x'));
    typename TestFixture::Report report;
    Subscription task;
    task = this->start(report, [&task] { task.cancel(); });
    ASSERT_TRUE(this->harness.runUntil([&] { return report.pieces > 0; }));
    this->harness.answer(200, "");
    this->loadAnother();
    EXPECT_EQ(report.pieces, 1);
    EXPECT_TRUE(report.responses.empty());
}

TYPED_TEST_P(UrlSessionContract, SimultaneousTasksAreAllCompleted) {
    this->harness.answer(200, "body");
    typename TestFixture::Report first;
    typename TestFixture::Report second;
    const auto one = this->start(first);
    const auto other = this->start(second);
    EXPECT_TRUE(this->waitFor(first));
    EXPECT_TRUE(this->waitFor(second));
    EXPECT_EQ(first.body, "body");
    EXPECT_EQ(second.body, "body");
}

REGISTER_TYPED_TEST_SUITE_P(UrlSessionContract, EveryStatusIsReportedOnceAsAResponse,
                            BrokenConnectionIsReportedOnceAsAnError,
                            CompleteBodyArrivesInOrderBeforeTheCompletion,
                            CanceledTaskReportsNothing, TaskMayBeCanceledByItsReceiver,
                            SimultaneousTasksAreAllCompleted);

} // namespace nocta
