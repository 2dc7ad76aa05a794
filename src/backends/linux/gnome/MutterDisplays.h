#pragma once

#include "backends/linux/SessionDisplays.h"
#include "backends/linux/bus/BusSignal.h"
#include "base/CallbackList.h"
#include "base/Subscription.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantList>

#include <cstdint>
#include <functional>
#include <string>

namespace nocta {

/// The monitors of a GNOME session, as its compositor lists them on the session bus. In a Wayland
/// session, the X server only invents outputs. Frames are in the compositor's coordinates, which
/// are also those of X clients. The list is reread when the compositor reports a change.
class MutterDisplays final : public SessionDisplays {
public:
    /// Waits for the compositor's answers, but no longer than two seconds.
    MutterDisplays(const QDBusConnection& bus, NotificationCenter& notificationCenter);

    /// Whether the compositor has answered.
    bool isAvailable() const { return isAvailable_; }

    /// The CRTC that drives a display, or `std::nullopt`.
    std::optional<std::uint32_t> crtcOf(DisplayId display) const { return find(display).crtc; }

    /// Builds a call of a method that wants the number of the compositor's current configuration.
    QDBusMessage call(const char* method, const QVariantList& arguments) const;

    /// Asks for the current configuration again, and then calls back.
    void refresh();
    Subscription observeRefresh(std::function<void()> callback) {
        return refreshed_.add(std::move(callback));
    }

private:
    void read(const QDBusMessage& resources, const QDBusMessage& state);

    QDBusConnection bus_;
    bool isAvailable_ = false;
    std::uint32_t serial_ = 0;
    CallbackList<> refreshed_;
    BusSignal monitorsChanged_{[this] { refresh(); }};
};

} // namespace nocta
