#pragma once

#include "base/NotificationCenter.h"
#include "base/RunLoop.h"
#include "platform/AppWindows.h"
#include "platform/Application.h"
#include "platform/Backlight.h"
#include "platform/Bundle.h"
#include "platform/DefaultsStore.h"
#include "platform/DisplayFilter.h"
#include "platform/Displays.h"
#include "platform/DynamicLibraries.h"
#include "platform/GammaOutput.h"
#include "platform/KeyEvents.h"
#include "platform/LocationManager.h"
#include "platform/LoginItem.h"
#include "platform/OverlayWindows.h"
#include "platform/Popover.h"
#include "platform/StatusBar.h"
#include "platform/Updater.h"
#include "platform/UrlSession.h"
#include "platform/UserNotificationCenter.h"
#include "platform/UuidSource.h"
#include "platform/Workspace.h"

#include <memory>

namespace nocta {

/// The ports: everything that Nocta needs from the desktop that it runs on. Every port exists on
/// every desktop: if a desktop cannot do something, the port reports that. Most ports have the
/// names and signatures of macOS functions, and their comments name these functions.
struct Desktop {
    const Bundle& bundle;
    RunLoop& runLoop;
    NotificationCenter& notificationCenter;
    DefaultsStore& userDefaults;
    UuidSource& uuidSource;
    Displays& displays;
    GammaOutput& gammaOutput;
    Backlight& backlight;
    KeyEvents& keyEvents;
    LocationManager& locationManager;
    LoginItem& loginItem;
    DynamicLibraries& dynamicLibraries;
    DisplayFilter& displayFilter;
    Workspace& workspace;
    UserNotificationCenter& userNotificationCenter;
    UrlSession& urlSession;
    Updater& updater;
    OverlayWindows& overlayWindows;
    StatusBar& statusBar;
    Popover& popover;
    AppWindows& appWindows;
    Application& application;
};

/// The desktop of this session. If the program cannot run in this session, `desktop` is null, the
/// reason has already been printed, and `exitStatus` is the exit status of the process.
struct DesktopSession {
    std::shared_ptr<Desktop> desktop;
    int exitStatus = 0;
};

/// Detects the session and chooses the desktop for it. Each operating system has its own
/// definition. The desktop keeps a reference to the bundle.
DesktopSession makeDesktop(const Bundle& bundle);

} // namespace nocta
