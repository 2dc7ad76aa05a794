#include "ui/BreakOverlayView.h"

#include "ui/ShownBreak.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

#include <chrono>

namespace nocta {
namespace {

using namespace std::chrono_literals;

TEST(BreakProgress, IsTheElapsedFractionOfTheBreak) {
    EXPECT_EQ(breakProgress(20, 20), 0.0);
    EXPECT_EQ(breakProgress(15, 20), 0.25);
    EXPECT_EQ(breakProgress(0, 20), 1.0);
    EXPECT_EQ(breakProgress(-1, 20), 1.0);
    EXPECT_EQ(breakProgress(30, 20), 0.0)
        << "a break longer than the new duration should have no progress";
    for (const double duration : {0.0, -1.0, -9e18}) {
        EXPECT_EQ(breakProgress(duration, duration), 1.0) << duration;
    }
}

TEST(SecondsLeft, AreZeroOutsideABreak) {
    EXPECT_EQ(secondsLeft(Active{20}), 20);
    EXPECT_EQ(secondsLeft(Active{0}), 0);
    EXPECT_EQ(secondsLeft(Counting{1200}), 0);
    EXPECT_EQ(secondsLeft(Idle{}), 0);
    EXPECT_EQ(secondsLeft(Paused{}), 0);
    EXPECT_EQ(secondsLeft(Snoozed{}), 0);
}

using BreakOverlayViewTest = ShownBreak;

TEST_F(BreakOverlayViewTest, ShowsTheInstructions) {
    QStringList texts;
    for (const auto* const label : view->findChildren<QLabel*>()) {
        texts << label->text();
    }
    EXPECT_EQ(texts, (QStringList{"Time for a break", "Look at something far away for 20 seconds",
                                  "Press Space to skip"}));
    EXPECT_EQ(skip().text(), "Skip");
    EXPECT_EQ(snooze().text(), "Snooze 5 min");
}

TEST_F(BreakOverlayViewTest, ClicksAndEnterPressTheCorrectButton) {
    QTest::mouseClick(&skip(), Qt::LeftButton);
    EXPECT_EQ(skips, 1);
    QTest::mouseClick(&snooze(), Qt::LeftButton);
    EXPECT_EQ(snoozes, 1);
    snooze().setFocus();
    QTest::keyClick(view->focusWidget(), Qt::Key_Return);
    EXPECT_EQ(snoozes, 2);
    QTest::keyClick(view->focusWidget(), Qt::Key_Tab, Qt::ShiftModifier);
    QTest::keyClick(view->focusWidget(), Qt::Key_Enter);
    EXPECT_EQ(skips, 2);
}

TEST_F(BreakOverlayViewTest, NoButtonHasFocusAtFirstAndTabMovesBetweenButtons) {
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape, Qt::Key_A}) {
        QTest::keyClick(view->windowHandle(), key);
    }
    EXPECT_FALSE(skip().hasFocus());
    EXPECT_FALSE(snooze().hasFocus());
    EXPECT_EQ(skips + snoozes, 0);
    EXPECT_TRUE(view->isVisible());
    for (auto* const button : {&skip(), &snooze(), &skip()}) {
        QTest::keyClick(view->windowHandle(), Qt::Key_Tab);
        EXPECT_TRUE(button->hasFocus());
    }
}

TEST_F(BreakOverlayViewTest, RingEasesOverASecondToEachNewValue) {
    EXPECT_EQ(ring().progress(), 0.0);
    desktop.runLoop.advance(1s);
    EXPECT_EQ(ring().progress(), 0.0) << "the ring should start to move only now";
    desktop.runLoop.advance(500ms);
    EXPECT_NEAR(ring().progress(), 0.025, 1e-9);
    desktop.runLoop.advance(499ms);
    EXPECT_NEAR(ring().progress(), 0.05, 0.002);
    desktop.runLoop.advance(10s);
    EXPECT_NEAR(ring().progress(), 0.55, 0.002);
}

TEST_F(BreakOverlayViewTest, RingJumpsIfMotionIsReduced) {
    desktop.workspace.reducesMotion = true;
    desktop.runLoop.advance(1s);
    EXPECT_EQ(ring().progress(), 0.05);
    desktop.runLoop.advance(500ms);
    EXPECT_EQ(ring().progress(), 0.05);
    desktop.runLoop.advance(500ms);
    EXPECT_EQ(ring().progress(), 0.1);
}

TEST_F(BreakOverlayViewTest, AccessibleNameChangesOnlyEveryTenSeconds) {
    EXPECT_EQ(ring().accessibleName(), "Seconds left: 20");
    QStringList told;
    for (int second = 0; second < 20; ++second) {
        desktop.runLoop.advance(1s);
        if (told.isEmpty() || told.last() != ring().accessibleName()) {
            told << ring().accessibleName();
        }
    }
    EXPECT_EQ(told, (QStringList{"Seconds left: 20", "Seconds left: 10", "Seconds left: 0"}));
}

} // namespace
} // namespace nocta
