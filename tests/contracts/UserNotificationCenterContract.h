#pragma once

#include "platform/UserNotificationCenter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nocta {

/// The contract of the notifications on every desktop. `Harness` has a `center()`. `shown()`
/// returns the notifications that were shown, each as its title, its body and the titles of its
/// buttons. `press(index, actionIdentifier)` presses a button of the notification at `index`. After
/// `deny()`, the desktop allows no notifications. `settle()` returns once the program and the
/// desktop have processed all messages from each other.
template <class Harness>
class UserNotificationCenterContract : public ::testing::Test,
                                       public UserNotificationCenterDelegate {
protected:
    using Texts = std::vector<std::string>;

    UserNotificationCenter& center() { return harness.center(); }
    void start() {
        center().setDelegate(this);
        center().setNotificationCategories(
            {{.identifier = "OTHER", .actions = {{"NO", "No"}}},
             {.identifier = "REST", .actions = {{"SKIP", "Leave out"}, {"LATER", "Later"}}}});
    }
    void add(const std::string& category) {
        center().add({.title = "Rest", .body = "Look away", .categoryIdentifier = category});
        harness.settle();
    }
    /// Requests authorization and adds each answer to `answers` as text.
    void request(Texts& answers) {
        center().requestAuthorization(
            notificationAlert, [&](bool granted, const std::optional<std::string>& error) {
                answers.push_back((granted ? "granted" : "denied") + error.value_or(""));
            });
        EXPECT_TRUE(answers.empty()) << "answers should come from the run loop";
        harness.settle();
    }

    std::uint32_t willPresentNotification() override {
        ++questions;
        return presentation;
    }
    void didReceiveResponse(std::string_view actionIdentifier,
                            const std::function<void()>& completionHandler) override {
        responses.emplace_back(actionIdentifier);
        completionHandler();
    }

    Harness harness;
    std::uint32_t presentation = notificationBanner;
    int questions = 0;
    Texts responses;
};

TYPED_TEST_SUITE_P(UserNotificationCenterContract);

TYPED_TEST_P(UserNotificationCenterContract, RequestIsAnsweredOnceFromTheRunLoop) {
    std::vector<std::string> answers;
    this->request(answers);
    this->harness.settle();
    EXPECT_EQ(answers, std::vector<std::string>{"granted"});
    this->harness.deny();
    answers.clear();
    this->request(answers);
    this->harness.settle();
    ASSERT_EQ(answers.size(), 1U);
    EXPECT_TRUE(answers[0].starts_with("denied"));
}

TYPED_TEST_P(UserNotificationCenterContract, NotificationHasItsTextAndTheButtonsOfItsCategory) {
    this->start();
    this->add("REST");
    this->add("UNKNOWN");
    EXPECT_EQ(this->harness.shown(), (std::vector<std::vector<std::string>>{
                                         {"Rest", "Look away", "Leave out", "Later"},
                                         {"Rest", "Look away"},
                                     }));
}

TYPED_TEST_P(UserNotificationCenterContract, DelegateIsAskedOnceWhetherToShowANotification) {
    this->start();
    this->presentation = notificationAlert;
    this->add("REST");
    EXPECT_EQ(this->harness.shown().size(), 1U);
    EXPECT_EQ(this->questions, 1);
    this->presentation = notificationSound;
    this->add("REST");
    EXPECT_EQ(this->questions, 2);
    this->center().setDelegate(nullptr);
    this->add("REST");
    EXPECT_EQ(this->questions, 2);
    EXPECT_EQ(this->harness.shown().size(), 1U);
}

TYPED_TEST_P(UserNotificationCenterContract, AnswerToEachNotificationIsReportedOnce) {
    this->start();
    this->add("REST");
    this->add("REST");
    this->harness.press(0, "LATER");
    this->harness.press(0, "LATER");
    this->harness.press(1, "SKIP");
    this->harness.settle();
    EXPECT_EQ(this->responses, (std::vector<std::string>{"LATER", "SKIP"}));
}

TYPED_TEST_P(UserNotificationCenterContract, RemovedDelegateReceivesNothing) {
    this->start();
    this->add("REST");
    this->center().setDelegate(nullptr);
    this->harness.press(0, "LATER");
    this->harness.settle();
    EXPECT_TRUE(this->responses.empty());
}

REGISTER_TYPED_TEST_SUITE_P(UserNotificationCenterContract, RequestIsAnsweredOnceFromTheRunLoop,
                            NotificationHasItsTextAndTheButtonsOfItsCategory,
                            DelegateIsAskedOnceWhetherToShowANotification,
                            AnswerToEachNotificationIsReportedOnce, RemovedDelegateReceivesNothing);

} // namespace nocta
