#include "breaks/MeetingDetectorService.h"

#include <algorithm>
#include <array>
#include <chrono>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr Duration pollInterval = 5s;

constexpr std::array<std::string_view, 10> meetingAppBundleIDs = {
    "us.zoom.xos",
    "com.google.Chrome",
    "com.microsoft.teams",
    "com.microsoft.teams2",
    "com.cisco.webexmeetingsapp",
    "com.webex.meetingmanager",
    "com.apple.FaceTime",
    "com.skype.skype",
    "com.tinyspeck.slackmacgap",
    "com.discord.Discord",
};

} // namespace

MeetingDetectorService::MeetingDetectorService(Workspace& workspace,
                                               NotificationCenter& notificationCenter,
                                               RunLoop& runLoop)
    : workspace_(workspace), notificationCenter_(notificationCenter), runLoop_(runLoop) {}

void MeetingDetectorService::startObserving() {
    observer_ = workspace_.observeDidActivateApplication(
        [this](const std::optional<RunningApplication>& application) { check(application); });
}

void MeetingDetectorService::startPolling() {
    pollTimer_.start(runLoop_, pollInterval, Repeat::yes, [this] { checkFrontmostApplication(); });
}

void MeetingDetectorService::checkFrontmostApplication() {
    check(workspace_.frontmostApplication());
}

void MeetingDetectorService::check(const std::optional<RunningApplication>& application) {
    if (!application || !application->bundleIdentifier) {
        return;
    }
    const auto isMeetingApp =
        std::ranges::find(meetingAppBundleIDs, *application->bundleIdentifier) !=
        meetingAppBundleIDs.end();
    if (isMeetingApp == isInMeeting.get()) {
        return;
    }
    isInMeeting.set(isMeetingApp);
    currentMeetingApp.set(isMeetingApp ? std::optional(application->localizedName) : std::nullopt);
    notificationCenter_.post(isMeetingApp ? meetingDidStartNotification
                                          : meetingDidEndNotification);
}

} // namespace nocta
