#pragma once

#include "support/PrivateBus.h"
#include "support/Process.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace nocta {

/// A private KWin without a screen, on the test's session bus. It has one output of 1280 × 720
/// points. While this object exists, the environment refers to KWin's display.
class KWin {
public:
    /// `settings` is the text of KWin's configuration file.
    explicit KWin(const std::string& settings = {}) {
        std::filesystem::create_directory(configFolder());
        writeFile(configFile(), settings);
        setenv("XDG_RUNTIME_DIR", folder_.path().c_str(), 1);
        setenv("WAYLAND_DISPLAY", "wayland-kwin", 1);
        start();
    }
    KWin(const KWin&) = delete;
    KWin& operator=(const KWin&) = delete;
    ~KWin() {
        unsetenv("WAYLAND_DISPLAY");
        unsetenv("XDG_RUNTIME_DIR");
    }

    void start() {
        // Some containers refuse to grant the privileges of the installed file. A copy does not
        // have them.
        const auto program = folder_.path() + "/kwin_wayland";
        std::filesystem::copy_file("/usr/bin/kwin_wayland", program,
                                   std::filesystem::copy_options::skip_existing);
        process_.emplace(std::vector<std::string>{program, "--virtual", "--width", "1280",
                                                  "--height", "720", "--no-lockscreen",
                                                  "--no-global-shortcuts", "--socket",
                                                  "wayland-kwin"},
                         Process::Environment{{"HOME", folder_.path()},
                                              {"XDG_CONFIG_HOME", ""},
                                              {"DISPLAY", ""},
                                              {"WAYLAND_DISPLAY", ""},
                                              {"LIBGL_ALWAYS_SOFTWARE", "1"},
                                              {"QT_QPA_PLATFORM", ""}},
                         log());
        if (!waitUntil([this] { return isServing(); })) {
            throw std::runtime_error("KWin did not start: " + contentOf(log()));
        }
    }

    void kill() {
        process_->signal(SIGKILL);
        process_->wait();
    }

    std::string configFolder() const { return folder_.path() + "/.config"; }
    std::string configFile() const { return configFolder() + "/kwinrc"; }

    /// Returns the current color temperature of the outputs, in kelvin. KWin changes it gradually.
    static int temperature() {
        const auto property = [](const std::string& path, const std::string& interface) {
            return answer({"--object-path", path, "--method", "org.freedesktop.DBus.Properties.Get",
                           interface, "currentTemperature"});
        };
        const auto ofVersion6 = property("/org/kde/KWin/NightLight", "org.kde.KWin.NightLight");
        const auto text = ofVersion6.empty()
                              ? property("/ColorCorrect", "org.kde.kwin.ColorCorrect")
                              : ofVersion6;
        constexpr std::string_view start = "(<uint32 ";
        return text.starts_with(start) ? std::stoi(text.substr(start.size())) : 0;
    }

    /// Runs a script inside KWin. In the script, `windows` contains all windows, and
    /// `activate(window)` works in both KWin 5 and KWin 6.
    void run(const std::string& text) {
        const auto file = folder_.path() + "/" + std::to_string(++scripts_) + ".js";
        writeFile(file, "const isNew = workspace.windowActivated !== undefined;\n"
                        "const windows = isNew ? workspace.windowList() : workspace.clientList();\n"
                        "function activate(window) {\n"
                        "    window.minimized = false;\n"
                        "    if (isNew) { workspace.activeWindow = window; }\n"
                        "    else { workspace.activeClient = window; }\n"
                        "}\n" +
                            text);
        call({"loadScript", file, "test" + std::to_string(scripts_)});
        call({"start"});
    }

    /// Calls a method of KWin's scripting interface and returns the answer.
    static std::string call(std::vector<std::string> words) {
        words.at(0).insert(0, "org.kde.kwin.Scripting.");
        words.insert(words.begin(), {"--object-path", "/Scripting", "--method"});
        return answer(words);
    }

private:
    std::string log() const { return folder_.path() + "/log"; }
    static bool isServing() {
        return call({"isScriptLoaded", "none"}).find("false") != std::string::npos;
    }
    /// Returns an empty string after an error.
    static std::string answer(const std::vector<std::string>& words) {
        const TemporaryFolder folder;
        std::vector<std::string> command{"gdbus", "call", "--session", "--dest", "org.kde.KWin"};
        command.insert(command.end(), words.begin(), words.end());
        Process process(command, {}, folder.path() + "/answer");
        return process.wait() == 0 ? contentOf(folder.path() + "/answer") : "";
    }

    TemporaryFolder folder_;
    std::optional<Process> process_;
    int scripts_ = 0;
};

} // namespace nocta
