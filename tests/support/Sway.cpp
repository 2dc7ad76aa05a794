#include "support/Sway.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

namespace nocta {

namespace {

constexpr uid_t nobody = 65534;

} // namespace

Sway::Sway() {
    const auto& folder = folder_.path();
    // Sway refuses to run as root, and another user may not have access to the test program's
    // folder.
    const auto user = geteuid() == 0 ? nobody : geteuid();
    std::filesystem::copy(programFolder() + "/libnocta_gamma_log.so", folder);
    writeFile(folder + "/config", "xwayland disable\noutput * resolution 1280x720\n");
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
    std::vector<std::string> command = {"sway", "-c", folder + "/config"};
    if (user != geteuid()) {
        const auto id = std::to_string(user);
        command.insert(command.begin(), {"setpriv", "--pdeathsig", "KILL", "--reuid", id, "--regid",
                                         id, "--clear-groups"});
        if (chown(folder.c_str(), user, user) != 0) {
            throw std::runtime_error("cannot change the owner of " + folder);
        }
    }
    process_ = std::make_unique<Process>(
        command,
        Process::Environment{
            {"XDG_RUNTIME_DIR", folder},
            {"WAYLAND_DISPLAY", ""},
            {"DISPLAY", ""},
            {"WLR_BACKENDS", "headless"},
            {"WLR_HEADLESS_OUTPUTS", "1"},
            {"WLR_RENDERER", "pixman"},
            {"WLR_LIBINPUT_NO_DEVICES", "1"},
            {"GAMMA_LOG", folder + "/gamma"},
            // Newer versions of sway would accept ramps that their outputs refuse, and then stop
            // showing anything.
            {"LD_PRELOAD", canLogGamma() ? folder + "/libnocta_gamma_log.so" : ""}},
        folder + "/output");
    commands_ = folder + "/sway-ipc." + std::to_string(user) + "." +
                std::to_string(process_->id()) + ".sock";
    setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
    setenv("WAYLAND_DISPLAY", display().c_str(), 1);
    const auto isReady = waitUntil([&] {
        return std::filesystem::exists(commands_) &&
               std::filesystem::exists(folder + "/" + display());
    });
    if (!isReady) {
        throw std::runtime_error("sway did not start: " + contentOf(folder + "/output"));
    }
}

bool Sway::canLogGamma() {
    const std::filesystem::directory_iterator folders("/usr/lib");
    return std::any_of(begin(folders), end(folders), [](const auto& folder) {
        return std::filesystem::exists(folder.path() / "libwlroots.so.10") ||
               std::filesystem::exists(folder.path() / "libwlroots.so.11"); // 0.15, 0.16
    });
}

void Sway::addOutput() const {
    message({"create_output"});
}

void Sway::kill() {
    process_->signal(SIGKILL);
    process_->wait();
}

std::vector<std::vector<std::uint16_t>> Sway::gammaOf(const std::string& output) const {
    std::istringstream log(contentOf(folder_.path() + "/gamma"));
    std::vector<std::vector<std::uint16_t>> events;
    // The last line may be incomplete.
    for (std::string line; std::getline(log, line) && !log.eof();) {
        std::istringstream words(line);
        int number = 0;
        words >> number;
        if (output == "HEADLESS-" + std::to_string(number + 1)) {
            events.emplace_back(std::istream_iterator<std::uint16_t>(words),
                                std::istream_iterator<std::uint16_t>());
        }
    }
    return events;
}

std::array<int, 3> Sway::colorAt(const std::string& output, int x, int y) const {
    const TemporaryFolder folder;
    const auto file = folder.path() + "/picture.ppm";
    if (runToEnd({"grim", "-t", "ppm", "-o", output, file}) != 0) {
        throw std::runtime_error("cannot take a screenshot of " + output);
    }
    std::ifstream picture(file, std::ios::binary);
    std::string format;
    int width = 0;
    int height = 0;
    int highest = 0;
    picture >> format >> width >> height >> highest;
    picture.seekg(1 + 3 * (std::streamoff{y} * width + x), std::ios::cur);
    std::array<char, 3> pixel{};
    picture.read(pixel.data(), pixel.size());
    if (!picture) {
        throw std::runtime_error("the screenshot of " + output + " is too small");
    }
    std::array<int, 3> color{};
    std::ranges::transform(pixel, color.begin(),
                           [](char level) { return int{static_cast<unsigned char>(level)}; });
    return color;
}

std::string Sway::answer(const std::string& question) const {
    const TemporaryFolder folder;
    const auto file = folder.path() + "/answer";
    Process process({"swaymsg", "-r", "-s", commands_, "-t", question}, {}, file);
    process.wait();
    return contentOf(file);
}

void Sway::message(const std::vector<std::string>& words) const {
    std::vector<std::string> command = {"swaymsg", "-q", "-s", commands_};
    command.insert(command.end(), words.begin(), words.end());
    if (runToEnd(command) != 0) {
        throw std::runtime_error("swaymsg failed");
    }
}

} // namespace nocta
