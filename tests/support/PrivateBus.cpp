#include "support/PrivateBus.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace nocta {

namespace {

bool accepts(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const auto door = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const auto isOpen =
        connect(door, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(door);
    return isOpen;
}

} // namespace

PrivateBus::PrivateBus(const std::string& variable) {
    static const TemporaryFolder folder;
    // The D-Bus library reads both addresses when it first connects to either bus.
    for (const auto* const name : {"DBUS_SYSTEM_BUS_ADDRESS", "DBUS_SESSION_BUS_ADDRESS"}) {
        setenv(name, ("unix:path=" + folder.path() + "/" + name).c_str(), 1);
    }
    const auto path = folder.path() + "/" + variable;
    const auto configuration = path + ".conf";
    address_ = "unix:path=" + path;
    std::filesystem::remove(path);
    writeFile(configuration,
              "<busconfig><listen>" + address_ +
                  "</listen><auth>EXTERNAL</auth><policy context=\"default\">"
                  "<allow user=\"*\"/><allow own=\"*\"/><allow send_destination=\"*\"/>"
                  "<allow send_requested_reply=\"true\"/><allow receive_sender=\"*\"/>"
                  "</policy></busconfig>");
    process_.emplace(
        std::vector<std::string>{"dbus-daemon", "--config-file=" + configuration, "--nofork"},
        Process::Environment{}, path + ".log");
    if (!waitUntil([&] { return accepts(path); })) {
        throw std::runtime_error("the message bus did not start: " + contentOf(path + ".log"));
    }
}

} // namespace nocta
