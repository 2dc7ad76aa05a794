#pragma once

#include <xcb/randr.h>
#include <xcb/xcb.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace nocta {

/// Another client of the X server, with its own connection. It reads data that the program under
/// test has written, calibrates displays before the program starts, and simulates input.
class XClient {
public:
    /// Red, green and blue levels.
    using Ramp = std::array<std::vector<std::uint16_t>, 3>;

    /// Connects to the display in DISPLAY.
    XClient();
    XClient(const XClient&) = delete;
    XClient& operator=(const XClient&) = delete;
    ~XClient();

    /// The CRTCs in use, in the server's order of outputs.
    std::vector<xcb_randr_crtc_t> activeCrtcs();
    xcb_randr_crtc_t crtcOf(xcb_randr_output_t output);

    Ramp ramp(xcb_randr_crtc_t crtc);
    void setRamp(xcb_randr_crtc_t crtc, const Ramp& ramp);

    /// The last red level of the ramp, 0.0–1.0.
    double top(xcb_randr_crtc_t crtc);

    /// The pixel of a window at a point, as 0xRRGGBB.
    std::uint32_t pixel(xcb_window_t window, std::int16_t x, std::int16_t y);
    /// The pixel of a translucent window at a point, as 0xAARRGGBB.
    std::uint32_t translucentPixel(xcb_window_t window, std::int16_t x, std::int16_t y);

    /// Presses and releases the key with this symbol. If no key has the symbol, a free key is
    /// mapped to it first.
    void press(xcb_keysym_t symbol);
    void hold(xcb_keysym_t symbol);
    void release(xcb_keysym_t symbol);

    // Pointer input. Button 1 is the left button, 3 the right button.
    void moveTo(int x, int y);
    void holdButton(std::uint8_t button);
    void releaseButton(std::uint8_t button);
    void click(int x, int y, std::uint8_t button = 1);

    /// Makes the server close the connection of the client that owns a window.
    void disconnect(xcb_window_t window);

    /// Takes ownership of the XEmbed tray selection and announces itself, as a panel does.
    void becomeSystemTray();

    /// Takes ownership of the compositor selection without compositing anything.
    void becomeCompositor();

    /// Sets a property of the root window to a list of numbers of 8, 16 or 32 bits, depending on
    /// `format`.
    void setRootProperty(const std::string& name, std::uint8_t format,
                         const std::vector<std::uint8_t>& bytes);
    /// Returns an empty vector if the property does not exist.
    std::vector<std::uint8_t> rootProperty(const std::string& name);
    void setRootText(const std::string& name, const std::string& text);

    /// Writes a property that contains numbers or atoms to every output.
    void setOutputProperty(const std::string& name, const std::vector<std::uint32_t>& numbers,
                           xcb_atom_t type = XCB_ATOM_INTEGER);
    std::vector<std::uint32_t> outputProperty(const std::string& name, xcb_randr_output_t output);

    /// The outputs in use.
    std::vector<xcb_randr_output_t> activeOutputs();

    struct TopWindow {
        xcb_window_t id = XCB_NONE;
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        bool isOverrideRedirect = false;
    };

    /// The mapped children of the root window, topmost last.
    std::vector<TopWindow> topWindows();

    /// The frames of the CRTCs in use.
    std::vector<TopWindow> activeFrames();

    bool hasWindowManager();

    /// Maps a window of this client; `fullScreen` asks the window manager for full screen.
    xcb_window_t openWindow(bool fullScreen);
    xcb_window_t focus();
    void setFocus(xcb_window_t window);

    /// The IDs of the mapped top-level windows of this size.
    std::vector<xcb_window_t> windowsOfSize(int width, int height);

    /// The visible windows at any depth for which `matches` returns true, in root coordinates.
    std::vector<TopWindow> windows(const std::function<bool(const TopWindow&)>& matches);
    /// The visible pixels in the area of a window.
    std::vector<std::uint8_t> picture(const TopWindow& window);
    /// Asks the window to close, as the button in a title bar does.
    void askToClose(xcb_window_t window);
    std::string nameOf(xcb_window_t window);
    bool hasProperty(xcb_window_t window, const std::string& name);
    xcb_atom_t atom(const std::string& name);
    /// The first number in a property, or 0.
    std::uint32_t number(xcb_window_t window, const std::string& property);
    /// From now on, counts writes to the properties of the window.
    void countWrites(xcb_window_t window);
    int writesTo(const std::string& property);

private:
    void synchronize();
    void collect(xcb_window_t parent, std::vector<TopWindow>& found);
    void pointer(std::uint8_t event, std::uint8_t detail, int x, int y);
    void key(xcb_keysym_t symbol, std::uint8_t event);

    xcb_connection_t* x_;
    xcb_window_t root_;
    std::map<xcb_atom_t, int> writes_;
};

inline constexpr xcb_keysym_t brightnessUpSymbol = 0x1008FF02;
inline constexpr xcb_keysym_t brightnessDownSymbol = 0x1008FF03;

/// A ramp that looks like a calibration: `size` entries on a power curve from 0 to the given tops.
XClient::Ramp calibration(std::size_t size, double exponent, std::array<double, 3> tops);

} // namespace nocta
