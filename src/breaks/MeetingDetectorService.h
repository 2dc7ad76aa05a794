#pragma once

#include "base/NotificationCenter.h"
#include "base/Published.h"
#include "base/RunLoop.h"
#include "base/Timer.h"
#include "platform/Workspace.h"

#include <optional>
#include <string>
#include <string_view>

namespace nocta {

inline constexpr std::string_view meetingDidStartNotification = "NoctaMeetingDidStart";
inline constexpr std::string_view meetingDidEndNotification = "NoctaMeetingDidEnd";

/// Detects whether a meeting application is in front. It checks only the bundle identifier, not
/// window titles, the camera or the microphone. Google Chrome always counts as a meeting, because
/// this service cannot distinguish a meeting in a tab from any other page. The service exists for
/// the lifetime of the process.
class MeetingDetectorService {
public:
    MeetingDetectorService(Workspace& workspace, NotificationCenter& notificationCenter,
                           RunLoop& runLoop);
    MeetingDetectorService(const MeetingDetectorService&) = delete;
    MeetingDetectorService& operator=(const MeetingDetectorService&) = delete;

    static MeetingDetectorService& shared();

    Published<bool> isInMeeting;
    Published<std::optional<std::string>> currentMeetingApp; ///< the localized name

    // Call these functions once, in this order.
    void startObserving();
    void startPolling();
    void checkFrontmostApplication();

private:
    void check(const std::optional<RunningApplication>& application);

    Workspace& workspace_;
    NotificationCenter& notificationCenter_;
    RunLoop& runLoop_;
    Subscription observer_;
    Timer pollTimer_;
};

} // namespace nocta
