#include "ui/StatusMenu.h"

#include "support/TestDesktop.h"

#include <optional>
#include <stdexcept>

namespace nocta {
namespace {

class StatusMenuTest : public TestDesktop {
protected:
    int preferences = 0;
    std::optional<StatusMenu> menu;

    void SetUp() override {
        menu.emplace(instances(), [this] { ++preferences; });
    }
    void TearDown() override { menu.reset(); }

    static QAction& item(const QMenu& menu, const QString& text) {
        for (auto* const action : menu.actions()) {
            if (action->text() == text) {
                return *action;
            }
        }
        throw std::runtime_error("no " + text.toStdString());
    }
    QAction& item(const QString& text) { return item(*menu, text); }
    QAction& item(const QString& submenu, const QString& text) {
        return item(*item(submenu).menu(), text);
    }
};

TEST_F(StatusMenuTest, BrightnessCanBeChosenAndIsShown) {
    EXPECT_TRUE(item("Brightness", "75%").isChecked());
    item("Brightness", "25%").trigger();
    EXPECT_EQ(settings().unifiedBrightness.get(), 0.25);
    EXPECT_TRUE(item("Brightness", "25%").isChecked());
    EXPECT_FALSE(item("Brightness", "75%").isChecked());
    item("Brightness", "25%").trigger();
    EXPECT_TRUE(item("Brightness", "25%").isChecked())
        << "choosing the value again should not change it";
    settings().unifiedBrightness.set(0.3);
    EXPECT_FALSE(item("Brightness", "25%").isChecked());
}

TEST_F(StatusMenuTest, WarmthModeCanBeChosenAndIsShown) {
    EXPECT_TRUE(item("Warmth", "Auto").isChecked());
    item("Warmth", "Manual").trigger();
    EXPECT_FALSE(settings().autoWarmthEnabled.get());
    EXPECT_FALSE(item("Warmth", "Auto").isChecked());
    settings().autoWarmthEnabled.set(true);
    EXPECT_TRUE(item("Warmth", "Auto").isChecked());
    EXPECT_FALSE(item("Warmth", "Manual").isChecked());
}

TEST_F(StatusMenuTest, UpdatesCanBeCheckedIfTheUpdaterAllowsIt) {
    EXPECT_FALSE(item("Check for Updates").isEnabled());
    desktop.updater.canCheckForUpdates.set(true);
    item("Check for Updates").trigger();
    EXPECT_EQ(calls("checkForUpdates").size(), 1U);
}

TEST_F(StatusMenuTest, TogglesFollowTheirSettings) {
    item("Eye Relief").trigger();
    EXPECT_TRUE(settings().grayscaleEnabled.get());
    settings().breakTimerEnabled.set(false);
    EXPECT_FALSE(item("Break Timer").isChecked());
}

TEST_F(StatusMenuTest, OtherItemsWork) {
    item("Preferences").trigger();
    EXPECT_EQ(preferences, 1);
    launch();
    item("Quit Nocta").trigger();
    EXPECT_EQ(calls("synchronize").size(), 1U) << "the program should end";
}

} // namespace
} // namespace nocta
