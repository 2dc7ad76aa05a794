#pragma once

#include "support/ShellCompositor.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>
#include <wayland-server.h>

namespace nocta {

/// A surface of a `ShellCompositor`. Only the compositor's thread uses it.
struct TestSurface {
    ShellCompositor* compositor;
    wl_resource* resource = nullptr;
    wl_resource* role = nullptr; ///< the layer surface
    TestLayer pending{};
    TestLayer current{};
    std::optional<std::uint32_t> attached{}; ///< the pending buffer; 0 for none
    std::pair<int, int> destination{};       ///< the size of the viewport
    std::vector<wl_resource*> frames{};
    std::uint32_t configured = 0; ///< the latest serial
    std::uint32_t acknowledged = 0;
    std::uint32_t shown = 0; ///< the serial acknowledged before the latest buffer
    bool hasPicture = false;
    bool isClosed = false;
    bool hasLostKeyboard = false; ///< permanently, to a window of another program

    bool isMapped() const { return role != nullptr && !isClosed && hasPicture; }
    bool isSettled() const {
        return role == nullptr || isClosed || (hasPicture && shown == configured);
    }

    void takeRole(wl_resource* layer);
    void configure(std::uint32_t width, std::uint32_t height);
    void acknowledge(std::uint32_t serial);
    void commit();

private:
    void violate(const std::string& rule) const { compositor->violations_.push_back(rule); }
    void configureFirst();
    void showAttached();
};

} // namespace nocta
