#include "tour/Playground.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QGraphicsView>
#include <QTest>
#include <gtest/gtest.h>

#include <chrono>

namespace nocta {
namespace {

using namespace std::chrono_literals;

class PlaygroundTest : public ::testing::Test {
protected:
    Playground playground;
    LiveDesktop& live = playground.live();

    void SetUp() override {
        playground.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&playground));
    }
    void click(const QString& text) {
        for (auto* const button : playground.findChildren<QAbstractButton*>()) {
            if (button->text() == text) {
                QTest::mouseClick(button, Qt::LeftButton);
                return;
            }
        }
        ADD_FAILURE() << "there should be a button " << text.toStdString();
    }
};

TEST_F(PlaygroundTest, ToolsActOnTheDesktop) {
    const auto before = live.settings().unifiedBrightness.get();
    click("Brightness key down");
    EXPECT_LT(live.settings().unifiedBrightness.get(), before);
    click("Brightness key up");
    EXPECT_EQ(live.settings().unifiedBrightness.get(), before);
    click("FaceTime in front");
    EXPECT_EQ(live.desktop.workspace.frontmost->localizedName, "FaceTime");
    click("Unplug");
    EXPECT_EQ(live.desktop.displays.all().size(), 1U);
    click("Unplug");
    click("Plug in");
    click("Plug in");
    EXPECT_EQ(live.desktop.displays.all().size(), 2U);
}

TEST_F(PlaygroundTest, TimeRunsAtTheChosenSpeed) {
    auto& speed = *playground.findChild<QComboBox*>();
    QTest::keyClick(&speed, Qt::Key_End);
    EXPECT_EQ(speed.currentText(), "3600×");
    const auto before = live.desktop.runLoop.wallNow();
    EXPECT_TRUE(QTest::qWaitFor([&] { return live.desktop.runLoop.wallNow() - before > 1min; }));
}

TEST_F(PlaygroundTest, SpaceSkipsABreak) {
    live.desktop.runLoop.advance(20min + 2s);
    ASSERT_EQ(live.desktop.overlayWindows.windows().size(), 2U);
    QTest::keyClick(playground.findChild<QGraphicsView*>(), Qt::Key_Space);
    live.desktop.runLoop.advance(1s);
    EXPECT_TRUE(live.desktop.overlayWindows.windows().empty());
}

} // namespace
} // namespace nocta
