#include "backends/linux/shell/ColorScheme.h"

#include "support/EventLoop.h"
#include "support/PrivateBus.h"
#include "support/SettingsPortal.h"
#include "ui/Colors.h"

#include <QApplication>
#include <QEvent>
#include <QPalette>
#include <QProxyStyle>
#include <QWidget>
#include <QWindow>
#include <gtest/gtest.h>

#include <array>

namespace nocta {
namespace {

constexpr auto groups = std::to_array({QPalette::Active, QPalette::Inactive, QPalette::Disabled});

const QColor lightWindow(0xf4, 0xf0, 0xe8);
const QColor darkWindow(0x10, 0x18, 0x20);

/// Imitates a desktop theme. Qt lets the style change the default palette last.
class Theme final : public QProxyStyle {
public:
    explicit Theme(const QColor& window) : QProxyStyle("Fusion"), window_(window) {}

    using QProxyStyle::polish;
    void polish(QPalette& palette) override { palette = {window_, window_}; }

private:
    QColor window_;
};

class ColorSchemeTest : public ::testing::Test {
protected:
    PrivateBus bus{"DBUS_SESSION_BUS_ADDRESS"};

    ColorSchemeTest() { setTheme(lightWindow); }
    ~ColorSchemeTest() override { QApplication::setPalette(QPalette()); }

    static void setTheme(const QColor& window) { QApplication::setStyle(new Theme(window)); }

    static QColor windowColor() { return QApplication::palette().color(QPalette::Window); }
    /// Returns whether the palette is dark and not from a theme.
    static bool isOurs() {
        return windowColor() != darkWindow &&
               windowColor().lightness() <
                   QApplication::palette().color(QPalette::WindowText).lightness();
    }
    /// `scheme` is 0 for no preference, 1 for dark, or 2 for light.
    static void prefer(SettingsPortal& portal, const QVariant& scheme) {
        portal.settings["org.freedesktop.appearance"]["color-scheme"] = scheme;
    }
    /// Sets the preference to dark, and returns once our palette is set.
    static void waitForOurs(SettingsPortal& portal) {
        prefer(portal, 1U);
        portal.emitSettingChanged();
        ASSERT_TRUE(serveUntil(isOurs));
    }
};

TEST_F(ColorSchemeTest, DarkPreferenceIsAppliedOnLaunch) {
    SettingsPortal portal(bus);
    prefer(portal, 1U);
    QWidget window;
    QWidget child(&window);
    const ColorScheme scheme;
    EXPECT_EQ(windowColor(), lightWindow) << "the preference should not be known yet";
    ASSERT_TRUE(serveUntil(isOurs));
    EXPECT_TRUE(serveUntil([&] { // Qt updates open windows through an event
        return child.palette().color(QPalette::Window) == windowColor();
    }));
}

TEST_F(ColorSchemeTest, FollowsThePreferenceInBothDirections) {
    SettingsPortal portal(bus);
    const ColorScheme scheme;
    ASSERT_TRUE(serveUntil([&] { return portal.questions == 1; }));
    for (const auto other : {0U, 2U}) {
        waitForOurs(portal);
        prefer(portal, other);
        portal.emitSettingChanged();
        EXPECT_TRUE(serveUntil([&] { return windowColor() == lightWindow; }));
    }
    waitForOurs(portal);
    portal.settings.clear();
    portal.emitSettingChanged();
    EXPECT_TRUE(serveUntil([&] { return windowColor() == lightWindow; }))
        << "without the setting, the theme should apply";
    EXPECT_EQ(QApplication::palette(), QPalette(lightWindow, lightWindow));
    EXPECT_EQ(QApplication::palette().resolveMask(), 0U) << "all of our colors should be removed";
}

TEST_F(ColorSchemeTest, LightPreferenceChangesNothing) {
    SettingsPortal portal(bus);
    const ColorScheme scheme;
    ASSERT_TRUE(serveUntil([&] { return portal.questions == 1; }));
    for (const auto& window : {lightWindow, darkWindow}) {
        setTheme(window);
        for (const auto preference : {0U, 2U}) {
            prefer(portal, preference);
            portal.emitSettingChangedAndWait();
            EXPECT_EQ(windowColor(), window);
        }
    }
    setTheme(lightWindow);
    waitForOurs(portal); // the program should still follow the setting
}

TEST_F(ColorSchemeTest, DarkThemeIsKept) {
    SettingsPortal portal(bus);
    prefer(portal, 1U);
    setTheme(darkWindow);
    const ColorScheme scheme;
    ASSERT_TRUE(serveUntil([&] { return portal.questions == 1; }));
    portal.emitSettingChangedAndWait();
    EXPECT_EQ(windowColor(), darkWindow);
    EXPECT_EQ(QApplication::palette().resolveMask(), 0U);

    setTheme(lightWindow);
    EXPECT_TRUE(isOurs()) << "our palette should replace a light theme";
}

TEST_F(ColorSchemeTest, ThemeThatTurnsDarkReplacesOurPalette) {
    SettingsPortal portal(bus);
    const ColorScheme scheme;
    waitForOurs(portal);
    QWindow window;
    setTheme(darkWindow);
    QEvent themeChange(QEvent::ThemeChange); // Qt sends this to every window
    QCoreApplication::sendEvent(&window, &themeChange);
    EXPECT_EQ(windowColor(), darkWindow);

    setTheme(lightWindow);
    EXPECT_TRUE(isOurs());
    prefer(portal, 0U);
    portal.emitSettingChanged();
    EXPECT_TRUE(serveUntil([&] { return windowColor() == lightWindow; }));
}

TEST_F(ColorSchemeTest, ThemeChangeAppliesAfterOurPaletteIsRemoved) {
    SettingsPortal portal(bus);
    const ColorScheme scheme;
    waitForOurs(portal);
    const QColor another(0xe0, 0xf0, 0xff);
    setTheme(another);
    EXPECT_TRUE(isOurs());
    prefer(portal, 2U);
    portal.emitSettingChanged();
    EXPECT_TRUE(serveUntil([&] { return windowColor() == another; }));
}

TEST_F(ColorSchemeTest, OtherSettingsDoNotChangeThePalette) {
    struct Counter : QObject {
        int changes = 0;
        bool eventFilter(QObject* watched, QEvent* event) override {
            // Newer versions of Qt also send the event to other objects.
            changes += watched == QCoreApplication::instance() &&
                               event->type() == QEvent::ApplicationPaletteChange
                           ? 1
                           : 0;
            return QObject::eventFilter(watched, event);
        }
    };
    SettingsPortal portal(bus);
    const ColorScheme scheme;
    // Wait for the first answer. Otherwise the first answer might already be dark, and the answer
    // to the change might still arrive while the events are counted.
    ASSERT_TRUE(serveUntil([&] { return portal.questions == 1; }));
    waitForOurs(portal);
    Counter counter;
    QCoreApplication::instance()->installEventFilter(&counter);
    portal.emitSettingChangedAndWait();
    EXPECT_EQ(counter.changes, 0);
    prefer(portal, 0U);
    portal.emitSettingChangedAndWait();
    EXPECT_EQ(counter.changes, 1);
}

TEST_F(ColorSchemeTest, PortalThatStartsLateIsUsed) {
    const ColorScheme scheme;
    QCoreApplication::processEvents();
    EXPECT_EQ(windowColor(), lightWindow);
    SettingsPortal portal(bus);
    prefer(portal, 1U);
    EXPECT_TRUE(serveUntil(isOurs));
}

TEST_F(ColorSchemeTest, InvalidValueMeansNoPreference) {
    SettingsPortal portal(bus);
    const ColorScheme scheme;
    for (const auto& value : {QVariant("1"), QVariant(1), QVariant(true), QVariant(7U)}) {
        waitForOurs(portal);
        prefer(portal, value);
        portal.emitSettingChanged();
        EXPECT_TRUE(serveUntil([&] { return windowColor() == lightWindow; }));
    }
    waitForOurs(portal);
    for (const auto& nonsense :
         {QVariant("text"), QVariant(2U), QVariant(QVariantMap{{"color-scheme", 2U}})}) {
        portal.invalidAnswer = nonsense;
        portal.emitSettingChangedAndWait();
        EXPECT_TRUE(isOurs()) << "an invalid answer should change nothing";
    }
}

TEST_F(ColorSchemeTest, PaletteIsDarkAndTextIsReadable) {
    SettingsPortal portal(bus);
    const ColorScheme scheme;
    waitForOurs(portal);
    const auto palette = QApplication::palette();
    for (const auto group : groups) {
        for (int role = 0; role < QPalette::NColorRoles; ++role) {
            EXPECT_TRUE(role == QPalette::NoRole ||
                        palette.isBrushSet(group, static_cast<QPalette::ColorRole>(role)))
                << group << " " << role;
        }
        for (const auto ground : {QPalette::Window, QPalette::Base, QPalette::AlternateBase,
                                  QPalette::Button, QPalette::ToolTipBase}) {
            EXPECT_LT(palette.color(group, ground).lightness(), 64) << group << " " << ground;
        }
    }
    struct Pair {
        QPalette::ColorRole text;
        QPalette::ColorRole ground;
    };
    for (const auto& [text, ground] :
         {Pair{QPalette::WindowText, QPalette::Window}, Pair{QPalette::WindowText, QPalette::Base},
          Pair{QPalette::Text, QPalette::Window}, Pair{QPalette::Text, QPalette::Base},
          Pair{QPalette::Text, QPalette::AlternateBase},
          Pair{QPalette::PlaceholderText, QPalette::Base},
          Pair{QPalette::ButtonText, QPalette::Button},
          Pair{QPalette::BrightText, QPalette::Window},
          Pair{QPalette::HighlightedText, QPalette::Highlight},
          Pair{QPalette::Link, QPalette::Window}, Pair{QPalette::Link, QPalette::Base},
          Pair{QPalette::LinkVisited, QPalette::Window},
          Pair{QPalette::LinkVisited, QPalette::Base},
          Pair{QPalette::ToolTipText, QPalette::ToolTipBase}}) {
        for (const auto group : {QPalette::Active, QPalette::Inactive}) {
            EXPECT_GE(contrastRatio(palette.color(group, text), palette.color(group, ground)),
                      readableContrast)
                << group << " " << text << " on " << ground;
        }
        const auto disabled = contrastRatio(palette.color(QPalette::Disabled, text),
                                            palette.color(QPalette::Disabled, ground));
        EXPECT_GT(disabled, 2) << text << " on " << ground << " should be visible";
        EXPECT_LT(disabled, contrastRatio(palette.color(text), palette.color(ground)));
    }
}

TEST(ColorScheme, NothingChangesWithoutABus) {
    { const PrivateBus bus("DBUS_SESSION_BUS_ADDRESS"); }
    const auto before = QApplication::palette();
    const ColorScheme scheme;
    QCoreApplication::processEvents();
    EXPECT_EQ(QApplication::palette(), before);
    EXPECT_EQ(QApplication::palette().resolveMask(), 0U);
}

} // namespace
} // namespace nocta
