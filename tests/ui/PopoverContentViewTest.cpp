#include "support/Face.h"
#include "ui/controls/Hairline.h"

#include <QSlider>
#include <QTranslator>

#include <algorithm>
#include <chrono>

namespace nocta {
namespace {

using namespace std::chrono_literals;

class PopoverContentViewTest : public Face {
protected:
    int preferences = 0;

    void SetUp() override {
        delegate();
        desktop.trace.clear();
        open(realViews.makePopoverContentView([this] { ++preferences; }), QSize(300, 280));
    }
    QSlider& slider() { return control<QSlider>("brightnessSlider"); }
    QSlider& warmth() { return control<QSlider>("warmthSlider"); }
    QString shownBrightness() { return control<QLabel>("brightnessValue").text(); }
    QString status() { return control<QLabel>("breakStatus").text(); }
    double brightness() { return settings().unifiedBrightness.get(); }

    /// Returns the position of the knob at the given percentage.
    static QPoint placeOf(const QSlider& slider, int percent) {
        constexpr int reach = 12; // half the knob and the focus ring around it
        const auto way = slider.width() - 2 * reach;
        const auto along = slider.isRightToLeft() ? 100 - percent : percent;
        return {reach + way * along / 100, slider.height() / 2};
    }
};

TEST_F(PopoverContentViewTest, EnglishTextsFit) {
    EXPECT_EQ(widget().size(), QSize(300, 280));
}

TEST_F(PopoverContentViewTest, LineAboveTheFooterIsAsWideAsTheContent) {
    const auto all = widget().findChildren<QWidget*>();
    const auto found = std::ranges::find_if(
        all, [](const QWidget* part) { return dynamic_cast<const Hairline*>(part) != nullptr; });
    ASSERT_NE(found, all.end());
    const auto& line = **found;
    const auto& value = control<QLabel>("brightnessValue");
    const auto& status = control<QLabel>("breakStatus");
    EXPECT_EQ(line.mapTo(&widget(), line.rect().topLeft()).x(),
              status.mapTo(&widget(), status.contentsRect().topLeft()).x());
    EXPECT_EQ(line.mapTo(&widget(), line.rect().topRight()).x(),
              value.mapTo(&widget(), value.contentsRect().topRight()).x());
}

TEST_F(PopoverContentViewTest, OpensWithTheCurrentValue) {
    EXPECT_EQ(shownBrightness(), "75%");
    EXPECT_EQ(slider().value(), 75);
    EXPECT_EQ(slider().accessibleName(), "Brightness");
    EXPECT_TRUE(desktop.userDefaults.table.stored().empty())
        << "showing a value should not write anything";
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

TEST_F(PopoverContentViewTest, EveryStepShowsItsPercentage) {
    settings().unifiedBrightness.set(0);
    for (int percent = 1; percent <= 100; ++percent) {
        QTest::keyClick(&slider(), Qt::Key_Right);
        ASSERT_EQ(shownBrightness(), QString("%1%").arg(percent));
        ASSERT_EQ(slider().value(), percent);
    }
}

TEST_F(PopoverContentViewTest, DraggingTheKnobWritesOnceForEachStep) {
    const auto start = placeOf(slider(), 75);
    QTest::mousePress(&slider(), Qt::LeftButton, {}, start);
    EXPECT_TRUE(calls("setDouble").empty()) << "pressing the knob should not write anything";
    for (int percent = 74; percent >= 30; --percent) {
        QTest::mouseMove(&slider(), placeOf(slider(), percent));
    }
    QTest::mouseRelease(&slider(), Qt::LeftButton, {}, placeOf(slider(), 30));
    EXPECT_EQ(brightness(), 0.3);
    EXPECT_EQ(calls("setDouble").size(), 45U);
    QTest::mouseMove(&slider(), placeOf(slider(), 80));
    EXPECT_EQ(brightness(), 0.3) << "the slider should not move after the release";
}

TEST_F(PopoverContentViewTest, DragBeyondTheEndStopsAtTheEnd) {
    QTest::mousePress(&slider(), Qt::LeftButton, {}, placeOf(slider(), 75));
    QTest::mouseMove(&slider(), QPoint(2000, 5));
    EXPECT_EQ(brightness(), 1.0);
    QTest::mouseMove(&slider(), QPoint(-2000, 5));
    EXPECT_EQ(brightness(), 0.0);
    QTest::mouseRelease(&slider(), Qt::LeftButton);
}

TEST_F(PopoverContentViewTest, ClickBesideTheKnobMovesTheKnobThere) {
    QTest::mouseClick(&slider(), Qt::LeftButton, {}, placeOf(slider(), 20));
    EXPECT_EQ(brightness(), 0.2);
    QTest::mouseClick(&slider(), Qt::RightButton, {}, placeOf(slider(), 90));
    EXPECT_EQ(brightness(), 0.2);
}

TEST_F(PopoverContentViewTest, WheelMovesTheSlider) {
    const auto place = QPointF(placeOf(slider(), 75));
    QWheelEvent down(place, slider().mapToGlobal(place), {}, QPoint(0, -120), Qt::NoButton, {},
                     Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&slider(), &down);
    EXPECT_EQ(shownBrightness(), "72%") << "the wheel should move the slider by three steps";
}

TEST_F(PopoverContentViewTest, MirroredSliderIncreasesToTheLeft) {
    widget().setLayoutDirection(Qt::RightToLeft);
    QTest::mouseClick(&slider(), Qt::LeftButton, {}, placeOf(slider(), 20));
    EXPECT_EQ(brightness(), 0.2);
    EXPECT_GT(placeOf(slider(), 20).x(), slider().width() / 2);
    QTest::keyClick(&slider(), Qt::Key_Left);
    EXPECT_EQ(shownBrightness(), "21%");
}

TEST_F(PopoverContentViewTest, ExternalChangeUpdatesTheViewAndIsNotWrittenBack) {
    settings().unifiedBrightness.set(0.5625);
    EXPECT_EQ(shownBrightness(), "56%");
    EXPECT_EQ(slider().value(), 56);
    EXPECT_EQ(brightness(), 0.5625);
    EXPECT_EQ(calls("setDouble").size(), 1U);
}

TEST_F(PopoverContentViewTest, ValueOutsideTheRangeIsShownUnchangedAndNotWrittenBack) {
    settings().unifiedBrightness.set(1.5);
    EXPECT_EQ(shownBrightness(), "150%");
    EXPECT_EQ(slider().value(), 100);
    EXPECT_EQ(brightness(), 1.5);
    settings().unifiedBrightness.set(-0.5);
    EXPECT_EQ(shownBrightness(), "-50%");
    EXPECT_EQ(slider().value(), 0);
}

TEST_F(PopoverContentViewTest, WarmthSliderIsShownOnlyInManualMode) {
    EXPECT_TRUE(shows("Adjusts with sunset"));
    EXPECT_FALSE(warmth().isVisible());
    settings().warmthLevel.set(0.7);
    click("Manual");
    EXPECT_FALSE(settings().autoWarmthEnabled.get());
    EXPECT_FALSE(shows("Adjusts with sunset"));
    EXPECT_TRUE(warmth().isVisible());
    EXPECT_EQ(warmth().value(), 70);
    QTest::mouseClick(&warmth(), Qt::LeftButton, {}, placeOf(warmth(), 40));
    EXPECT_EQ(settings().warmthLevel.get(), 0.4);
    click("Auto");
    EXPECT_TRUE(settings().autoWarmthEnabled.get());
    EXPECT_FALSE(warmth().isVisible());
    settings().autoWarmthEnabled.set(false);
    EXPECT_TRUE(button("Manual").isChecked());
    EXPECT_TRUE(warmth().isVisible());
}

TEST_F(PopoverContentViewTest, ArrowKeysSelectTheSegments) {
    button("Auto").setFocus();
    QTest::keyClick(&button("Auto"), Qt::Key_Right);
    EXPECT_FALSE(settings().autoWarmthEnabled.get());
    EXPECT_TRUE(button("Manual").hasFocus());
}

TEST_F(PopoverContentViewTest, EyeReliefToggleIsBoundToItsSettingAndDoesNotChangeTheWarmth) {
    click("Manual");
    click("grayscaleToggle");
    EXPECT_TRUE(settings().grayscaleEnabled.get());
    EXPECT_TRUE(warmth().isEnabled());
    QTest::keyClick(&button("Eye Relief"), Qt::Key_Space);
    EXPECT_FALSE(settings().grayscaleEnabled.get());
    settings().grayscaleEnabled.set(true);
    EXPECT_TRUE(button("grayscaleToggle").isChecked());
}

TEST_F(PopoverContentViewTest, StatusLineFollowsTheTimer) {
    EXPECT_EQ(status(), "Off");
    launch();
    EXPECT_EQ(status(), "20m left");
    desktop.runLoop.advance(1s);
    EXPECT_EQ(status(), "19m left");
    desktop.runLoop.advance(20min - 1s);
    EXPECT_EQ(status(), "Break: 20s");
    breakTimer().snooze(5);
    EXPECT_EQ(status(), "Snoozed");
    click("breakTimerToggle");
    EXPECT_EQ(status(), "Off");
    EXPECT_FALSE(settings().breakTimerEnabled.get());
    click("Break Timer");
    EXPECT_EQ(status(), "20m left");
}

TEST_F(PopoverContentViewTest, FooterButtonsWork) {
    click("preferencesButton");
    EXPECT_EQ(preferences, 1);
    launch();
    click("quitButton");
    EXPECT_EQ(calls("synchronize").size(), 1U) << "the program should end";
}

TEST_F(PopoverContentViewTest, UpdatesCanBeCheckedIfTheUpdaterAllowsIt) {
    EXPECT_FALSE(button("Check for Updates").isEnabled());
    desktop.updater.canCheckForUpdates.set(true);
    click("checkForUpdatesButton");
    EXPECT_EQ(calls("checkForUpdates").size(), 1U);
    EXPECT_EQ(button("Check for Updates").toolTip(), "");
    desktop.updater.present = Updater::Availability::noFeed;
    open(realViews.makePopoverContentView([] {}), QSize(300, 280));
    EXPECT_EQ(button("Check for Updates").toolTip(),
              "This build of Nocta has no address for updates.");
}

/// Counts the texts that are requested during its lifetime.
class TextCounter final : public QTranslator {
public:
    mutable int texts = 0;

    TextCounter() { QCoreApplication::installTranslator(this); }
    ~TextCounter() override { QCoreApplication::removeTranslator(this); }
    bool isEmpty() const override { return false; }
    QString translate(const char* /*context*/, const char* /*text*/, const char* /*comment*/,
                      int /*number*/) const override {
        ++texts;
        return {};
    }
};

TEST_F(PopoverContentViewTest, ClosedViewDoesNotUpdate) {
    const TextCounter counter;
    const auto changeAll = [&] {
        counter.texts = 0;
        settings().unifiedBrightness.set(0.25);
        settings().autoWarmthEnabled.set(false);
        settings().grayscaleEnabled.set(true);
        breakTimer().state.set(Paused{});
        desktop.updater.canCheckForUpdates.set(true);
        return counter.texts;
    };
    EXPECT_EQ(changeAll(), 2) << "only the percentage and the status line should change";
    view.reset();
    EXPECT_EQ(changeAll(), 0);
}

TEST_F(PopoverContentViewTest, NoteNamesTheMissingFeatureAndTheSettingIsStillWritten) {
    const auto* const brightnessNote = "Nocta cannot darken the picture in this session.";
    const auto* const warmthNote = "Nocta cannot warm the displays in this session.";
    EXPECT_FALSE(shows(brightnessNote));
    EXPECT_FALSE(shows(warmthNote));
    desktop.displays.takesTables = false;
    open(realViews.makePopoverContentView([] {}), QSize(300, 280));
    EXPECT_TRUE(shows(brightnessNote));
    EXPECT_TRUE(shows(warmthNote));
    EXPECT_EQ(slider().accessibleDescription(), brightnessNote);
    EXPECT_EQ(warmth().accessibleDescription(), warmthNote);
    EXPECT_EQ(slider().toolTip(), "") << "the note is visible";
    EXPECT_TRUE(slider().isEnabled());
    QTest::keyClick(&slider(), Qt::Key_Left);
    EXPECT_EQ(brightness(), 0.74);
}

TEST_F(PopoverContentViewTest, NoteSaysHowTheDisplaysAreWarmed) {
    const auto* const noWarmth = "Nocta can dim the displays of this desktop, but not warm them.";
    const auto* const nightLight = "Nocta warms the displays through KDE's Night Light.";
    const auto expectShown = [&](bool isMissing, bool isNightLight) {
        open(realViews.makePopoverContentView([] {}), QSize(300, 280));
        EXPECT_EQ(shows(noWarmth), isMissing);
        EXPECT_EQ(shows(nightLight), isNightLight);
    };
    expectShown(false, false);
    desktop.displays.shownWarmth = Warmth::none;
    expectShown(true, false);
    desktop.displays.shownWarmth = Warmth::byNightLight;
    expectShown(false, true);
}

TEST_F(PopoverContentViewTest, SecondLineSaysHowToStartTheCountdownAfterAMeeting) {
    const auto* const note = "Turn Break Timer off and on to start again.";
    launch();
    for (const auto& state : std::vector<BreakState>{
             Counting{59}, Active{1}, Paused{PauseReason::userPaused}, Snoozed{}, Idle{}}) {
        breakTimer().state.set(state);
        EXPECT_FALSE(shows(note)) << status().toStdString();
    }
    breakTimer().start();
    const auto height = widget().heightForWidth(300);
    desktop.workspace.bringToFront(RunningApplication{"us.zoom.xos", "Zoom"});
    desktop.runLoop.advance(5s);
    EXPECT_EQ(status(), "In meeting");
    EXPECT_TRUE(shows(note));
    EXPECT_EQ(button("breakTimerToggle").accessibleDescription(), note);
    EXPECT_EQ(widget().heightForWidth(300), height) << "the popover cannot grow while it is open";
    EXPECT_LE(height, 280);
    desktop.workspace.bringToFront(RunningApplication{"org.gnome.Terminal", "Terminal"});
    desktop.runLoop.advance(5s);
    EXPECT_TRUE(shows(note));

    click("breakTimerToggle");
    EXPECT_FALSE(shows(note));
    EXPECT_EQ(button("breakTimerToggle").accessibleDescription(), "");
    click("breakTimerToggle");
    EXPECT_EQ(status(), "20m left");
    desktop.runLoop.advance(1min);
    EXPECT_EQ(status(), "19m left");
}

} // namespace
} // namespace nocta
