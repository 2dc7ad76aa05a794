#pragma once

#include "platform/Displays.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <string>
#include <vector>

namespace nocta {

/// An application on the X server in DISPLAY, with its own connection and windows. The application
/// can send the window manager the requests that user actions cause, for example to minimize a
/// window. It can also write any property, including properties of the root window.
class XApplication {
public:
    /// Sets the instance and the class of its windows. Without a class, the windows have no
    /// WM_CLASS.
    explicit XApplication(std::string instance = {}, std::string windowClass = {});
    XApplication(const XApplication&) = delete;
    XApplication& operator=(const XApplication&) = delete;
    ~XApplication();

    xcb_window_t root() const { return root_; }

    /// Creates a window without showing it.
    xcb_window_t make(const Rect& frame = {100, 100, 400, 300});
    void show(xcb_window_t window);
    xcb_window_t open(const Rect& frame = {100, 100, 400, 300});
    void close(xcb_window_t window);

    void activate(xcb_window_t window);
    void minimize(xcb_window_t window);
    void enterFullScreen(xcb_window_t window);
    void moveToDesktop(xcb_window_t window, std::uint32_t desktop);

    void setText(xcb_window_t window, const std::string& property, const std::string& text,
                 const std::string& type = "UTF8_STRING");
    void setNumbers(xcb_window_t window, const std::string& property,
                    const std::vector<std::uint32_t>& numbers, const std::string& type);
    void removeProperty(xcb_window_t window, const std::string& property);

    xcb_atom_t atom(const std::string& name);

    /// The first number in a property of the root window, or 0.
    std::uint32_t rootNumber(const std::string& property);

private:
    void ask(xcb_window_t window, const std::string& what, std::vector<std::uint32_t> data);
    void synchronize();

    xcb_connection_t* x_;
    xcb_window_t root_;
    std::string classes_; ///< in the format of WM_CLASS
};

} // namespace nocta
