#include "backends/linux/x11/Guardian.h"

#include "backends/linux/x11/GuardianProtocol.h"

#include <cerrno>
#include <chrono>
#include <iostream>
#include <utility>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr auto programName = "nocta-guardian";
constexpr auto answerTimeout = 15s; // longer than the helper itself waits for another guardian
constexpr int maxReplacements = 3;  // without a pause
constexpr auto replacementPause = 5s;

} // namespace

Guardian::Permission Guardian::request(const void* writer) {
    if (permission_ == Permission::refused) {
        if (owner() != XCB_NONE) {
            return permission_;
        }
        permission_ = Permission::pending;
    }
    writers_.insert(writer);
    if (!helper_.isRunning()) {
        replacements_ = 0;
        launch();
    }
    return permission_;
}

void Guardian::restore(const void* writer, const std::function<void()>& restore) {
    if (isInControl()) {
        restore();
        if (connection_.synchronize()) {
            dismiss(writer);
            return;
        }
    }
    wake();
}

void Guardian::dismiss(const void* writer) {
    writers_.erase(writer);
    if (!writers_.empty()) {
        return;
    }
    if (permission_ == Permission::granted) {
        helper_.kill();
    }
    wake(); // a helper that has not answered yet restores what an earlier Nocta left
}

/// Leaves the helper running without this process. The helper then behaves as if this process had
/// died.
void Guardian::wake() {
    timeout_.invalidate();
    pause_.invalidate();
    helper_.release();
    helperWindow_ = XCB_NONE;
    wasReady_ = false;
    permission_ = Permission::pending;
    writers_.clear();
}

void Guardian::launch() {
    pause_.invalidate();
    const GuardianHello hello{.window = connection_.window()};
    if (!helper_.start(programName) || !helper_.send(&hello, sizeof hello)) {
        answer(0);
        return;
    }
    helper_.whenReadable([this] { receive(); });
    timeout_.start(runLoop_, answerTimeout, Repeat::no, [this] { answer(0); });
}

void Guardian::receive() {
    char byte = 0;
    const auto length = helper_.receive(&byte, 1);
    if (length < 0 && errno == EAGAIN) {
        return;
    }
    answer(length == 1 ? byte : '\0');
}

/// Handles the helper's answer. Any other byte means that the helper has exited or did not answer.
void Guardian::answer(char byte) {
    timeout_.invalidate();
    if (byte == static_cast<char>(GuardianAnswer::ready)) {
        wasReady_ = true;
        helperWindow_ = owner(); // XCB_NONE if it has died since
        change(Permission::granted);
        return;
    }
    helper_.kill();
    if (byte == static_cast<char>(GuardianAnswer::refused)) {
        std::cerr << "nocta: another Nocta controls the gamma of this display" << std::endl;
        writers_.clear();
        change(Permission::refused);
    } else if (wasReady_) {
        replace();
    } else {
        complain("cannot start ", "");
        change(Permission::granted);
    }
}

void Guardian::replace() {
    if (!connection_.synchronize()) {
        return; // the server is gone, and so is the helper
    }
    const auto now = runLoop_.monotonicNow();
    if (now - std::exchange(lastDeath_, now) >= replacementPause) {
        replacements_ = 0;
    }
    if (replacements_++ < maxReplacements) {
        launch();
    } else {
        complain("", " keeps dying");
        change(Permission::granted);
        pause_.start(runLoop_, replacementPause, Repeat::no, [this] { launch(); });
    }
}

void Guardian::change(Permission permission) {
    if (std::exchange(permission_, permission) != permission) {
        changed_.call(permission);
    }
}

/// Reports a problem with the helper, but only once.
void Guardian::complain(const char* before, const char* after) {
    if (!std::exchange(hasComplained_, true)) {
        std::cerr << "nocta: " << before << HelperProcess::path(programName) << after
                  << "; a crash would leave the screen as it is" << std::endl;
    }
}

/// The window of the guardian that runs on this display, or XCB_NONE.
xcb_window_t Guardian::owner() {
    return connection_.ownerOf(connection_.atom(guardianSelection));
}

/// Returns false once another Nocta has taken over the display because the helper was frozen.
bool Guardian::isInControl() {
    const auto window = owner();
    return permission_ == Permission::granted && (window == XCB_NONE || window == helperWindow_);
}

} // namespace nocta
