// Checks every view in several languages and both directions: no text is cut off or untranslated,
// and every control has a name and can be reached with the keyboard.

#include "support/Face.h"
#include "support/SourceTexts.h"
#include "tour/PseudoLocale.h"
#include "ui/Colors.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QTabBar>

#include <functional>
#include <utility>
#include <vector>

namespace nocta {
namespace {

struct Place {
    const char* name;
    std::function<std::unique_ptr<View>(WidgetViews&, Updater&)> make;
    QSize least;
    std::function<void(QWidget&)> go = [](QWidget&) {};
};

void press(QWidget& view, const char* name, int times) {
    for (int i = 0; i < times; ++i) {
        view.findChild<QAbstractButton*>(QLatin1String(name))->click();
    }
}

std::vector<Place> places() {
    const auto popover = [](WidgetViews& views, Updater&) {
        return views.makePopoverContentView([] {});
    };
    const auto preferences = [](WidgetViews& views, Updater&) {
        return views.makePreferencesView();
    };
    const auto onboarding = [](WidgetViews& views, Updater&) {
        return views.makeOnboardingView([] {});
    };
    std::vector<Place> all = {{"popover", popover, {300, 280}},
                              {"popover, manual", popover, {300, 280}, [](QWidget& view) {
                                   view.findChildren<QRadioButton*>().last()->click();
                               }}};
    for (int tab = 0; tab < 6; ++tab) {
        all.push_back({"preferences", preferences, {}, [tab](QWidget& view) {
                           view.findChild<QTabBar*>()->setCurrentIndex(tab);
                       }});
    }
    for (int step = 0; step < 4; ++step) {
        all.push_back({"onboarding", onboarding, {500, 580}, [step](QWidget& view) {
                           press(view, "continueButton", step);
                       }});
    }
    all.push_back({"onboarding, adjusted", onboarding, {500, 580}, [](QWidget& view) {
                       press(view, "continueButton", 2);
                       press(view, "adjustSettingsButton", 1);
                   }});
    for (const auto& stage : std::vector<UpdateStage>{
             UpdatePermissionRequest{}, UpdateCheckInProgress{}, UpdateNotFound{},
             UpdateFound{.version = "1.3", .releaseNotes = "Darker nights"},
             UpdateDownload{.version = "1.3"}, UpdateHandedOver{"1.3"},
             UpdaterError{"The feed is too long"}}) {
        all.push_back({"update",
                       [stage](WidgetViews& views, Updater& updater) {
                           updater.stage.set(stage);
                           return views.makeUpdateView();
                       },
                       {}});
    }
    return all;
}

class EveryViewTest : public Face {
protected:
    void SetUp() override {
        settings().grayscaleEnabled.set(true); // shows an additional note
        desktop.bundle.apiBase = {};           // shows another
    }
    void TearDown() override {
        Face::TearDown();
        QApplication::setLayoutDirection(Qt::LeftToRight);
    }

    /// Makes every view show all of its notes.
    void takeFeaturesAway() {
        desktop.displays.takesTables = false;
        desktop.filter.hasEntryPoint = false;
        desktop.location.answer(AuthorizationStatus::restricted);
        breakTimer().state.set(Paused{PauseReason::meeting});
    }

    void visitAll(const std::function<void()>& look) {
        for (const auto& place : places()) {
            SCOPED_TRACE(place.name);
            settings().autoWarmthEnabled.set(true);
            open(place.make(realViews, desktop.updater), place.least);
            place.go(widget());
            open(std::move(view), place.least);
            look();
        }
    }

    /// Returns whether Qt created the widget as part of a control.
    static bool isPartOfAControl(const QWidget& child) {
        const auto* const parent = child.parentWidget();
        return qobject_cast<const QComboBox*>(parent) != nullptr ||
               qobject_cast<const QSpinBox*>(parent) != nullptr ||
               qobject_cast<const QTabBar*>(parent) != nullptr ||
               qobject_cast<const QAbstractScrollArea*>(parent) != nullptr ||
               (parent != nullptr &&
                qobject_cast<const QAbstractScrollArea*>(parent->parentWidget()) != nullptr);
    }

    std::vector<QWidget*> visibleWidgets() {
        std::vector<QWidget*> visible;
        for (auto* const child : widget().findChildren<QWidget*>()) {
            if (child->isVisible() && !isPartOfAControl(*child)) {
                visible.push_back(child);
            }
        }
        return visible;
    }

    static bool hasRoom(const QWidget& child) {
        const auto needed = child.minimumSizeHint();
        const auto* const label = qobject_cast<const QLabel*>(&child);
        if (label != nullptr && label->wordWrap()) {
            return child.height() >= child.heightForWidth(child.width());
        }
        return child.width() >= needed.width() && child.height() >= needed.height();
    }
    void expectNothingIsCutOff() {
        for (const auto* const child : visibleWidgets()) {
            const auto text = accessibleName(*child).toStdString();
            EXPECT_TRUE(hasRoom(*child)) << child->metaObject()->className() << " " << text;
            EXPECT_TRUE(child->parentWidget()->rect().contains(child->geometry()))
                << child->metaObject()->className() << " " << text;
        }
    }
    QStringList everyText() {
        QStringList texts;
        for (auto* const child : widget().findChildren<QWidget*>()) {
            if (isPartOfAControl(*child)) {
                continue;
            }
            texts << child->toolTip() << child->accessibleName() << child->accessibleDescription();
            if (const auto* const label = qobject_cast<QLabel*>(child)) {
                texts << label->text();
            } else if (const auto* const button = qobject_cast<QAbstractButton*>(child)) {
                texts << button->text();
            } else if (const auto* const list = qobject_cast<QComboBox*>(child)) {
                for (int i = 0; i < list->count(); ++i) {
                    texts << list->itemText(i);
                }
            } else if (const auto* const number = qobject_cast<QSpinBox*>(child)) {
                texts << number->suffix();
            } else if (const auto* const tabs = qobject_cast<QTabBar*>(child)) {
                for (int i = 0; i < tabs->count(); ++i) {
                    texts << tabs->tabText(i);
                }
            }
        }
        return texts;
    }
};

class InPseudoLocale {
public:
    InPseudoLocale() { QCoreApplication::installTranslator(&translator_); }
    InPseudoLocale(const InPseudoLocale&) = delete;
    InPseudoLocale& operator=(const InPseudoLocale&) = delete;
    ~InPseudoLocale() { QCoreApplication::removeTranslator(&translator_); }

private:
    PseudoLocale translator_;
};

/// Counts the windows that are shown during its lifetime.
struct WindowCounter : QObject {
    int shown = 0;

    WindowCounter() { QCoreApplication::instance()->installEventFilter(this); }
    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* const widget = qobject_cast<QWidget*>(watched);
        shown += event->type() == QEvent::Show && widget != nullptr && widget->isWindow() ? 1 : 0;
        return QObject::eventFilter(watched, event);
    }
};

TEST_F(EveryViewTest, NoTopLevelWindowIsShownWhileAViewIsCreated) {
    for (const auto& place : places()) {
        const WindowCounter windows;
        const auto made = place.make(realViews, desktop.updater);
        EXPECT_EQ(windows.shown, 0) << place.name;
    }
}

TEST_F(EveryViewTest, NothingIsCutOffInEnglish) {
    visitAll([this] { expectNothingIsCutOff(); });
}

TEST_F(EveryViewTest, NothingIsCutOffWhereFeaturesAreMissing) {
    takeFeaturesAway();
    visitAll([this] { expectNothingIsCutOff(); });
}

TEST_F(EveryViewTest, NothingIsCutOffOrUntranslatedInALongerLanguage) {
    takeFeaturesAway();
    const InPseudoLocale language;
    visitAll([this] {
        expectNothingIsCutOff();
        for (const auto& text : everyText()) {
            EXPECT_TRUE(PseudoLocale::isTranslated(text)) << text.toStdString();
        }
    });
}

TEST_F(EveryViewTest, NoTextNamesAPartOfMacOS) {
    visitAll([this] {
        for (const auto& text : everyText()) {
            EXPECT_FALSE(namesMacOS(text)) << text.toStdString();
        }
    });
}

TEST_F(EveryViewTest, NothingIsCutOffAtTwiceTheFontSize) {
    const auto font = QApplication::font();
    auto large = font;
    large.setPointSizeF(2 * font.pointSizeF());
    QApplication::setFont(large);
    visitAll([this] { expectNothingIsCutOff(); });
    QApplication::setFont(font);
}

TEST_F(EveryViewTest, EveryControlHasANameAndARoleAndAcceptsFocus) {
    visitAll([this] {
        for (auto* const child : visibleWidgets()) {
            const auto isControl = qobject_cast<QAbstractButton*>(child) != nullptr ||
                                   qobject_cast<QSlider*>(child) != nullptr ||
                                   qobject_cast<QComboBox*>(child) != nullptr ||
                                   qobject_cast<QSpinBox*>(child) != nullptr ||
                                   qobject_cast<QTabBar*>(child) != nullptr;
            if (!isControl) {
                continue;
            }
            auto* const interface = QAccessible::queryAccessibleInterface(child);
            ASSERT_NE(interface, nullptr);
            EXPECT_FALSE(accessibleName(*child).isEmpty()) << child->objectName().toStdString();
            EXPECT_NE(interface->role(), QAccessible::Client);
            EXPECT_NE(interface->role(), QAccessible::NoRole);
            const auto* const segment = qobject_cast<QRadioButton*>(child);
            const auto isReachedByArrows =
                segment != nullptr && segment->group() != nullptr && !segment->isChecked();
            if (child->isEnabled() && !isReachedByArrows) {
                EXPECT_TRUE((child->focusPolicy() & Qt::TabFocus) != 0)
                    << child->objectName().toStdString();
            }
        }
    });
}

TEST_F(EveryViewTest, TabMovesThroughEveryControlFromTopToBottom) {
    settings().grayscaleEnabled.set(false);
    visitAll([this] {
        std::vector<QWidget*> way;
        do {
            QTest::keyClick(&widget(), Qt::Key_Tab);
            ASSERT_NE(QApplication::focusWidget(), nullptr);
            way.push_back(QApplication::focusWidget());
        } while (way.size() < 60 && way.back() != way.front());
        ASSERT_LT(way.size(), 60U) << "Tab should return to the first control";
        way.resize(way.size() > 1 ? way.size() - 1 : 1);
        std::ranges::rotate(way, std::ranges::min_element(way, {}, [this](const QWidget* control) {
                                const auto place = control->mapTo(&widget(), QPoint());
                                return std::pair(place.y(), place.x());
                            }));
        for (std::size_t i = 1; i < way.size(); ++i) {
            const auto before = QRect(way[i - 1]->mapTo(&widget(), QPoint()), way[i - 1]->size());
            const auto after = QRect(way[i]->mapTo(&widget(), QPoint()), way[i]->size());
            EXPECT_TRUE(after.center().y() >= before.top() &&
                        (after.top() >= before.bottom() - 8 || after.left() >= before.left()))
                << accessibleName(*way[i - 1]).toStdString() << " before "
                << accessibleName(*way[i]).toStdString();
        }
    });
}

TEST_F(EveryViewTest, LayoutsAreMirrored) {
    const auto placeOf = [this](const char* name) {
        return control(name).mapTo(&widget(), control(name).rect().center()).x();
    };
    open(realViews.makePopoverContentView([] {}), QSize(300, 280));
    const auto quit = placeOf("quitButton");
    QApplication::setLayoutDirection(Qt::RightToLeft);
    open(realViews.makePopoverContentView([] {}), QSize(300, 280));
    EXPECT_NEAR(placeOf("quitButton"), 300 - quit, 2);
    visitAll([this] { expectNothingIsCutOff(); });
}

TEST_F(EveryViewTest, FollowsThemeChanges) {
    open(realViews.makePopoverContentView([] {}), QSize(300, 280));
    const auto& status = control<QLabel>("breakStatus");
    const auto expectToFollow = [&] {
        QCoreApplication::processEvents(); // delivers the palette change
        EXPECT_EQ(status.palette().color(QPalette::WindowText),
                  secondaryColor(QApplication::palette()));
    };
    expectToFollow();
    const auto before = QApplication::palette();
    auto dark = before;
    dark.setColor(QPalette::Window, QColor(36, 36, 36));
    dark.setColor(QPalette::WindowText, QColor(238, 238, 238));
    QApplication::setPalette(dark);
    expectToFollow();
    QApplication::setPalette(before);
    expectToFollow();
    EXPECT_NE(secondaryColor(dark), secondaryColor(before));
}

} // namespace
} // namespace nocta
