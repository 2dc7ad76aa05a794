#pragma once

#include "backends/linux/shell/SingleInstance.h"
#include "base/RunLoop.h"
#include "base/Timer.h"
#include "platform/Application.h"

#include <functional>

namespace nocta {

/// Runs the process on Qt's event loop. SIGINT, SIGTERM, SIGHUP and the end of the session shut the
/// process down cleanly. If the user starts the program again, the running process is reopened. The
/// process is also reopened, once, if the desktop still shows no tray a moment after launch,
/// because otherwise the user would not see that the program is running.
class QtApplication final : public Application {
public:
    /// `hasTray` returns whether the desktop currently shows a tray.
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
