#include "backends/linux/gnome/MagnifierFilter.h"

#include "backends/linux/gnome/MagnifierProtocol.h"

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string>
#include <utility>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr auto programName = "nocta-magnifier";
constexpr auto patience = 2s;
constexpr int mostReplacements = 3;

/// Whether the session's list of desktops, most specific first, means GNOME's own shell.
bool isGnomeShellSession() {
    const auto* const list = std::getenv("XDG_CURRENT_DESKTOP");
    const auto desktops = ":" + std::string(list == nullptr ? "" : list) + ":";
    // Budgie counts itself to GNOME and has a shell of its own.
    return desktops.find(":GNOME:") != std::string::npos &&
           desktops.find(":Budgie:") == std::string::npos;
}

} // namespace

MagnifierFilter::MagnifierFilter(std::filesystem::path stateFile)
    : stateFile_(std::move(stateFile)) {
    if (!isGnomeShellSession()) {
        return;
    }
    const auto answer = start();
    isAvailable_ = answer == MagnifierAnswer::colored || answer == MagnifierAnswer::gray;
    isOn_ = answer == MagnifierAnswer::gray;
    helper_.endInput();
    helper_.waitForEnd(patience);
}

MagnifierFilter::~MagnifierFilter() {
    helper_.endInput();
    helper_.waitForEnd(patience);
}

void MagnifierFilter::setOn(bool on) {
    isOn_ = on;
    if (!on) {
        isOurs_ = false;
        helper_.endInput();
    } else if (!std::exchange(isOurs_, true)) {
        turnGray();
    }
}

void MagnifierFilter::turnGray() {
    helper_.waitForEnd(patience); // one that still puts the settings back
    if (!start() || !helper_.send(&magnifierTurnGray, 1)) {
        std::cerr << "nocta: cannot start " << HelperProcess::path(programName)
                  << "; the screen keeps its colours" << std::endl;
        return;
    }
    helper_.whenEnded([this] {
        if (isOurs_ && ++replacements_ <= mostReplacements) {
            turnGray();
        }
    });
}

/// Waits for the helper's first word; none where it cannot be started.
std::optional<MagnifierAnswer> MagnifierFilter::start() {
    const auto answer =
        helper_.start(programName, {stateFile_.string()}) ? helper_.answer(patience) : std::nullopt;
    return answer ? std::optional(static_cast<MagnifierAnswer>(*answer)) : std::nullopt;
}

} // namespace nocta
