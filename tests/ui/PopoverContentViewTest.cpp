#include "ui/PopoverContentView.h"

#include "support/TestDesktop.h"

#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <gtest/gtest.h>

#include <optional>

namespace nocta {
namespace {

class PopoverContentViewTest : public TestDesktop {
protected:
    int preferences = 0;
    std::optional<PopoverContentView> view;

    void SetUp() override {
        view.emplace(instances(), [this] { ++preferences; });
        view->show();
    }
    QSlider& slider() { return *view->findChild<QSlider*>("brightnessSlider"); }

    /// The brightness in words.
    QString shownBrightness() { return view->findChild<QLabel*>("brightnessValue")->text(); }
    double brightness() { return settings().unifiedBrightness.get(); }
};

TEST_F(PopoverContentViewTest, OpensOnTheCurrentValue) {
    EXPECT_EQ(shownBrightness(), "75%");
    EXPECT_EQ(slider().value(), 75);
    EXPECT_EQ(slider().accessibleName(), "Brightness");
    EXPECT_TRUE(desktop.userDefaults.table.stored().empty()) << "showing a value writes nothing";
}

TEST_F(PopoverContentViewTest, KeysMoveByOneAndByTenPercent) {
    QTest::keyClick(&slider(), Qt::Key_Left);
    EXPECT_EQ(brightness(), 0.74);
    QTest::keyClick(&slider(), Qt::Key_PageDown);
    EXPECT_EQ(brightness(), 0.64);
    QTest::keyClick(&slider(), Qt::Key_Home);
    EXPECT_EQ(brightness(), 0.0);
    QTest::keyClick(&slider(), Qt::Key_End);
    EXPECT_EQ(brightness(), 1.0);
}

TEST_F(PopoverContentViewTest, EveryStepShowsWhatItIs) {
    settings().unifiedBrightness.set(0);
    for (int percent = 1; percent <= 100; ++percent) {
        QTest::keyClick(&slider(), Qt::Key_Right);
        ASSERT_EQ(shownBrightness(), QString("%1%").arg(percent));
        ASSERT_EQ(slider().value(), percent);
    }
}

TEST_F(PopoverContentViewTest, ChangeFromElsewhereMovesTheViewAndIsNotWrittenBack) {
    desktop.trace.clear();
    settings().unifiedBrightness.set(0.5625);
    EXPECT_EQ(shownBrightness(), "56%");
    EXPECT_EQ(slider().value(), 56);
    EXPECT_EQ(brightness(), 0.5625);
    EXPECT_EQ(calls("setDouble").size(), 1U);
}

TEST_F(PopoverContentViewTest, ValueOutsideTheRangeIsShownAsItIsAndNotWrittenBack) {
    settings().unifiedBrightness.set(1.5);
    EXPECT_EQ(shownBrightness(), "150%");
    EXPECT_EQ(slider().value(), 100);
    EXPECT_EQ(brightness(), 1.5);
    settings().unifiedBrightness.set(-0.5);
    EXPECT_EQ(shownBrightness(), "-50%");
    EXPECT_EQ(slider().value(), 0);
}

TEST_F(PopoverContentViewTest, ClosedViewIsNotToldAnyMore) {
    view.reset();
    settings().unifiedBrightness.set(0.25);
    EXPECT_EQ(brightness(), 0.25);
}

} // namespace
} // namespace nocta
