#pragma once

#include "backends/macos/NativeCall.h"

/// What the services mean on macOS, by the names that its frameworks give it. Each is written in
/// its file exactly once.
inline constexpr NativeCall nativeServiceCalls[] = {
    // displays
    {"CgDisplays.h", "CGGetActiveDisplayList(static_cast<std::uint32_t>(ids.size()),"
                     "ids.empty() ? nullptr : ids.data(), &count);"},
    {"CgDisplays.h", "error != kCGErrorSuccess"},
    {"CgDisplays.h", "const CGRect bounds = CGDisplayBounds(display);"},
    {"CgDisplays.h", "return {bounds.origin.x, bounds.origin.y, bounds.size.width,"
                     "bounds.size.height};"},
    {"CgDisplays.h", "return CGDisplayIsMain(display) != 0;"},
    {"CgDisplays.h", "return CGDisplayIsBuiltin(display) != 0;"},
    {"CgDisplays.h", "const CGDisplayModeRef mode = CGDisplayCopyDisplayMode(display);"},
    {"CgDisplays.h", "{static_cast<std::uint32_t>(CGDisplayModeGetWidth(mode)),"
                     "static_cast<std::uint32_t>(CGDisplayModeGetHeight(mode))};"},
    {"CgDisplays.h", "CGDisplayModeRelease(mode);"},
    {"CgDisplays.h", "passOn(NSApplicationDidChangeScreenParametersNotification,"
                     "notificationCenter, didChangeScreenParametersNotification)"},

    // gamma
    {"CgGammaOutput.h",
     "CGSetDisplayTransferByTable(display, static_cast<std::uint32_t>(red.size()),"
     "red.data(), green.data(), blue.data());"},
    {"CgGammaOutput.h", "error == kCGErrorSuccess"},
    {"CgGammaOutput.h", "CGDisplayRestoreColorSyncSettings(); written_.clear();"},
    {"CgGammaOutput.h", "written_.keep(display, red, green, blue);"},
    {"CgGammaOutput.h", "CGGetOnlineDisplayList(0, nullptr, &count)"},
    {"CgGammaOutput.h", "CGGetOnlineDisplayList(count, online.data(), &count)"},
    {"CgGammaOutput.h", "online.resize(count); written_.keepOnly(online);"},
    {"CgGammaOutput.h", "forgetGoneDisplays(); written_.forEach(write);"},
    {"CgGammaOutput.h", "observe(NSNotificationCenter.defaultCenter,"
                        "NSApplicationDidChangeScreenParametersNotification, nil,"
                        "^(NSNotification*) { sendAgain(); });"},
    {"CgGammaOutput.h", "observe(NSWorkspace.sharedWorkspace.notificationCenter,"
                        "NSWorkspaceDidWakeNotification, nil,"
                        "^(NSNotification*) { sendAfterWake(); });"},
    {"CgGammaOutput.h", "observe(NSWorkspace.sharedWorkspace.notificationCenter,"
                        "NSWorkspaceScreensDidWakeNotification, nil,"
                        "^(NSNotification*) { sendAfterWake(); });"},
    {"CgGammaOutput.h",
     "sendAgain(); settling_.start(runLoop_, settlingInterval, Repeat::yes, [this, round = 0]()"
     "mutable { sendAgain(); if (++round == settlingRounds) { settling_.invalidate(); } });"},

    // backlight
    {"DisplayServicesBacklight.h",
     "dlopen(\"/System/Library/PrivateFrameworks/DisplayServices.framework/DisplayServices\","
     "RTLD_LAZY);"},
    {"DisplayServicesBacklight.h", "dlsym(framework_, name)"},
    {"DisplayServicesBacklight.h",
     "reinterpret_cast<GetBrightness>(symbol(\"DisplayServicesGetBrightness\"));"},
    {"DisplayServicesBacklight.h",
     "reinterpret_cast<SetBrightness>(symbol(\"DisplayServicesSetBrightness\"));"},
    {"DisplayServicesBacklight.h", "int (*)(std::uint32_t display, float* level);"},
    {"DisplayServicesBacklight.h", "int (*)(std::uint32_t display, float level);"},
    {"DisplayServicesBacklight.h", "getBrightness_(display, &level)"},
    {"DisplayServicesBacklight.h", "setBrightness_(display, level)"},

    // keys
    {"CgKeyEvents.h", "[NSEvent addGlobalMonitorForEventsMatchingMask:NSEventMaskSystemDefined"
                      "handler:^(NSEvent* event) { handler({event.subtype, event.data1}); }];"},
    {"CgKeyEvents.h", "[NSEvent removeMonitor:monitor];"},
    {"CgKeyEvents.h", "CGEventTapCreate(kCGSessionEventTap, kCGHeadInsertEventTap,"
                      "kCGEventTapOptionDefault, CGEventMaskBit(kCGEventKeyDown), keyDown,"
                      "tap.get());"},
    {"CgKeyEvents.h", "CFMachPortCreateRunLoopSource(kCFAllocatorDefault, tap->port, 0);"},
    {"CgKeyEvents.h", "CFRunLoopAddSource(CFRunLoopGetMain(), source, kCFRunLoopCommonModes);"},
    {"CgKeyEvents.h", "CFRelease(source); CGEventTapEnable(tap->port, true);"},
    {"CgKeyEvents.h",
     "case TapEvent::disabled: if (isAllowed()) { CGEventTapEnable(tap->port, true);"
     "} else { CFMachPortInvalidate(tap->port); } break;"},
    {"CgKeyEvents.h", "CGEventTapCreate(kCGSessionEventTap, kCGTailAppendEventTap,"
                      "kCGEventTapOptionDefault, CGEventMaskBit(kCGEventKeyDown), keyDown,"
                      "nullptr);"},
    {"CgKeyEvents.h", "if (probe == nullptr) { return false; } CFMachPortInvalidate(probe);"
                      "CFRelease(probe); return true;"},
    {"CgKeyEvents.h", "CFMachPortInvalidate(tap->port); CFRelease(tap->port);"},
    {"CgKeyEvents.h", "case TapEvent::keyDown: tap->handler({CGEventGetIntegerValueField(event,"
                      "kCGKeyboardEventKeycode)}); break;"},
    {"CgKeyEvents.h", "if (tap == nullptr) { return event; }"},
    {"CgKeyEvents.h", "static_assert(keyDownEventType == kCGEventKeyDown);"},
    {"CgKeyEvents.h",
     "static_assert(tapDisabledByTimeoutEventType == kCGEventTapDisabledByTimeout);"},
    {"CgKeyEvents.h",
     "static_assert(tapDisabledByUserInputEventType == kCGEventTapDisabledByUserInput);"},

    // grayscale
    {"SystemLibraries.h", "dlopen(std::string(path).c_str(), RTLD_NOW)"},
    {"SystemLibraries.h", "dlsym(reinterpret_cast<void*>(library), std::string(name).c_str())"},
    {"SystemLibraries.h", "dlclose(reinterpret_cast<void*>(library));"},
    {"MediaAccessibilityFilter.h",
     "[[gnu::weak]] void MADisplayFilterPrefSetType(std::int32_t category, std::int32_t type);"},
    {"MediaAccessibilityFilter.h",
     "[[gnu::weak]] void MADisplayFilterPrefSetCategoryEnabled(std::int32_t category,"
     "std::int32_t enabled);"},
    {"MediaAccessibilityFilter.h",
     "[[gnu::weak]] std::int32_t MADisplayFilterPrefGetType(std::int32_t category);"},
    {"MediaAccessibilityFilter.h",
     "[[gnu::weak]] bool MADisplayFilterPrefGetCategoryEnabled(std::int32_t category);"},
    {"MediaAccessibilityFilter.h", "if (MADisplayFilterPrefSetType != nullptr) {"
                                   "MADisplayFilterPrefSetType(category, type); }"},
    {"MediaAccessibilityFilter.h",
     "if (MADisplayFilterPrefSetCategoryEnabled != nullptr) {"
     "MADisplayFilterPrefSetCategoryEnabled(category, enabled ? 1 : 0); }"},
    {"MediaAccessibilityFilter.h", "return MADisplayFilterPrefGetType != nullptr ?"
                                   "MADisplayFilterPrefGetType(category) : 0;"},
    {"MediaAccessibilityFilter.h", "return MADisplayFilterPrefGetCategoryEnabled != nullptr &&"
                                   "MADisplayFilterPrefGetCategoryEnabled(category);"},

    // workspace and windows
    {"NsWorkspace.h", "observe(NSWorkspace.sharedWorkspace.notificationCenter,"
                      "NSWorkspaceDidActivateApplicationNotification, nil,"},
    {"NsWorkspace.h", "runningApplication(notification.userInfo[NSWorkspaceApplicationKey])"},
    {"NsWorkspace.h", "runningApplication(NSWorkspace.sharedWorkspace.frontmostApplication);"},
    {"NsWorkspace.h", "[object isKindOfClass:NSRunningApplication.class]"},
    {"NsWorkspace.h", "application.bundleIdentifier;"},
    {"NsWorkspace.h", "stdString(application.localizedName)"},
    {"NsWorkspace.h",
     "CGWindowListCopyWindowInfo(kCGWindowListOptionOnScreenOnly, kCGNullWindowID)"},
    {"NsWorkspace.h", "CFBridgingRelease("},
    {"NsWorkspace.h", "window[(__bridge NSString*)kCGWindowBounds];"},
    {"NsWorkspace.h", "windows.push_back({number(bounds[@\"Width\"]),"
                      "number(bounds[@\"Height\"])});"},
    {"NsWorkspace.h", "[object isKindOfClass:NSNumber.class]"},
    {"NsWorkspace.h", "std::optional([object doubleValue])"},
    {"NsWorkspace.h", "NSScreen* const screen = NSScreen.mainScreen;"},
    {"NsWorkspace.h", "const NSRect frame = screen.frame;"},
    {"NsWorkspace.h",
     "return Rect{frame.origin.x, frame.origin.y, frame.size.width, frame.size.height};"},
    {"NsWorkspace.h", "passOn(NSWindowDidEnterFullScreenNotification, notificationCenter,"
                      "windowDidEnterFullScreenNotification)"},
    {"NsWorkspace.h", "passOn(NSWindowDidExitFullScreenNotification, notificationCenter,"
                      "windowDidExitFullScreenNotification)"},
    {"NsWorkspace.h", "NSWorkspace.sharedWorkspace.accessibilityDisplayShouldReduceMotion;"},
    {"Observation.h", "[center addObserverForName:name object:object"
                      "queue:NSOperationQueue.mainQueue usingBlock:block];"},
    {"Observation.h", "[center removeObserver:token];"},
    {"Observation.h", "observe(NSNotificationCenter.defaultCenter, name, nil,"},

    // location
    {"CoreLocationManager.h", "CLLocationManager* manager_ = [[CLLocationManager alloc] init];"},
    {"CoreLocationManager.h", "manager_.desiredAccuracy = kCLLocationAccuracyKilometer;"},
    {"CoreLocationManager.h", "manager_.delegate = delegate != nullptr ? delegate_ : nil;"},
    {"CoreLocationManager.h", "nocta::authorizationStatus(manager_.authorizationStatus);"},
    {"CoreLocationManager.h", "[manager_ requestWhenInUseAuthorization];"},
    {"CoreLocationManager.h", "[manager_ startUpdatingLocation];"},
    {"CoreLocationManager.h", "[manager_ stopUpdatingLocation];"},
    {"CoreLocationManager.h",
     "static_assert(authorizationStatus(kCLAuthorizationStatusNotDetermined) =="
     "AuthorizationStatus::notDetermined);"},
    {"CoreLocationManager.h",
     "static_assert(authorizationStatus(kCLAuthorizationStatusRestricted) =="
     "AuthorizationStatus::restricted);"},
    {"CoreLocationManager.h", "static_assert(authorizationStatus(kCLAuthorizationStatusDenied) =="
                              "AuthorizationStatus::denied);"},
    {"CoreLocationManager.h",
     "static_assert(authorizationStatus(kCLAuthorizationStatusAuthorizedAlways) =="
     "AuthorizationStatus::authorized);"},
    {"CoreLocationManager.mm", "- (void)locationManager:(CLLocationManager*)manager"
                               "didUpdateLocations:(NSArray<CLLocation*>*)locations {"},
    {"CoreLocationManager.mm", "{location.coordinate.latitude, location.coordinate.longitude}"},
    {"CoreLocationManager.mm", "self.receiver->didUpdateLocations(places);"},
    {"CoreLocationManager.mm", "- (void)locationManager:(CLLocationManager*)manager"
                               "didFailWithError:(NSError*)error {"},
    {"CoreLocationManager.mm",
     "self.receiver->didFailWithError(nocta::stdString(error.localizedDescription));"},
    {"CoreLocationManager.mm",
     "- (void)locationManagerDidChangeAuthorization:(CLLocationManager*)manager {"},
    {"CoreLocationManager.mm", "self.receiver->didChangeAuthorization();"},

    // login item
    {"MainAppLoginItem.h", "loginItemStatus(SMAppService.mainAppService.status);"},
    {"MainAppLoginItem.h", "[SMAppService.mainAppService registerAndReturnError:&error];"
                           "return isDone || status() == Status::enabled ?"},
    {"MainAppLoginItem.h", "[SMAppService.mainAppService unregisterAndReturnError:&error];"
                           "return isDone || status() == Status::notRegistered ||"
                           "status() == Status::notFound ?"},
    {"MainAppLoginItem.h", "static_assert(loginItemStatus(SMAppServiceStatusNotRegistered) =="
                           "LoginItem::Status::notRegistered);"},
    {"MainAppLoginItem.h", "static_assert(loginItemStatus(SMAppServiceStatusEnabled) =="
                           "LoginItem::Status::enabled);"},
    {"MainAppLoginItem.h", "static_assert(loginItemStatus(SMAppServiceStatusRequiresApproval) =="
                           "LoginItem::Status::requiresApproval);"},
    {"MainAppLoginItem.h", "static_assert(loginItemStatus(SMAppServiceStatusNotFound) =="
                           "LoginItem::Status::notFound);"},

    // notifications
    {"UserNotifications.h", "NSBundle.mainBundle.bundleIdentifier != nil"
                            "? UNUserNotificationCenter.currentNotificationCenter : nil;"},
    {"UserNotifications.h", "if (center_ == nil) { runLoop.post([completionHandler] {"
                            "completionHandler(false, std::nullopt); }); return; }"},
    {"UserNotifications.h", "[center_ requestAuthorizationWithOptions:options"
                            "completionHandler:^(BOOL granted, NSError* error) {"},
    {"UserNotifications.h", "[UNNotificationAction"
                            "actionWithIdentifier:nsString(action.identifier)"
                            "title:translated(action.title)"
                            "options:UNNotificationActionOptionNone]"},
    {"UserNotifications.h", "[UNNotificationCategory"
                            "categoryWithIdentifier:nsString(category.identifier)"
                            "actions:actions intentIdentifiers:@[]"
                            "options:UNNotificationCategoryOptionNone]"},
    {"UserNotifications.h", "[center_ setNotificationCategories:set];"},
    {"UserNotifications.h", "[center_ setDelegate:delegate != nullptr ? delegate_ : nil];"},
    {"UserNotifications.h", "content.title = translated(notification.title);"},
    {"UserNotifications.h", "content.body = translated(notification.body);"},
    {"UserNotifications.h",
     "content.categoryIdentifier = nsString(notification.categoryIdentifier);"},
    {"UserNotifications.h", "content.sound = UNNotificationSound.defaultSound;"},
    {"UserNotifications.h", "[center_ addNotificationRequest:[UNNotificationRequest"
                            "requestWithIdentifier:NSUUID.UUID.UUIDString"
                            "content:content trigger:nil] withCompletionHandler:nil];"},
    {"UserNotifications.h", "static_assert(notificationSound == UNAuthorizationOptionSound);"},
    {"UserNotifications.h", "static_assert(notificationAlert == UNAuthorizationOptionAlert);"},
    {"UserNotifications.h",
     "static_assert(notificationSound == UNNotificationPresentationOptionSound);"},
    {"UserNotifications.h",
     "static_assert(notificationBanner == UNNotificationPresentationOptionBanner);"},
    {"UserNotifications.mm", "- (void)userNotificationCenter:(UNUserNotificationCenter*)center"
                             "willPresentNotification:(UNNotification*)notification"
                             "withCompletionHandler:(void (^)(UNNotificationPresentationOptions"
                             "options))completionHandler {"},
    {"UserNotifications.mm",
     "completionHandler(self.receiver != nullptr ? self.receiver->willPresentNotification() : 0);"},
    {"UserNotifications.mm", "- (void)userNotificationCenter:(UNUserNotificationCenter*)center"
                             "didReceiveNotificationResponse:(UNNotificationResponse*)response"
                             "withCompletionHandler:(void (^)(void))completionHandler {"},
    {"UserNotifications.mm",
     "self.receiver->didReceiveResponse(nocta::stdString(response.actionIdentifier),"
     "completionHandler);"},

    // defaults
    {"UserDefaultsStore.h", "NSUserDefaults* userDefaults_ = NSUserDefaults.standardUserDefaults;"},
    {"UserDefaultsStore.h", "[userDefaults_ registerDefaults:dictionary];"},
    {"UserDefaultsStore.h", "[userDefaults_ doubleForKey:nsString(key)];"},
    {"UserDefaultsStore.h", "[userDefaults_ boolForKey:nsString(key)];"},
    {"UserDefaultsStore.h", "[userDefaults_ integerForKey:nsString(key)];"},
    {"UserDefaultsStore.h", "[userDefaults_ stringForKey:nsString(key)];"},
    {"UserDefaultsStore.h", "[userDefaults_ dataForKey:nsString(key)];"},
    {"UserDefaultsStore.h", "[userDefaults_ setDouble:value forKey:nsString(key)];"},
    {"UserDefaultsStore.h", "[userDefaults_ setBool:value forKey:nsString(key)];"},
    {"UserDefaultsStore.h",
     "[userDefaults_ setInteger:static_cast<NSInteger>(value) forKey:nsString(key)];"},
    {"UserDefaultsStore.h", "[userDefaults_ setObject:nsString(value) forKey:nsString(key)];"},
    {"UserDefaultsStore.h", "[userDefaults_ setObject:nsData(value) forKey:nsString(key)];"},
    {"UserDefaultsStore.h", "[userDefaults_ removeObjectForKey:nsString(key)];"},
    {"UserDefaultsStore.h", "[userDefaults_ synchronize];"},

    // loading
    {"SharedUrlSession.h", "[NSURLSession.sharedSession dataTaskWithRequest:native"
                           "completionHandler:^(NSData*, NSURLResponse* response,"
                           "NSError* error) { finish(response, error); }];"},
    {"SharedUrlSession.h", "[task resume];"},
    {"SharedUrlSession.h", "[task cancel];"},
    {"SharedUrlSession.h", "[NSURL URLWithString:nsString(request.url)];"},
    {"SharedUrlSession.h", "[NSMutableURLRequest requestWithURL:url"
                           "cachePolicy:NSURLRequestUseProtocolCachePolicy"
                           "timeoutInterval:std::chrono::duration<double>(request.timeout)"
                           ".count()];"},
    {"SharedUrlSession.h", "native.HTTPMethod = nsString(request.method);"},
    {"SharedUrlSession.h", "[native setValue:nsString(value) forHTTPHeaderField:nsString(name)];"},
    {"SharedUrlSession.h", "native.HTTPBody = [NSData dataWithBytes:request.body.data()"
                           "length:request.body.size()];"},
    {"SharedUrlSession.h", "error == nil && [response isKindOfClass:NSHTTPURLResponse.class]"},
    {"SharedUrlSession.h", "((NSHTTPURLResponse*)response).statusCode"},
    {"SharedUrlSession.h", "{.error = stdString(reason.localizedDescription)}"},

    // updates
    {"MacUpdater.h", "[[SPUStandardUpdaterController alloc] initWithStartingUpdater:NO"
                     "updaterDelegate:delegate_ userDriverDelegate:delegate_];"},
    {"MacUpdater.h", "[controller_.updater startUpdater:&error]"},
    {"MacUpdater.h", "[controller_.updater addObserver:delegate_"
                     "forKeyPath:@\"canCheckForUpdates\""
                     "options:NSKeyValueObservingOptionInitial context:nullptr];"},
    {"MacUpdater.h", "[controller_.updater removeObserver:delegate_"
                     "forKeyPath:@\"canCheckForUpdates\"];"},
    {"MacUpdater.h", "return controller_.updater.automaticallyChecksForUpdates;"},
    {"MacUpdater.h", "[controller_.updater setAutomaticallyChecksForUpdates:checks];"},
    {"MacUpdater.h", "return controller_.updater.automaticallyDownloadsUpdates;"},
    {"MacUpdater.h", "[controller_.updater setAutomaticallyDownloadsUpdates:downloads];"},
    {"MacUpdater.h", "[controller_ checkForUpdates:nil];"},
    {"MacUpdater.h", "observe(NSNotificationCenter.defaultCenter, NSPopoverDidShowNotification,"
                     "nil, ^(NSNotification*) { if (delegate_->hasUpdateToShow) {"
                     "checkForUpdates(); } });"},
    {"MacUpdater.mm", "- (void)updater:(SPUUpdater*)source"
                      "didFinishUpdateCycleForUpdateCheck:(SPUUpdateCheck)updateCheck"
                      "error:(NSError*)error {"},
    {"MacUpdater.mm", "os_log_error(OS_LOG_DEFAULT, \"Sparkle update check failed: %{public}@\","
                      "error.localizedDescription);"},
    {"MacUpdater.mm", "didFinishUpdateCycle(std::nullopt);"},
    {"MacUpdater.mm", "updater->canCheckForUpdates.set(((SPUUpdater*)object).canCheckForUpdates);"},
    {"MacUpdater.mm", "- (BOOL)supportsGentleScheduledUpdateReminders { return YES; }"},
    {"MacUpdater.mm",
     "- (BOOL)standardUserDriverShouldHandleShowingScheduledUpdate:(SUAppcastItem*)update"
     "andInImmediateFocus:(BOOL)immediateFocus { return immediateFocus; }"},
    {"MacUpdater.mm", "- (void)standardUserDriverWillHandleShowingUpdate:(BOOL)handleShowingUpdate"
                      "forUpdate:(SUAppcastItem*)update state:(SPUUserUpdateState*)state {"
                      "hasUpdateToShow = !handleShowingUpdate; }"},
    {"MacUpdater.mm",
     "- (void)standardUserDriverDidReceiveUserAttentionForUpdate:(SUAppcastItem*)update {"
     "hasUpdateToShow = false; }"},
    {"MacUpdater.mm",
     "- (void)standardUserDriverWillFinishUpdateSession { hasUpdateToShow = false; }"},

    // run loop
    {"MainRunLoop.h", "clock_gettime_nsec_np(CLOCK_UPTIME_RAW)"},
    {"MainRunLoop.h",
     "[NSTimer timerWithTimeInterval:std::chrono::duration<double>(interval).count()"
     "repeats:repeat == Repeat::yes block:^(NSTimer*) {"},
    {"MainRunLoop.h", "[NSRunLoop.mainRunLoop addTimer:timer forMode:NSRunLoopCommonModes];"},
    {"MainRunLoop.h", "for (const auto& [id, timer] : timers_) { [timer invalidate]; }"},
    {"MainRunLoop.h", "[found->second invalidate];"},
    {"MainRunLoop.h", "CFRunLoopPerformBlock(CFRunLoopGetMain(), kCFRunLoopCommonModes, ^{"
                      "@autoreleasepool { action(); } });"},
    {"MainRunLoop.h", "CFRunLoopWakeUp(CFRunLoopGetMain());"},
    {"MacDesktop.mm", "[NSUUID.UUID getUUIDBytes:uuid.bytes.data()];"},
    {"MacDesktop.mm", "[NSRunningApplication runningApplicationsWithBundleIdentifier:identifier]"},
    {"MacDesktop.mm",
     "if (application.processIdentifier != getpid() &&"
     "application.finishedLaunching) {"
     "[NSWorkspace.sharedWorkspace openURL:application.bundleURL]; return true; }"},
};
