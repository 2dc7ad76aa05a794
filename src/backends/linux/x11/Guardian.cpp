#include "backends/linux/x11/Guardian.h"

#include "backends/linux/x11/GuardianProtocol.h"

#include <algorithm>
#include <chrono>
#include <iostream>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr auto programName = "nocta-guardian";
constexpr auto answerTimeout = 5s; // above what the helper itself waits
constexpr int mostReplacements = 3;

} // namespace

bool Guardian::start() {
    if (outcome_ == Outcome::refused && hasOwner()) {
        return false;
    }
    if (outcome_ == Outcome::none || outcome_ == Outcome::refused) {
        outcome_ = launch();
        if (outcome_ == Outcome::refused) {
            std::cerr << "nocta: another Nocta controls the gamma of this display" << std::endl;
            return false;
        }
        if (outcome_ == Outcome::unguarded) {
            std::cerr << "nocta: cannot start " << HelperProcess::path(programName)
                      << "; a crash would leave the screen as it is" << std::endl;
        }
    }
    ++writers_;
    return true;
}

/// Whether some guardian works on this display.
bool Guardian::hasOwner() {
    auto* const x = connection_.get();
    const XcbReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        x, xcb_get_selection_owner(x, connection_.atom(guardianSelection)), nullptr));
    connection_.finishTurn();
    return !reply || reply->owner != XCB_NONE;
}

void Guardian::dismiss() {
    writers_ = std::max(writers_ - 1, 0);
    if (writers_ == 0) {
        helper_.kill();
        outcome_ = Outcome::none;
    }
}

void Guardian::wake() {
    helper_.release();
    outcome_ = Outcome::none;
    writers_ = 0;
}

Guardian::Outcome Guardian::launch() {
    const GuardianHello hello{.window = connection_.window()};
    if (!helper_.start(programName) || !helper_.send(&hello, sizeof hello)) {
        helper_.kill();
        return Outcome::unguarded;
    }
    const auto answer = helper_.answer(answerTimeout);
    if (answer != static_cast<char>(GuardianAnswer::ready)) {
        helper_.kill();
        return answer ? Outcome::refused : Outcome::unguarded;
    }
    helper_.whenEnded([this] { replace(); });
    return Outcome::guarded;
}

void Guardian::replace() {
    if (!connection_.synchronize()) {
        return; // the server has gone, and the helper after it
    }
    if (++replacements_ > mostReplacements || launch() != Outcome::guarded) {
        std::cerr << "nocta: " << HelperProcess::path(programName)
                  << " keeps dying; a crash would leave the screen as it is" << std::endl;
    }
}

} // namespace nocta
