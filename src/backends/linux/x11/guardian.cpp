// nocta-guardian: gives the factory gamma ramps of an X server's displays back when the Nocta that
// started it has died. It is started by Nocta alone and speaks `GuardianProtocol.h` on its
// standard input. It keeps no more than those ramps and one connection to the X server, so that it
// costs a few hundred kilobytes.

#include "backends/linux/x11/GuardianProtocol.h"

#include <xcb/randr.h>
#include <xcb/xcb.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace nocta;
using Clock = std::chrono::steady_clock;

constexpr int nocta = STDIN_FILENO;
constexpr auto predecessorTimeout = std::chrono::milliseconds(2500);
constexpr auto lastRequestsTimeout = std::chrono::milliseconds(1000);

struct HeldRamp {
    xcb_randr_crtc_t crtc = XCB_NONE;
    std::vector<std::uint16_t> levels; // red, green and blue, one after the other
};

xcb_connection_t* x = nullptr;
xcb_window_t root = XCB_NONE;

[[noreturn]] void end(int status) {
    if (x != nullptr) {
        xcb_disconnect(x);
    }
    std::_Exit(status);
}

/// False when Nocta is gone before the whole record has come.
bool readRecord(void* record, std::size_t length) {
    auto* rest = static_cast<char*>(record);
    while (length > 0) {
        const auto got = read(nocta, rest, length);
        if (got <= 0) {
            return false;
        }
        rest += got;
        length -= static_cast<std::size_t>(got);
    }
    return true;
}

void answer(GuardianAnswer word) {
    static_cast<void>(!write(nocta, &word, 1)); // if nobody listens, reading will tell
}

void connect(xcb_window_t noctaWindow) {
    int screenNumber = 0;
    x = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(x) != 0) {
        end(EXIT_FAILURE);
    }
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(x));
    for (; screenNumber > 0 && screens.rem > 1; --screenNumber) {
        xcb_screen_next(&screens);
    }
    root = screens.data->root;
    std::uint32_t const structure = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(x, noctaWindow, XCB_CW_EVENT_MASK, &structure);
}

bool windowExists(xcb_window_t window) {
    auto* const reply =
        xcb_get_window_attributes_reply(x, xcb_get_window_attributes(x, window), nullptr);
    std::free(reply);
    return reply != nullptr;
}

/// Waits until the server has destroyed a window of which this client has the structure events.
/// False after the time-out, or, if asked to listen, when Nocta has gone.
bool waitForEndOf(xcb_window_t window, Clock::duration timeout, bool listen) {
    const auto deadline = Clock::now() + timeout;
    while (windowExists(window)) {
        if (auto* const event = xcb_poll_for_event(x)) {
            std::free(event); // which one does not matter: ask again
            continue;
        }
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        pollfd awaited[] = {{.fd = xcb_get_file_descriptor(x), .events = POLLIN, .revents = 0},
                            {.fd = listen ? nocta : -1, .events = 0, .revents = 0}};
        if (left <= 0 || poll(awaited, 2, static_cast<int>(left)) <= 0 || awaited[1].revents != 0) {
            return false;
        }
    }
    return true;
}

/// Becomes the owner of the guardians' selection, after an earlier owner has gone. False when
/// that one stays.
bool takeOver() {
    auto* const atomReply = xcb_intern_atom_reply(
        x, xcb_intern_atom(x, 0, std::strlen(guardianSelection), guardianSelection), nullptr);
    if (atomReply == nullptr) {
        end(EXIT_FAILURE);
    }
    const auto selection = atomReply->atom;
    std::free(atomReply);
    const auto window = xcb_generate_id(x);
    xcb_create_window(x, XCB_COPY_FROM_PARENT, window, root, -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);

    const auto deadline = Clock::now() + predecessorTimeout;
    while (true) {
        xcb_grab_server(x); // nobody else may take the selection between looking and taking
        auto* const reply =
            xcb_get_selection_owner_reply(x, xcb_get_selection_owner(x, selection), nullptr);
        if (reply == nullptr) {
            end(EXIT_FAILURE);
        }
        const auto owner = reply->owner;
        std::free(reply);
        if (owner == XCB_NONE) {
            xcb_set_selection_owner(x, window, selection, XCB_CURRENT_TIME);
        } else {
            std::uint32_t const structure = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
            xcb_change_window_attributes(x, owner, XCB_CW_EVENT_MASK, &structure);
        }
        xcb_ungrab_server(x);
        xcb_flush(x);
        if (owner == XCB_NONE) {
            return true;
        }
        if (!waitForEndOf(owner, deadline - Clock::now(), true)) {
            return false;
        }
    }
}

/// Collects ramps until Nocta's end of the socket closes.
std::vector<HeldRamp> serve() {
    std::vector<HeldRamp> held;
    while (true) {
        pollfd awaited[] = {{.fd = nocta, .events = POLLIN, .revents = 0},
                            {.fd = xcb_get_file_descriptor(x), .events = POLLIN, .revents = 0}};
        poll(awaited, 2, -1);
        while (auto* const event = xcb_poll_for_event(x)) {
            std::free(event);
        }
        if (xcb_connection_has_error(x) != 0) {
            end(EXIT_FAILURE); // no server, no screen to give back
        }
        if (awaited[0].revents == 0) {
            continue;
        }
        GuardedRamp record{};
        HeldRamp ramp;
        if (!readRecord(&record, sizeof record) || record.size > largestRamp) {
            return held;
        }
        ramp.crtc = record.crtc;
        ramp.levels.resize(std::size_t{3} * record.size);
        if (!readRecord(ramp.levels.data(), ramp.levels.size() * sizeof(std::uint16_t))) {
            return held; // Nocta died before it could write to that CRTC
        }
        std::erase_if(held, [&](const HeldRamp& other) { return other.crtc == ramp.crtc; });
        held.push_back(std::move(ramp));
    }
}

void giveBack(const std::vector<HeldRamp>& held) {
    for (const auto& ramp : held) {
        const auto size = ramp.levels.size() / 3;
        const auto* const red = ramp.levels.data();
        xcb_randr_set_crtc_gamma(x, ramp.crtc, static_cast<std::uint16_t>(size), red, red + size,
                                 red + 2 * size);
    }
    std::free(xcb_get_input_focus_reply(x, xcb_get_input_focus(x), nullptr)); // wait for all
}

} // namespace

int main() {
    // Whoever ends the session ends Nocta too, and this process is there for what happens then.
    for (const auto signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE}) {
        std::signal(signal, SIG_IGN);
    }
    setsid();

    GuardianHello hello{};
    if (!readRecord(&hello, sizeof hello)) {
        return EXIT_SUCCESS;
    }
    connect(hello.window);
    if (!takeOver()) {
        answer(GuardianAnswer::refused);
        end(EXIT_SUCCESS);
    }
    answer(GuardianAnswer::ready);
    const auto held = serve();
    // What Nocta had still sent before it died must not be served after its ramps are given back.
    waitForEndOf(hello.window, lastRequestsTimeout, false);
    giveBack(held);
    end(EXIT_SUCCESS);
}
