#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>

namespace {

namespace fs = std::filesystem;

const fs::path root = NOCTA_SOURCE_DIR "/src";

/// A comment can name what is not called.
std::string withoutComments(const fs::path& file) {
    std::ifstream input(file);
    const std::string text{std::istreambuf_iterator<char>(input), {}};
    static const std::regex comment(R"(//[^\n]*|/\*[^*]*\*+(?:[^/*][^*]*\*+)*/)");
    return std::regex_replace(text, comment, "");
}

std::string codeIn(const fs::path& folder) {
    std::string code;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            code += withoutComments(entry.path());
        }
    }
    return code;
}

/// A function, constant, class or property stands there as a word of its own. The parts of a
/// selector follow each other closely.
std::regex patternOf(const std::string& name) {
    const auto pattern = R"(\b)" + std::regex_replace(name, std::regex(":"), ":[^]{0,500}?");
    return std::regex(name.back() == ':' ? pattern : pattern + R"(\b)");
}

// What the services mean on macOS, by the names that its frameworks give it.
const char* const nativeNames[] = {
    // displays
    "CGGetActiveDisplayList", "CGDisplayBounds", "CGDisplayIsMain", "CGDisplayIsBuiltin",
    "CGDisplayCopyDisplayMode", "CGDisplayModeGetWidth", "CGDisplayModeGetHeight",
    "CGDisplayModeRelease", "NSApplicationDidChangeScreenParametersNotification",
    // gamma
    "CGSetDisplayTransferByTable", "CGDisplayRestoreColorSyncSettings",
    // backlight
    "DisplayServicesGetBrightness", "DisplayServicesSetBrightness",
    // keys
    "addGlobalMonitorForEventsMatchingMask:handler:", "NSEventMaskSystemDefined",
    "removeMonitor:", "subtype", "data1", "CGEventTapCreate", "kCGSessionEventTap",
    "kCGHeadInsertEventTap", "kCGEventTapOptionDefault", "kCGEventKeyDown", "CGEventTapEnable",
    "CGEventGetIntegerValueField", "kCGKeyboardEventKeycode", "CFMachPortCreateRunLoopSource",
    "CFRunLoopAddSource", "kCFRunLoopCommonModes",
    // grayscale
    "dlopen", "RTLD_NOW", "dlsym", "dlclose", "MADisplayFilterPrefSetType",
    "MADisplayFilterPrefSetCategoryEnabled", "MADisplayFilterPrefGetType",
    "MADisplayFilterPrefGetCategoryEnabled",
    // workspace and windows
    "NSWorkspace", "NSWorkspaceDidActivateApplicationNotification", "NSWorkspaceApplicationKey",
    "NSRunningApplication", "frontmostApplication", "bundleIdentifier", "localizedName",
    "CGWindowListCopyWindowInfo", "kCGWindowListOptionOnScreenOnly", "kCGNullWindowID",
    "kCGWindowBounds", "Width", "Height", "mainScreen", "NSWindowDidEnterFullScreenNotification",
    "NSWindowDidExitFullScreenNotification", "accessibilityDisplayShouldReduceMotion",
    // location
    "CLLocationManager", "desiredAccuracy", "kCLLocationAccuracyKilometer", "authorizationStatus",
    "requestWhenInUseAuthorization", "startUpdatingLocation", "stopUpdatingLocation",
    "locationManager:didUpdateLocations:", "locationManager:didFailWithError:",
    "locationManagerDidChangeAuthorization:",
    // login item
    "SMAppService", "mainAppService", "registerAndReturnError:", "unregisterAndReturnError:",
    // notifications
    "UNUserNotificationCenter", "currentNotificationCenter",
    "requestAuthorizationWithOptions:completionHandler:", "setNotificationCategories:",
    "setDelegate:", "actionWithIdentifier:title:options:",
    "categoryWithIdentifier:actions:intentIdentifiers:options:",
    "userNotificationCenter:willPresentNotification:withCompletionHandler:",
    "userNotificationCenter:didReceiveNotificationResponse:withCompletionHandler:",
    // defaults
    "NSUserDefaults", "standardUserDefaults", "registerDefaults:", "doubleForKey:", "boolForKey:",
    "integerForKey:", "stringForKey:", "dataForKey:", "setDouble:forKey:", "setBool:forKey:",
    "setInteger:forKey:", "setObject:forKey:", "removeObjectForKey:", "synchronize",
    // loading
    "NSURLSession", "sharedSession", "dataTaskWithRequest:completionHandler:", "resume",
    "NSURLRequestUseProtocolCachePolicy", "HTTPMethod", "setValue:forHTTPHeaderField:", "HTTPBody",
    // updates
    "SPUStandardUpdaterController",
    "initWithStartingUpdater:updaterDelegate:userDriverDelegate:", "SPUUpdater",
    "startUpdater:", "canCheckForUpdates", "automaticallyChecksForUpdates",
    "automaticallyDownloadsUpdates",
    "setAutomaticallyChecksForUpdates:", "setAutomaticallyDownloadsUpdates:", "checkForUpdates:",
    "updater:didFinishUpdateCycleForUpdateCheck:error:", "os_log_error",
    // status item and popover
    "NSStatusItem", "NSStatusBar", "statusItemWithLength:", "NSVariableStatusItemLength",
    "imageWithSystemSymbolName:accessibilityDescription:", "setTemplate:", "togglePopover:",
    "NSPopover", "NSPopoverBehaviorTransient", "animates", "contentSize", "contentViewController",
    "showRelativeToRect:ofView:preferredEdge:", "NSRectEdgeMinY", "makeKeyWindow", "performClose:",
    // covers
    "HostingOverlayWindow", "canBecomeKeyWindow", "canBecomeMainWindow", "NSScreen", "screens",
    "initWithContentRect:styleMask:backing:defer:", "NSWindowStyleMaskBorderless",
    "NSBackingStoreBuffered", "level", "opaque", "backgroundColor", "clearColor",
    "ignoresMouseEvents", "collectionBehavior", "hasShadow", "contentView", "alphaValue",
    "makeKeyAndOrderFront:", "orderOut:", "NSAnimationContext",
    "runAnimationGroup:completionHandler:", "CAMediaTimingFunction",
    "functionWithName:", "kCAMediaTimingFunctionEaseIn", "kCAMediaTimingFunctionEaseInEaseOut",
    "addLocalMonitorForEventsMatchingMask:handler:", "NSEventMaskKeyDown", "keyCode",
    // the program
    "applicationDidFinishLaunching:", "applicationWillTerminate:", "activateIgnoringOtherApps:",
    "terminate:", "center", "releasedWhenClosed", "title"};

TEST(NativeCalls, EveryOneIsMadeByItsName) {
    const auto code = codeIn(root / "backends/macos");
    for (const std::string name : nativeNames) {
        EXPECT_TRUE(std::regex_search(code, patternOf(name))) << name;
    }
}

TEST(NativeCalls, AreMadeNowhereElse) {
    const std::regex call(
        R"(\b(?:CG|NS|CL|UN|SM|SPU|MADisplayFilter|DisplayServices)[A-Z]\w+\s*[(*.\]:])");
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        if (!entry.is_regular_file() ||
            entry.path().generic_string().find("/backends/macos/") != std::string::npos) {
            continue;
        }
        const auto code = withoutComments(entry.path());
        std::smatch match;
        EXPECT_FALSE(std::regex_search(code, match, call)) << entry.path() << ": " << match.str();
    }
}

} // namespace
