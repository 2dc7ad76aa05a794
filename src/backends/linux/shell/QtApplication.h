#pragma once

#include "backends/linux/FileDescriptor.h"
#include "backends/linux/shell/SingleInstance.h"
#include "platform/Application.h"

#include <QSocketNotifier>

#include <memory>

namespace nocta {

/// The process on Qt's event loop. SIGINT, SIGTERM, SIGHUP and the end of the session end it in
/// order.
class QtApplication final : public Application {
public:
    explicit QtApplication(SingleInstance& instance);

    /// Keeps the ending signals from killing the process; to be called before it has any other
    /// thread.
    static void blockEndingSignals();

    int run(ApplicationDelegate& delegate) override;
    void terminate() override;

    /// Ends `run` with a failure.
    void fail();

private:
    SingleInstance& instance_;
    int exitStatus_ = 0;
    FileDescriptor signals_;
    std::unique_ptr<QSocketNotifier> signalled_;
};

} // namespace nocta
