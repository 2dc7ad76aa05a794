#include "backends/linux/x11/X11Workspace.h"

#include "backends/linux/applications/ApplicationIdentity.h"
#include "backends/linux/x11/WindowProperty.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace nocta {

namespace {

// The maximum length to read from a property, in units of 32 bits.
constexpr std::uint32_t maxWindows = 1024;
constexpr std::uint32_t maxAtoms = 64;

constexpr std::uint32_t onEveryDesktop = 0xFFFFFFFF;

bool contains(const std::optional<std::vector<std::uint32_t>>& numbers, std::uint32_t number) {
    return numbers && std::ranges::find(*numbers, number) != numbers->end();
}

double overlap(const Rect& one, const Rect& other) {
    const auto width =
        std::min(one.x + one.width, other.x + other.width) - std::max(one.x, other.x);
    const auto height =
        std::min(one.y + one.height, other.y + other.height) - std::max(one.y, other.y);
    return std::max(width, 0.0) * std::max(height, 0.0);
}

/// Pending requests for a window's visibility and size, sent together.
struct WindowRequest {
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
    WindowProperty desktop;
    WindowProperty state;
    WindowProperty type;
};

} // namespace

X11Workspace::X11Workspace(X11Connection& connection, SessionDisplays& displays, RunLoop& runLoop,
                           std::function<bool()> shouldReduceMotion,
                           std::filesystem::path processes)
    : connection_(connection), displays_(displays),
      shouldReduceMotion_(std::move(shouldReduceMotion)),
      applications_(connection, std::move(processes)),
      noticeActivation_(runLoop, [this] { noticeActivation(); }) {
    connection_.selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE);
    events_ = connection_.observeEvents([this](const X11Connection::Event& event) {
        if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY) {
            return;
        }
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (change.window == connection_.root() &&
            (change.atom == atoms_.activeWindow || change.atom == atoms_.supportingWmCheck)) {
            noticeActivation_.request(); // one change is often reported several times
        }
    });
    frontmost_ = frontmostApplication();
}

Subscription X11Workspace::observeDidActivateApplication(
    std::function<void(const std::optional<RunningApplication>&)> callback) {
    return activated_.add(std::move(callback));
}

std::optional<RunningApplication> X11Workspace::frontmostApplication() {
    auto application = applications_.applicationOf(activeWindow());
    connection_.finishTurn();
    return application;
}

std::optional<std::vector<WindowInfo>> X11Workspace::copyWindowInfo() {
    auto* const x = connection_.get();
    const auto windows = managedWindows(atoms_.clientListStacking, maxWindows);
    connection_.finishTurn();
    if (!windows) {
        return std::nullopt;
    }
    const auto property = [this](xcb_window_t window, xcb_atom_t atom, xcb_atom_t type,
                                 std::uint32_t length) {
        return WindowProperty(connection_, window, atom, type, length);
    };
    const auto currentDesktop =
        property(connection_.root(), atoms_.currentDesktop, XCB_ATOM_CARDINAL, 1);
    std::vector<WindowRequest> requests;
    for (const auto window : *windows) {
        requests.push_back(
            {.attributes = xcb_get_window_attributes(x, window),
             .geometry = xcb_get_geometry(x, window),
             .desktop = property(window, atoms_.wmDesktop, XCB_ATOM_CARDINAL, 1),
             .state = property(window, atoms_.wmState, XCB_ATOM_ATOM, maxAtoms),
             .type = property(window, atoms_.wmWindowType, XCB_ATOM_ATOM, maxAtoms)});
    }

    const auto shownDesktop = currentDesktop.numbers();
    std::vector<WindowInfo> infos;
    for (const auto& request : requests) {
        const XcbReply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(x, request.attributes, nullptr));
        const XcbReply<xcb_get_geometry_reply_t> geometry(
            xcb_get_geometry_reply(x, request.geometry, nullptr));
        const auto desktop = request.desktop.numbers();
        const auto isOnScreen = attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE &&
                                !contains(request.state.numbers(), atoms_.wmStateHidden) &&
                                (!desktop || !shownDesktop || desktop == shownDesktop ||
                                 contains(desktop, onEveryDesktop));
        // The wallpaper is as large as the screen and belongs to no application.
        const auto isWallpaper = contains(request.type.numbers(), atoms_.wmWindowTypeDesktop);
        if (geometry && isOnScreen && !isWallpaper) {
            infos.push_back({.width = geometry->width, .height = geometry->height});
        }
    }
    return infos;
}

std::optional<Rect> X11Workspace::mainScreenFrame() {
    const auto screens = screenFrames();
    const auto window = frameOf(activeWindow());
    connection_.finishTurn();
    const auto screen = std::ranges::max_element(
        screens, {}, [&](const Rect& frame) { return overlap(frame, window); });
    return screen == screens.end() ? std::nullopt : std::optional(*screen);
}

void X11Workspace::noticeActivation() {
    const auto application = frontmostApplication();
    if (!isSameApplication(application, frontmost_)) {
        frontmost_ = application;
        activated_.call(application);
    }
}

/// Returns what the window manager reports on the root window. Returns nothing if no window manager
/// is running, because a killed window manager leaves its properties behind.
std::optional<std::vector<xcb_window_t>> X11Workspace::managedWindows(xcb_atom_t property,
                                                                      std::uint32_t most) const {
    const WindowProperty wanted(connection_, connection_.root(), property, XCB_ATOM_WINDOW, most);
    const WindowProperty check(connection_, connection_.root(), atoms_.supportingWmCheck,
                               XCB_ATOM_WINDOW, 1);
    auto windows = wanted.numbers();
    const auto manager = check.numbers();
    if (!manager || manager->empty()) {
        return std::nullopt;
    }
    const WindowProperty sign(connection_, manager->front(), atoms_.supportingWmCheck,
                              XCB_ATOM_WINDOW, 1);
    return sign.numbers() == manager ? std::move(windows) : std::nullopt;
}

xcb_window_t X11Workspace::activeWindow() const {
    const auto windows = managedWindows(atoms_.activeWindow, 1);
    return !windows || windows->empty() ? xcb_window_t{XCB_NONE} : windows->front();
}

/// Returns a window's frame in root coordinates, or an empty frame if there is no window.
Rect X11Workspace::frameOf(xcb_window_t window) const {
    if (window == XCB_NONE) {
        return {};
    }
    auto* const x = connection_.get();
    const auto geometryRequest = xcb_get_geometry(x, window);
    const auto originRequest = xcb_translate_coordinates(x, window, connection_.root(), 0, 0);
    const XcbReply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(x, geometryRequest, nullptr));
    const XcbReply<xcb_translate_coordinates_reply_t> origin(
        xcb_translate_coordinates_reply(x, originRequest, nullptr));
    if (!geometry || !origin) {
        return {};
    }
    return {static_cast<double>(origin->dst_x), static_cast<double>(origin->dst_y),
            static_cast<double>(geometry->width), static_cast<double>(geometry->height)};
}

/// Returns the frames of all screens, starting with the main display.
std::vector<Rect> X11Workspace::screenFrames() const {
    auto ids = displays_.ids();
    std::stable_partition(ids.begin(), ids.end(),
                          [this](DisplayId id) { return displays_.displayIsMain(id); });
    std::vector<Rect> frames;
    std::ranges::transform(ids, std::back_inserter(frames),
                           [this](DisplayId id) { return displays_.displayBounds(id); });
    return frames;
}

} // namespace nocta
