#pragma once

#include "backends/linux/shell/SingleInstance.h"
#include "base/RunLoop.h"
#include "base/Timer.h"
#include "platform/Application.h"

#include <functional>

namespace nocta {

/// Runs the process on Qt's event loop. SIGINT, SIGTERM, SIGHUP and the end of the session shut it
/// down in an orderly way. If the user starts the program again, the running process is reopened.
/// It is also reopened, once, if the desktop shows no tray, because otherwise the user would not
/// see that the program is running. Before that, a panel that is still starting has a moment to
/// show its tray.
class QtApplication final : public Application {
public:
    /// `hasTray` returns whether the desktop shows a tray now.
    QtApplication(RunLoop& runLoop, SingleInstance& instance, std::function<bool()> hasTray);

    int run(ApplicationDelegate& delegate) override;

    /// Does nothing: a window that becomes key comes to the front anyway.
    void activateIgnoringOtherApps() override {}

    void terminate() override;

    /// Makes `run` return a failure.
    void fail();

private:
    RunLoop& runLoop_;
    SingleInstance& instance_;
    std::function<bool()> hasTray_;
    int exitStatus_ = 0;
    Timer trayTimeout_;
};

} // namespace nocta
