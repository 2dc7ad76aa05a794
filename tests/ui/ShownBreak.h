#pragma once

#include "support/TestDesktop.h"
#include "ui/BreakOverlayView.h"

#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <stdexcept>

namespace nocta {

/// Shows the view of a 20-second break that has just begun.
class ShownBreak : public TestDesktop {
protected:
    std::optional<BreakOverlayView> view;
    int skips = 0;
    int snoozes = 0;

    void SetUp() override {
        settings().breakIntervalMinutes.set(1);
        settings().breakDurationSeconds.set(20);
        desktop.runLoop.advance(std::chrono::seconds(0));
        breakTimer().start();
        desktop.runLoop.advance(std::chrono::seconds(60));
        makeView();
        view->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&*view));
    }
    void makeView() {
        view.emplace(
            breakTimer(), settings(), desktop.workspace, desktop.runLoop, [this] { ++skips; },
            [this] { ++snoozes; });
        view->resize(1280, 800);
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

} // namespace nocta
