#include "backends/linux/gnome/MutterCalibration.h"

#include "backends/linux/bus/AsyncCall.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QList>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <span>
#include <utility>
#include <vector>

namespace nocta {

namespace {

using namespace std::chrono_literals;

const auto service = QStringLiteral("org.gnome.Mutter.ColorManager");
const auto sessionInterface = QStringLiteral("org.gnome.Mutter.ColorManager.Calibration");
constexpr int maxWait = 500;        // milliseconds, for one answer
constexpr int answerTimeout = 2000; // milliseconds, for calls that do not block
constexpr auto pauseStep = 500ms;   // there is no pause after the first failure
constexpr int maxFailures = 3;
constexpr std::uint32_t maxSize = 65536; // entries for each channel

using Levels = QList<quint16>;

QDBusMessage methodCall(const QString& path, const QString& interface, const char* method,
                        const QVariantList& arguments = {}) {
    auto message =
        QDBusMessage::createMethodCall(service, path, interface, QString::fromUtf8(method));
    message.setAutoStartService(false);
    message.setArguments(arguments);
    return message;
}

QDBusMessage startCall(const std::string& connector) {
    return methodCall(QStringLiteral("/org/gnome/Mutter/ColorManager"), service, "CalibrateMonitor",
                      {QString::fromStdString(connector)});
}

/// Returns the path of the session in an answer to `startCall`, or an empty string if the
/// compositor refused the session.
QString sessionIn(const QDBusMessage& answer) {
    return answer.signature() == QStringLiteral("o")
               ? answer.arguments().at(0).value<QDBusObjectPath>().path()
               : QString();
}

QDBusMessage sizeCall(const QString& session) {
    return methodCall(session, QStringLiteral("org.freedesktop.DBus.Properties"), "Get",
                      {sessionInterface, QStringLiteral("GammaLutSize")});
}

/// Returns the size in an answer to `sizeCall`, or 0 if the size cannot be used.
std::uint32_t sizeIn(const QDBusMessage& answer) {
    const auto value = answer.signature() == QStringLiteral("v")
                           ? answer.arguments().at(0).value<QDBusVariant>().variant()
                           : QVariant();
    return value.typeId() == QMetaType::UInt && value.toUInt() <= maxSize ? value.toUInt() : 0;
}

/// Returns the ramp in an answer; tables are laid over this ramp. All channels are empty if the
/// answer does not contain a calibration.
GammaRamp rampIn(const QDBusMessage& answer) {
    if (answer.signature() != QStringLiteral("aqaqaq")) {
        return {};
    }
    const auto channel = [&](qsizetype index) {
        const auto levels = qdbus_cast<Levels>(answer.arguments().at(index));
        return std::vector<std::uint16_t>(levels.begin(), levels.end());
    };
    GammaRamp ramp{.red = channel(0), .green = channel(1), .blue = channel(2)};
    return ramp.isCalibration() ? ramp : GammaRamp();
}

} // namespace

MutterCalibration::MutterCalibration(const QDBusConnection& bus, MutterDisplays& displays,
                                     RunLoop& runLoop)
    : bus_(bus), displays_(displays), runLoop_(runLoop),
      refreshed_(displays.observeRefresh([this] { followMonitors(); })) {
    probe();
}

MutterCalibration::~MutterCalibration() {
    MutterCalibration::displayRestoreColorSyncSettings();
}

/// Checks availability by starting and stopping a session for the main display. A monitor without
/// hardware gamma has no session, or a session whose ramps are empty.
void MutterCalibration::probe() {
    for (const auto id : displays_.ids()) {
        if (displays_.displayIsMain(id)) {
            const auto session =
                sessionIn(bus_.call(startCall(displays_.outputName(id)), QDBus::Block, maxWait));
            isAvailable_ = !session.isEmpty() &&
                           sizeIn(bus_.call(sizeCall(session), QDBus::Block, maxWait)) > 0;
            stop(session);
        }
    }
}

Status MutterCalibration::setDisplayTransferByTable(DisplayId display, std::span<const float> red,
                                                    std::span<const float> green,
                                                    std::span<const float> blue) {
    if (!isAvailable_ || displays_.outputName(display).empty()) {
        return statusFailure;
    }
    auto& monitor = monitors_[display];
    if (!monitor) {
        monitor.reset(new Monitor{.display = display});
    }
    if (monitor->failures > maxFailures) {
        return statusFailure;
    }
    monitor->tables = copyOf(red, green, blue);
    monitor->isDue = true;
    advance(monitor);
    return statusSuccess;
}

void MutterCalibration::displayRestoreColorSyncSettings() {
    for (const auto& [display, monitor] : std::exchange(monitors_, {})) {
        stop(monitor->session, QDBus::Block);
    }
}

bool MutterCalibration::isBusy() const {
    return std::ranges::any_of(
        monitors_, [](const auto& entry) { return entry.second->isDue || entry.second->isBusy; });
}

void MutterCalibration::sendAgain() {
    for (const auto& [display, monitor] : monitors_) {
        monitor->isDue = monitor->failures <= maxFailures;
        advance(monitor);
    }
}

/// Called after the monitors have changed. Forgets the monitors that are gone, and resends the
/// tables to the others. If the compositor has rebuilt a monitor, it has also ended that monitor's
/// session, so the write fails.
void MutterCalibration::followMonitors() {
    std::erase_if(monitors_, [this](const auto& entry) {
        const auto isGone = displays_.outputName(entry.first).empty();
        stop(isGone ? entry.second->session : QString());
        return isGone;
    });
    sendAgain();
}

/// Sends `question` and passes the answer to `take`. If the monitor is no longer in use when the
/// answer arrives, stops the session that the answer names, if any.
void MutterCalibration::ask(const MonitorPointer& monitor, const QDBusMessage& question,
                            Step take) {
    monitor->isBusy = true;
    callAsync(
        bus_, question, &answers_,
        [this, take, waiting = std::weak_ptr(monitor)](const QDBusMessage& answer) {
            if (const auto asker = waiting.lock()) {
                asker->isBusy = false;
                take(*asker, answer) ? advance(asker) : fail(asker);
            } else {
                stop(sessionIn(answer));
            }
        },
        answerTimeout);
}

/// Performs the next step toward showing the newest tables. The ramp that the compositor has loaded
/// is read only in a monitor's first session. In later sessions, if the monitor has no profile,
/// that ramp would be our own.
void MutterCalibration::advance(const MonitorPointer& monitor) {
    if (!monitor->isDue || monitor->isBusy || monitor->pause.isValid()) {
        return;
    }
    const auto crtc = displays_.crtcOf(monitor->display);
    if (monitor->session.isEmpty()) {
        ask(monitor, startCall(displays_.outputName(monitor->display)),
            [](Monitor& asker, const QDBusMessage& answer) {
                asker.session = sessionIn(answer);
                return !asker.session.isEmpty();
            });
    } else if (monitor->size == 0) {
        ask(monitor, sizeCall(monitor->session), [](Monitor& asker, const QDBusMessage& answer) {
            asker.size = sizeIn(answer);
            return asker.size > 0;
        });
    } else if (crtc && !monitor->factory) {
        ask(monitor, displays_.call("GetCrtcGamma", {*crtc}),
            [](Monitor& asker, const QDBusMessage& answer) {
                asker.factory = rampIn(answer);
                return true;
            });
    } else {
        write(monitor);
    }
}

void MutterCalibration::write(const MonitorPointer& monitor) {
    const auto factory = monitor->factory.value_or(GammaRamp());
    const auto& [red, green, blue] = monitor->tables;
    const auto channel = [&](std::span<const float> table,
                             std::span<const std::uint16_t> calibration) {
        const auto levels = laidOver(table, calibration, monitor->size);
        return QVariant::fromValue(Levels(levels.begin(), levels.end()));
    };
    monitor->isDue = false;
    ask(monitor,
        methodCall(monitor->session, sessionInterface, "SetCrtcGammaLut",
                   {channel(red, factory.red), channel(green, factory.green),
                    channel(blue, factory.blue)}),
        [](Monitor& asker, const QDBusMessage& answer) {
            const auto isWritten = answer.type() == QDBusMessage::ReplyMessage;
            asker.failures = isWritten ? 0 : asker.failures;
            return isWritten;
        });
}

/// Starts another session, after pauses of increasing length. Gives up on the monitor after too
/// many failures.
void MutterCalibration::fail(const MonitorPointer& monitor) {
    stop(std::exchange(monitor->session, {}));
    monitor->size = 0;
    monitor->isDue = ++monitor->failures <= maxFailures;
    if (!monitor->isDue) {
        std::cerr << "nocta: the compositor rejects the gamma ramps for "
                  << displays_.outputName(monitor->display) << "; that display is not dimmed"
                  << std::endl;
        return;
    }
    monitor->pause.start(runLoop_, pauseStep * (monitor->failures - 1), Repeat::no,
                         [this, waiting = std::weak_ptr(monitor)] { advance(waiting.lock()); });
}

/// Stops a session. Does nothing if `session` is empty.
void MutterCalibration::stop(const QString& session, QDBus::CallMode mode) {
    if (!session.isEmpty()) {
        bus_.call(methodCall(session, sessionInterface, "Stop"), mode, maxWait);
    }
}

} // namespace nocta
