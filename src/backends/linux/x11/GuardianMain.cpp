// nocta-guardian: gives the gamma ramps and colour matrices that an X server's displays had back
// when the Nocta that started it has died. It is started by Nocta alone and speaks
// `GuardianProtocol.h` on its standard input. It keeps no more than one connection to the X server,
// so that it costs a few hundred kilobytes.

#include "backends/linux/x11/ColorMatrices.h"
#include "backends/linux/x11/FactoryRamps.h"
#include "backends/linux/x11/GuardianProtocol.h"

#include <xcb/randr.h>
#include <xcb/xcb.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <unistd.h>

namespace {

using namespace nocta;
using Clock = std::chrono::steady_clock;

constexpr int program = STDIN_FILENO;
constexpr auto predecessorTimeout = std::chrono::milliseconds(2500);
constexpr auto lastRequestsTimeout = std::chrono::milliseconds(1000);

xcb_connection_t* x = nullptr;
xcb_window_t root = XCB_NONE;
xcb_window_t programWindow = XCB_NONE; // none once the server has destroyed it

[[noreturn]] void end(int status) {
    if (x != nullptr) {
        xcb_disconnect(x);
    }
    std::_Exit(status);
}

/// Asks for a window's structure events; false where it is gone already.
bool watch(xcb_window_t window) {
    std::uint32_t const structure = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    auto* const error = xcb_request_check(
        x, xcb_change_window_attributes_checked(x, window, XCB_CW_EVENT_MASK, &structure));
    std::free(error);
    return error == nullptr;
}

void connect(xcb_window_t window) {
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
    programWindow = watch(window) ? window : xcb_window_t{XCB_NONE};
}

/// Takes note of what has happened and tells whether anything has. Without a server there is no
/// screen to give back.
bool readEvents() {
    bool any = false;
    while (auto* const event = xcb_poll_for_event(x)) {
        if ((event->response_type & 0x7f) == XCB_DESTROY_NOTIFY &&
            reinterpret_cast<xcb_destroy_notify_event_t*>(event)->window == programWindow) {
            programWindow = XCB_NONE;
        }
        std::free(event);
        any = true;
    }
    if (xcb_connection_has_error(x) != 0) {
        end(EXIT_FAILURE);
    }
    return any;
}

/// Waits until the server has something to say, or, if asked to listen, until Nocta has gone.
/// False then, and at the deadline.
bool waitForServer(Clock::time_point deadline, bool listen) {
    xcb_flush(x);
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd awaited[] = {{.fd = xcb_get_file_descriptor(x), .events = POLLIN, .revents = 0},
                        {.fd = listen ? program : -1, .events = 0, .revents = 0}};
    return left > 0 && poll(awaited, 2, static_cast<int>(left)) > 0 && awaited[1].revents == 0;
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
            watch(owner); // its end is the event that is waited for
        }
        xcb_ungrab_server(x);
        xcb_flush(x);
        if (owner == XCB_NONE) {
            return true;
        }
        if (!readEvents() && !waitForServer(deadline, true)) {
            return false;
        }
    }
}

void waitForEndOfProgram() {
    pollfd awaited[] = {{.fd = program, .events = POLLIN, .revents = 0},
                        {.fd = xcb_get_file_descriptor(x), .events = POLLIN, .revents = 0}};
    do {
        readEvents();
        poll(awaited, 2, -1);
    } while (awaited[0].revents == 0);
}

} // namespace

int main() {
    // Whoever ends the session ends Nocta too, and this process is there for what happens then.
    for (const auto signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE}) {
        std::signal(signal, SIG_IGN);
    }
    setsid();

    GuardianHello hello{};
    if (read(program, &hello, sizeof hello) != sizeof hello) {
        return EXIT_SUCCESS; // Nocta died before it had said a word
    }
    connect(hello.window);
    const auto answer = takeOver() ? GuardianAnswer::ready : GuardianAnswer::refused;
    if (write(program, &answer, 1) != 1 || answer == GuardianAnswer::refused) {
        end(EXIT_SUCCESS);
    }
    waitForEndOfProgram();
    // What Nocta had still sent before it died must not be served after the screen is given back.
    const auto deadline = Clock::now() + lastRequestsTimeout;
    while (readEvents() || (programWindow != XCB_NONE && waitForServer(deadline, false))) {
    }
    giveBack(x, root, readFactoryRamps(x, root));
    giveBack(x, root, readFactoryMatrices(x, root));
    std::free(xcb_get_input_focus_reply(x, xcb_get_input_focus(x), nullptr)); // wait for it
    end(EXIT_SUCCESS);
}
