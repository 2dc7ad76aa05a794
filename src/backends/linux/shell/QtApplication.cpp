#include "backends/linux/shell/QtApplication.h"

#include <QCoreApplication>
#include <QTimer>

#include <csignal>
#include <cstdlib>
#include <sys/signalfd.h>

namespace nocta {

namespace {

sigset_t endingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const auto signal : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&signals, signal);
    }
    return signals;
}

} // namespace

void QtApplication::blockEndingSignals() {
    const auto signals = endingSignals();
    sigprocmask(SIG_BLOCK, &signals, nullptr);
}

QtApplication::QtApplication(SingleInstance& instance) : instance_(instance) {
    const auto signals = endingSignals();
    signals_ = FileDescriptor(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
    signalled_ = std::make_unique<QSocketNotifier>(signals_.get(), QSocketNotifier::Read);
    QObject::connect(signalled_.get(), &QSocketNotifier::activated, [this] {
        signalled_->setEnabled(false);
        terminate();
    });
}

int QtApplication::run(ApplicationDelegate& delegate) {
    instance_.listen([&delegate] { delegate.applicationDidReopen(); });
    // From inside the loop, so that an end that is asked for meanwhile is heard.
    QTimer::singleShot(0, [&delegate] { delegate.applicationDidFinishLaunching(); });
    QCoreApplication::exec();
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
