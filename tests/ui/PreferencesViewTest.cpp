#include "support/Face.h"
#include "support/SourceTexts.h"
#include "ui/Colors.h"
#include "ui/controls/FocusRing.h"

#include <QComboBox>
#include <QSlider>
#include <QSpinBox>
#include <QTabBar>

namespace nocta {
namespace {

class PreferencesViewTest : public Face {
protected:
    SourceTexts sourceTexts;

    void SetUp() override { open(realViews.makePreferencesView()); }

    QTabBar& tabs() { return control<QTabBar>("preferencesTabs"); }
    void choose(const QString& title) {
        for (int i = 0; i < tabs().count(); ++i) {
            if (tabs().tabText(i) == title) {
                QTest::mouseClick(&tabs(), Qt::LeftButton, {}, tabs().tabRect(i).center());
                return;
            }
        }
        FAIL() << "there should be a tab " << title.toStdString();
    }
    QComboBox& picker(const QString& name) { return control<QComboBox>(name); }
    void pick(const QString& name, const QString& choice) {
        auto& list = picker(name);
        list.setFocus();
        for (int i = 0; i < list.count() && list.currentText() != choice; ++i) {
            QTest::keyClick(&list, Qt::Key_Down);
        }
        ASSERT_EQ(list.currentText(), choice);
    }
};

TEST_F(PreferencesViewTest, TabsAreInOrder) {
    QStringList titles;
    for (int i = 0; i < tabs().count(); ++i) {
        titles << tabs().tabText(i);
    }
    EXPECT_EQ(titles,
              (QStringList{"General", "Brightness", "Color", "Breaks", "Feedback", "About"}));
    EXPECT_TRUE(shows("Startup"));
    tabs().setFocus();
    QTest::keyClick(&tabs(), Qt::Key_Right);
    EXPECT_TRUE(shows("How It Works"));
}

TEST_F(PreferencesViewTest, TabsStayVisibleOnASmallScreen) {
    shrink({540, 200});
    auto& reset = button("resetButton");
    EXPECT_FALSE(isWhollyVisible(reset));
    reset.setFocus();
    EXPECT_TRUE(isWhollyVisible(reset)) << "the page should scroll to the control with focus";
    EXPECT_TRUE(isWhollyVisible(tabs()));
    choose("Color");
    EXPECT_TRUE(isWhollyVisible(tabs()));
    EXPECT_TRUE(isWhollyVisible(control("warmthValue")))
        << "each page should have a scroll position of its own";
}

TEST_F(PreferencesViewTest, LaunchToggleIsBoundToTheServiceAndRevertsOnFailure) {
    settings().launchAtLogin.set(true);
    EXPECT_FALSE(button("launchAtLoginToggle").isChecked());
    click("launchAtLoginToggle");
    EXPECT_TRUE(launchAtLogin().isEnabled.get());
    settings().resetToDefaults();
    EXPECT_TRUE(button("launchAtLoginToggle").isChecked())
        << "a reset should not turn launch at login off";
    desktop.loginItem.error = "Permission denied";
    testing::internal::CaptureStdout();
    click("Launch at login");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Failed to disable launch at login: Permission denied\n");
    EXPECT_TRUE(button("launchAtLoginToggle").isChecked());
}

TEST_F(PreferencesViewTest, IconIsChosenByItsSymbol) {
    EXPECT_TRUE(button("Eye").isChecked());
    click("Leaf");
    EXPECT_EQ(settings().menuBarIcon.get(), MenuBarIcon::leaf);
    settings().menuBarIcon.set(MenuBarIcon::sparkles);
    EXPECT_TRUE(button("Sparkles").isChecked());
}

TEST_F(PreferencesViewTest, EyeReliefDisablesTheColorControlsAndExplainsWhy) {
    const auto note = "Color settings are disabled while Grayscale mode is active.";
    choose("Color");
    EXPECT_FALSE(shows(note));
    choose("General");
    click("Eye Relief mode");
    EXPECT_TRUE(settings().grayscaleEnabled.get());
    choose("Color");
    EXPECT_TRUE(shows(note));
    for (const auto* const name : {"warmthSlider", "autoWarmthToggle", "locationToggle",
                                   "dayTemperature", "nightTemperature"}) {
        EXPECT_FALSE(control(name).isEnabled()) << name;
    }
    settings().grayscaleEnabled.set(false);
    EXPECT_FALSE(shows(note));
    EXPECT_TRUE(control("warmthSlider").isEnabled());
}

TEST_F(PreferencesViewTest, ResetUpdatesEveryOpenControlAndDoesNotRestartOnboarding) {
    settings().isFirstLaunch.set(false);
    settings().unifiedBrightness.set(0.1);
    settings().breakIntervalMinutes.set(45);
    settings().colorTemperatureDay.set(5000);
    click("Reset to Defaults");
    EXPECT_EQ(settings().unifiedBrightness.get(), 0.75);
    EXPECT_FALSE(settings().isFirstLaunch.get());
    EXPECT_EQ(control<QSlider>("brightnessSlider").value(), 75);
    EXPECT_EQ(picker("intervalPicker").currentText(), "Every 20 minutes");
    EXPECT_EQ(control<QSpinBox>("dayTemperature").value(), 6500);
}

TEST_F(PreferencesViewTest, ResetButtonHasAVisibleEdgeInDark) {
    const auto before = QApplication::palette();
    auto dark = before;
    dark.setColor(QPalette::Window, QColor(36, 36, 36));
    dark.setColor(QPalette::WindowText, QColor(238, 238, 238));
    QApplication::setPalette(dark);
    QCoreApplication::processEvents(); // delivers the palette change
    auto& reset = button("resetButton");
    const auto picture = reset.grab().toImage();
    const auto color = picture.pixelColor(focusRingRoom, picture.height() / 2);
    EXPECT_GE(contrastRatio(color, panelColor(dark)), visibleContrast)
        << color.name().toStdString();
    QApplication::setPalette(before);
}

TEST_F(PreferencesViewTest, BrightnessTabDescribesAndSetsTheBrightness) {
    choose("Brightness");
    for (const auto* const line :
         {"Nocta extends your brightness range beyond what macOS allows. The setting applies to "
          "all your displays at once.",
          "On your built-in display:", "100% → 50%: Adjusts hardware brightness",
          "49% → 0%: Dims further using a software overlay",
          "On external monitors:", "100% → 0%: Dims using a software overlay", "75%",
          "When off, a faint glow is kept at minimum so the screen is never fully dark."}) {
        EXPECT_TRUE(shows(line)) << line;
    }
    QTest::keyClick(&control("brightnessSlider"), Qt::Key_PageUp);
    EXPECT_EQ(settings().unifiedBrightness.get(), 0.85);
    EXPECT_TRUE(shows("85%"));
    click("Allow completely black screen");
    EXPECT_TRUE(settings().allowFullBlack.get());
}

TEST_F(PreferencesViewTest, ColorTabShowsTheTemperaturesWithTheirDescriptions) {
    choose("Color");
    EXPECT_TRUE(shows("Neutral"));
    EXPECT_TRUE(shows("Candlelight"));
    auto& night = control<QSpinBox>("Night");
    EXPECT_EQ(night.text(), "2700 K");
    night.setFocus();
    QTest::keyClick(&night, Qt::Key_Up);
    EXPECT_EQ(settings().colorTemperatureNight.get(), 2800);
    night.selectAll();
    QTest::keyClicks(&night, "3800");
    EXPECT_EQ(settings().colorTemperatureNight.get(), 2800)
        << "a number should not take effect before it is entered";
    QTest::keyClick(&night, Qt::Key_Return);
    EXPECT_EQ(settings().colorTemperatureNight.get(), 3800);
    EXPECT_TRUE(shows("Warm"));
    settings().colorTemperatureDay.set(20000);
    EXPECT_EQ(control<QSpinBox>("Day").value(), 20000)
        << "a value out of range should be shown unchanged";
    EXPECT_EQ(settings().colorTemperatureDay.get(), 20000);
}

TEST_F(PreferencesViewTest, ColorTabFollowsWarmthAndLocation) {
    choose("Color");
    QTest::keyClick(&control("warmthSlider"), Qt::Key_End);
    EXPECT_EQ(settings().warmthLevel.get(), 1.0);
    EXPECT_TRUE(shows("100%"));
    EXPECT_TRUE(shows("Using default times (6:30 AM / 6:30 PM)."));
    launch();
    click("Use my location");
    EXPECT_TRUE(desktop.location.isAsking);
    EXPECT_TRUE(shows("Using your location for accurate sunrise/sunset times."));
    desktop.location.answer(AuthorizationStatus::denied);
    EXPECT_FALSE(button("locationToggle").isChecked());
    EXPECT_TRUE(shows("Using default times (6:30 AM / 6:30 PM)."));
    click("Auto-adjust based on time");
    EXPECT_FALSE(settings().autoWarmthEnabled.get());
}

TEST_F(PreferencesViewTest, BreaksTabWritesItsSettings) {
    choose("Breaks");
    EXPECT_EQ(picker("Interval").currentText(), "Every 20 minutes");
    EXPECT_EQ(picker("Break duration").currentText(), "20 seconds");
    pick("intervalPicker", "Every 30 minutes");
    EXPECT_EQ(settings().breakIntervalMinutes.get(), 30);
    pick("durationPicker", "45 seconds");
    EXPECT_EQ(settings().breakDurationSeconds.get(), 45);
    click("Enable break reminders");
    EXPECT_FALSE(settings().breakTimerEnabled.get());
    click("Suspend during meetings");
    EXPECT_FALSE(settings().suspendDuringMeetings.get());
}

TEST_F(PreferencesViewTest, IntervalThatIsNotInTheListIsShownInOrder) {
    settings().breakIntervalMinutes.set(37);
    auto& list = picker("intervalPicker");
    EXPECT_EQ(list.currentText(), "Every 37 minutes");
    EXPECT_EQ(list.itemText(list.currentIndex() - 1), "Every 30 minutes");
    EXPECT_EQ(list.itemText(list.currentIndex() + 1), "Every 40 minutes");
    EXPECT_EQ(settings().breakIntervalMinutes.get(), 37);
}

TEST_F(PreferencesViewTest, OneIsSingularInEnglish) {
    settings().breakIntervalMinutes.set(1);
    settings().breakDurationSeconds.set(1);
    EXPECT_EQ(picker("intervalPicker").currentText(), "Every 1 minute");
    EXPECT_EQ(picker("durationPicker").currentText(), "1 second");
}

TEST_F(PreferencesViewTest, StatisticsFollowTheTimer) {
    choose("Breaks");
    const auto text = [&](const char* name) { return control<QLabel>(name).text(); };
    EXPECT_EQ(text("completionRate"), "0%");
    breakTimer().statistics.set({.totalBreaks = 7, .completedBreaks = 5, .skippedBreaks = 2});
    EXPECT_EQ(text("completedBreaks"), "5");
    EXPECT_EQ(text("skippedBreaks"), "2");
    EXPECT_EQ(text("completionRate"), "71%");
}

TEST_F(PreferencesViewTest, SecondLineExplainsWhyTheLocationIsUnavailable) {
    const auto* const noService = "No location service is available on this desktop.";
    const auto* const refused = "The desktop's settings do not let Nocta use your location.";
    choose("Color");
    settings().locationEnabled.set(true);
    const auto expectShown = [&](bool isMissing, bool isRefused) {
        EXPECT_TRUE(shows("Using your location for accurate sunrise/sunset times."));
        EXPECT_EQ(shows(noService), isMissing);
        EXPECT_EQ(shows(refused), isRefused);
    };
    expectShown(false, false);
    desktop.location.answer(AuthorizationStatus::restricted);
    expectShown(true, false);
    EXPECT_EQ(button("locationToggle").accessibleDescription(), noService);
    EXPECT_EQ(button("locationToggle").toolTip(), "") << "the note is visible";
    desktop.location.answer(AuthorizationStatus::denied);
    settings().locationEnabled.set(true); // the refusal turned it off
    expectShown(false, true);
    desktop.location.answer(AuthorizationStatus::authorized);
    expectShown(false, false);
}

TEST_F(PreferencesViewTest, SecondLineSaysThatTheLocationIsUnknown) {
    const auto* const note = "Your location is unknown, so the default times apply.";
    choose("Color");
    EXPECT_FALSE(shows(note)) << "the location is not enabled";
    settings().locationEnabled.set(true);
    EXPECT_TRUE(shows(note));
    EXPECT_EQ(button("locationToggle").accessibleDescription(), note);
    desktop.location.answer(AuthorizationStatus::authorized);
    desktop.location.send(Location{52.5, 13.4});
    EXPECT_FALSE(shows(note));
    EXPECT_EQ(button("locationToggle").accessibleDescription(), "");
}

TEST_F(PreferencesViewTest, NoteSaysThatTheDisplaysCannotBeWarmed) {
    const auto* const note = "Nocta cannot warm the displays in this session.";
    choose("Color");
    EXPECT_EQ(shownTexts().count(note), 0);
    desktop.displays.takesTables = false;
    open(realViews.makePreferencesView());
    choose("Color");
    EXPECT_EQ(shownTexts().count(note), 2) << "one for the slider, one for the automatic mode";
    for (const auto* const name :
         {"warmthSlider", "autoWarmthToggle", "dayTemperature", "nightTemperature"}) {
        EXPECT_EQ(control(name).accessibleDescription(), note) << name;
    }
    choose("Brightness");
    EXPECT_TRUE(shows("Nocta cannot darken the picture in this session."));
}

TEST_F(PreferencesViewTest, NoteSaysThatTheGrayFilterIsMissing) {
    const auto* const note = "Nocta cannot turn this desktop gray.";
    EXPECT_FALSE(shows(note));
    view.reset();
    dropProgram();
    desktop.filter.hasEntryPoint = false;
    WidgetViews anew(instances());
    const SourceTexts source;
    for (const auto isPopover : {false, true}) {
        open(isPopover ? anew.makePopoverContentView([] {}) : anew.makePreferencesView());
        EXPECT_TRUE(shows(note));
        EXPECT_EQ(button("grayscaleToggle").accessibleDescription(), note);
        EXPECT_EQ(button("grayscaleToggle").toolTip(), "") << "the note is visible";
        click("grayscaleToggle");
        EXPECT_EQ(settings().grayscaleEnabled.get(), !isPopover);
    }
    view.reset();
}

} // namespace
} // namespace nocta
