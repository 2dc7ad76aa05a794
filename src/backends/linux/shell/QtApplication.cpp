#include "backends/linux/shell/QtApplication.h"

#include <QCoreApplication>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <sys/signalfd.h>
#include <utility>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr auto panelStartTime = 2s;

/// Those that the program was not told to ignore, as `nohup` does.
sigset_t endingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const auto signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction inherited {};
        sigaction(signal, nullptr, &inherited);
        if (inherited.sa_handler != SIG_IGN) {
            sigaddset(&signals, signal);
        }
    }
    return signals;
}

} // namespace

void QtApplication::blockEndingSignals() {
    const auto signals = endingSignals();
    sigprocmask(SIG_BLOCK, &signals, nullptr);
}

QtApplication::QtApplication(RunLoop& runLoop, SingleInstance& instance,
                             std::function<bool()> hasTray)
    : runLoop_(runLoop), instance_(instance), hasTray_(std::move(hasTray)) {
    const auto signals = endingSignals();
    signals_ = FileDescriptor(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
    signalled_ = std::make_unique<QSocketNotifier>(signals_.get(), QSocketNotifier::Read);
    QObject::connect(signalled_.get(), &QSocketNotifier::activated, [this] {
        signalled_->setEnabled(false);
        terminate();
    });
}

int QtApplication::run(ApplicationDelegate& delegate) {
    // From inside the loop, so that an end that is asked for meanwhile is heard.
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
    instance_.close(); // who starts now has to wait for the display, not for this process
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
