#include "app/AppDelegate.h"

#include <iostream>

namespace nocta {

namespace {
constexpr double popoverWidth = 300;  // points
constexpr double popoverHeight = 280; // points

constexpr AppWindows::Style onboardingStyle = {.title = "Welcome to Nocta",
                                               .width = 500,
                                               .height = 580,
                                               .styleMask =
                                                   AppWindows::titled | AppWindows::closable,
                                               .level = AppWindows::floatingLevel};
} // namespace

// The order of the members determines the order in which the services are created.
AppDelegate::AppDelegate(SharedInstances& instances, Views& views)
    : desktop_(instances.desktop()), views_(views), settingsManager_(instances.settingsManager()),
      gammaController_(instances.gammaController()),
      brightnessController_(instances.brightnessController()),
      grayscaleService_(instances.grayscaleService()), breakTimer_(instances.breakTimer()),
      breakOverlayController_(breakTimer_, desktop_.overlayWindows, desktop_.application, views,
                              desktop_.notificationCenter, desktop_.runLoop),
      colorTemperatureService_(instances.colorTemperatureService()),
      displayService_(instances.displayService()), locationService_(instances.locationService()),
      meetingDetectorService_(instances.meetingDetectorService()),
      notificationService_(instances.notificationService()),
      scheduleService_(instances.scheduleService()),
      shortcutsManager_(instances.shortcutsManager()),
      launchAtLoginService_(instances.launchAtLoginService()),
      brightnessApplier_(instances.brightnessApplier()),
      appMonitorService_(instances.appMonitorService()), windows_(desktop_, views),
      closeOnboarding_(desktop_.runLoop, [this] { leaveOnboarding(); }) {}

void AppDelegate::applicationDidFinishLaunching() {
    startUpdater();
    makeStatusItem();
    makePopover();
    startServices();
    if (settingsManager_.isFirstLaunch.get()) {
        showOnboardingWindow();
    }
}

void AppDelegate::applicationDidReopen() {
    if (breakOverlayController_.isShowing.get()) {
        breakOverlayController_.orderFront(); // the covers would hide any other window
    } else if (onboardingWindow_ != nullptr) {
        onboardingWindow_->makeKeyAndOrderFront();
    } else if (popover_ != nullptr && !popover_->isShown()) {
        showPopover();
    }
}

void AppDelegate::applicationWillTerminate() {
    breakTimer_.stop();
    desktop_.gammaOutput.displayRestoreColorSyncSettings();
    gammaController_.clearRecords();
    desktop_.userDefaults.synchronize();
}

void AppDelegate::togglePopover() {
    if (popover_ != nullptr && popover_->isShown()) {
        popover_->close();
    } else {
        showPopover();
    }
}

void AppDelegate::updaterDidFinishUpdateCycle(const std::optional<std::string>& error) {
    if (error) {
        std::cerr << "Sparkle update check failed: " << *error << std::endl;
    }
}

void AppDelegate::makeStatusItem() {
    statusItem_ = desktop_.statusBar.statusItem();
    if (statusItem_ == nullptr) {
        return;
    }
    drawStatusItemIcon(settingsManager_.menuBarIcon.get());
    statusItem_->setAction([this] { togglePopover(); });
    statusItem_->setMenu(views_.makeStatusMenu([this] { showPreferencesWindow(); }));
}

void AppDelegate::makePopover() {
    popover_ = &desktop_.popover;
    popover_->setContentSize(popoverWidth, popoverHeight);
    popover_->setBehavior(PopoverBehavior::transient);
    popover_->setAnimates(true);
}

void AppDelegate::startServices() {
    if (servicesStarted_) {
        return;
    }
    servicesStarted_ = true;

    displayService_.refreshDisplays();
    displayService_.startObserving(desktop_.notificationCenter);
    gammaController_.start(desktop_.notificationCenter);
    brightnessController_.probe();
    brightnessController_.startKeyboardMonitoring();
    scheduleService_.start();
    if (settingsManager_.autoWarmthEnabled.get()) {
        colorTemperatureService_.startAutomaticMode();
    }
    meetingDetectorService_.startObserving();
    meetingDetectorService_.startPolling();
    meetingDetectorService_.checkFrontmostApplication();
    shortcutsManager_.startMonitoring();
    appMonitorService_.startMonitoring();
    appMonitorService_.frontmostApp.set(desktop_.workspace.frontmostApplication());
    appMonitorService_.updateFullscreen();
    notificationService_.requestAuthorization();
    if (settingsManager_.breakTimerEnabled.get()) {
        breakTimer_.start();
    }

    // First dim immediately, with the formula for the lower half of the range. The applier then
    // sets the backlight and limits the dimming.
    const auto brightness = settingsManager_.unifiedBrightness.get();
    gammaController_.setDimming(brightness < 0.5 ? static_cast<float>(1 - 2 * brightness) : 0.0F);
    brightnessApplier_.apply(brightness);
    if (!settingsManager_.autoWarmthEnabled.get()) {
        colorTemperatureService_.setWarmth(settingsManager_.warmthLevel.get());
    }
    if (settingsManager_.grayscaleEnabled.get()) {
        grayscaleService_.enable();
    }

    subscribeToSettings();
}

void AppDelegate::subscribeToSettings() {
    cancellables_.push_back(settingsManager_.unifiedBrightness.subscribe(
        [this](double brightness) { brightnessApplier_.apply(brightness); }));
    cancellables_.push_back(settingsManager_.grayscaleEnabled.subscribe(
        [this](bool on) { grayscaleService_.setGrayscale(on); }));
    cancellables_.push_back(settingsManager_.menuBarIcon.subscribe(
        [this](MenuBarIcon icon) { drawStatusItemIcon(icon); }));
    cancellables_.push_back(settingsManager_.breakTimerEnabled.subscribe([this](bool enabled) {
        if (enabled) {
            breakTimer_.start();
        } else {
            breakTimer_.stop();
        }
    }));
    cancellables_.push_back(settingsManager_.locationEnabled.subscribe([this](bool enabled) {
        if (enabled) {
            locationService_.locationManager().requestWhenInUseAuthorization();
        }
    }));
}

void AppDelegate::drawStatusItemIcon(MenuBarIcon icon) {
    if (statusItem_ != nullptr) {
        statusItem_->setImage(rawValue(icon), "Nocta");
    }
}

void AppDelegate::showPopover() {
    if (statusItem_ == nullptr || popover_ == nullptr) {
        return;
    }
    popover_->setContentView(views_.makePopoverContentView([this] { showPreferencesWindow(); }));
    popover_->show(*statusItem_);
}

/// If the user closes the window before the last step, it is shown again on the next launch.
void AppDelegate::showOnboardingWindow() {
    onboardingWindow_ = desktop_.appWindows.makeWindow(
        onboardingStyle, views_.makeOnboardingView([this] { completeOnboarding(); }),
        [this] { leaveOnboarding(); });
    onboardingWindow_->makeKeyAndOrderFront();
    desktop_.application.activateIgnoringOtherApps();
}

void AppDelegate::completeOnboarding() {
    closeOnboarding_.request(); // deferred, because a button in that window calls this function
    settingsManager_.isFirstLaunch.set(false);
}

/// Without a status bar, the popover opens, because otherwise the user would not see that the
/// program is running.
void AppDelegate::leaveOnboarding() {
    onboardingWindow_.reset();
    if (!desktop_.statusBar.isAvailable()) {
        showPopover();
    }
}

/// If the updater cannot start, the program runs without it.
void AppDelegate::startUpdater() {
    windows_.followUpdater();
    desktop_.updater.startUpdater(updaterDidFinishUpdateCycle);
}

} // namespace nocta
