// nocta-ramps: restores the gamma ramps of a GNOME session when Nocta wants that or has died. The
// compositor keeps a ramp no matter what happens to the program that set it. See
// `RampKeeperProtocol.h` for the messages and arguments.

#include "backends/linux/files/FileLock.h"
#include "backends/linux/files/PrivateFolder.h"
#include "backends/linux/gnome/RampKeeperProtocol.h"
#include "backends/linux/gnome/RampNotes.h"
#include "backends/linux/process/HelperProtocol.h"

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <gio/gio.h>
#include <optional>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

using namespace nocta;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto displayConfig = "org.gnome.Mutter.DisplayConfig";
constexpr auto displayConfigPath = "/org/gnome/Mutter/DisplayConfig";
constexpr auto bus = "org.freedesktop.DBus";
constexpr auto busPath = "/org/freedesktop/DBus";
constexpr auto resourcesType = "(ua(uxiiiiiuaua{sv})a(uxiausauaua{sv})a(uxuudu)ii)";

constexpr int callTimeout = 2000; // milliseconds
constexpr auto lockTimeout = 5s;
/// How long the bus may take to deliver the last requests of a Nocta that has died.
constexpr auto lastRequestsTimeout = 1s;
constexpr auto pollInterval = 2ms;

GDBusConnection* connection = nullptr;

/// A call of a D-Bus service. `arguments` may be null. Returns null if it fails; the caller owns
/// the result.
GVariant* call(const char* service, const char* path, const char* interface, const char* method,
               GVariant* arguments, const char* replyType) {
    return g_dbus_connection_call_sync(connection, service, path, interface, method, arguments,
                                       G_VARIANT_TYPE(replyType), G_DBUS_CALL_FLAGS_NO_AUTO_START,
                                       callTimeout, nullptr, nullptr);
}

GVariant* callDisplayConfig(const char* method, GVariant* arguments, const char* replyType) {
    return call(displayConfig, displayConfigPath, displayConfig, method, arguments, replyType);
}

/// The compositor's configuration at some time.
struct Resources {
    std::uint32_t serial = 0;
    std::vector<std::uint32_t> activeCrtcs;
};

std::optional<Resources> readResources() {
    g_autoptr(GVariant) reply = callDisplayConfig("GetResources", nullptr, resourcesType);
    if (reply == nullptr) {
        return std::nullopt;
    }
    Resources resources;
    g_variant_get_child(reply, 0, "u", &resources.serial);
    g_autoptr(GVariant) crtcs = g_variant_get_child_value(reply, 1);
    for (gsize i = 0; i < g_variant_n_children(crtcs); ++i) {
        constexpr gsize modeMember = 6;
        g_autoptr(GVariant) crtc = g_variant_get_child_value(crtcs, i);
        std::uint32_t id = 0;
        gint32 mode = -1;
        g_variant_get_child(crtc, 0, "u", &id);
        g_variant_get_child(crtc, modeMember, "i", &mode);
        if (mode >= 0) {
            resources.activeCrtcs.push_back(id);
        }
    }
    return resources;
}

std::vector<std::uint16_t> readChannel(GVariant* reply, gsize index) {
    g_autoptr(GVariant) array = g_variant_get_child_value(reply, index);
    gsize size = 0;
    const auto* const levels = static_cast<const std::uint16_t*>(
        g_variant_get_fixed_array(array, &size, sizeof(std::uint16_t)));
    return {levels, levels + size};
}

/// Returns an empty ramp if the CRTC has none.
GammaRamp readRamp(std::uint32_t serial, std::uint32_t crtc) {
    g_autoptr(GVariant) reply =
        callDisplayConfig("GetCrtcGamma", g_variant_new("(uu)", serial, crtc), "(aqaqaq)");
    if (reply == nullptr) {
        return {};
    }
    GammaRamp ramp{.red = readChannel(reply, 0),
                   .green = readChannel(reply, 1),
                   .blue = readChannel(reply, 2)};
    const auto isWhole = ramp.green.size() == ramp.size() && ramp.blue.size() == ramp.size();
    return isWhole ? ramp : GammaRamp();
}

GVariant* channel(const std::vector<std::uint16_t>& levels) {
    return g_variant_new_fixed_array(G_VARIANT_TYPE_UINT16, levels.data(), levels.size(),
                                     sizeof(std::uint16_t));
}

bool writeRamp(std::uint32_t serial, std::uint32_t crtc, const GammaRamp& ramp) {
    g_autoptr(GVariant) reply =
        callDisplayConfig("SetCrtcGamma",
                          g_variant_new("(uu@aq@aq@aq)", serial, crtc, channel(ramp.red),
                                        channel(ramp.green), channel(ramp.blue)),
                          "()");
    return reply != nullptr;
}

/// Names this run of the compositor: a bus never gives the same unique name to two processes.
/// Returns an empty string if there is no compositor.
std::string compositorRun() {
    g_autoptr(GVariant) id = call(bus, busPath, bus, "GetId", nullptr, "(s)");
    g_autoptr(GVariant) owner =
        call(bus, busPath, bus, "GetNameOwner", g_variant_new("(s)", displayConfig), "(s)");
    if (id == nullptr || owner == nullptr) {
        return "";
    }
    const char* idText = nullptr;
    const char* ownerText = nullptr;
    g_variant_get(id, "(&s)", &idText);
    g_variant_get(owner, "(&s)", &ownerText);
    return std::string(idText) + " " + ownerText;
}

/// Whether GNOME's own night light tints the screen now, so that the ramps are not the factory's.
bool isNightLightActive() {
    g_autoptr(GVariant) reply =
        call("org.gnome.SettingsDaemon.Color", "/org/gnome/SettingsDaemon/Color",
             "org.freedesktop.DBus.Properties", "Get",
             g_variant_new("(ss)", "org.gnome.SettingsDaemon.Color", "NightLightActive"), "(v)");
    if (reply == nullptr) {
        return false;
    }
    g_autoptr(GVariant) value = nullptr;
    g_variant_get(reply, "(v)", &value);
    return g_variant_is_of_type(value, G_VARIANT_TYPE_BOOLEAN) != FALSE &&
           g_variant_get_boolean(value) != FALSE;
}

GammaRamp straightRamp(std::size_t size) {
    const std::vector<float> identity = {0.0F, 1.0F};
    const auto levels = laidOver(identity, {}, size);
    return {.red = levels, .green = levels, .blue = levels};
}

/// Adds the ramps of active CRTCs that the notes do not contain, and saves the notes. Returns false
/// if nothing can be noted.
bool note(const std::string& file, RampNotes& notes) {
    const auto resources = readResources();
    if (!resources || notes.run.empty()) {
        return false;
    }
    const auto isTinted = isNightLightActive();
    for (const auto crtc : resources->activeCrtcs) {
        if (notes.ramps.contains(crtc)) {
            continue;
        }
        auto ramp = readRamp(resources->serial, crtc);
        if (ramp.size() > 0) {
            notes.ramps.emplace(crtc, isTinted ? straightRamp(ramp.size()) : std::move(ramp));
        }
    }
    return writeRampNotes(file, notes);
}

/// Restores the noted ramps. If the configuration changes meanwhile, asks for it once more.
void restore(const std::string& file, const RampNotes& notes) {
    auto isRestored = notes.ramps.empty();
    for (int attempt = 0; attempt < 2 && !isRestored; ++attempt) {
        const auto resources = readResources();
        isRestored = resources.has_value();
        for (const auto& [crtc, ramp] : notes.ramps) {
            isRestored = isRestored && writeRamp(resources->serial, crtc, ramp);
        }
    }
    if (isRestored || compositorRun() != notes.run) { // another compositor has its own ramps
        unlink(file.c_str());
    }
}

/// Waits until the bus has delivered everything that a dead Nocta has sent.
void waitForLastRequests(const std::string& program) {
    const auto deadline = Clock::now() + lastRequestsTimeout;
    while (Clock::now() < deadline) {
        g_autoptr(GVariant) reply =
            call(bus, busPath, bus, "NameHasOwner", g_variant_new("(s)", program.c_str()), "(b)");
        gboolean isConnected = FALSE;
        if (reply != nullptr) {
            g_variant_get(reply, "(b)", &isConnected);
        }
        if (isConnected == FALSE) {
            return;
        }
        std::this_thread::sleep_for(pollInterval);
    }
}

std::optional<RampKeeperCommand> readCommand() {
    auto command = RampKeeperCommand::end;
    return read(STDIN_FILENO, &command, 1) == 1 ? std::optional(command) : std::nullopt;
}

void answer(bool isReady) {
    const auto byte = isReady ? RampKeeperAnswer::ready : RampKeeperAnswer::failed;
    // If Nocta is gone, the next command will be missing too.
    [[maybe_unused]] const auto size = write(STDOUT_FILENO, &byte, 1);
}

} // namespace

int main(int argumentCount, char** arguments) {
    if (!isOfHelperProtocol(argumentCount, arguments)) {
        return otherProtocolStatus;
    }
    outliveSession();
    if (argumentCount != 4) {
        return EXIT_FAILURE; // only Nocta starts this program
    }
    const std::string file = arguments[1];
    const std::string program = arguments[2];
    createPrivateFolders(std::filesystem::path(file).parent_path());
    const FileLock lock(file + ".lock");
    connection = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    if (connection == nullptr || !lock.acquire(lockTimeout)) {
        answer(false);
        return EXIT_FAILURE;
    }
    g_dbus_connection_set_exit_on_close(connection, FALSE);

    auto notes = readRampNotes(file);
    const auto run = compositorRun();
    if (notes.run != run) {
        notes = {.run = run, .ramps = {}};
    }
    auto hasEnded = false;
    while (const auto command = readCommand()) {
        hasEnded = command == RampKeeperCommand::end;
        if (command == RampKeeperCommand::begin) {
            restore(file, notes);
            notes.ramps.clear();
        }
        if (!hasEnded) {
            answer(note(file, notes));
        }
    }
    if (!hasEnded) {
        waitForLastRequests(program);
    }
    restore(file, notes);
    return EXIT_SUCCESS;
}
