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

/// Everything that Nocta asks of the desktop it runs on. What a desktop cannot do is a port that
/// says so; no port is ever missing.
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

/// The desktop of this session, or the exit status of a process that has nothing to do here: the
/// reason has been said.
struct DesktopSession {
    std::shared_ptr<Desktop> desktop;
    int exitStatus = 0;
};

/// Probes the session and chooses its desktop; defined once per operating system. The desktop
/// refers to the bundle.
DesktopSession makeDesktop(const Bundle& bundle);

} // namespace nocta
