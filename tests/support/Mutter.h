#pragma once

#include "support/PrivateBus.h"
#include "support/Process.h"
#include "support/XClient.h"
#include "support/XServer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace nocta {

/// GNOME's compositor as a window manager of a private X server, so that another client can read
/// the gamma ramps. It is on a private session bus. Newer versions do not support X servers.
class Mutter {
public:
    /// The X server must be running.
    Mutter() {
        process_.emplace(std::vector<std::string>{"mutter", "--x11", "--sm-disable"},
                         Process::Environment{{"HOME", folder_.path()},
                                              {"XDG_RUNTIME_DIR", folder_.path()},
                                              {"XDG_CONFIG_HOME", ""},
                                              {"WAYLAND_DISPLAY", ""},
                                              {"LIBGL_ALWAYS_SOFTWARE", "1"},
                                              {"GSETTINGS_BACKEND", "memory"}},
                         folder_.path() + "/log");
        EXPECT_EQ(runToEnd({"gdbus", "wait", "--session", "--timeout", "30",
                            "org.gnome.Mutter.DisplayConfig"}),
                  0)
            << contentOf(folder_.path() + "/log");
    }

    static bool isSupported() {
        static const bool isSupported = [] {
            const TemporaryFolder folder;
            const auto help = folder.path() + "/help";
            Process process({"mutter", "--help"}, {}, help);
            process.wait();
            return contentOf(help).find("--x11") != std::string::npos;
        }();
        return isSupported;
    }

    /// Emits the signal that GNOME's night light emits when it changes the temperature.
    static void announceNightLight() {
        EXPECT_EQ(runToEnd({"gdbus", "emit", "--session", "--object-path",
                            "/org/gnome/SettingsDaemon/Color", "--signal",
                            "org.freedesktop.DBus.Properties.PropertiesChanged",
                            "org.gnome.SettingsDaemon.Color", "{'Temperature': <uint32 4000>}",
                            "@as []"}),
                  0);
    }

private:
    TemporaryFolder folder_;
    std::optional<Process> process_;
};

} // namespace nocta
