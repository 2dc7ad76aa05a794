#include "backends/linux/gnome/MagnifierFilter.h"

#include "backends/linux/gnome/GnomeSession.h"
#include "backends/linux/gnome/MagnifierProtocol.h"

#include <cerrno>
#include <chrono>
#include <iostream>
#include <string>
#include <utility>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr auto programName = "nocta-magnifier";
constexpr auto startTimeout = 2s;  // enough to start a process on a busy machine
constexpr auto endTimeout = 500ms; // after that, the helper finishes on its own
constexpr int maxReplacements = 3;

} // namespace

MagnifierFilter::MagnifierFilter(std::filesystem::path stateFile)
    : stateFile_(std::move(stateFile)) {
    if (!isGnomeSession()) {
        return;
    }
    const auto answer = start() ? helper_.answer(startTimeout) : std::nullopt;
    isOn_ = answer == static_cast<char>(MagnifierAnswer::gray);
    isAvailable_ = isOn_ || answer == static_cast<char>(MagnifierAnswer::colored);
    helper_.endInput();
    helper_.waitForEnd(startTimeout);
}

MagnifierFilter::~MagnifierFilter() {
    helper_.endInput();
    helper_.waitForEnd(endTimeout);
}

void MagnifierFilter::setOn(bool on) {
    isOn_ = on;
    if (on == isOurs_) {
        return;
    }
    isOurs_ = on;
    if (!on) {
        helper_.endInput();
        return;
    }
    replacements_ = 0;
    if (!helper_.isRunning()) { // otherwise `receive` starts the next one
        turnGray();
    }
}

void MagnifierFilter::turnGray() {
    if (!start() || !helper_.send(&magnifierTurnGray, 1)) {
        std::cerr << "nocta: cannot start " << HelperProcess::path(programName)
                  << "; the screen stays in color" << std::endl;
        return;
    }
    helper_.whenReadable([this] { receive(); });
}

void MagnifierFilter::receive() {
    char answer = 0;
    const auto size = helper_.receive(&answer, 1);
    if (size > 0 || (size < 0 && errno == EAGAIN)) {
        return; // nothing new: the constructor has read the state
    }
    helper_.kill();
    if (isOurs_ && ++replacements_ <= maxReplacements) {
        turnGray();
    }
}

bool MagnifierFilter::start() {
    return helper_.start(programName, {stateFile_.string()});
}

} // namespace nocta
