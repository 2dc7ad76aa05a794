#pragma once

#include "backends/linux/shell/SingleInstance.h"
#include "base/RunLoop.h"
#include "base/Timer.h"
#include "platform/Application.h"

#include <functional>

namespace nocta {

/// The process on Qt's event loop. SIGINT, SIGTERM, SIGHUP and the end of the session end it in
/// order. A later start of the program reopens it; so does, once, a desktop that shows no tray, as
/// the program would have started unseen. A panel that is still starting is given a moment first.
class QtApplication final : public Application {
public:
    /// `hasTray` tells whether the desktop shows a tray now.
    QtApplication(RunLoop& runLoop, SingleInstance& instance, std::function<bool()> hasTray);

    int run(ApplicationDelegate& delegate) override;

    /// A window that is made key comes to the front by itself.
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
