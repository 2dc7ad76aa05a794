#include "ui/BreakOverlayView.h"

#include "support/TestDesktop.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <optional>

namespace nocta {
namespace {

using namespace std::chrono_literals;

TEST(BreakProgress, IsThePartOfTheBreakThatIsOver) {
    EXPECT_EQ(breakProgress(20, 20), 0.0);
    EXPECT_EQ(breakProgress(15, 20), 0.25);
    EXPECT_EQ(breakProgress(0, 20), 1.0);
    EXPECT_EQ(breakProgress(-1, 20), 1.0);
    EXPECT_EQ(breakProgress(30, 20), 0.0) << "the duration was shortened during the break";
    for (const double duration : {0.0, -1.0, -9e18}) {
        EXPECT_EQ(breakProgress(duration, duration), 1.0) << duration;
    }
}

TEST(SecondsLeft, AreThoseOfABreakAndZeroOtherwise) {
    EXPECT_EQ(secondsLeft(Active{20}), 20);
    EXPECT_EQ(secondsLeft(Active{0}), 0);
    EXPECT_EQ(secondsLeft(Counting{1200}), 0);
    EXPECT_EQ(secondsLeft(Idle{}), 0);
    EXPECT_EQ(secondsLeft(Paused{}), 0);
    EXPECT_EQ(secondsLeft(Snoozed{}), 0);
}

class BreakOverlayViewTest : public TestDesktop {
protected:
    std::optional<BreakOverlayView> view;
    int skips = 0;
    int snoozes = 0;

    void SetUp() override {
        settings().breakIntervalMinutes.set(1);
        settings().breakDurationSeconds.set(20);
        desktop.runLoop.advance(0s);
        breakTimer().start();
        desktop.runLoop.advance(60s);
        view.emplace(
            breakTimer(), settings(), desktop.workspace, desktop.runLoop, [this] { ++skips; },
            [this] { ++snoozes; });
        view->resize(1280, 800);
        view->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&*view));
    }
    QPushButton& skip() { return *view->findChild<QPushButton*>("skipBreakButton"); }
    QPushButton& snooze() { return *view->findChild<QPushButton*>("snoozeBreakButton"); }
    BreakProgressRing& ring() {
        for (auto* const child : view->findChildren<QWidget*>()) {
            if (auto* const found = dynamic_cast<BreakProgressRing*>(child)) {
                return *found;
            }
        }
        throw std::runtime_error("no ring");
    }
};

TEST_F(BreakOverlayViewTest, SaysWhatToDo) {
    QStringList texts;
    for (const auto* const label : view->findChildren<QLabel*>()) {
        texts << label->text();
    }
    EXPECT_EQ(texts, (QStringList{"Time for a break", "Look at something far away for 20 seconds",
                                  "Press Space to skip"}));
    EXPECT_EQ(skip().text(), "Skip");
    EXPECT_EQ(snooze().text(), "Snooze 5 min");
}

TEST_F(BreakOverlayViewTest, ButtonsAndEnterPressTheRightOne) {
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

TEST_F(BreakOverlayViewTest, PrimaryButtonHasTheKeyboardAtFirst) {
    EXPECT_TRUE(snooze().hasFocus());
}

TEST_F(BreakOverlayViewTest, RingEasesOverASecondToEachNewValue) {
    EXPECT_EQ(ring().progress(), 0.0);
    desktop.runLoop.advance(1s);
    EXPECT_EQ(ring().progress(), 0.0) << "the first second has just gone by";
    desktop.runLoop.advance(500ms);
    EXPECT_NEAR(ring().progress(), 0.025, 1e-9);
    desktop.runLoop.advance(499ms);
    EXPECT_NEAR(ring().progress(), 0.05, 0.002);
    desktop.runLoop.advance(10s);
    EXPECT_NEAR(ring().progress(), 0.55, 0.002);
}

TEST_F(BreakOverlayViewTest, RingJumpsWhereMovementIsNotWanted) {
    desktop.workspace.reducesMotion = true;
    desktop.runLoop.advance(1s);
    EXPECT_EQ(ring().progress(), 0.05);
    desktop.runLoop.advance(500ms);
    EXPECT_EQ(ring().progress(), 0.05);
    desktop.runLoop.advance(500ms);
    EXPECT_EQ(ring().progress(), 0.1);
}

TEST_F(BreakOverlayViewTest, OtherStatesLeaveTheRingAndShowNoSeconds) {
    desktop.workspace.reducesMotion = true;
    desktop.runLoop.advance(5s);
    breakTimer().stop();
    EXPECT_EQ(ring().progress(), 0.25);
    EXPECT_EQ(secondsLeft(breakTimer().state.get()), 0);
}

TEST_F(BreakOverlayViewTest, ScreenReaderIsToldEveryTenSecondsAtMost) {
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

TEST_F(BreakOverlayViewTest, LooksAsItShould) {
    desktop.workspace.reducesMotion = true;
    desktop.runLoop.advance(10s); // half of the break
    auto picture = QImage(view->size(), QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    view->render(&picture, {}, {}, QWidget::DrawChildren);
    const auto backdrop = picture.pixelColor(5, 5);
    EXPECT_EQ(backdrop.red(), 0);
    EXPECT_NEAR(backdrop.alphaF(), 0.7, 0.005);

    const auto center = ring().mapTo(&*view, ring().rect().center());
    const auto stroke = [&](QPoint offset) {
        return picture.pixelColor(center + offset * 48).red();
    };
    EXPECT_GT(stroke({1, 0}), 240) << "the right half is over";
    EXPECT_LT(stroke({-1, 0}), 100) << "the left half is to come";
    const auto fill = [&](const QPushButton& button) {
        return picture.pixelColor(button.mapTo(&*view, QPoint(14, button.height() / 2)));
    };
    EXPECT_EQ(fill(snooze()), QColor(Qt::white));
    EXPECT_LT(fill(skip()).red(), 80);
    const auto eye = QRect(center.x() - 30, 0, 60, skip().mapTo(&*view, QPoint()).y() - 200);
    bool isDrawn = false;
    for (int y = eye.top(); y < eye.bottom() - 60; ++y) {
        isDrawn = isDrawn || picture.pixelColor(center.x(), y).red() > 200;
    }
    EXPECT_TRUE(isDrawn) << "the eye";
}

} // namespace
} // namespace nocta
