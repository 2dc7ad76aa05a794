#include "backends/linux/wayland/WlrGammaOutput.h"

#include "backends/linux/files/FileDescriptor.h"

#include <algorithm>
#include <fcntl.h>
#include <iostream>
#include <sys/mman.h>
#include <unistd.h>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr std::uint32_t maxSize = 65536; // entries for each channel
constexpr auto maxAnswerTime = 1s;       // for a control object; some compositors never answer
constexpr auto firstPause = 1s;          // doubled after each failure
constexpr int maxFailures = 3;
constexpr auto stableTime = 1min; // a control held for longer than this was not contested

/// Creates a file with the levels of all channels, positioned at its start. Returns an empty
/// descriptor if the file cannot be created.
FileDescriptor fileWith(const std::vector<std::uint16_t>& levels) {
    FileDescriptor file(memfd_create("nocta-gamma", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    const auto size = levels.size() * sizeof levels[0];
    if (!file || write(file.get(), levels.data(), size) != static_cast<ssize_t>(size) ||
        lseek(file.get(), 0, SEEK_SET) != 0 ||
        fcntl(file.get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL) !=
            0) {
        return {};
    }
    return file;
}

/// Whether there is a file and a free descriptor. The library duplicates each descriptor that it
/// sends, and the connection fails if no descriptor is free.
bool canSend(const FileDescriptor& file) {
    return static_cast<bool>(FileDescriptor(fcntl(file.get(), F_DUPFD_CLOEXEC, 0)));
}

} // namespace

const zwlr_gamma_control_v1_listener WlrGammaOutput::listener = {
    .gamma_size =
        [](void* data, zwlr_gamma_control_v1* /*object*/, std::uint32_t size) {
            auto& control = *static_cast<Control*>(data);
            if (size == 0 || size > maxSize) {
                control.output->fail(control);
                return;
            }
            control.size = size;
            control.timer.invalidate();
            control.grantedAt = control.output->runLoop_.monotonicNow();
            control.output->isAvailable_ = true;
            control.output->advance(control);
        },
    .failed =
        [](void* data, zwlr_gamma_control_v1* /*object*/) {
            auto& control = *static_cast<Control*>(data);
            control.output->fail(control);
        }};

WlrGammaOutput::WlrGammaOutput(WaylandConnection& connection, WaylandDisplays& displays,
                               RunLoop& runLoop)
    : connection_(connection), displays_(displays), runLoop_(runLoop),
      powerManager_(connection.bindFirst<zwlr_output_power_manager_v1>(
          zwlr_output_power_manager_v1_interface)),
      removal_(displays.observeRemoval([this](DisplayId display) {
          if (const auto control = controls_.find(display); control != controls_.end()) {
              release(control->second);
              controls_.erase(control);
              connection_.finishTurn();
          }
      })),
      globals_(connection.observeGlobals([this] { updateManager(); })) {
    updateManager();
    if (manager_ == nullptr) {
        return;
    }
    for (const auto display : displays_.ids()) {
        request(controlOf(display));
    }
    connection_.synchronize(WaylandConnection::maxWaitAtStart);
}

WlrGammaOutput::~WlrGammaOutput() {
    WlrGammaOutput::displayRestoreColorSyncSettings();
    if (manager_ != nullptr) {
        zwlr_gamma_control_manager_v1_destroy(manager_);
    }
    if (powerManager_ != nullptr) {
        zwlr_output_power_manager_v1_destroy(powerManager_);
    }
}

Status WlrGammaOutput::setDisplayTransferByTable(DisplayId display, std::span<const float> red,
                                                 std::span<const float> green,
                                                 std::span<const float> blue) {
    if (manager_ == nullptr || displays_.outputOf(display) == nullptr) {
        return statusFailure;
    }
    auto& control = controlOf(display);
    if (control.failures > maxFailures) {
        return statusFailure;
    }
    control.tables = copyOf(red, green, blue);
    control.isDue = true;
    advance(control);
    return statusSuccess;
}

void WlrGammaOutput::displayRestoreColorSyncSettings() {
    if (!controls_.empty()) {
        releaseAll();
        connection_.synchronize();
    }
}

void WlrGammaOutput::sendAgain() {
    for (auto& [display, control] : controls_) {
        sendAgain(control);
    }
}

void WlrGammaOutput::sendAgain(Control& control) {
    control.isDue = control.tables.has_value();
    advance(control);
}

/// Binds the manager. If the compositor has withdrawn it, releases the manager and all objects that
/// it created.
void WlrGammaOutput::updateManager() {
    const auto name = connection_.firstGlobal(zwlr_gamma_control_manager_v1_interface);
    if (name == managerName_) {
        return;
    }
    if (manager_ != nullptr) {
        releaseAll();
        zwlr_gamma_control_manager_v1_destroy(manager_);
        connection_.finishTurn();
        isAvailable_ = false;
    }
    managerName_ = name;
    manager_ = connection_.bindFirst<zwlr_gamma_control_manager_v1>(
        zwlr_gamma_control_manager_v1_interface);
}

WlrGammaOutput::Control& WlrGammaOutput::controlOf(DisplayId display) {
    auto& control = controls_[display];
    control.output = this;
    control.display = display;
    if (control.power == nullptr && powerManager_ != nullptr) {
        control.power = std::make_unique<WlrOutputPower>(powerManager_, displays_.outputOf(display),
                                                         [this, &control] { sendAgain(control); });
        connection_.finishTurn();
    }
    return control;
}

/// Asks the compositor for the control object.
void WlrGammaOutput::request(Control& control) {
    control.object = zwlr_gamma_control_manager_v1_get_gamma_control(
        manager_, displays_.outputOf(control.display));
    zwlr_gamma_control_v1_add_listener(control.object, &listener, &control);
    control.timer.start(runLoop_, maxAnswerTime, Repeat::no, [this, &control] { fail(control); });
    connection_.finishTurn();
}

/// Performs the next step toward showing the newest tables.
void WlrGammaOutput::advance(Control& control) {
    if (!control.isDue || control.isBusy || control.timer.isValid() ||
        control.failures > maxFailures) {
        return; // the pending answer or the end of the pause calls this again
    }
    if (control.object == nullptr) {
        request(control);
    } else {
        send(control);
    }
}

void WlrGammaOutput::send(Control& control) {
    std::vector<std::uint16_t> levels;
    levels.reserve(3 * std::size_t{control.size});
    for (const auto& table : *control.tables) {
        const auto channel = laidOver(table, {}, control.size);
        levels.insert(levels.end(), channel.begin(), channel.end());
    }
    const auto file = fileWith(levels);
    if (!canSend(file)) {
        return; // out of descriptors or memory: the next write tries again
    }
    zwlr_gamma_control_v1_set_gamma(control.object, file.get());
    control.isDue = false;
    control.isBusy = true;
    control.processed = connection_.whenProcessed([this, &control] {
        control.isBusy = false;
        advance(control);
    });
}

/// Handles a control object that the compositor has refused or revoked.
void WlrGammaOutput::fail(Control& control) {
    const auto wasStable =
        control.size > 0 && runLoop_.monotonicNow() - control.grantedAt > stableTime;
    control.failures = wasStable ? 1 : control.failures + 1;
    release(control);
    connection_.finishTurn();
    if (control.failures > maxFailures) {
        std::cerr << "nocta: cannot set the gamma of " << displays_.outputName(control.display)
                  << ": another program seems to control it" << std::endl;
        return;
    }
    control.isDue = control.tables.has_value();
    control.timer.start(runLoop_, firstPause * (1 << (control.failures - 1)), Repeat::no,
                        [this, &control] { advance(control); });
}

void WlrGammaOutput::releaseAll() {
    for (auto& [display, control] : controls_) {
        release(control);
    }
    controls_.clear();
}

void WlrGammaOutput::release(Control& control) {
    control.timer.invalidate();
    control.processed.cancel();
    control.isBusy = false;
    control.size = 0;
    if (control.object != nullptr) {
        zwlr_gamma_control_v1_destroy(control.object);
        control.object = nullptr;
    }
}

} // namespace nocta
