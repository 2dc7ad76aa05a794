#include "backends/linux/x11/PanelStruts.h"

#include "backends/linux/x11/WindowProperty.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace nocta {

namespace {

constexpr std::uint32_t maxWindows = 1024;

/// The numbers of the property in its order: how far the space reaches from each edge of the
/// desktop, and where it starts and ends along that edge.
using Strut = std::array<double, 12>;

struct Edges {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    double width() const { return right - left; }
    double height() const { return bottom - top; }
    bool overlaps(const Edges& other) const {
        return std::max(left, other.left) < std::min(right, other.right) &&
               std::max(top, other.top) < std::min(bottom, other.bottom);
    }
};

std::vector<Strut> readStruts(X11Connection& connection) {
    const WindowProperty list(connection, connection.root(), connection.atom("_NET_CLIENT_LIST"),
                              XCB_ATOM_WINDOW, maxWindows);
    const auto property = connection.atom("_NET_WM_STRUT_PARTIAL");
    const auto windows = list.numbers();
    std::vector<WindowProperty> requests;
    for (const auto window : windows.value_or(std::vector<std::uint32_t>())) {
        requests.emplace_back(connection, window, property, XCB_ATOM_CARDINAL, Strut().size());
    }
    std::vector<Strut> struts;
    for (const auto& request : requests) {
        const auto numbers = request.numbers();
        if (numbers && numbers->size() == Strut().size()) {
            std::ranges::copy(*numbers, struts.emplace_back().begin());
        }
    }
    return struts;
}

/// The size of the desktop, which spans all screens.
Edges readDesktop(X11Connection& connection) {
    auto* const x = connection.get();
    const XcbReply<xcb_get_geometry_reply_t> root(
        xcb_get_geometry_reply(x, xcb_get_geometry(x, connection.root()), nullptr));
    return root ? Edges{.right = static_cast<double>(root->width),
                        .bottom = static_cast<double>(root->height)}
                : Edges{};
}

} // namespace

Rect withoutPanels(X11Connection& connection, const Rect& screen) {
    const auto desktop = readDesktop(connection);
    const auto struts = readStruts(connection);
    connection.finishTurn();

    const Edges whole{screen.x, screen.y, screen.x + screen.width, screen.y + screen.height};
    auto free = whole;
    const auto reserve = [&](const Edges& space, double Edges::*edge, double limit) {
        auto rest = free;
        rest.*edge = limit;
        // A panel at the inner edge of one screen reserves the screen beside it, too.
        const auto leavesHalf =
            rest.width() >= whole.width() / 2 && rest.height() >= whole.height() / 2;
        if (space.overlaps(whole) && leavesHalf) {
            free = rest;
        }
    };
    for (const auto& [left, right, top, bottom, leftStart, leftEnd, rightStart, rightEnd, topStart,
                      topEnd, bottomStart, bottomEnd] : struts) {
        const auto fromRight = desktop.right - right;
        const auto fromBottom = desktop.bottom - bottom;
        reserve({0, leftStart, left, leftEnd + 1}, &Edges::left, std::max(free.left, left));
        reserve({topStart, 0, topEnd + 1, top}, &Edges::top, std::max(free.top, top));
        reserve({fromRight, rightStart, desktop.right, rightEnd + 1}, &Edges::right,
                std::min(free.right, fromRight));
        reserve({bottomStart, fromBottom, bottomEnd + 1, desktop.bottom}, &Edges::bottom,
                std::min(free.bottom, fromBottom));
    }
    return {free.left, free.top, free.width(), free.height()};
}

} // namespace nocta
