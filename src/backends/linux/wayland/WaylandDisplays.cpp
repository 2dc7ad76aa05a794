#include "backends/linux/wayland/WaylandDisplays.h"

#include "backends/linux/backlight/ConnectorName.h"

#include <algorithm>
#include <utility>

namespace nocta {

namespace {

constexpr std::uint32_t namedOutputVersion = 4;

template <class Data>
Data& of(void* data) {
    return *static_cast<Data*>(data);
}

} // namespace

// Each description ends with `done`. The bounds of an output in window coordinates are its logical
// position and size. If the compositor does not send these values, the bounds are the output's own
// position and the size of its mode.
const wl_output_listener WaylandDisplays::outputListener = {
    .geometry =
        [](void* data, wl_output* /*proxy*/, std::int32_t x, std::int32_t y, std::int32_t /*width*/,
           std::int32_t /*height*/, std::int32_t /*subpixel*/, const char* /*make*/,
           const char* /*model*/, std::int32_t /*transform*/) {
            if (auto& output = of<Output>(data); output.logical == nullptr) {
                output.description.bounds.x = x;
                output.description.bounds.y = y;
            }
        },
    .mode =
        [](void* data, wl_output* /*proxy*/, std::uint32_t flags, std::int32_t width,
           std::int32_t height, std::int32_t /*refresh*/) {
            auto& output = of<Output>(data);
            if ((flags & WL_OUTPUT_MODE_CURRENT) == 0 || width <= 0 || height <= 0) {
                return;
            }
            output.description.mode = {static_cast<std::uint32_t>(width),
                                       static_cast<std::uint32_t>(height)};
            if (output.logical == nullptr) {
                output.description.bounds.width = width;
                output.description.bounds.height = height;
            }
        },
    .done =
        [](void* data, wl_output* /*proxy*/) {
            auto& output = of<Output>(data);
            output.isDescribed = true;
            output.displays->publish_.request();
        },
    .scale = [](void* /*data*/, wl_output* /*proxy*/, std::int32_t /*factor*/) {},
    .name = [](void* data, wl_output* /*proxy*/,
               const char* name) { of<Output>(data).description.name = name; },
    .description = [](void* /*data*/, wl_output* /*proxy*/, const char* /*text*/) {}};

const zxdg_output_v1_listener WaylandDisplays::logicalListener = {
    .logical_position =
        [](void* data, zxdg_output_v1* /*proxy*/, std::int32_t x, std::int32_t y) {
            of<Output>(data).description.bounds.x = x;
            of<Output>(data).description.bounds.y = y;
        },
    .logical_size =
        [](void* data, zxdg_output_v1* /*proxy*/, std::int32_t width, std::int32_t height) {
            of<Output>(data).description.bounds.width = width;
            of<Output>(data).description.bounds.height = height;
        },
    .done = [](void* data,
               zxdg_output_v1* /*proxy*/) { of<Output>(data).displays->publish_.request(); },
    .name = [](void* data, zxdg_output_v1* /*proxy*/,
               const char* name) { of<Output>(data).description.name = name; },
    .description = [](void* /*data*/, zxdg_output_v1* /*proxy*/, const char* /*text*/) {}};

WaylandDisplays::WaylandDisplays(WaylandConnection& connection, RunLoop& runLoop,
                                 NotificationCenter& notificationCenter)
    : SessionDisplays(notificationCenter), connection_(connection),
      logicalManager_(
          connection.bindFirst<zxdg_output_manager_v1>(zxdg_output_manager_v1_interface)),
      publish_(runLoop, [this] { publishDescribed(); }),
      globals_(connection.observeGlobals([this] { updateOutputs(); })) {
    updateOutputs();
    connection_.synchronize(WaylandConnection::maxWaitAtStart);
    publishDescribed();
}

WaylandDisplays::~WaylandDisplays() {
    for (const auto& [name, output] : outputs_) {
        remove(*output);
    }
    if (logicalManager_ != nullptr) {
        zxdg_output_manager_v1_destroy(logicalManager_);
    }
}

wl_output* WaylandDisplays::outputOf(DisplayId display) const {
    const auto output = std::ranges::find_if(
        outputs_, [&](const auto& entry) { return entry.second->description.id == display; });
    return display == 0 || output == outputs_.end() ? nullptr : output->second->proxy;
}

void WaylandDisplays::updateOutputs() {
    const auto& globals = connection_.globals();
    for (auto entry = outputs_.begin(); entry != outputs_.end();) {
        if (globals.contains(entry->first)) {
            ++entry;
            continue;
        }
        const auto gone = std::move(entry->second);
        entry = outputs_.erase(entry);
        removed_.call(gone->description.id);
        remove(*gone);
        publish_.request();
    }
    for (const auto& [name, global] : globals) {
        if (global.interface == wl_output_interface.name && !outputs_.contains(name)) {
            add(name);
        }
    }
}

void WaylandDisplays::add(std::uint32_t name) {
    auto* const proxy = connection_.bind<wl_output>(name, wl_output_interface, namedOutputVersion);
    auto output = std::make_unique<Output>(Output{.displays = this, .proxy = proxy});
    // If the compositor sends no name, the number of the global identifies the output.
    output->description.name = std::to_string(name);
    wl_output_add_listener(proxy, &outputListener, output.get());
    if (logicalManager_ != nullptr) {
        output->logical = zxdg_output_manager_v1_get_xdg_output(logicalManager_, proxy);
        zxdg_output_v1_add_listener(output->logical, &logicalListener, output.get());
    }
    outputs_.emplace(name, std::move(output));
    connection_.finishTurn();
}

void WaylandDisplays::remove(Output& output) {
    if (output.logical != nullptr) {
        zxdg_output_v1_destroy(output.logical);
    }
    wl_output_destroy(output.proxy);
    connection_.finishTurn();
}

void WaylandDisplays::publishDescribed() {
    std::vector<Display> displays;
    for (const auto& [name, output] : outputs_) {
        auto& description = output->description;
        if (output->isDescribed && description.mode) {
            if (description.id == 0) {
                description.id = idOf(description.name);
            }
            displays.push_back(description);
            displays.back().isBuiltIn = ConnectorName(description.name).isBuiltIn();
        }
    }
    auto main = std::ranges::find_if(displays, &Display::isBuiltIn);
    if (main == displays.end()) {
        main = std::ranges::find_if(displays, [](const Display& display) {
            return display.bounds.x == 0 && display.bounds.y == 0;
        });
    }
    if (main != displays.end()) {
        main->isMain = true;
    }
    publish(std::move(displays));
}

} // namespace nocta
