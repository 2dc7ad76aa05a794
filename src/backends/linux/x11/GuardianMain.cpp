// nocta-guardian: restores the gamma ramps and color matrices of an X server's displays when the
// Nocta process that started it has died. Only Nocta starts the guardian. The two communicate over
// the guardian's standard input as described in `GuardianProtocol.h`. The guardian uses no
// libraries except xcb, so it needs only a few hundred kilobytes of memory.

#include "backends/linux/process/HelperProtocol.h"
#include "backends/linux/x11/ColorMatrices.h"
#include "backends/linux/x11/FactoryRamps.h"
#include "backends/linux/x11/GuardianProtocol.h"
#include "backends/linux/x11/XcbRequests.h"

#include <xcb/randr.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdlib>
#include <poll.h>
#include <unistd.h>

namespace {

using namespace nocta;
using Clock = std::chrono::steady_clock;

constexpr int program = STDIN_FILENO;

/// How long another guardian may take to answer; longer than restoring the screen takes.
constexpr auto answerTimeout = std::chrono::milliseconds(5000);

/// How long another guardian may stay after it has answered: its Nocta may be dying.
constexpr auto predecessorTimeout = std::chrono::milliseconds(2500);

constexpr auto lastRequestsTimeout = std::chrono::milliseconds(1000);

xcb_connection_t* x = nullptr;
xcb_window_t root = XCB_NONE;
xcb_atom_t selection = XCB_ATOM_NONE;
xcb_window_t ownWindow = XCB_NONE;     // owns the selection
xcb_window_t programWindow = XCB_NONE; // XCB_NONE once the server has destroyed it
bool programLives = true;              // according to its socket
bool predecessorLives = false;         // the other guardian has answered

[[noreturn]] void end(int status) {
    if (x != nullptr) {
        xcb_disconnect(x);
    }
    std::_Exit(status);
}

/// Selects a window's structure events. Returns false if the window is already gone.
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
    root = screenOf(x, screenNumber)->root;
    programWindow = watch(window) ? window : xcb_window_t{XCB_NONE};
    selection = internAtom(x, guardianSelection);
    if (selection == XCB_ATOM_NONE) {
        end(EXIT_FAILURE);
    }
    ownWindow = xcb_generate_id(x);
    xcb_create_window(x, XCB_COPY_FROM_PARENT, ownWindow, root, -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
}

/// Sends a message to another guardian. A question contains our window; an answer contains no
/// window.
void send(xcb_window_t guardian, xcb_window_t asking) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = guardian;
    message.type = selection;
    message.data.data32[0] = asking;
    xcb_send_event(x, 0, guardian, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(x);
}

void receive(const xcb_client_message_event_t& message) {
    if (message.type != selection || message.format != 32) {
        return;
    }
    const auto asking = message.data.data32[0];
    if (asking == XCB_NONE) {
        predecessorLives = true;
    } else if (programLives) {
        send(asking, XCB_NONE);
    }
}

/// Handles all pending events and returns whether there were any. Exits if the server is gone, as
/// there is no screen to restore, or if another guardian has taken the selection.
bool readEvents() {
    bool any = false;
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(x)}) {
        switch (event->response_type & 0x7f) {
        case XCB_DESTROY_NOTIFY:
            if (reinterpret_cast<xcb_destroy_notify_event_t&>(*event).window == programWindow) {
                programWindow = XCB_NONE;
            }
            break;
        case XCB_CLIENT_MESSAGE:
            receive(reinterpret_cast<xcb_client_message_event_t&>(*event));
            break;
        case XCB_SELECTION_CLEAR:
            end(EXIT_SUCCESS);
        default:
            break;
        }
        any = true;
    }
    if (xcb_connection_has_error(x) != 0) {
        end(EXIT_FAILURE);
    }
    return any;
}

/// Waits for an event from the server or, if `listen` is set, for Nocta to exit. Returns false if
/// Nocta has exited or the deadline has passed.
bool waitForServer(Clock::time_point deadline, bool listen) {
    xcb_flush(x);
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd awaited[] = {{.fd = xcb_get_file_descriptor(x), .events = POLLIN, .revents = 0},
                        {.fd = listen ? program : -1, .events = 0, .revents = 0}};
    const auto any = left > 0 && poll(awaited, 2, static_cast<int>(left)) > 0;
    programLives = programLives && awaited[1].revents == 0;
    return any && awaited[1].revents == 0;
}

xcb_window_t selectionOwner() {
    const XcbReply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(x, xcb_get_selection_owner(x, selection), nullptr));
    if (!reply) {
        end(EXIT_FAILURE);
    }
    return reply->owner;
}

/// Takes the guardians' selection if it has no owner or still belongs to `frozen`. Returns the
/// previous owner.
xcb_window_t takeSelection(xcb_window_t frozen) {
    xcb_grab_server(x); // no other client may take the selection after the check
    const auto owner = selectionOwner();
    if (owner == XCB_NONE || owner == frozen) {
        xcb_set_selection_owner(x, ownWindow, selection, XCB_CURRENT_TIME);
    } else {
        watch(owner); // we then get an event when it exits
    }
    xcb_ungrab_server(x);
    xcb_flush(x);
    return owner;
}

/// Takes the selection after the previous owner is gone, or if that owner is frozen. Returns false
/// if the owner stays, or if Nocta exits first.
bool takeOver() {
    xcb_window_t asked = XCB_NONE;
    xcb_window_t frozen = XCB_NONE;
    Clock::time_point askedAt;
    while (true) {
        const auto owner = takeSelection(frozen);
        if (owner == XCB_NONE || owner == frozen) {
            return true;
        }
        if (owner != asked) {
            predecessorLives = false;
            send(owner, ownWindow);
            asked = owner;
            askedAt = Clock::now();
        }
        const auto deadline = askedAt + (predecessorLives ? predecessorTimeout : answerTimeout);
        if (!readEvents() && !waitForServer(deadline, true)) {
            if (!programLives || predecessorLives) {
                return false;
            }
            frozen = asked;
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

int main(int argumentCount, char** arguments) {
    if (!isOfHelperProtocol(argumentCount, arguments)) {
        return otherProtocolStatus;
    }
    outliveSession();

    GuardianHello hello{};
    if (read(program, &hello, sizeof hello) != sizeof hello) {
        return EXIT_SUCCESS; // Nocta died before it sent anything
    }
    connect(hello.window);
    const auto answer = takeOver() ? GuardianAnswer::ready : GuardianAnswer::refused;
    const auto isRead = write(program, &answer, 1) == 1;
    if (answer == GuardianAnswer::refused) {
        end(EXIT_SUCCESS);
    }
    if (isRead) { // otherwise an earlier Nocta may still have left something to restore
        waitForEndOfProgram();
    }
    programLives = false;
    // The server must process Nocta's last requests before we restore the screen, not after.
    const auto deadline = Clock::now() + lastRequestsTimeout;
    while (readEvents() || (programWindow != XCB_NONE && waitForServer(deadline, false))) {
    }
    if (selectionOwner() != ownWindow) {
        end(EXIT_SUCCESS); // this process was frozen, and another Nocta has the screen now
    }
    restore(x, root, readFactoryRamps(x, root));
    restore(x, root, readFactoryMatrices(x, root));
    std::free(xcb_get_input_focus_reply(x, xcb_get_input_focus(x), nullptr)); // wait for the server
    end(EXIT_SUCCESS);
}
