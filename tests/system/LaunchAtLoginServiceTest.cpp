#include "system/LaunchAtLoginService.h"

#include "support/TestDesktop.h"

namespace nocta {
namespace {

class LaunchAtLoginServiceTest : public TestDesktop {
protected:
    /// Returns what the service prints on standard output while `action` runs.
    template <class Action>
    std::string said(Action action) {
        testing::internal::CaptureStdout();
        action();
        return testing::internal::GetCapturedStdout();
    }
};

TEST_F(LaunchAtLoginServiceTest, OnlyTheEnabledStatusReadsAsOn) {
    using Status = LoginItem::Status;
    for (const auto status :
         {Status::notRegistered, Status::enabled, Status::requiresApproval, Status::notFound}) {
        desktop.loginItem.present = status;
        const LaunchAtLoginService service(desktop.loginItem);
        EXPECT_EQ(service.isEnabled.get(), status == Status::enabled);
    }
}

TEST_F(LaunchAtLoginServiceTest, StatusIsReadOnceAndTheSettingIsNotUsed) {
    settings().launchAtLogin.set(true);
    EXPECT_FALSE(launchAtLogin().isEnabled.get());
    launchAtLogin().enable();
    EXPECT_TRUE(launchAtLogin().isEnabled.get());
    desktop.loginItem.present = LoginItem::Status::notRegistered; // in the desktop's settings
    EXPECT_TRUE(launchAtLogin().isEnabled.get());
    settings().resetToDefaults();
    EXPECT_EQ(calls("loginItem"),
              (std::vector<std::string>{"loginItem status", "loginItem register"}));
}

TEST_F(LaunchAtLoginServiceTest, EnablesAndDisables) {
    EXPECT_EQ(said([&] { launchAtLogin().enable(); }), "");
    EXPECT_EQ(desktop.loginItem.present, LoginItem::Status::enabled);
    EXPECT_EQ(said([&] { launchAtLogin().disable(); }), "");
    EXPECT_EQ(desktop.loginItem.present, LoginItem::Status::notRegistered);
    EXPECT_FALSE(launchAtLogin().isEnabled.get());
}

TEST_F(LaunchAtLoginServiceTest, FailurePrintsOneLineAndChangesNothing) {
    desktop.loginItem.error = "No space left on device";
    int published = 0;
    const auto subscription =
        launchAtLogin().isEnabled.subscribe([&](bool /*on*/) { ++published; });
    EXPECT_EQ(said([&] { launchAtLogin().enable(); }),
              "Failed to enable launch at login: No space left on device\n");
    EXPECT_FALSE(launchAtLogin().isEnabled.get());
    desktop.loginItem.error.reset();
    launchAtLogin().enable();
    desktop.loginItem.error = "Permission denied";
    EXPECT_EQ(said([&] { launchAtLogin().disable(); }),
              "Failed to disable launch at login: Permission denied\n");
    EXPECT_TRUE(launchAtLogin().isEnabled.get());
    EXPECT_EQ(published, 1);
}

} // namespace
} // namespace nocta
