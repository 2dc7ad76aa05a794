#pragma once

#include "support/Process.h"
#include "support/WhitePoint.h"
#include "support/XClient.h"
#include "support/XServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace nocta {

/// The real program on a private X server. The tests press keys and end the program in various
/// ways, and another client reads the gamma ramps.
class NoctaProcess : public ::testing::TestWithParam<XServer::Kind> {
protected:
    XServer server;
    XClient client;
    TemporaryFolder home;
    std::string output = home.path() + "/output";
    std::string settings = home.path() + "/.config/nocta/nocta.conf";
    std::unique_ptr<Process> nocta;

    /// `outputNames` are the names of the server's first outputs.
    explicit NoctaProcess(const std::vector<std::string>& outputNames = {})
        : server(GetParam(), {}, outputNames) {}

    /// Settings with which the screen is not tinted and onboarding does not appear.
    static std::string neutralSettings(const std::string& more = {}) {
        return "[General]\nautoWarmthEnabled=false\nisFirstLaunch=false\nwarmthLevel=0\n" + more;
    }

    void SetUp() override {
        std::filesystem::create_directories(home.path() + "/.config/nocta");
        writeFile(settings, neutralSettings());
        if (GetParam() == XServer::Kind::xorgDummy) {
            server.plugSecondOutput();
        }
        for (const auto crtc : client.activeCrtcs()) {
            client.setRamp(crtc, factory());
        }
    }

    static XClient::Ramp factory() { return calibration(256, 0.9, {1.0, 0.98, 0.95}); }

    Process::Environment environment() const {
        return {{"HOME", home.path()},
                {"XDG_CONFIG_HOME", ""},
                {"XDG_RUNTIME_DIR", home.path()},
                {"WAYLAND_DISPLAY", ""},
                {"SESSION_MANAGER", ""},
                {"QT_QPA_PLATFORM", ""},
                {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + home.path() + "/no-bus"},
                {"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + home.path() + "/no-bus"}};
    }

    void start() {
        nocta = std::make_unique<Process>(std::vector{programFolder() + "/nocta"}, environment(),
                                          output);
    }
    void startAndWaitFor(double brightness) {
        start();
        ASSERT_TRUE(waitForBrightness(brightness)) << contentOf(output);
    }

    /// Whether the ramp of every output is its factory ramp with the tables of this brightness at
    /// 6500 K applied, within one 16-bit step.
    bool shows(double brightness) {
        const auto crtcs = client.activeCrtcs();
        return std::ranges::all_of(crtcs, [&](xcb_randr_crtc_t crtc) {
            return isClose(client.ramp(crtc), expected(brightness));
        });
    }
    bool waitForBrightness(double brightness) {
        return waitUntil([&] { return shows(brightness); });
    }

    bool isGivenBack() {
        const auto crtcs = client.activeCrtcs();
        return std::ranges::all_of(
            crtcs, [&](xcb_randr_crtc_t crtc) { return client.ramp(crtc) == factory(); });
    }

    static XClient::Ramp expected(double brightness, double kelvin = 6500) {
        // The displays are external, so the tables alone cover the range, down to a faint glow.
        const auto height = 1 - std::min(0.9, 1 - brightness);
        const auto white = whitePoint(kelvin);
        auto ramp = factory();
        for (std::size_t channel = 0; channel < 3; ++channel) {
            const auto calibrated = factory()[channel];
            for (std::size_t i = 0; i < 256; ++i) {
                const auto place = height * white[channel] * static_cast<double>(i);
                const auto below = std::min(static_cast<std::size_t>(place), std::size_t{254});
                ramp[channel][i] = static_cast<std::uint16_t>(
                    std::lround(std::lerp(static_cast<double>(calibrated[below]),
                                          static_cast<double>(calibrated[below + 1]),
                                          place - static_cast<double>(below))));
            }
        }
        return ramp;
    }
    static bool isClose(const XClient::Ramp& a, const XClient::Ramp& b) {
        for (std::size_t channel = 0; channel < 3; ++channel) {
            for (std::size_t i = 0; i < 256; ++i) {
                if (std::abs(a[channel][i] - b[channel][i]) > 1) {
                    return false;
                }
            }
        }
        return true;
    }

    /// Whether a process has exited but has not been waited for.
    static bool isZombie(pid_t process) {
        const auto stat = contentOf("/proc/" + std::to_string(process) + "/stat");
        return stat.find(") Z ") != std::string::npos;
    }

    /// The running guardians that the given process has started.
    static std::vector<pid_t> guardiansOf(pid_t parent) {
        return childrenOf(parent, "nocta-guardian");
    }
    static std::vector<pid_t> childrenOf(pid_t parent, const std::string& name) {
        std::vector<pid_t> found;
        for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
            if (std::isdigit(entry.path().filename().string()[0]) == 0) {
                continue;
            }
            const auto stat = contentOf(entry.path().string() + "/stat");
            const auto afterName = stat.rfind(')');
            if (stat.find("(" + name + ")") != std::string::npos &&
                stat.find(") Z ") == std::string::npos &&
                std::stoi(stat.substr(afterName + 4)) == parent) {
                found.push_back(std::stoi(entry.path().filename().string()));
            }
        }
        return found;
    }
};

inline const auto everyServer = ::testing::Values(XServer::Kind::xvfb, XServer::Kind::xorgDummy);

inline std::string serverName(const ::testing::TestParamInfo<XServer::Kind>& instance) {
    return instance.param == XServer::Kind::xvfb ? "Xvfb" : "XorgWithTwoOutputs";
}

} // namespace nocta
