#include "backends/linux/gnome/MutterGammaOutput.h"

#include "backends/linux/bus/MessageBus.h"

#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QList>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <iostream>
#include <span>
#include <utility>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr auto programName = "nocta-ramps";
constexpr auto endTimeout = 2s; // restoring takes a few milliseconds
constexpr int maxReplacements = 3;
constexpr int timeoutAtStart = 500; // milliseconds
constexpr int writeTimeout = 1000;  // milliseconds
/// Other programs write shortly after they have announced a change.
constexpr auto sendAgainDelay = 500ms;
const auto rampSignature = QStringLiteral("aqaqaq");

using Levels = QList<quint16>;

QVariant argument(const std::vector<std::uint16_t>& channel) {
    return QVariant::fromValue(Levels(channel.begin(), channel.end()));
}

} // namespace

MutterGammaOutput::MutterGammaOutput(const QDBusConnection& bus, MutterDisplays& displays,
                                     RunLoop& runLoop, std::filesystem::path notes)
    : bus_(bus), displays_(displays), runLoop_(runLoop), notes_(std::move(notes)),
      answers_(std::make_unique<QObject>()),
      refreshed_(displays.observeRefresh([this] { followMonitors(); })) {
    probe();
    if (!isAvailable_) {
        return;
    }
    mayHaveBeenOverwritten_.connect(bus_, QStringLiteral("/org/gnome/SettingsDaemon/Color"),
                                    QStringLiteral("org.freedesktop.DBus.Properties"),
                                    QStringLiteral("PropertiesChanged"));
    const auto colorManager = QStringLiteral("org.freedesktop.ColorManager");
    const auto colorManagerPath = QStringLiteral("/org/freedesktop/ColorManager");
    for (const auto* const name : {"DeviceAdded", "DeviceChanged"}) {
        mayHaveBeenOverwritten_.connect(systemBus(), colorManagerPath, colorManager, name);
    }
}

MutterGammaOutput::~MutterGammaOutput() {
    MutterGammaOutput::displayRestoreColorSyncSettings();
}

void MutterGammaOutput::probe() {
    const auto ids = displays_.ids();
    isAvailable_ = std::ranges::any_of(ids, [this](DisplayId id) {
        const auto crtc = displays_.crtcOf(id);
        if (!displays_.displayIsMain(id) || !crtc) {
            return false;
        }
        const auto ramp =
            bus_.call(displays_.call("GetCrtcGamma", {*crtc}), QDBus::Block, timeoutAtStart);
        return ramp.signature() == rampSignature &&
               !qdbus_cast<Levels>(ramp.arguments().at(0)).isEmpty();
    });
}

Status MutterGammaOutput::setDisplayTransferByTable(DisplayId display, std::span<const float> red,
                                                    std::span<const float> green,
                                                    std::span<const float> blue) {
    if (!displays_.crtcOf(display)) {
        return statusFailure;
    }
    auto& output = outputs_[display];
    output.tables = copyOf(red, green, blue);
    output.isDue = true;
    output.hasFailed = false;
    if (!helper_.isRunning()) {
        replacements_ = 0;
        return startHelper(RampKeeperCommand::begin) ? statusSuccess : statusFailure;
    }
    advance(display, output);
    return statusSuccess;
}

void MutterGammaOutput::displayRestoreColorSyncSettings() {
    later_.invalidate();
    for (auto& [display, output] : outputs_) {
        if (output.write) {
            output.write->waitForFinished(); // no longer than `writeTimeout`
        }
    }
    outputs_.clear();
    answers_ = std::make_unique<QObject>();
    if (helper_.isRunning()) {
        sendCommand(RampKeeperCommand::end);
        helper_.endInput();
        if (!helper_.waitForEnd(endTimeout)) {
            helper_.release(); // it restores the ramps later
        }
    }
}

bool MutterGammaOutput::isBusy() const {
    return isStarting() || std::ranges::any_of(outputs_, [](const auto& entry) {
               return entry.second.isDue || entry.second.write.has_value();
           });
}

void MutterGammaOutput::sendAgain() {
    sendAllAgain();
    later_.start(runLoop_, sendAgainDelay, Repeat::no, [this] { sendAllAgain(); });
}

void MutterGammaOutput::sendAllAgain() {
    for (auto& [display, output] : outputs_) {
        output.isDue = true;
    }
    advanceAll();
}

/// After the monitors have changed, forgets those that are gone. The compositor may have reset the
/// ramps of the others, and the helper has not noted the ramps of new ones yet.
void MutterGammaOutput::followMonitors() {
    std::erase_if(outputs_, [this](const auto& entry) { return !displays_.crtcOf(entry.first); });
    if (helper_.isRunning()) {
        sendCommand(RampKeeperCommand::update);
    }
    sendAgain();
}

bool MutterGammaOutput::startHelper(RampKeeperCommand command) {
    unanswered_ = 0;
    if (!helper_.start(programName, {notes_.string(), bus_.baseService().toStdString()}) ||
        !sendCommand(command)) {
        complain("cannot start " + HelperProcess::path(programName));
        return false;
    }
    helper_.whenReadable([this] { receive(); });
    return true;
}

bool MutterGammaOutput::sendCommand(RampKeeperCommand command) {
    ++unanswered_;
    return helper_.send(&command, 1);
}

void MutterGammaOutput::receive() {
    auto answer = RampKeeperAnswer::failed;
    const auto size = helper_.receive(reinterpret_cast<char*>(&answer), 1);
    if (size < 0 && errno == EAGAIN) {
        return;
    }
    if (size <= 0) {
        helper_.kill();
        if (!outputs_.empty() && ++replacements_ <= maxReplacements) {
            startHelper(RampKeeperCommand::takeOver);
        }
    } else if (answer == RampKeeperAnswer::ready) {
        --unanswered_;
        factory_ = readRampNotes(notes_).ramps;
        advanceAll();
    } else {
        complain("cannot save the gamma ramps in " + notes_.string());
        outputs_.clear();
        helper_.endInput();
    }
}

void MutterGammaOutput::complain(const std::string& problem) {
    if (!std::exchange(hasComplained_, true)) {
        std::cerr << "nocta: " << problem << "; the displays are not dimmed" << std::endl;
    }
}

void MutterGammaOutput::advanceAll() {
    for (auto& [display, output] : outputs_) {
        advance(display, output);
    }
}

void MutterGammaOutput::advance(DisplayId display, Output& output) {
    if (!helper_.isRunning() || isStarting() || !output.isDue || output.write) {
        return;
    }
    const auto crtc = displays_.crtcOf(display);
    const auto factory = crtc ? factory_.find(*crtc) : factory_.end();
    output.isDue = false;
    if (factory == factory_.end()) {
        return;
    }
    const auto ramp = laidOver(output.tables, factory->second, factory->second.isCalibration());
    const auto message = displays_.call(
        "SetCrtcGamma", {*crtc, argument(ramp.red), argument(ramp.green), argument(ramp.blue)});
    output.write = bus_.asyncCall(message, writeTimeout);
    auto* const watcher = new QDBusPendingCallWatcher(*output.write, answers_.get());
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, answers_.get(),
                     [this, display, watcher] {
                         watcher->deleteLater();
                         finishWrite(display, watcher->reply());
                     });
}

void MutterGammaOutput::finishWrite(DisplayId display, const QDBusMessage& answer) {
    const auto found = outputs_.find(display);
    if (found == outputs_.end()) {
        return; // its monitor is gone
    }
    auto& output = found->second;
    output.write.reset();
    if (answer.type() == QDBusMessage::ReplyMessage) {
        output.hasFailed = false;
        advance(display, output);
    } else if (!std::exchange(output.hasFailed, true)) {
        output.isDue = true;
        displays_.refresh(); // the configuration has changed; this also sends the tables again
    }
}

} // namespace nocta
