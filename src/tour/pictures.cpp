// nocta-pictures: draws the program's own views on the virtual desktop. It makes the pictures in
// the documents, and sheets with all views in every color scheme, for comparison.

#include "app/SharedInstances.h"
#include "backends/virtual/VirtualDesktop.h"
#include "tour/ApplicationWindow.h"
#include "tour/LiveDesktop.h"
#include "tour/PseudoLocale.h"
#include "tour/Wallpaper.h"
#include "ui/WidgetViews.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QImage>
#include <QPainter>
#include <QStyleFactory>
#include <QTabBar>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <vector>

namespace {

using namespace nocta;
using namespace std::chrono_literals;

constexpr QSize screenSize(960, 600); // points
constexpr QSize popoverSize(300, 280);
constexpr QSize onboardingSize(500, 580);
constexpr qreal popoverRadius = 12;
constexpr int sheetMargin = 16;

/// The services on a virtual desktop, and the view to draw.
struct Stage {
    VirtualDesktop desktop;
    SharedInstances instances{desktop.ports};
    WidgetViews views{instances};
    std::unique_ptr<View> view;
    QSize minSize;
    enum class Ground { window, popover, desktop } ground = Ground::window;

    Stage() {
        desktop.workspace.reducesMotion = true;
        instances.settingsManager().autoWarmthEnabled.set(true);
        instances.breakTimer();
    }
    QWidget& widget() const { return *static_cast<QWidget*>(view->nativeView()); }
    void click(const char* name) const {
        widget().findChild<QAbstractButton*>(QLatin1String(name))->click();
    }
};

struct Scene {
    QString name;
    std::function<void(Stage&)> prepare;
};

void openPopover(Stage& stage, const BreakState& state, bool isAutomatic = true) {
    stage.instances.settingsManager().autoWarmthEnabled.set(isAutomatic);
    stage.instances.breakTimer().state.set(state);
    stage.view = stage.views.makePopoverContentView([] {});
    stage.minSize = popoverSize;
    stage.ground = Stage::Ground::popover;
}

void openPreferences(Stage& stage, int tab) {
    stage.instances.breakTimer().statistics.set({.totalBreaks = 46,
                                                 .completedBreaks = 39,
                                                 .skippedBreaks = 5,
                                                 .snoozedBreaks = 2,
                                                 .totalBreakTime = 780});
    stage.view = stage.views.makePreferencesView();
    stage.widget().findChild<QTabBar*>(QStringLiteral("preferencesTabs"))->setCurrentIndex(tab);
}

void sendFeedback(Stage& stage) {
    openPreferences(stage, 4);
    stage.instances.feedbackService().message.set("The icon is hard to see.");
    stage.instances.feedbackService().send();
}

void openOnboarding(Stage& stage, int step) {
    stage.view = stage.views.makeOnboardingView([] {});
    stage.minSize = onboardingSize;
    for (int i = 0; i < step; ++i) {
        stage.click("continueButton");
    }
}

void openBreak(Stage& stage) {
    auto& settings = stage.instances.settingsManager();
    settings.breakIntervalMinutes.set(1);
    settings.breakDurationSeconds.set(20);
    stage.desktop.runLoop.advance(0s);
    stage.instances.breakTimer().start();
    stage.desktop.runLoop.advance(60s);
    stage.view = stage.views.makeBreakOverlayView([] {}, [] {});
    stage.minSize = screenSize;
    stage.ground = Stage::Ground::desktop;
}

using Scenes = std::vector<Scene>;

Scenes popovers() {
    return {
        {"popover", [](Stage& stage) { openPopover(stage, Counting{720}); }},
        {"popover-manual", [](Stage& stage) { openPopover(stage, Counting{59.9}, false); }},
        {"popover-break", [](Stage& stage) { openPopover(stage, Active{12}); }},
        {"popover-meeting", [](Stage& stage) { openPopover(stage, Paused{PauseReason::meeting}); }},
        {"popover-paused",
         [](Stage& stage) { openPopover(stage, Paused{PauseReason::userPaused}, false); }},
        {"popover-snoozed", [](Stage& stage) { openPopover(stage, Snoozed{}); }},
        {"popover-missing",
         [](Stage& stage) {
             stage.desktop.displays.takesTables = false;
             stage.desktop.filter.hasEntryPoint = false;
             openPopover(stage, Paused{PauseReason::meeting});
         }},
        {"popover-off",
         [](Stage& stage) {
             stage.instances.settingsManager().breakTimerEnabled.set(false);
             openPopover(stage, Idle{});
         }},
    };
}

Scenes preferences() {
    return {
        {"preferences-general", [](Stage& stage) { openPreferences(stage, 0); }},
        {"preferences-brightness", [](Stage& stage) { openPreferences(stage, 1); }},
        {"preferences-color", [](Stage& stage) { openPreferences(stage, 2); }},
        {"preferences-color-gray",
         [](Stage& stage) {
             stage.instances.settingsManager().grayscaleEnabled.set(true);
             openPreferences(stage, 2);
         }},
        {"preferences-color-missing",
         [](Stage& stage) {
             stage.instances.settingsManager().locationEnabled.set(true);
             stage.desktop.displays.takesTables = false;
             stage.desktop.location.answer(AuthorizationStatus::restricted);
             openPreferences(stage, 2);
         }},
        {"preferences-breaks", [](Stage& stage) { openPreferences(stage, 3); }},
        {"preferences-feedback", [](Stage& stage) { openPreferences(stage, 4); }},
        {"preferences-feedback-no-address",
         [](Stage& stage) {
             stage.desktop.bundle.apiBase = {};
             openPreferences(stage, 4);
         }},
        {"preferences-feedback-sending", sendFeedback},
        {"preferences-feedback-failed",
         [](Stage& stage) {
             sendFeedback(stage);
             stage.desktop.urlSession.answer({.statusCode = 500});
         }},
        {"preferences-feedback-sent",
         [](Stage& stage) {
             sendFeedback(stage);
             stage.desktop.urlSession.answer({.statusCode = 200});
         }},
        {"preferences-about",
         [](Stage& stage) {
             stage.desktop.updater.canCheckForUpdates.set(true);
             stage.desktop.updater.checksAutomatically = true;
             openPreferences(stage, 5);
         }},
        {"preferences-about-no-feed",
         [](Stage& stage) {
             stage.desktop.updater.present = Updater::Availability::noFeed;
             openPreferences(stage, 5);
         }},
    };
}

void openUpdate(Stage& stage, UpdateStage shown) {
    stage.desktop.updater.stage.set(std::move(shown));
    stage.desktop.updater.downloadProgress.set(0.4);
    stage.view = stage.views.makeUpdateView();
}

Scenes updates() {
    return {
        {"update-permission", [](Stage& stage) { openUpdate(stage, UpdatePermissionRequest{}); }},
        {"update-check", [](Stage& stage) { openUpdate(stage, UpdateCheckInProgress{}); }},
        {"update-none", [](Stage& stage) { openUpdate(stage, UpdateNotFound{}); }},
        {"update-found",
         [](Stage& stage) {
             openUpdate(stage,
                        UpdateFound{.version = "1.3",
                                    .releaseNotes =
                                        "Changes\n\n• The lowest brightness is now darker.\n• "
                                        "Breaks now wait for the end of a meeting that is "
                                        "held in a browser."});
         }},
        {"update-download",
         [](Stage& stage) { openUpdate(stage, UpdateDownload{.version = "1.3"}); }},
        {"update-handed-over", [](Stage& stage) { openUpdate(stage, UpdateHandedOver{"1.3"}); }},
        {"update-failed",
         [](Stage& stage) {
             openUpdate(stage,
                        UpdaterError{.description = "The file is not signed by the publisher",
                                     .version = "1.3"});
         }},
    };
}

Scenes onboarding() {
    return {
        {"onboarding-welcome", [](Stage& stage) { openOnboarding(stage, 0); }},
        {"onboarding-permissions", [](Stage& stage) { openOnboarding(stage, 1); }},
        {"onboarding-permissions-granted",
         [](Stage& stage) {
             openOnboarding(stage, 1);
             stage.desktop.location.answer(AuthorizationStatus::authorized);
         }},
        {"onboarding-permissions-missing",
         [](Stage& stage) {
             openOnboarding(stage, 1);
             stage.desktop.location.answer(AuthorizationStatus::restricted);
         }},
        {"onboarding-style",
         [](Stage& stage) {
             openOnboarding(stage, 2);
             stage.click("Night Owl");
         }},
        {"onboarding-style-adjusted",
         [](Stage& stage) {
             openOnboarding(stage, 2);
             stage.click("Focus");
             stage.click("adjustSettingsButton");
         }},
        {"onboarding-ready", [](Stage& stage) { openOnboarding(stage, 3); }},
    };
}

Scenes breaks() {
    return {{"break-overlay", openBreak}};
}

void paintGround(QPainter& painter, const Stage& stage) {
    const auto& widget = stage.widget();
    switch (stage.ground) {
    case Stage::Ground::desktop:
        painter.drawImage(0, 0, paintWallpaper(screenSize));
        paintApplicationWindow(painter, QRectF(70, 60, 430, 420), {{}, "Notes"});
        break;
    case Stage::Ground::popover:
        painter.setPen(QPen(widget.palette().mid(), 1));
        painter.setBrush(widget.palette().window());
        painter.drawRoundedRect(QRectF(widget.rect()).adjusted(0.5, 0.5, -0.5, -0.5), popoverRadius,
                                popoverRadius);
        break;
    case Stage::Ground::window:
        painter.fillRect(widget.rect(), widget.palette().window());
    }
}

/// Resizes the widget as its window would. The height depends on the width, because text may wrap.
void fit(QWidget& widget, const QSize& least) {
    auto size = widget.minimumSizeHint().expandedTo(widget.minimumSize()).expandedTo(least);
    if (widget.hasHeightForWidth()) {
        size.setHeight(std::max(size.height(), widget.heightForWidth(size.width())));
    }
    widget.resize(size);
}

QImage drawn(const Scene& scene, qreal scale) {
    Stage stage;
    scene.prepare(stage);
    auto& widget = stage.widget();
    widget.setAttribute(Qt::WA_DontShowOnScreen);
    fit(widget, stage.minSize);
    widget.show();
    for (int turn = 0; turn < 2; ++turn) { // a scroller passes its content's needs on a turn later
        QCoreApplication::processEvents();
    }
    fit(widget, stage.minSize);
    if (stage.ground == Stage::Ground::desktop) {
        stage.desktop.runLoop.advance(7s); // so that the picture shows the middle of a break
    }
    QImage picture(widget.size() * scale, QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    paintGround(painter, stage);
    widget.render(&painter, {}, {}, QWidget::DrawChildren);
    return picture;
}

/// Arranges the pictures of all scenes in rows of at most four.
QImage sheet(const Scenes& scenes, qreal scale) {
    std::vector<QImage> pictures;
    QSize cell;
    for (const auto& scene : scenes) {
        pictures.push_back(drawn(scene, scale));
        cell = cell.expandedTo(pictures.back().size());
    }
    const auto count = static_cast<int>(pictures.size());
    const auto columns = std::min(count, 4);
    const auto rows = (count + columns - 1) / columns;
    const QSize step = cell + QSize(sheetMargin, sheetMargin);
    QImage all(step.width() * columns + sheetMargin, step.height() * rows + sheetMargin,
               QImage::Format_RGB32);
    all.fill(QColor(128, 128, 128));
    QPainter painter(&all);
    for (int i = 0; i < count; ++i) {
        auto& picture = pictures[static_cast<std::size_t>(i)];
        picture.setDevicePixelRatio(1);
        painter.drawImage(sheetMargin + step.width() * (i % columns),
                          sheetMargin + step.height() * (i / columns), picture);
    }
    return all;
}

bool save(const QImage& picture, const QString& file) {
    const auto isSaved = picture.save(file);
    if (!isSaved) {
        std::cerr << "nocta-pictures: cannot write " << file.toStdString() << std::endl;
    }
    return isSaved;
}

QPalette darkPalette() {
    QPalette dark(QColor(45, 45, 45), QColor(36, 36, 36));
    dark.setColor(QPalette::Base, QColor(28, 28, 28));
    dark.setColor(QPalette::WindowText, QColor(238, 238, 238));
    dark.setColor(QPalette::Text, QColor(238, 238, 238));
    dark.setColor(QPalette::ButtonText, QColor(238, 238, 238));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        dark.setColor(QPalette::Disabled, role, QColor(130, 130, 130));
    }
    return dark;
}

/// Draws two displays in the evening, with the popover open.
bool drawEvening(const QString& file) {
    LiveDesktop live;
    live.desktop.runLoop.setWallClock(live.desktop.runLoop.wallNow() + 10h);
    live.launch();
    live.desktop.appWindows.close("Welcome to Nocta");
    live.settings().unifiedBrightness.set(0.6);
    live.desktop.statusBar.click();
    const auto isSaved = save(live.picture(), file);
    live.quit();
    return isSaved;
}

/// Draws the pictures that the documents show.
bool drawForDocuments(const QString& folder) {
    bool isComplete = drawEvening(folder + QStringLiteral("/evening.png"));
    for (const auto& scenes : {popovers(), preferences(), onboarding()}) {
        for (const auto& scene : scenes) {
            static const QStringList shown = {
                QStringLiteral("popover"), QStringLiteral("preferences-color"),
                QStringLiteral("preferences-breaks"), QStringLiteral("onboarding-style")};
            if (shown.contains(scene.name)) {
                isComplete &= save(drawn(scene, 1), folder + "/" + scene.name + ".png");
            }
        }
    }
    for (const auto percent : {100, 150, 200}) {
        isComplete &= save(drawn(breaks().front(), percent / 100.0),
                           QStringLiteral("%1/break-overlay-%2.png").arg(folder).arg(percent));
    }
    return isComplete;
}

bool drawSheets(const QString& folder, const QString& look, qreal scale) {
    bool isComplete = true;
    const std::array<std::pair<QString, Scenes>, 5> groups = {
        std::pair{QStringLiteral("popover"), popovers()},
        std::pair{QStringLiteral("preferences"), preferences()},
        std::pair{QStringLiteral("onboarding"), onboarding()},
        std::pair{QStringLiteral("update"), updates()},
        std::pair{QStringLiteral("break"), breaks()}};
    for (const auto& [name, scenes] : groups) {
        isComplete &= save(
            sheet(scenes, scale),
            QStringLiteral("%1/%2-%3-%4.png").arg(folder, name, look).arg(qRound(scale * 100)));
    }
    return isComplete;
}

} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) {
        std::cerr << "usage: nocta-pictures DOCUMENTS SHEETS" << std::endl;
        return EXIT_FAILURE;
    }
    const auto documents = QString::fromLocal8Bit(arguments[1]);
    const auto sheets = QString::fromLocal8Bit(arguments[2]);
    setenv("TZ", "UTC0", 1); // independent of the time zone of the machine
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    const QApplication application(argumentCount, arguments);
    QDir().mkpath(sheets);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 10));

    bool isComplete = drawForDocuments(documents);
    for (const auto scale : {1.0, 2.0}) {
        isComplete &= drawSheets(sheets, QStringLiteral("light"), scale);
    }
    for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        PseudoLocale pseudoLocale(direction);
        QCoreApplication::installTranslator(&pseudoLocale);
        QApplication::setLayoutDirection(direction);
        isComplete &= drawSheets(sheets,
                                 direction == Qt::LeftToRight ? QStringLiteral("pseudo")
                                                              : QStringLiteral("mirrored"),
                                 1);
    }
    QApplication::setLayoutDirection(Qt::LeftToRight);
    QApplication::setPalette(darkPalette());
    for (const auto scale : {1.0, 2.0}) {
        isComplete &= drawSheets(sheets, QStringLiteral("dark"), scale);
    }
    return isComplete ? EXIT_SUCCESS : EXIT_FAILURE;
}
