#pragma once

#include "support/Process.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace nocta {

/// The settings of a GNOME session, separate from those of the user who runs the tests.
class GnomeSettings {
public:
    static constexpr auto magnifier = "org.gnome.desktop.a11y.magnifier";
    static constexpr auto applications = "org.gnome.desktop.a11y.applications";

    /// The environment of a process in that session.
    Process::Environment environment() const {
        return {{"XDG_CURRENT_DESKTOP", "ubuntu:GNOME"},
                {"GSETTINGS_BACKEND", "keyfile"},
                {"XDG_CONFIG_HOME", folder_.path()}};
    }

    void set(const std::string& schema, const std::string& key, const std::string& value) {
        EXPECT_EQ(runToEnd({"gsettings", "set", schema, key, value}, environment()), 0);
    }
    std::string get(const std::string& schema, const std::string& key) const {
        return output({"gsettings", "get", schema, key});
    }
    bool isGray() const {
        return get(applications, "screen-magnifier-enabled") == "true\n" &&
               get(magnifier, "color-saturation") == "0.0\n";
    }

    /// All values of both schemas, including defaults.
    std::string everything() const {
        return output({"gsettings", "list-recursively", magnifier}) +
               output({"gsettings", "list-recursively", applications});
    }

private:
    std::string output(const std::vector<std::string>& command) const {
        const TemporaryFolder folder;
        const auto file = folder.path() + "/output";
        Process process(command, environment(), file);
        EXPECT_EQ(process.wait(), 0);
        return contentOf(file);
    }

    TemporaryFolder folder_;
};

} // namespace nocta
