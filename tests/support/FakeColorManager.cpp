#include "support/FakeColorManager.h"

namespace nocta {

namespace {

constexpr auto name = "org.gnome.Mutter.ColorManager";
constexpr auto managerPath = "/org/gnome/Mutter/ColorManager";
constexpr auto failed = "org.freedesktop.DBus.Error.Failed";

std::vector<std::uint16_t> channelOf(GVariant* arguments, gsize index) {
    g_autoptr(GVariant) array = g_variant_get_child_value(arguments, index);
    gsize size = 0;
    const auto* const levels = static_cast<const std::uint16_t*>(
        g_variant_get_fixed_array(array, &size, sizeof(std::uint16_t)));
    return {levels, levels + size};
}

} // namespace

FakeColorManager::FakeColorManager(const std::string& busAddress, FakeDisplayConfig& displays)
    : displays_(displays) {
    constexpr auto flags =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    connection_ = g_dbus_connection_new_for_address_sync(busAddress.c_str(), flags, nullptr,
                                                         nullptr, nullptr);
    g_dbus_connection_add_filter(
        connection_,
        [](GDBusConnection* connection, GDBusMessage* message, gboolean isIncoming,
           void* self) -> GDBusMessage* {
            const auto* const path = g_dbus_message_get_path(message);
            if (isIncoming == FALSE || path == nullptr ||
                g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL ||
                !std::string(path).starts_with(managerPath)) {
                return message;
            }
            g_autoptr(GDBusMessage) reply = static_cast<FakeColorManager*>(self)->answer(message);
            if (reply != nullptr) {
                g_dbus_connection_send_message(connection, reply, G_DBUS_SEND_MESSAGE_FLAGS_NONE,
                                               nullptr, nullptr);
            }
            g_object_unref(message);
            return nullptr;
        },
        this, nullptr);
    constexpr guint doNotQueue = 4;
    g_autoptr(GVariant) reply = g_dbus_connection_call_sync(
        connection_, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "RequestName", g_variant_new("(su)", name, doNotQueue), nullptr, G_DBUS_CALL_FLAGS_NONE, -1,
        nullptr, nullptr);
}

FakeColorManager::~FakeColorManager() {
    g_dbus_connection_close_sync(connection_, nullptr, nullptr);
    g_object_unref(connection_);
}

/// Returns null if the call should not be answered.
GDBusMessage* FakeColorManager::answer(GDBusMessage* call) {
    const std::scoped_lock lock(mutex_);
    const std::string method = g_dbus_message_get_member(call);
    ++state_.calls[method];
    if (method == "CalibrateMonitor") {
        const char* connector = nullptr;
        g_variant_get(g_dbus_message_get_body(call), "(&s)", &connector);
        state_.started.emplace_back(connector);
    }
    if (state_.mute.contains(method)) {
        return nullptr;
    }
    if (const auto error = state_.errors.find(method); error != state_.errors.end()) {
        return g_dbus_message_new_method_error_literal(call, error->second.c_str(), "refused");
    }
    auto* body = perform(method, g_dbus_message_get_path(call), g_dbus_message_get_body(call));
    if (body == nullptr) {
        return g_dbus_message_new_method_error_literal(call, failed, "refused");
    }
    if (const auto other = state_.replies.find(method); other != state_.replies.end()) {
        g_variant_unref(g_variant_ref_sink(body));
        body = g_variant_new_parsed(other->second.c_str());
    }
    auto* const reply = g_dbus_message_new_method_reply(call);
    g_dbus_message_set_body(reply, body);
    return reply;
}

/// Returns null if the monitor already has a session, or if the session does not exist.
GVariant* FakeColorManager::perform(const std::string& method, const std::string& path,
                                    GVariant* arguments) {
    if (method == "CalibrateMonitor") {
        for (const auto& [session, connector] : state_.sessions) {
            if (connector == state_.started.back()) {
                return nullptr;
            }
        }
        const auto session =
            std::string(managerPath) + "/Calibration/u" + std::to_string(++lastSession_);
        state_.sessions.emplace(session, state_.started.back());
        load(state_.profile);
        return g_variant_new("(o)", session.c_str());
    }
    if (!state_.sessions.contains(path)) {
        return nullptr;
    }
    if (method == "Get") {
        return g_variant_new("(v)", g_variant_new_uint32(state_.size));
    }
    if (method == "SetCrtcGammaLut") {
        load({.red = channelOf(arguments, 0),
              .green = channelOf(arguments, 1),
              .blue = channelOf(arguments, 2)});
    } else {
        state_.sessions.erase(path);
        load(state_.profile);
    }
    return g_variant_new("()");
}

void FakeColorManager::load(const GammaRamp& ramp) {
    if (ramp.size() > 0) {
        displays_.with([&](auto& state) { state.ramp = ramp; });
    }
}

} // namespace nocta
