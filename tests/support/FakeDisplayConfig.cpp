#include "support/FakeDisplayConfig.h"

#include <future>

namespace nocta {

namespace {

constexpr auto displayConfig = "org.gnome.Mutter.DisplayConfig";
constexpr auto displayConfigPath = "/org/gnome/Mutter/DisplayConfig";
constexpr auto description = R"(<node>
<interface name='org.gnome.Mutter.DisplayConfig'>
  <method name='GetResources'/>
  <method name='GetCurrentState'/>
  <method name='GetCrtcGamma'><arg type='u' direction='in'/><arg type='u' direction='in'/></method>
  <method name='SetCrtcGamma'><arg type='u' direction='in'/><arg type='u' direction='in'/>
    <arg type='aq' direction='in'/><arg type='aq' direction='in'/><arg type='aq' direction='in'/>
  </method>
  <signal name='MonitorsChanged'/>
</interface>
<interface name='org.gnome.SettingsDaemon.Color'>
  <property name='NightLightActive' type='b' access='read'/>
</interface></node>)";

constexpr auto usualResources =
    "(uint32 %1, [(uint32 7, int64 1, 0, 0, 1280, 720, 0, uint32 0, [uint32 0], @a{sv} {}), "
    "(8, 2, 0, 0, 0, 0, -1, 0, [0], {})], "
    "[(uint32 1, int64 3, 7, [uint32 7], 'DP-1', [uint32 0], @au [], @a{sv} {})], "
    "[(uint32 0, int64 4, uint32 1280, uint32 720, 60.0, uint32 0)], 4096, 4096)";
constexpr auto usualState =
    "(uint32 %1, [(('DP-1', '', '', ''), [('old', 640, 480, 60.0, 1.0, [1.0], @a{sv} {}), "
    "('now', 1280, 720, 60.0, 1.0, [1.0], {'is-current': <true>})], {%2})], [%3], {%4})";

std::string replace(std::string text, const std::string& mark, const std::string& value) {
    const auto position = text.find(mark);
    return position == std::string::npos ? text : text.replace(position, mark.size(), value);
}

/// Without a description of the reply, GDBus sends any type.
GVariant* parsed(const std::string& text) {
    GError* error = nullptr;
    auto* const value = g_variant_parse(nullptr, text.c_str(), nullptr, nullptr, &error);
    if (value == nullptr) {
        g_error("%s in %s", error->message, text.c_str());
    }
    return value;
}

GVariant* channel(const std::vector<std::uint16_t>& levels) {
    return g_variant_new_fixed_array(G_VARIANT_TYPE_UINT16, levels.data(), levels.size(),
                                     sizeof(std::uint16_t));
}

std::vector<std::uint16_t> channelOf(GVariant* parameters, gsize index) {
    g_autoptr(GVariant) array = g_variant_get_child_value(parameters, index);
    gsize size = 0;
    const auto* const levels = static_cast<const std::uint16_t*>(
        g_variant_get_fixed_array(array, &size, sizeof(std::uint16_t)));
    return {levels, levels + size};
}

} // namespace

FakeDisplayConfig::FakeDisplayConfig(const std::string& busAddress) {
    std::promise<void> isReady;
    thread_ = std::thread([&] {
        g_main_context_push_thread_default(context_);
        serve(busAddress);
        isReady.set_value();
        g_main_loop_run(loop_);
        g_dbus_connection_close_sync(connection_, nullptr, nullptr);
        g_object_unref(connection_);
        while (g_main_context_iteration(context_, FALSE) != FALSE) { // frees what is registered
        }
        g_main_context_pop_thread_default(context_);
    });
    isReady.get_future().wait();
}

FakeDisplayConfig::~FakeDisplayConfig() {
    g_main_context_invoke(
        context_,
        [](void* loop) -> gboolean {
            g_main_loop_quit(static_cast<GMainLoop*>(loop));
            return G_SOURCE_REMOVE;
        },
        loop_);
    thread_.join();
    g_main_loop_unref(loop_);
    g_main_context_unref(context_);
}

void FakeDisplayConfig::serve(const std::string& busAddress) {
    constexpr auto flags =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    connection_ = g_dbus_connection_new_for_address_sync(busAddress.c_str(), flags, nullptr,
                                                         nullptr, nullptr);
    g_autoptr(GDBusNodeInfo) node = g_dbus_node_info_new_for_xml(description, nullptr);
    static const GDBusInterfaceVTable functions = {
        .method_call =
            [](GDBusConnection* /*connection*/, const char* /*sender*/, const char* /*path*/,
               const char* /*interface*/, const char* method, GVariant* parameters,
               GDBusMethodInvocation* invocation, void* self) {
                static_cast<FakeDisplayConfig*>(self)->answer(method, parameters, invocation);
            },
        .get_property =
            [](GDBusConnection* /*connection*/, const char* /*sender*/, const char* /*path*/,
               const char* /*interface*/, const char* /*property*/, GError** /*error*/,
               void* self) {
                gboolean isActive = FALSE;
                static_cast<FakeDisplayConfig*>(self)->with(
                    [&](State& state) { isActive = state.isNightLightActive ? TRUE : FALSE; });
                return g_variant_new_boolean(isActive);
            },
        .set_property = nullptr,
        .padding = {}};
    const auto provide = [&](const char* name, const char* path) {
        g_dbus_connection_register_object(connection_, path,
                                          g_dbus_node_info_lookup_interface(node, name), &functions,
                                          this, nullptr, nullptr);
        constexpr guint doNotQueue = 4;
        g_autoptr(GVariant) reply = g_dbus_connection_call_sync(
            connection_, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
            "RequestName", g_variant_new("(su)", name, doNotQueue), nullptr, G_DBUS_CALL_FLAGS_NONE,
            -1, nullptr, nullptr);
    };
    provide("org.gnome.SettingsDaemon.Color", "/org/gnome/SettingsDaemon/Color");
    provide(displayConfig, displayConfigPath);
}

void FakeDisplayConfig::answer(const std::string& method, GVariant* parameters,
                               GDBusMethodInvocation* invocation) {
    const std::scoped_lock lock(mutex_);
    ++state_.calls[method];
    const auto serial = std::to_string(state_.serial);
    GVariant* reply = nullptr;
    if (method == "GetResources") {
        reply = parsed(state_.resources.empty() ? replace(usualResources, "%1", serial)
                                                : state_.resources);
    } else if (method == "GetCurrentState") {
        auto text = replace(usualState, "%1", serial);
        text = replace(text, "%2", state_.monitorProperties);
        text = replace(text, "%3", state_.logical);
        text = replace(text, "%4", state_.layout);
        reply = parsed(state_.state.empty() ? text : state_.state);
    } else {
        std::uint32_t askedSerial = 0;
        g_variant_get_child(parameters, 0, "u", &askedSerial);
        if (state_.isAlwaysStale || askedSerial != state_.serial) {
            g_dbus_method_invocation_return_dbus_error(
                invocation, "org.freedesktop.DBus.Error.AccessDenied", "stale");
            return;
        }
        if (method == "GetCrtcGamma") {
            reply = g_variant_new("(@aq@aq@aq)", channel(state_.ramp.red),
                                  channel(state_.ramp.green), channel(state_.ramp.blue));
        } else {
            state_.ramp = {.red = channelOf(parameters, 2),
                           .green = channelOf(parameters, 3),
                           .blue = channelOf(parameters, 4)};
            reply = g_variant_new("()");
        }
    }
    g_autoptr(GVariant) body = g_variant_take_ref(reply);
    // Sent as a message, because the methods are described without replies.
    auto* const message =
        g_dbus_message_new_method_reply(g_dbus_method_invocation_get_message(invocation));
    g_dbus_message_set_body(message, body);
    g_dbus_connection_send_message(g_dbus_method_invocation_get_connection(invocation), message,
                                   G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
    g_object_unref(message);
    g_object_unref(invocation);
}

void FakeDisplayConfig::announceMonitors() {
    g_dbus_connection_emit_signal(connection_, nullptr, displayConfigPath, displayConfig,
                                  "MonitorsChanged", nullptr, nullptr);
}

} // namespace nocta
