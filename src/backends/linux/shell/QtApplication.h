#pragma once

#include "backends/linux/FileDescriptor.h"
#include "backends/linux/shell/SingleInstance.h"
#include "base/RunLoop.h"
#include "base/Timer.h"
#include "platform/Application.h"

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace nocta {

/// The process on Qt's event loop. SIGINT, SIGTERM, SIGHUP and the end of the session end it in
/// order. A later start of the program reopens it; so does, once, a desktop that shows no tray, as
/// the program would have started unseen. A panel that is still starting is given a moment first.
class QtApplication final : public Application {
public:
    /// `hasTray` tells whether the desktop shows a tray now.
    QtApplication(RunLoop& runLoop, SingleInstance& instance, std::function<bool()> hasTray);

    /// Keeps the ending signals from killing the process; to be called before it has any other
    /// thread.
    static void blockEndingSignals();

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
    FileDescriptor signals_;
    std::unique_ptr<QSocketNotifier> signalled_;
    Timer trayTimeout_;
};

} // namespace nocta
