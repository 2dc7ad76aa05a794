#include "breaks/MeetingDetectorService.h"

#include "support/TestDesktop.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace nocta {
namespace {

using namespace std::chrono_literals;
using Posts = std::vector<std::string>;

class MeetingDetectorServiceTest : public TestDesktop {
protected:
    void SetUp() override {
        for (const auto name : {meetingDidStartNotification, meetingDidEndNotification}) {
            observers_.push_back(desktop.notificationCenter.observe(
                name, [this, name] { posted.emplace_back(name); }));
        }
        meetingDetector().startObserving();
        meetingDetector().startPolling();
        meetingDetector().checkFrontmostApplication();
    }
    Posts posted;
    const RunningApplication faceTime{"com.apple.FaceTime", "FaceTime"};
    const RunningApplication editor{"com.example.editor", "Editor"};

    bool isInMeeting() { return meetingDetector().isInMeeting.get(); }
    std::optional<std::string> app() { return meetingDetector().currentMeetingApp.get(); }

private:
    Cancellables observers_;
};

TEST_F(MeetingDetectorServiceTest, MeetingStartsAndEndsWithTheApplicationInFront) {
    desktop.workspace.bringToFront(faceTime);
    EXPECT_TRUE(isInMeeting());
    EXPECT_EQ(app(), "FaceTime");
    EXPECT_EQ(posted, Posts{"NoctaMeetingDidStart"});
    desktop.runLoop.advance(60s);
    EXPECT_EQ(posted.size(), 1U) << "the polls should find no change";
    desktop.workspace.bringToFront(editor);
    EXPECT_FALSE(isInMeeting());
    EXPECT_EQ(app(), std::nullopt);
    EXPECT_EQ(posted, (Posts{"NoctaMeetingDidStart", "NoctaMeetingDidEnd"}));
}

TEST_F(MeetingDetectorServiceTest, OnlyKnownMeetingApplicationsAreDetected) {
    for (const auto* const identifier :
         {"us.zoom.xos", "com.google.Chrome", "com.microsoft.teams", "com.microsoft.teams2",
          "com.cisco.webexmeetingsapp", "com.webex.meetingmanager", "com.apple.FaceTime",
          "com.skype.skype", "com.tinyspeck.slackmacgap", "com.discord.Discord"}) {
        desktop.workspace.bringToFront(RunningApplication{identifier, "A"});
        EXPECT_TRUE(isInMeeting()) << identifier;
        desktop.workspace.bringToFront(editor);
        EXPECT_FALSE(isInMeeting()) << identifier;
    }
    for (const auto* const identifier :
         {"", "com.google.chrome", "com.google.Chrome.canary", "us.zoom.xos ", "us.zoom",
          "org.mozilla.firefox", "com.apple.Safari"}) {
        desktop.workspace.bringToFront(RunningApplication{identifier, "A"});
        EXPECT_FALSE(isInMeeting()) << identifier;
    }
}

TEST_F(MeetingDetectorServiceTest, MissingApplicationOrIdentifierChangesNothing) {
    desktop.workspace.bringToFront(std::nullopt);
    desktop.workspace.bringToFront(RunningApplication{std::nullopt, "Nameless"});
    EXPECT_TRUE(posted.empty());
    desktop.workspace.bringToFront(faceTime);
    desktop.workspace.bringToFront(std::nullopt);
    desktop.workspace.bringToFront(RunningApplication{std::nullopt, "Nameless"});
    desktop.runLoop.advance(60s);
    EXPECT_TRUE(isInMeeting());
    EXPECT_EQ(app(), "FaceTime");
    EXPECT_EQ(posted.size(), 1U);
}

TEST_F(MeetingDetectorServiceTest, PollFindsAChangeWithoutANotification) {
    desktop.workspace.frontmost = faceTime;
    desktop.runLoop.advance(4999ms);
    EXPECT_FALSE(isInMeeting());
    desktop.runLoop.advance(1ms);
    EXPECT_TRUE(isInMeeting());
    desktop.workspace.frontmost = editor;
    desktop.runLoop.advance(5s);
    EXPECT_FALSE(isInMeeting());
}

TEST_F(MeetingDetectorServiceTest, SwitchingToAnotherMeetingApplicationContinuesTheMeeting) {
    desktop.workspace.bringToFront(faceTime);
    desktop.workspace.bringToFront(RunningApplication{"us.zoom.xos", "Zoom"});
    EXPECT_EQ(posted.size(), 1U);
    EXPECT_EQ(app(), "FaceTime") << "the name should not change during a meeting";
}

TEST_F(MeetingDetectorServiceTest, MeetingInFrontAtLaunchIsDetectedImmediately) {
    desktop.workspace.frontmost = faceTime;
    restart();
    EXPECT_TRUE(isInMeeting());
}

} // namespace
} // namespace nocta
