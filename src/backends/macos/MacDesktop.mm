#include "backends/macos/CgDisplays.h"
#include "backends/macos/CgGammaOutput.h"
#include "backends/macos/CgKeyEvents.h"
#include "backends/macos/CoreLocationManager.h"
#include "backends/macos/DisplayServicesBacklight.h"
#include "backends/macos/MacUpdater.h"
#include "backends/macos/MainAppLoginItem.h"
#include "backends/macos/MainRunLoop.h"
#include "backends/macos/MediaAccessibilityFilter.h"
#include "backends/macos/NsWorkspace.h"
#include "backends/macos/SharedUrlSession.h"
#include "backends/macos/SystemLibraries.h"
#include "backends/macos/UserDefaultsStore.h"
#include "backends/macos/UserNotifications.h"
#include "backends/macos/shell/MacAppWindows.h"
#include "backends/macos/shell/MacApplication.h"
#include "backends/macos/shell/MacOverlayWindows.h"
#include "backends/macos/shell/MacPopover.h"
#include "backends/macos/shell/MacStatusBar.h"
#include "platform/Desktop.h"

#include <QApplication>

#include <cstdlib>
#include <memory>
#include <unistd.h>

namespace nocta {

namespace {

class NsUuidSource final : public UuidSource {
public:
    Uuid makeUuid() override {
        Uuid uuid;
        [NSUUID.UUID getUUIDBytes:uuid.bytes.data()];
        return uuid;
    }
};

/// The Qt application, with no arguments to parse.
struct Toolkit {
    int argumentCount = 1;
    char name[6] = "nocta";
    char* arguments[2] = {name, nullptr};
    QApplication application{argumentCount, arguments};

    Toolkit() {
        QApplication::setQuitOnLastWindowClosed(false);
        QApplication::setApplicationName(QStringLiteral("nocta"));
        QApplication::setApplicationDisplayName(QStringLiteral("Nocta"));
    }
};

class MacDesktop {
public:
    explicit MacDesktop(const Bundle& bundle) : bundle_(bundle) {}

private:
    const Bundle& bundle_;
    MainRunLoop runLoop_;
    MacApplication application_{runLoop_}; // before the toolkit, whose delegate forwards to it
    Toolkit toolkit_;
    NotificationCenter notificationCenter_;
    UserDefaultsStore userDefaults_;
    NsUuidSource uuidSource_;
    CgDisplays displays_{notificationCenter_};
    CgGammaOutput gammaOutput_{runLoop_};
    DisplayServicesBacklight backlight_;
    CgKeyEvents keyEvents_;
    CoreLocationManager locationManager_;
    MainAppLoginItem loginItem_;
    SystemLibraries dynamicLibraries_;
    MediaAccessibilityFilter displayFilter_;
    NsWorkspace workspace_{notificationCenter_};
    UserNotifications userNotificationCenter_{runLoop_};
    SharedUrlSession urlSession_{runLoop_};
    MacUpdater updater_;
    MacOverlayWindows overlayWindows_{runLoop_};
    MacStatusBar statusBar_;
    MacPopover popover_{runLoop_};
    MacAppWindows appWindows_{runLoop_};

public:
    Desktop ports{.bundle = bundle_,
                  .runLoop = runLoop_,
                  .notificationCenter = notificationCenter_,
                  .userDefaults = userDefaults_,
                  .uuidSource = uuidSource_,
                  .displays = displays_,
                  .gammaOutput = gammaOutput_,
                  .backlight = backlight_,
                  .keyEvents = keyEvents_,
                  .locationManager = locationManager_,
                  .loginItem = loginItem_,
                  .dynamicLibraries = dynamicLibraries_,
                  .displayFilter = displayFilter_,
                  .workspace = workspace_,
                  .userNotificationCenter = userNotificationCenter_,
                  .urlSession = urlSession_,
                  .updater = updater_,
                  .overlayWindows = overlayWindows_,
                  .statusBar = statusBar_,
                  .popover = popover_,
                  .appWindows = appWindows_,
                  .application = application_};
};

/// When a bundle is started a second time, the system reopens the first process. A terminal can
/// start a second process; in that case, this function reopens the first process.
bool reopenRunningProcess() {
    NSString* const identifier = NSBundle.mainBundle.bundleIdentifier;
    if (identifier == nil) {
        return false;
    }
    for (NSRunningApplication* application in
         [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier]) {
        if (application.processIdentifier != getpid() && application.finishedLaunching) {
            [NSWorkspace.sharedWorkspace openURL:application.bundleURL];
            return true;
        }
    }
    return false;
}

} // namespace

DesktopSession makeDesktop(const Bundle& bundle) {
    if (reopenRunningProcess()) {
        return {.desktop = nullptr, .exitStatus = EXIT_SUCCESS};
    }
    const auto desktop = std::make_shared<MacDesktop>(bundle);
    return {.desktop = std::shared_ptr<Desktop>(desktop, &desktop->ports)};
}

} // namespace nocta
