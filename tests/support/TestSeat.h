#pragma once

#include <cstdint>
#include <vector>

struct wl_client;
struct wl_display;
struct wl_resource;

namespace nocta {

/// The keyboard and the pointer of a test compositor. Only the compositor's thread uses them. The
/// keyboard has two keys.
class TestSeat {
public:
    static constexpr std::uint32_t escape = 1;
    static constexpr std::uint32_t space = 57;

    void offerOn(wl_display* display);

    /// Gives a surface keyboard focus; null removes the focus from all surfaces.
    void setKeyboardFocus(wl_resource* surface);
    wl_resource* keyboardFocus() const { return keyboardFocus_; }
    /// The number of times that a surface has gained keyboard focus.
    int focusGains() const { return focusGains_; }

    /// Moves the pointer to a position in a surface; null moves it out of all surfaces.
    void movePointer(wl_resource* surface, int x, int y);

    /// Presses and releases a key or the left button. The surface with the focus gets the events.
    void press(std::uint32_t key);
    void click();

    /// Must be called before a surface is destroyed.
    void forget(wl_resource* surface);

private:
    struct Interfaces;
    using Devices = std::vector<wl_resource*>;

    Devices keyboards_;
    Devices pointers_;
    wl_resource* keyboardFocus_ = nullptr;
    int focusGains_ = 0;
    wl_resource* pointerFocus_ = nullptr;
};

} // namespace nocta
