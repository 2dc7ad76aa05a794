#pragma once

#include "backends/macos/NativeCall.h"

/// The same for the status item, the windows and the program itself.
inline constexpr NativeCall nativeShellCalls[] = {
    // status item and popover
    {"shell/MacStatusBar.h",
     "[NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength];"},
    {"shell/MacStatusBar.h", "[NSStatusBar.systemStatusBar removeStatusItem:item_];"},
    {"shell/MacStatusBar.h", "item_.button.target = target_;"},
    {"shell/MacStatusBar.h", "item_.button.action = @selector(togglePopover:);"},
    {"shell/MacStatusBar.h", "[NSImage imageWithSystemSymbolName:nsString(symbolName)"
                             "accessibilityDescription:nsString(accessibilityDescription)];"},
    {"shell/MacStatusBar.h", "[image setTemplate:YES]; item_.button.image = image;"},
    {"shell/MacStatusBar.mm", "- (void)togglePopover:(id)sender { if (action) { action(); } }"},
    {"shell/MacPopover.h", "NSPopover* popover_ = [[NSPopover alloc] init];"},
    {"shell/MacPopover.h", "contentSize_ = NSMakeSize(width, height);"},
    {"shell/MacPopover.h", "popover_.behavior = behavior == PopoverBehavior::transient"
                           "? NSPopoverBehaviorTransient : NSPopoverBehaviorApplicationDefined;"},
    {"shell/MacPopover.h", "popover_.animates = animates;"},
    {"shell/MacPopover.h", "popover_.contentViewController = nil;"},
    {"shell/MacPopover.h", "controller.view = content_->view();"
                           "popover_.contentViewController = controller; fitContent();"},
    {"shell/MacPopover.h", "content_->contentChanged = [this] { fitContent(); };"},
    {"shell/MacPopover.h", "popover_.appearance = NSApp.effectiveAppearance;"
                           "popover_.contentSize = content_->fittingSize();"},
    {"shell/MacPopover.h", "fitContent(); [popover_ showRelativeToRect:button.bounds ofView:button"
                           "preferredEdge:NSRectEdgeMinY];"
                           "[content_->view().window makeKeyWindow];"},
    {"shell/MacPopover.h", "[popover_ performClose:nil];"},
    {"shell/MacPopover.h", "return popover_.shown;"},
    {"shell/MacPopover.h", "~MacPopover() override { [popover_ close]; }"},
    {"shell/MacPopover.h",
     "observe(NSNotificationCenter.defaultCenter, NSWindowDidBecomeKeyNotification, nil,"
     "^(NSNotification* notification) { if (content_ != nullptr &&"
     "notification.object != item && notification.object != content_->view().window) { close(); } "
     "});"},
    {"shell/MacPopover.h",
     "[NSEvent addGlobalMonitorForEventsMatchingMask:NSEventMaskLeftMouseDown |"
     "NSEventMaskRightMouseDown | NSEventMaskOtherMouseDown"
     "handler:^(NSEvent*) { if (!isOnItem(NSEvent.mouseLocation, item)) { close(); } }];"},
    {"shell/MacPopover.h", "watch(button.window);"},
    {"shell/MacPopover.h", "NSRect area = item.frame; if (NSScreen* const screen = item.screen) {"
                           "area.size.height = NSMaxY(screen.frame) - NSMinY(area); }"
                           "return NSMouseInRect(mouse, area, NO);"},
    {"shell/MacPopover.h", "[NSEvent removeMonitor:monitor];"},
    {"shell/MacPopover.h", "observe(NSNotificationCenter.defaultCenter,"
                           "NSPopoverDidCloseNotification, popover_,"},
    {"shell/MacPopover.h", "didBecomeKey_.cancel(); clicks_.cancel();"},

    // covers
    {"shell/MacOverlayWindows.mm", "@implementation HostingOverlayWindow"
                                   "- (BOOL)canBecomeKeyWindow { return YES; }"
                                   "- (BOOL)canBecomeMainWindow { return NO; }"
                                   "- (BOOL)worksWhenModal { return YES; }"},
    {"shell/MacOverlayWindows.h",
     "[[HostingOverlayWindow alloc] initWithContentRect:NSMakeRect(frame.x, frame.y, frame.width,"
     "frame.height) styleMask:NSWindowStyleMaskBorderless backing:NSBackingStoreBuffered"
     "defer:NO]"},
    {"shell/MacOverlayWindows.h", "window_.releasedWhenClosed = NO;"},
    {"shell/MacOverlayWindows.h", "window_.level = static_cast<NSWindowLevel>(style.level);"},
    {"shell/MacOverlayWindows.h", "window_.opaque = NO;"},
    {"shell/MacOverlayWindows.h", "window_.backgroundColor = NSColor.clearColor;"},
    {"shell/MacOverlayWindows.h", "window_.ignoresMouseEvents = NO;"},
    {"shell/MacOverlayWindows.h", "window_.collectionBehavior = style.collectionBehavior;"},
    {"shell/MacOverlayWindows.h", "window_.hasShadow = NO;"},
    {"shell/MacOverlayWindows.h", "window_.contentView = content_.view();"},
    {"shell/MacOverlayWindows.h", "window_.alphaValue = 0;"},
    {"shell/MacOverlayWindows.h", "~MacOverlayWindow() override { orderOut(); [window_ close]; }"},
    {"shell/MacOverlayWindows.h", "if (!std::exchange(isShown_, true)) {"
                                  "previousApplication_.coverComes(); }"
                                  "[window_ makeKeyAndOrderFront:nil];"},
    {"shell/MacOverlayWindows.h", "[window_ orderOut:nil]; if (std::exchange(isShown_, false)) {"
                                  "previousApplication_.coverGoes(); }"},
    {"shell/MacOverlayWindows.h",
     "[NSAnimationContext runAnimationGroup:^(NSAnimationContext* context) {"
     "context.duration = std::chrono::duration<double>(duration).count();"
     "context.timingFunction = [CAMediaTimingFunction functionWithName:name];"
     "window.animator.alphaValue = target; } completionHandler:^{"},
    {"shell/PreviousApplication.h", "remember(NSWorkspace.sharedWorkspace.frontmostApplication);"},
    {"shell/PreviousApplication.h",
     "if (application.activationPolicy == NSApplicationActivationPolicyRegular) {"
     "application_ = application; }"},
    {"shell/PreviousApplication.h", "if (NSApp.modalWindow != nil) { return true; }"},
    {"shell/PreviousApplication.h",
     "observe(NSNotificationCenter.defaultCenter, NSWindowDidResignKeyNotification, nil,"
     "^(NSNotification*) { checkLater(); });"},
    {"shell/PreviousApplication.h",
     "if (covers_++ == 0) { windowMayKeepKeyboard_ = NSApp.active || !hasWindow(); }"},
    {"shell/PreviousApplication.h",
     "if (--covers_ == 0 && !(windowMayKeepKeyboard_ && hasWindow())) { activate(); }"},
    {"shell/PreviousApplication.h",
     "check_.start(runLoop_, nextWindowTime, Repeat::no, [this] {"
     "if (covers_ == 0 && NSApp.keyWindow == nil && !hasWindow()) { activate(); } });"},
    {"shell/PreviousApplication.h",
     "if (!NSApp.active || application_ == nil || application_.terminated) { return; }"
     "if (@available(macOS 14.0, *)) {"
     "[NSApp yieldActivationToApplication:application_]; }"
     "[application_ activateWithOptions:0];"},
    {"shell/PreviousApplication.h", "for (NSWindow* window in NSApp.windows) {"
                                    "if (window.visible && window.canBecomeMainWindow) {"},
    {"shell/PreviousApplication.h",
     "observe(NSWorkspace.sharedWorkspace.notificationCenter,"
     "NSWorkspaceDidActivateApplicationNotification, nil, ^(NSNotification* notification) {"
     "remember(notification.userInfo[NSWorkspaceApplicationKey]); });"},
    {"shell/PreviousApplication.h",
     "observe(NSNotificationCenter.defaultCenter, NSWindowWillCloseNotification, nil,"
     "^(NSNotification*) { checkLater(); });"},

    {"shell/MacOverlayWindows.h", "curve == TimingFunction::easeIn ? kCAMediaTimingFunctionEaseIn"
                                  ": kCAMediaTimingFunctionEaseInEaseOut;"},
    {"shell/MacOverlayWindows.h", "for (NSScreen* screen in NSScreen.screens) {"},
    {"shell/MacOverlayWindows.h", "screen.deviceDescription[@\"NSScreenNumber\"];"},
    {"shell/MacOverlayWindows.h", "number.unsignedIntValue"},
    {"shell/MacOverlayWindows.h", "const NSRect frame = screen.frame;"},
    {"shell/MacOverlayWindows.h",
     ".frame = {frame.origin.x, frame.origin.y, frame.size.width, frame.size.height}"},
    {"shell/MacOverlayWindows.h",
     "sinceKey = CGEventSourceSecondsSinceLastEventType(kCGEventSourceStateCombinedSessionState,"
     "kCGEventKeyDown); typing->press(uptime(shownSince - std::min(sinceKey, shownSince)));"},
    {"shell/MacOverlayWindows.h",
     "[NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown"
     "handler:^NSEvent*(NSEvent* event) { typing->press(uptime(event.timestamp));"
     "if (event.ARepeat || typing->isFromBefore(uptime(shownSince))) { return nil; }"
     "return handler({event.keyCode}) ? nil : event; }];"},
    {"shell/MacOverlayWindows.h", "[NSEvent removeMonitor:monitor];"},

    // windows
    {"shell/MacAppWindows.h",
     "[[NSWindow alloc] initWithContentRect:NSZeroRect styleMask:style.styleMask"
     "backing:NSBackingStoreBuffered defer:NO]"},
    {"shell/MacAppWindows.h", "window_.releasedWhenClosed = NO;"},
    {"shell/MacAppWindows.h", "window_.title = translated(style.title);"},
    {"shell/MacAppWindows.h", "window_.level = static_cast<NSWindowLevel>(style.level);"},
    {"shell/MacAppWindows.h", "window_.contentView = content_.view();"
                              "[window_ setContentSize:content_.fittingSize()];"
                              "[window_ center];"},
    {"shell/MacAppWindows.h",
     "observe(NSNotificationCenter.defaultCenter, NSWindowWillCloseNotification, window_,"
     "^(NSNotification*) { close_.request(); });"},
    {"shell/MacAppWindows.h", "willClose_.cancel(); [window_ close];"},
    {"shell/MacAppWindows.h", "if (window_.miniaturized) { [window_ deminiaturize:nil]; }"
                              "[window_ makeKeyAndOrderFront:nil];"},
    {"shell/MacAppWindows.h", "[window_ orderFrontRegardless];"},
    {"shell/MacAppWindows.h",
     "[window_ frameRectForContentRect:NSMakeRect(0, 0, size.width, size.height)];"
     "if (NSEqualSizes(frame.size, old.size)) { return; }"},
    {"shell/MacAppWindows.h", "NSMakePoint(old.origin.x, NSMaxY(old) - frame.size.height);"},
    {"shell/MacAppWindows.h", "[window_ setFrame:frame display:YES];"},
    {"shell/MacAppWindows.h", "static_assert(AppWindows::titled == NSWindowStyleMaskTitled);"},
    {"shell/MacAppWindows.h", "static_assert(AppWindows::closable == NSWindowStyleMaskClosable);"},
    {"shell/MacAppWindows.h",
     "static_assert(AppWindows::miniaturizable == NSWindowStyleMaskMiniaturizable);"},
    {"shell/HostedView.h", "[[NoctaContainerView alloc]"
                           "initWithFrame:NSMakeRect(0, 0, size.width, size.height)];"},
    {"shell/HostedView.h", "[container_ addSubview:qtView()];"},
    {"shell/HostedView.h", "widget_.show(); qtView().frame = container_.bounds;"},
    {"shell/HostedView.h", "widget_.setWindowFlags(Qt::SubWindow);"},
    {"shell/HostedView.h", "[qtView() removeFromSuperview];"},
    {"shell/HostedView.h", "[container_.window makeFirstResponder:qtView()];"},
    {"shell/HostedView.h", "(__bridge NSView*)reinterpret_cast<void*>(widget_.winId());"},
    {"shell/HostedView.mm", "- (void)setFrameSize:(NSSize)size { [super setFrameSize:size];"
                            "for (NSView* view in self.subviews) { view.frame = self.bounds; } }"},

    // the program
    {"shell/MacApplication.h", "NSApplication.sharedApplication.delegate = delegate_;"},
    {"shell/MacApplication.h",
     "[NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory];"},
    {"shell/MacApplication.h",
     "qputenv(\"QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM\", \"1\");"},
    {"shell/MacApplication.h", "{SIGINT, SIGTERM, SIGHUP}"},
    {"shell/MacApplication.h", "std::signal(number, SIG_IGN);"},
    {"shell/MacApplication.h",
     "dispatch_source_create(DISPATCH_SOURCE_TYPE_SIGNAL, static_cast<uintptr_t>(number), 0,"
     "dispatch_get_main_queue())"},
    {"shell/MacApplication.h",
     "dispatch_source_set_event_handler(signals_.back(), ^{ terminate(); });"},
    {"shell/MacApplication.h", "dispatch_resume(signals_.back());"},
    {"shell/MacApplication.h", "NSApp.mainMenu = makeMainMenu(delegate_);"},
    {"shell/MacApplication.h", "QApplication::exec();"},
    {"shell/MacApplication.h", "[NSApp activateIgnoringOtherApps:YES];"},
    {"shell/MacApplication.h", "[NSApp terminate:nil];"},
    {"shell/MacApplication.h",
     "id<NSObject> activity_ = [NSProcessInfo.processInfo"
     "beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep"},
    {"shell/MacApplication.mm",
     "- (void)applicationDidFinishLaunching:(NSNotification*)notification {"
     "if (receiver != nullptr) { receiver->applicationDidFinishLaunching(); } }"},
    {"shell/MacApplication.mm",
     "- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender"
     "hasVisibleWindows:(BOOL)hasVisibleWindows {"
     "if (receiver != nullptr) { receiver->applicationDidReopen(); } return NO;"},
    {"shell/MacApplication.mm",
     "- (void)showPreferencesWindow:(id)sender {"
     "if (receiver != nullptr) { receiver->showPreferencesWindow(); } }"},
    {"shell/MacApplication.mm",
     "- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)sender {"
     "return NSTerminateNow; }"},
    {"shell/MacApplication.mm",
     "- (void)applicationWillTerminate:(NSNotification*)notification {"
     "if (nocta::ApplicationDelegate* const told = std::exchange(receiver, nullptr)) {"
     "told->applicationWillTerminate(); } }"},
    {"shell/MainMenu.h", "addItemWithTitle:@\"Settings…\" action:@selector(showPreferencesWindow:)"
                         "keyEquivalent:@\",\"].target = target;"},
    {"shell/MainMenu.h",
     "addItemWithTitle:@\"Quit Nocta\" action:@selector(terminate:) keyEquivalent:@\"q\"];"},
    {"shell/MainMenu.h",
     "addItemWithTitle:@\"Close\" action:@selector(performClose:) keyEquivalent:@\"w\"];"},
    {"shell/MainMenu.h", "item.submenu = menu; [mainMenu addItem:item];"},
};
