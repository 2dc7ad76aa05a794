#pragma once

#include "backends/linux/shell/SingleInstance.h"
#include "base/RunLoop.h"
#include "base/Timer.h"
#include "platform/Application.h"

#include <functional>

namespace nocta {

/// The process on Qt's event loop. SIGINT, SIGTERM, SIGHUP and the end of the session shut it down
/// in an orderly way. A later start of the program reopens it. So does, once, a desktop that shows
/// no tray, because the user would not see that the program runs. A panel that is still starting
/// gets a moment first.
class QtApplication final : public Application {
public:
    /// `hasTray` returns whether the desktop shows a tray now.
    QtApplication(RunLoop& runLoop, SingleInstance& instance, std::function<bool()> hasTray);

    int run(ApplicationDelegate& delegate) override;

    /// Nothing to do: a window that becomes key comes to the front anyway.
    void activateIgnoringOtherApps() override {}

    void terminate() override;

    /// Ends `run` with a failure.
    void fail();

private:
    RunLoop& runLoop_;
    SingleInstance& instance_;
    std::function<bool()> hasTray_;
    int exitStatus_ = 0;
    Timer trayTimeout_;
};

} // namespace nocta
