#pragma once

#include "support/NoctaProcess.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace nocta {

/// The real program with a window manager, a panel and a simulated user of its windows.
class NoctaWithPanel : public NoctaProcess {
protected:
    static constexpr xcb_keysym_t escape = 0xFF1B;
    static constexpr xcb_keysym_t enter = 0xFF0D;
    static constexpr xcb_keysym_t space = 0x20;
    static constexpr xcb_keysym_t tab = 0xFF09;
    static constexpr xcb_keysym_t leftArrow = 0xFF51;
    static constexpr xcb_keysym_t up = 0xFF52;
    static constexpr xcb_keysym_t rightArrow = 0xFF53;
    static constexpr xcb_keysym_t down = 0xFF54;
    static constexpr std::uint8_t left = 1;
    static constexpr std::uint8_t right = 3;

    std::optional<Process> windowManager;
    std::optional<Process> panel;

    using Window = XClient::TopWindow;

    void SetUp() override {
        NoctaProcess::SetUp();
        const Process::Environment variables = {
            {"HOME", home.path()},
            {"XDG_CONFIG_HOME", ""},
            {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + home.path() + "/no-bus"}};
        windowManager.emplace(std::vector<std::string>{"openbox"}, variables,
                              home.path() + "/openbox");
        ASSERT_TRUE(waitUntil([&] { return client.hasWindowManager(); }));
        panel.emplace(std::vector<std::string>{"tint2"}, variables, home.path() + "/tint2");
    }

    /// Finds the window with the given title.
    std::optional<Window> find(const std::string& title) {
        const auto found =
            client.windows([&](const Window& window) { return client.nameOf(window.id) == title; });
        return found.empty() ? std::nullopt : std::optional(found.front());
    }
    /// Waits until the window manager has placed and focused the window.
    Window waitFor(const std::string& title) {
        EXPECT_TRUE(waitUntil([&] {
            const auto window = find(title);
            return window && client.focus() == window->id;
        })) << title;
        return find(title).value_or(Window{});
    }
    bool isGone(const std::string& title) {
        return waitUntil([&] { return !find(title).has_value(); });
    }

    /// Whether the icon's white symbol is visible.
    bool isDrawn(const Window& icon) {
        return std::ranges::any_of(client.picture(icon),
                                   [](std::uint8_t level) { return level > 200; });
    }

    /// Waits for the program's icon in the panel and returns it.
    Window waitForIcon() {
        std::vector<Window> icons;
        EXPECT_TRUE(waitUntil([&] { // until the icon stops moving: a panel moves it while starting
            const auto before = icons;
            icons = client.windows([&](const Window& window) {
                return window.width < 64 && window.height < 64 &&
                       client.hasProperty(window.id, "_XEMBED_INFO");
            });
            return !icons.empty() && !before.empty() && icons[0].x == before[0].x &&
                   icons[0].y == before[0].y && isDrawn(icons[0]);
        })) << contentOf(home.path() + "/tint2");
        return icons.empty() ? Window{} : icons.front();
    }
    void clickIcon(std::uint8_t button = left) {
        const auto icon = waitForIcon();
        client.click(icon.x + icon.width / 2, icon.y + icon.height / 2, button);
    }
    Window openPopover() {
        clickIcon();
        EXPECT_TRUE(waitUntil([&] { return !client.windowsOfSize(300, 280).empty(); }));
        const auto found = client.windows(
            [](const Window& window) { return window.width == 300 && window.height == 280; });
        return found.empty() ? Window{} : found.front();
    }
    bool popoverIsGone() {
        return waitUntil([&] { return client.windowsOfSize(300, 280).empty(); });
    }
    std::string stored(const std::string& key) {
        const auto content = contentOf(settings);
        const auto begin = content.find("\n" + key + "=");
        return begin == std::string::npos
                   ? ""
                   : content.substr(begin + key.size() + 2,
                                    content.find('\n', begin + 1) - begin - key.size() - 2);
    }
};

} // namespace nocta
