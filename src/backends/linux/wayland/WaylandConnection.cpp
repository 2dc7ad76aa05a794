#include "backends/linux/wayland/WaylandConnection.h"

#include <algorithm>
#include <poll.h>
#include <utility>

namespace nocta {

namespace {

/// Flushes, waits for events for at most `time`, and delivers them.
void dispatch(wl_display* display, std::chrono::milliseconds time) {
    while (wl_display_prepare_read(display) != 0) {
        if (wl_display_dispatch_pending(display) < 0) {
            return; // after an error, the remaining events stay in the queue
        }
    }
    // Requests that a busy compositor does not accept now are sent in the next turn.
    wl_display_flush(display);
    pollfd readable{.fd = wl_display_get_fd(display), .events = POLLIN, .revents = 0};
    if (poll(&readable, 1, static_cast<int>(time.count())) > 0) {
        wl_display_read_events(display);
    } else {
        wl_display_cancel_read(display);
    }
    wl_display_dispatch_pending(display);
}

} // namespace

WaylandConnection::WaylandConnection(RunLoop& runLoop)
    : display_(wl_display_connect(nullptr)), finishTurn_(runLoop, [this] { readEvents(); }) {
    if (display_ == nullptr) {
        finishTurn(); // reports the loss
        return;
    }
    static constexpr wl_registry_listener listener{
        .global =
            [](void* self, wl_registry* /*registry*/, std::uint32_t name, const char* interface,
               std::uint32_t version) {
                auto& connection = *static_cast<WaylandConnection*>(self);
                connection.globals_[name] = {interface, version};
                connection.observers_.call();
            },
        .global_remove =
            [](void* self, wl_registry* /*registry*/, std::uint32_t name) {
                auto& connection = *static_cast<WaylandConnection*>(self);
                connection.globals_.erase(name);
                connection.observers_.call();
            }};
    registry_ = wl_display_get_registry(display_);
    wl_registry_add_listener(registry_, &listener, this);
    synchronize(maxWaitAtStart);
    readable_ =
        std::make_unique<QSocketNotifier>(wl_display_get_fd(display_), QSocketNotifier::Read);
    QObject::connect(readable_.get(), &QSocketNotifier::activated, [this] { readEvents(); });
}

WaylandConnection::~WaylandConnection() {
    readable_.reset();
    if (display_ != nullptr) {
        wl_registry_destroy(registry_);
        wl_display_disconnect(display_);
    }
}

std::optional<std::uint32_t> WaylandConnection::firstGlobal(const wl_interface& interface) const {
    const auto found = std::ranges::find_if(
        globals_, [&](const auto& entry) { return entry.second.interface == interface.name; });
    return found == globals_.end() ? std::nullopt : std::optional(found->first);
}

Subscription WaylandConnection::whenProcessed(std::function<void()> done) {
    struct Pending {
        wl_callback* callback;
        std::function<void()> done;
    };
    static constexpr wl_callback_listener listener{
        .done = [](void* data, wl_callback* /*callback*/, std::uint32_t /*serial*/) {
            auto& pending = *static_cast<Pending*>(data);
            wl_callback_destroy(std::exchange(pending.callback, nullptr));
            std::exchange(pending.done, nullptr)();
        }};
    auto pending = std::make_shared<Pending>(Pending{wl_display_sync(display_), std::move(done)});
    wl_callback_add_listener(pending->callback, &listener, pending.get());
    finishTurn();
    return Subscription([pending] {
        if (pending->callback != nullptr) {
            wl_callback_destroy(pending->callback);
        }
    });
}

bool WaylandConnection::synchronize(std::chrono::milliseconds maxTime) {
    if (!isOpen()) {
        return false;
    }
    bool isProcessed = false;
    const auto answer = whenProcessed([&] { isProcessed = true; });
    const auto deadline = std::chrono::steady_clock::now() + maxTime;
    while (!isProcessed && isOpen()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) {
            break;
        }
        dispatch(display_, left);
    }
    return isProcessed;
}

void* WaylandConnection::bindAny(std::uint32_t name, const wl_interface& interface,
                                 std::uint32_t version) {
    const auto offered = globals_.at(name).version;
    finishTurn();
    return wl_registry_bind(registry_, name, &interface, std::min(version, offered));
}

void WaylandConnection::readEvents() {
    if (isOpen()) {
        dispatch(display_, {});
    }
    if (!isOpen() && !std::exchange(lossIsReported_, true)) {
        if (readable_ != nullptr) {
            readable_->setEnabled(false);
        }
        if (onLost) {
            onLost();
        }
    }
}

} // namespace nocta
