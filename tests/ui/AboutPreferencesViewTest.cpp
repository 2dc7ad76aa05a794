#include "support/Face.h"

#include <QTabBar>

namespace nocta {
namespace {

class AboutPreferencesViewTest : public Face {
protected:
    QTabBar& tabs() { return control<QTabBar>("preferencesTabs"); }
    QAbstractButton& autoCheck() { return button("Automatically check for updates"); }
    QAbstractButton& autoDownload() { return button("Automatically download updates"); }
    QAbstractButton& check() { return button("Check for Updates Now"); }

    void openAbout() {
        open(realViews.makePreferencesView());
        tabs().setCurrentIndex(tabs().count() - 1);
    }
};

TEST_F(AboutPreferencesViewTest, ShowsTheVersion) {
    openAbout();
    EXPECT_EQ(tabs().tabText(tabs().currentIndex()), "About");
    EXPECT_TRUE(shows("Version 1.2.3 (45)"));
}

TEST_F(AboutPreferencesViewTest, TogglesWriteDirectlyToTheUpdater) {
    openAbout();
    EXPECT_FALSE(autoCheck().isChecked());
    EXPECT_FALSE(autoDownload().isChecked());
    click("autoCheckToggle");
    EXPECT_TRUE(desktop.updater.checksAutomatically);
    QTest::keyClick(&autoDownload(), Qt::Key_Space);
    EXPECT_TRUE(desktop.updater.downloadsAutomatically);
    click("autoCheckToggle");
    EXPECT_FALSE(desktop.updater.checksAutomatically);
    EXPECT_TRUE(desktop.userDefaults.table.stored().empty())
        << "the choices should not be in the settings";
}

TEST_F(AboutPreferencesViewTest, TogglesAreReadEachTimeTheTabIsShown) {
    desktop.updater.checksAutomatically = true;
    openAbout();
    EXPECT_TRUE(autoCheck().isChecked());
    tabs().setCurrentIndex(0);
    desktop.updater.checksAutomatically = false;
    desktop.updater.downloadsAutomatically = true;
    tabs().setCurrentIndex(tabs().count() - 1);
    EXPECT_FALSE(autoCheck().isChecked());
    EXPECT_TRUE(autoDownload().isChecked());
}

TEST_F(AboutPreferencesViewTest, ButtonStartsACheckIfOneIsPossible) {
    openAbout();
    EXPECT_FALSE(check().isEnabled());
    desktop.updater.canCheckForUpdates.set(true);
    click("checkForUpdatesNowButton");
    EXPECT_EQ(calls("checkForUpdates").size(), 1U);
    desktop.updater.canCheckForUpdates.set(false);
    EXPECT_FALSE(check().isEnabled());
}

TEST_F(AboutPreferencesViewTest, ReasonForUnavailableChecksIsShown) {
    for (const auto& [availability, reason] :
         {std::pair{Updater::Availability::noFeed,
                    "This build of Nocta has no address for updates."},
          std::pair{Updater::Availability::packageManager,
                    "The system's package manager updates Nocta."}}) {
        desktop.updater.present = availability;
        openAbout();
        EXPECT_TRUE(shows(reason));
        EXPECT_EQ(check().accessibleDescription(), reason);
        EXPECT_EQ(check().toolTip(), "") << "the note is visible";
        click("autoCheckToggle");
    }
    EXPECT_EQ(calls("setAutomaticallyChecksForUpdates").size(), 2U)
        << "the toggles should still write";
}

} // namespace
} // namespace nocta
