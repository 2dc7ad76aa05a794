#include "backends/linux/x11/X11Connection.h"

#include <utility>

namespace nocta {

X11Connection::X11Connection(RunLoop& runLoop)
    : finishTurn_(runLoop, [this] {
          xcb_flush(connection_);
          readEvents();
      }) {
    connection_ = xcb_connect(nullptr, &screenNumber_);
    if (!isOpen()) {
        return;
    }
    screen_ = screenOf(connection_, screenNumber_);
    window_ = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_flush(connection_);
    readable_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_),
                                                  QSocketNotifier::Read);
    QObject::connect(readable_.get(), &QSocketNotifier::activated, [this] { readEvents(); });
}

X11Connection::~X11Connection() {
    readable_.reset();
    xcb_disconnect(connection_);
}

void X11Connection::selectRootEvents(std::uint32_t mask) {
    rootEvents_ |= mask;
    xcb_change_window_attributes(connection_, root(), XCB_CW_EVENT_MASK, &rootEvents_);
    finishTurn();
}

xcb_window_t X11Connection::ownerOf(xcb_atom_t selection) {
    const auto owner = selectionOwner(connection_, selection);
    finishTurn();
    return owner;
}

bool X11Connection::synchronize() {
    const XcbReply<xcb_get_input_focus_reply_t> answered(xcb_get_input_focus_reply(
        connection_, xcb_get_input_focus(connection_), nullptr)); // any request with a reply
    finishTurn();
    return answered != nullptr;
}

void X11Connection::catchUp() {
    synchronize();
    readEvents();
}

void X11Connection::readEvents() {
    while (const XcbReply<Event> event{xcb_poll_for_event(connection_)}) {
        observers_.call(*event);
    }
    if (!isOpen() && !std::exchange(lossIsReported_, true)) {
        readable_->setEnabled(false);
        if (onLost) {
            onLost();
        }
    }
}

} // namespace nocta
