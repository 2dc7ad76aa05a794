#pragma once

#include "backends/virtual/MemoryDefaultsStore.h"
#include "backends/virtual/Trace.h"
#include "backends/virtual/VirtualAppWindows.h"
#include "backends/virtual/VirtualDisplays.h"
#include "backends/virtual/VirtualFilter.h"
#include "backends/virtual/VirtualKeyboard.h"
#include "backends/virtual/VirtualLocation.h"
#include "backends/virtual/VirtualLoginItem.h"
#include "backends/virtual/VirtualNotifications.h"
#include "backends/virtual/VirtualOverlayWindows.h"
#include "backends/virtual/VirtualRunLoop.h"
#include "backends/virtual/VirtualShell.h"
#include "backends/virtual/VirtualUpdater.h"
#include "backends/virtual/VirtualUrlSession.h"
#include "backends/virtual/VirtualUuidSource.h"
#include "backends/virtual/VirtualWorkspace.h"
#include "base/NotificationCenter.h"
#include "platform/Desktop.h"

namespace nocta {

/// A whole desktop in memory. A test controls the parts of the desktop as a user would (it plugs in
/// a display, presses a key, lets time pass) and checks their state. The program has access only to
/// the ports.
///
///     VirtualDesktop desktop;
///     desktop.displays.plug({.id = 1, .isBuiltIn = true, .isMain = true});
///     SharedInstances instances(desktop.ports);
///     desktop.runLoop.advance(60s);
class VirtualDesktop {
public:
    VirtualDesktop() = default;
    VirtualDesktop(const VirtualDesktop&) = delete;
    VirtualDesktop& operator=(const VirtualDesktop&) = delete;

    Bundle bundle{.shortVersionString = "1.2.3",
                  .version = "45",
                  .apiBase = "https://feedback.example",
                  .feedUrl = "https://updates.example/appcast.xml",
                  .publicEdKey = {}};
    VirtualRunLoop runLoop;
    Trace trace{runLoop};
    NotificationCenter notificationCenter;
    MemoryDefaultsStore userDefaults{trace};
    VirtualUuidSource uuidSource;
    VirtualDisplays displays{trace, notificationCenter};
    VirtualKeyboard keyboard{trace};
    VirtualLocation location{trace, runLoop};
    VirtualLoginItem loginItem{trace};
    VirtualFilter filter{trace};
    VirtualWorkspace workspace{trace, displays};
    VirtualNotifications notifications{trace, runLoop};
    VirtualUrlSession urlSession{trace};
    VirtualUpdater updater{trace};
    VirtualOverlayWindows overlayWindows{trace, runLoop, displays};
    VirtualStatusBar statusBar{trace};
    VirtualPopover popover{trace};
    VirtualAppWindows appWindows{trace};
    VirtualApplication application{trace, runLoop};

    Desktop ports{.bundle = bundle,
                  .runLoop = runLoop,
                  .notificationCenter = notificationCenter,
                  .userDefaults = userDefaults,
                  .uuidSource = uuidSource,
                  .displays = displays,
                  .gammaOutput = displays,
                  .backlight = displays,
                  .keyEvents = keyboard,
                  .locationManager = location,
                  .loginItem = loginItem,
                  .dynamicLibraries = filter,
                  .displayFilter = filter,
                  .workspace = workspace,
                  .userNotificationCenter = notifications,
                  .urlSession = urlSession,
                  .updater = updater,
                  .overlayWindows = overlayWindows,
                  .statusBar = statusBar,
                  .popover = popover,
                  .appWindows = appWindows,
                  .application = application};
};

} // namespace nocta
