#include "backends/linux/shell/QtApplication.h"

#include "backends/linux/shell/EndingSignals.h"

#include <QCoreApplication>

#include <chrono>
#include <cstdlib>
#include <utility>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr auto panelStartTime = 2s;

} // namespace

QtApplication::QtApplication(RunLoop& runLoop, SingleInstance& instance,
                             std::function<bool()> hasTray)
    : runLoop_(runLoop), instance_(instance), hasTray_(std::move(hasTray)) {}

int QtApplication::run(ApplicationDelegate& delegate) {
    const EndingSignals signals([this] { terminate(); });
    // Runs inside the event loop, so that a request to quit in the meantime is not lost.
    runLoop_.post([this, &delegate] {
        delegate.applicationDidFinishLaunching();
        instance_.listen([this, &delegate] {
            trayTimeout_.invalidate();
            delegate.applicationDidReopen();
        });
        trayTimeout_.start(runLoop_, panelStartTime, Repeat::no, [this, &delegate] {
            if (!hasTray_()) {
                delegate.applicationDidReopen();
            }
        });
    });
    QCoreApplication::exec();
    instance_.close(); // a new process can now take over without waiting for this one
    delegate.applicationWillTerminate();
    return exitStatus_;
}

void QtApplication::terminate() {
    QCoreApplication::quit();
}

void QtApplication::fail() {
    exitStatus_ = EXIT_FAILURE;
    terminate();
}

} // namespace nocta
