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

/// Tells whether a meeting application is in front, by its identity alone: no window titles, no
/// camera and no microphone. A web browser in front counts as a meeting, whatever page it shows,
/// because a meeting in it looks like any other page from here. It lives as long as the process.
class MeetingDetectorService {
public:
    MeetingDetectorService(Workspace& workspace, NotificationCenter& notificationCenter,
                           RunLoop& runLoop);
    MeetingDetectorService(const MeetingDetectorService&) = delete;
    MeetingDetectorService& operator=(const MeetingDetectorService&) = delete;

    static MeetingDetectorService& shared();

    Published<bool> isInMeeting;
    Published<std::optional<std::string>> currentMeetingApp; ///< its name as the user knows it

    // To be called in this order, once.
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
