// Checks every text and every symbol of every view, in reading order.

#include "support/Face.h"
#include "support/SourceTexts.h"
#include "symbols/Symbol.h"
#include "ui/StatusMenu.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLayout>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QRadioButton>
#include <QScrollArea>
#include <QSlider>
#include <QSpinBox>
#include <QTabBar>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {
std::map<const QPaintDevice*, std::vector<std::string>> drawnSymbols;
}

// The linker redirects every call of nocta::drawSymbol to this function (`--wrap` in
// tests/CMakeLists.txt) so that the tests can record which symbol is painted on which widget.
#define NOCTA_DRAW_SYMBOL _ZN5nocta10drawSymbolER8QPainterRK6QRectFRK7QStringRK6QColor
#define NOCTA_JOINED(prefix, name) prefix##name
#define NOCTA_NAME(prefix, name) NOCTA_JOINED(prefix, name)
extern "C" {
void NOCTA_NAME(__real_, NOCTA_DRAW_SYMBOL)(QPainter& painter, const QRectF& place,
                                            const QString& name, const QColor& color);
void NOCTA_NAME(__wrap_, NOCTA_DRAW_SYMBOL)(QPainter& painter, const QRectF& place,
                                            const QString& name, const QColor& color) {
    drawnSymbols[painter.device()].push_back(name.toStdString());
    NOCTA_NAME(__real_, NOCTA_DRAW_SYMBOL)(painter, place, name, color);
}
}

namespace nocta {
namespace {

using Lines = std::vector<std::string>;

std::string joined(const std::vector<std::string>& parts, const char* separator) {
    std::string text;
    for (const auto& part : parts) {
        text += (text.empty() || part.empty() ? "" : separator) + part;
    }
    return text;
}

class TextsAndSymbolsTest : public Face {
protected:
    void TearDown() override {
        drawnSymbols.clear();
        Face::TearDown();
    }

    /// Returns the content of the view in order. Texts are unchanged, symbols are in angle
    /// brackets, and each control is preceded by its kind.
    Lines shown() {
        drawnSymbols.clear();
        widget().grab();
        lines_.clear();
        last_ = QRect();
        read(widget());
        return lines_;
    }
    void goTo(int step) const {
        for (int i = 0; i < step; ++i) {
            click("continueButton");
        }
    }
    Lines preferences(int tab) {
        open(realViews.makePreferencesView());
        control<QTabBar>("preferencesTabs").setCurrentIndex(tab);
        return withoutTabs(shown());
    }
    static Lines withoutTabs(Lines found) {
        const Lines tabs = {"tab <gear> General",         "tab <sun.max> Brightness",
                            "tab <paintpalette> Color",   "tab <clock> Breaks",
                            "tab <bubble.left> Feedback", "tab <info.circle> About"};
        EXPECT_EQ(Lines(found.begin(), found.begin() + 6), tabs);
        found.erase(found.begin(), found.begin() + 6);
        return found;
    }
    Lines onboarding(int step) {
        open(realViews.makeOnboardingView([] {}), QSize(500, 580));
        goTo(step);
        return shown();
    }

private:
    void read(const QWidget& part) {
        if (!part.isVisible()) {
            return;
        }
        if (const auto* const tabs = qobject_cast<const QTabBar*>(&part)) {
            const auto& symbols = drawnSymbols[tabs];
            ASSERT_EQ(symbols.size(), static_cast<std::size_t>(tabs->count()));
            for (int i = 0; i < tabs->count(); ++i) {
                lines_.push_back("tab <" + symbols[static_cast<std::size_t>(i)] + "> " +
                                 tabs->tabText(i).toStdString());
            }
            return;
        }
        if (const auto line = lineOf(part); !line.empty()) {
            expectAfterTheLast(part, line);
            lines_.push_back(line);
        }
        if (part.layout() != nullptr) {
            read(*part.layout());
        } else if (const auto* const scroller = qobject_cast<const QScrollArea*>(&part)) {
            read(*scroller->widget());
        }
    }
    void read(const QLayout& layout) {
        for (int i = 0; i < layout.count(); ++i) {
            auto* const item = layout.itemAt(i);
            if (item->widget() != nullptr) {
                read(*item->widget());
            } else if (item->layout() != nullptr) {
                read(*item->layout());
            }
        }
    }

    /// Checks that the layout is in reading order: each part is to the right of the previous part
    /// or below it.
    void expectAfterTheLast(const QWidget& part, const std::string& line) {
        constexpr int tolerance = 8; // points
        const QRect place(part.mapTo(&widget(), QPoint()), part.size());
        EXPECT_TRUE(last_.isNull() ||
                    (place.center().y() >= last_.top() - tolerance &&
                     (place.top() >= last_.bottom() - tolerance || place.left() >= last_.left())))
            << line;
        last_ = place;
    }

    static std::string lineOf(const QWidget& part) {
        std::vector<std::string> symbols;
        for (const auto& symbol : drawnSymbols[&part]) {
            symbols.push_back("<" + symbol + ">");
        }
        symbols.push_back(textOf(part));
        const auto kind = kindOf(part);
        return kind + (kind.empty() ? "" : " ") + joined(symbols, " ");
    }
    static std::string kindOf(const QWidget& part) {
        if (qobject_cast<const QCheckBox*>(&part) != nullptr) {
            return "switch";
        }
        if (qobject_cast<const QRadioButton*>(&part) != nullptr) {
            return "choice";
        }
        if (qobject_cast<const QAbstractButton*>(&part) != nullptr) {
            return "button";
        }
        if (qobject_cast<const QSlider*>(&part) != nullptr) {
            return "slider";
        }
        if (qobject_cast<const QProgressBar*>(&part) != nullptr) {
            return "progress";
        }
        return "";
    }
    static std::string textOf(const QWidget& part) {
        const auto name = part.accessibleName();
        if (const auto* const label = qobject_cast<const QLabel*>(&part)) {
            return label->text().toStdString();
        }
        if (const auto* const segment = qobject_cast<const QRadioButton*>(&part)) {
            return segment->accessibleName().toStdString();
        }
        if (const auto* const button = qobject_cast<const QAbstractButton*>(&part)) {
            return button->text().toStdString();
        }
        if (const auto* const list = qobject_cast<const QComboBox*>(&part)) {
            QStringList choices;
            for (int i = 0; i < list->count(); ++i) {
                choices << (i == list->currentIndex() ? "*" : "") + list->itemText(i);
            }
            return (name + ": " + choices.join(", ")).toStdString();
        }
        if (const auto* const number = qobject_cast<const QSpinBox*>(&part)) {
            return (name + ": " + number->text()).toStdString();
        }
        if (const auto* const field = qobject_cast<const QPlainTextEdit*>(&part)) {
            return (name + ": [" + field->placeholderText() + "]").toStdString();
        }
        if (qobject_cast<const QLineEdit*>(&part) != nullptr) {
            return (name + ": []").toStdString();
        }
        return part.layout() == nullptr ? name.toStdString() : "";
    }

    SourceTexts sourceTexts_;
    Lines lines_;
    QRect last_;
};

TEST_F(TextsAndSymbolsTest, Popover) {
    open(realViews.makePopoverContentView([] {}), QSize(300, 280));
    Lines expected = {"Brightness",
                      "75%",
                      "slider Brightness",
                      "<paintpalette>",
                      "Warmth",
                      "choice Auto",
                      "choice Manual",
                      "Adjusts with sunset",
                      "<circle.lefthalf.filled>",
                      "switch Eye Relief",
                      "switch Break Timer",
                      "Off",
                      "button <gear> Preferences",
                      "button <arrow.triangle.2.circlepath> Check for Updates",
                      "button <power> Quit Nocta"};
    EXPECT_EQ(shown(), expected);
    click("Manual");
    expected[7] = "slider Warmth";
    EXPECT_EQ(shown(), expected);
}

TEST_F(TextsAndSymbolsTest, NotesFollowTheControlsThatHaveNoEffect) {
    desktop.displays.takesTables = false;
    desktop.filter.hasEntryPoint = false;
    desktop.location.answer(AuthorizationStatus::restricted);
    const std::string noBrightness = "Nocta cannot darken the picture in this session.";
    const std::string noWarmth = "Nocta cannot warm the displays in this session.";
    const std::string noGray = "Nocta cannot turn this desktop gray.";
    const std::string noLocation = "No location service is available on this desktop.";
    const auto expectBelow = [this](const Lines& lines, const std::string& control,
                                    const std::string& note) {
        const auto place = std::ranges::find(lines, control);
        ASSERT_NE(place, lines.end()) << control;
        EXPECT_EQ(*std::next(place), note);
    };
    breakTimer().state.set(Paused{PauseReason::meeting});
    open(realViews.makePopoverContentView([] {}), QSize(300, 280));
    const auto popover = shown();
    expectBelow(popover, "slider Brightness", noBrightness);
    expectBelow(popover, "Adjusts with sunset", noWarmth);
    expectBelow(popover, "switch Eye Relief", noGray);
    expectBelow(popover, "In meeting", "Turn Break Timer off and on to start again.");

    expectBelow(preferences(0), "switch Eye Relief mode", noGray);
    expectBelow(preferences(1), "slider Brightness", noBrightness);
    expectBelow(preferences(2), "slider Warmth", noWarmth);
    expectBelow(preferences(2), "switch Auto-adjust based on time", noWarmth);
    expectBelow(preferences(2), "Using default times (6:30 AM / 6:30 PM).", noLocation);

    expectBelow(onboarding(1), "button Allow", noLocation);
    onboarding(2);
    click("Adjust settings");
    const auto adjustments = shown();
    expectBelow(adjustments, "slider Brightness", noBrightness);
    expectBelow(adjustments, "switch Eye Relief mode", noGray);
    EXPECT_EQ(std::ranges::count(adjustments, noWarmth), 1);
}

TEST_F(TextsAndSymbolsTest, GeneralPreferences) {
    EXPECT_EQ(preferences(0),
              (Lines{"Startup", "switch Launch at login", "Menu Bar Icon", "choice <eye> Eye",
                     "choice <leaf> Leaf", "choice <sparkles> Sparkles", "Eye Relief",
                     "switch Eye Relief mode",
                     "Switches your display to black & white, reducing eye strain and making apps "
                     "less appealing.",
                     "Reset", "button Reset to Defaults"}));
}

TEST_F(TextsAndSymbolsTest, BrightnessPreferences) {
    EXPECT_EQ(
        preferences(1),
        (Lines{"How It Works",
               "Nocta extends your brightness range beyond what macOS allows. The setting applies "
               "to all your displays at once.",
               "On your built-in display:", "100% → 50%: Adjusts hardware brightness",
               "49% → 0%: Dims further using a software overlay", "On external monitors:",
               "100% → 0%: Dims using a software overlay", "Current Level", "Brightness", "75%",
               "slider Brightness", "Safety", "switch Allow completely black screen",
               "When off, a faint glow is kept at minimum so the screen is never fully dark."}));
}

TEST_F(TextsAndSymbolsTest, ColorPreferences) {
    Lines expected = {
        "Manual Warmth",
        "Warmth",
        "50%",
        "slider Warmth",
        "Color Temperature",
        "switch Auto-adjust based on time",
        "switch Use my location",
        "Day",
        "Day: 6500 K",
        "Neutral",
        "Night",
        "Night: 2700 K",
        "Candlelight",
        "Nocta transitions smoothly between your day and night temperatures at sunrise and sunset.",
        "Using default times (6:30 AM / 6:30 PM)."};
    EXPECT_EQ(preferences(2), expected);
    settings().locationEnabled.set(true);
    settings().grayscaleEnabled.set(true);
    expected.back() = "Using your location for accurate sunrise/sunset times.";
    expected.emplace_back("Your location is unknown, so the default times apply.");
    expected.insert(
        expected.begin() + 4,
        {"<info.circle>", "Color settings are disabled while Grayscale mode is active."});
    EXPECT_EQ(preferences(2), expected);
}

TEST_F(TextsAndSymbolsTest, BreaksPreferences) {
    EXPECT_EQ(preferences(3),
              (Lines{"Break Timer", "switch Enable break reminders", "Interval",
                     "Interval: Every 10 minutes, Every 15 minutes, *Every 20 minutes, Every 25 "
                     "minutes, Every 30 minutes, Every 40 minutes, Every 45 minutes, Every 60 "
                     "minutes, Every 90 minutes, Every 120 minutes",
                     "Break duration",
                     "Break duration: 10 seconds, 15 seconds, *20 seconds, 30 seconds, 45 seconds, "
                     "60 seconds, 120 seconds, 300 seconds",
                     "Smart Features", "switch Suspend during meetings",
                     "Automatically pauses break reminders when Zoom, Google Meet, or Teams is "
                     "active.",
                     "Statistics", "Breaks completed", "0", "Breaks skipped", "0",
                     "Completion rate", "0%"}));
}

TEST_F(TextsAndSymbolsTest, FeedbackPreferences) {
    Lines expected = {
        "Help shape Nocta — share a suggestion, report a bug, or tell us what you think.",
        "Category",
        "Category: *Suggestion, Bug report, Other",
        "Message",
        "Message: [What's on your mind?]",
        "Email (optional)",
        "Email (optional): []",
        "Only if you'd like a reply.",
        "button Send feedback"};
    EXPECT_EQ(preferences(4), expected);
    feedback().isSending.set(true);
    expected.back() = "progress Send feedback";
    EXPECT_EQ(preferences(4), expected);
    feedback().isSending.set(false);
    feedback().errorMessage.set("Failed to send. Please try again.");
    expected.back() = "Failed to send. Please try again.";
    expected.emplace_back("button Send feedback");
    EXPECT_EQ(withoutTabs(shown()), expected);
    feedback().sent.set(true);
    EXPECT_EQ(withoutTabs(shown()), (Lines{"<checkmark.circle.fill>", "Thanks for your feedback!",
                                           "button Send another"}));
}

TEST_F(TextsAndSymbolsTest, AboutPreferences) {
    EXPECT_EQ(
        preferences(5),
        (Lines{"Nocta", "Version 1.2.3 (45)", "Updates", "switch Automatically check for updates",
               "switch Automatically download updates", "button Check for Updates Now"}));
}

TEST_F(TextsAndSymbolsTest, OnboardingWelcome) {
    EXPECT_EQ(
        onboarding(0),
        (Lines{"<eye>", "Welcome to Nocta", "Take care of your eyes, without thinking about it.",
               "<sun.max>", "Extended Brightness", "Go dimmer than macOS allows",
               "<thermometer.sun>", "Automatic Warmth at Sunset",
               "Your screen adapts to the time of day", "<clock>", "Smart Break Reminders",
               "Customizable intervals, pauses during meetings", "button Continue"}));
}

TEST_F(TextsAndSymbolsTest, OnboardingPermissions) {
    Lines expected = {"Permissions",  "Nocta needs a few permissions to work properly.",
                      "<location>",   "Location",
                      "(Optional)",   "For sunrise/sunset calculation",
                      "button Allow", "You can always change these in System Preferences.",
                      "button Back",  "button Continue"};
    EXPECT_EQ(onboarding(1), expected);
    desktop.location.answer(AuthorizationStatus::authorized);
    expected[6] = "<checkmark.circle.fill> Allowed: Location";
    EXPECT_EQ(shown(), expected);
}

TEST_F(TextsAndSymbolsTest, OnboardingStyle) {
    Lines expected = {"Choose Your Style",
                      "Pick a starting point. You can adjust everything later."};
    const Lines everyday = {
        "choice Everyday", "<sun.max>",   "Everyday",      "Balanced for daily use",
        "<sun.max>",       "75%",         "<thermometer>", "Neutral",
        "<clock>",         "Every 20 min"};
    const Lines nightOwl = {
        "choice Night Owl", "<moon.stars>", "Night Owl",     "Warmer & dimmer for night",
        "<sun.max>",        "40%",          "<thermometer>", "Warm",
        "<clock>",          "Every 30 min"};
    const Lines focus = {"choice Focus",
                         "<brain.head.profile>",
                         "Focus",
                         "Minimal distractions",
                         "<sun.max>",
                         "60%",
                         "<thermometer>",
                         "Cool",
                         "<clock>",
                         "Every 25 min",
                         "<circle.lefthalf.filled>",
                         "Eye Relief"};
    for (const auto& card : {everyday, nightOwl, focus}) {
        expected.insert(expected.end(), card.begin(), card.end());
    }
    expected.emplace_back("The warmth of a style shows when Warmth is set to Manual.");
    auto closed = expected;
    closed.insert(closed.end(),
                  {"button <chevron.down> Adjust settings", "button Back", "button Continue"});
    EXPECT_EQ(onboarding(2), closed);
    click("Adjust settings");
    expected.insert(expected.end(), {"button <chevron.up> Adjust settings", "Brightness", "75%",
                                     "slider Brightness", "Warmth", "slider Warmth", "Cool",
                                     "Neutral", "Warm", "switch Eye Relief mode",
                                     "switch Break reminders", "button Back", "button Continue"});
    EXPECT_EQ(shown(), expected);
}

TEST_F(TextsAndSymbolsTest, OnboardingReady) {
    EXPECT_EQ(onboarding(3),
              (Lines{"<checkmark.circle.fill>", "You're All Set",
                     "Nocta lives in your menu bar — click the eye icon anytime to adjust your "
                     "settings.",
                     "switch Launch Nocta at login", "button Back", "button Finish"}));
}

TEST_F(TextsAndSymbolsTest, BreakOverlay) {
    settings().breakDurationSeconds.set(45);
    breakTimer().state.set(Active{45});
    open(realViews.makeBreakOverlayView([] {}, [] {}), QSize(800, 600));
    EXPECT_EQ(shown(), (Lines{"<eye>", "Time for a break",
                              "Look at something far away for 20 seconds", "Seconds left: 45",
                              "button Skip", "button Snooze 5 min", "Press Space to skip"}));
}

TEST_F(TextsAndSymbolsTest, Menu) {
    const StatusMenu menu(instances(), [] {});
    Lines texts;
    for (const auto* const action : menu.actions()) {
        texts.push_back(action->isSeparator() ? "-" : action->text().toStdString());
        if (action->menu() != nullptr) {
            for (const auto* const choice : action->menu()->actions()) {
                texts.push_back("  " + choice->text().toStdString());
            }
        }
    }
    EXPECT_EQ(texts, (Lines{"Brightness", "  100%", "  75%", "  50%", "  25%", "  0%", "Warmth",
                            "  Auto", "  Manual", "Eye Relief", "Break Timer", "-", "Preferences",
                            "Check for Updates", "Quit Nocta"}));
}

} // namespace
} // namespace nocta
