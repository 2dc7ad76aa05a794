#include "support/Face.h"
#include "support/SourceTexts.h"

#include <QSlider>

#include <chrono>

namespace nocta {
namespace {

using namespace std::chrono_literals;

class OnboardingViewTest : public Face {
protected:
    SourceTexts sourceTexts;
    int completions = 0;

    void SetUp() override {
        launch();
        open(realViews.makeOnboardingView([this] { ++completions; }), QSize(500, 580));
    }
    void goTo(int step) {
        for (int i = 0; i < step; ++i) {
            click("continueButton");
        }
    }
};

TEST_F(OnboardingViewTest, FourStepsGoForwardAndBack) {
    EXPECT_EQ(widget().size(), QSize(500, 580));
    EXPECT_TRUE(shows("Welcome to Nocta"));
    EXPECT_TRUE(shows("Take care of your eyes, without thinking about it."));
    EXPECT_TRUE(shows("Customizable intervals, pauses during meetings"));
    EXPECT_FALSE(button("backButton").isVisible());
    click("Continue");
    EXPECT_TRUE(shows("Permissions"));
    click("Continue");
    EXPECT_TRUE(shows("Choose Your Style"));
    click("Back");
    EXPECT_TRUE(shows("Permissions"));
    click("Continue");
    click("Continue");
    EXPECT_TRUE(shows("You're All Set"));
    EXPECT_EQ(completions, 0);
    click("Finish");
    EXPECT_EQ(completions, 1);
}

TEST_F(OnboardingViewTest, AllStepsWorkWithTheKeyboard) {
    for (int i = 0; i < 4; ++i) {
        QTest::keyClick(widget().focusWidget(), Qt::Key_Space);
    }
    EXPECT_EQ(completions, 1);
}

TEST_F(OnboardingViewTest, AllowAsksTheUserAndAGrantShowsACheckMark) {
    goTo(1);
    EXPECT_TRUE(shows("(Optional)"));
    EXPECT_TRUE(shows("You can always change these in System Preferences."));
    EXPECT_FALSE(control("grantedMark").isVisible());
    click("allowButton");
    EXPECT_TRUE(desktop.location.isAsking);
    desktop.location.answer(AuthorizationStatus::authorized);
    EXPECT_FALSE(button("allowButton").isVisible());
    EXPECT_TRUE(control("grantedMark").isVisible());
    EXPECT_TRUE(settings().locationEnabled.get());
}

TEST_F(OnboardingViewTest, RefusalKeepsTheButtonAndTurnsLocationOff) {
    settings().locationEnabled.set(true);
    goTo(1);
    click("allowButton");
    desktop.location.answer(AuthorizationStatus::denied);
    EXPECT_TRUE(button("allowButton").isVisible());
    EXPECT_FALSE(settings().locationEnabled.get());
    click("Continue");
    EXPECT_TRUE(shows("Choose Your Style"));
}

TEST_F(OnboardingViewTest, NoteSaysWhyTheLocationCannotBeAllowed) {
    const auto* const noService = "No location service is available on this desktop.";
    const auto* const refused = "The desktop's settings do not let Nocta use your location.";
    goTo(1);
    const auto expectShown = [&](bool isMissing, bool isRefused) {
        EXPECT_EQ(shows(noService), isMissing);
        EXPECT_EQ(shows(refused), isRefused);
    };
    expectShown(false, false);
    click("allowButton");
    desktop.location.answer(AuthorizationStatus::restricted);
    expectShown(true, false);
    EXPECT_EQ(button("allowButton").accessibleDescription(), noService);
    EXPECT_EQ(button("allowButton").toolTip(), "") << "the note is visible";
    desktop.location.answer(AuthorizationStatus::denied);
    expectShown(false, true);
    desktop.location.answer(AuthorizationStatus::authorized);
    expectShown(false, false);
}

TEST_F(OnboardingViewTest, StyleSaysWhenItsWarmthShows) {
    const auto* const note = "The warmth of a style shows when Warmth is set to Manual.";
    goTo(1);
    EXPECT_FALSE(shows(note));
    click("Continue");
    EXPECT_TRUE(shows(note));
    for (const auto* const name : {"Everyday", "Night Owl", "Focus"}) {
        EXPECT_TRUE(button(name).accessibleDescription().endsWith(note)) << name;
    }
}

TEST_F(OnboardingViewTest, CardDescribesItsProfile) {
    goTo(2);
    for (const auto* const text :
         {"Everyday", "Balanced for daily use", "75%", "Neutral", "Every 20 min", "Night Owl",
          "40%", "Warm", "Every 30 min", "Focus", "60%", "Cool", "Every 25 min", "Eye Relief"}) {
        EXPECT_TRUE(shows(text)) << text;
    }
    EXPECT_EQ(shownTexts().count("Eye Relief"), 1) << "only the gray profile should mention it";
}

TEST_F(OnboardingViewTest, ChosenCardTakesEffectImmediately) {
    plugExternal();
    settings().autoWarmthEnabled.set(false);
    desktop.runLoop.advance(1s); // the transition to manual mode
    goTo(2);
    for (const auto* const name : {"Everyday", "Night Owl", "Focus"}) {
        EXPECT_FALSE(button(name).isChecked()) << name;
    }
    click("Night Owl");
    EXPECT_TRUE(button("Night Owl").isChecked());
    EXPECT_EQ(settings().activeProfileId.get(), instances().builtInProfiles()[1].id);
    desktop.runLoop.advance(1s); // the fade out of gray
    EXPECT_FLOAT_EQ(shownDimming(external), 0.6F);
    EXPECT_EQ(gamma().currentTemperature().at(external), 6500 - 3040);
    click("Everyday");
    EXPECT_FALSE(button("Night Owl").isChecked());
    EXPECT_EQ(settings().unifiedBrightness.get(), 0.75);
}

TEST_F(OnboardingViewTest, ProfileDoesNotChangeAutomaticWarmth) {
    goTo(2);
    click("Night Owl");
    EXPECT_TRUE(settings().autoWarmthEnabled.get());
    EXPECT_EQ(settings().warmthLevel.get(), 0.8);
}

TEST_F(OnboardingViewTest, AdjustmentsAreKept) {
    goTo(2);
    EXPECT_FALSE(control("brightnessSlider").isVisible());
    click("Focus");
    click("Adjust settings");
    ASSERT_TRUE(control("brightnessSlider").isVisible());
    EXPECT_TRUE(shows("60%"));
    QTest::keyClick(&control("brightnessSlider"), Qt::Key_Left);
    QTest::keyClick(&control("warmthSlider"), Qt::Key_Right);
    click("Eye Relief mode");
    click("Break reminders");
    EXPECT_EQ(settings().unifiedBrightness.get(), 0.59);
    EXPECT_EQ(settings().warmthLevel.get(), 0.31);
    EXPECT_FALSE(settings().grayscaleEnabled.get());
    EXPECT_FALSE(settings().breakTimerEnabled.get());
    EXPECT_EQ(settings().activeProfileId.get(), instances().builtInProfiles()[2].id);
    click("Adjust settings");
    EXPECT_FALSE(control("brightnessSlider").isVisible());
    click("Continue");
    EXPECT_EQ(settings().unifiedBrightness.get(), 0.59);
}

TEST_F(OnboardingViewTest, LastStepSaysHowToComeBackWithoutAStatusBar) {
    goTo(3);
    const auto& note = control("comeBackNote");
    EXPECT_FALSE(note.isVisible());
    click("Back");
    desktop.statusBar.isShown = false;
    click("Continue");
    EXPECT_TRUE(note.isVisible());
    click("Back");
    desktop.statusBar.isShown = true; // a panel has started
    click("Continue");
    EXPECT_FALSE(note.isVisible());
}

TEST_F(OnboardingViewTest, ButtonsStayVisibleOnASmallScreen) {
    goTo(2);
    click("Adjust settings");
    shrink({500, 300});
    EXPECT_TRUE(isWhollyVisible(button("backButton")));
    EXPECT_TRUE(isWhollyVisible(button("continueButton")));
    const auto& last = control("breakTimerToggle");
    EXPECT_FALSE(isWhollyVisible(last));
    for (int i = 0; i < 12 && !last.hasFocus(); ++i) {
        QTest::keyClick(widget().focusWidget(), Qt::Key_Tab);
    }
    EXPECT_TRUE(last.hasFocus());
    EXPECT_TRUE(isWhollyVisible(last)) << "the step should scroll to the control with focus";
    EXPECT_GE(last.height(), last.minimumSizeHint().height());
}

TEST_F(OnboardingViewTest, StepScrollsToAControlThatGetsFocusFromTheButtons) {
    goTo(2);
    click("Adjust settings");
    shrink({500, 300});
    auto& last = control("breakTimerToggle");
    button("backButton").setFocus();
    QTest::keyClick(&button("backButton"), Qt::Key_Backtab);
    EXPECT_TRUE(last.hasFocus());
    EXPECT_TRUE(isWhollyVisible(last));
}

TEST_F(OnboardingViewTest, LastStepOffersLaunchAtLogin) {
    goTo(3);
    EXPECT_TRUE(shows("Nocta lives in your menu bar — click the eye icon anytime to adjust your "
                      "settings."));
    click("Launch Nocta at login");
    EXPECT_EQ(desktop.loginItem.present, LoginItem::Status::enabled);
}

} // namespace
} // namespace nocta
