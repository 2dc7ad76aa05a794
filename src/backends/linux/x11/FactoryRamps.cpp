#include "backends/linux/x11/FactoryRamps.h"

#include "backends/linux/x11/RootProperty.h"

namespace nocta {

namespace {

// One record after the other: the CRTC's upper and lower half, the size, and size levels each of
// red, green and blue.
constexpr std::size_t headerLength = 3;

RootProperty<std::uint16_t> property(xcb_connection_t* connection, xcb_window_t root) {
    return {connection, root, "_NOCTA_FACTORY_RAMPS"};
}

} // namespace

FactoryRamps readFactoryRamps(xcb_connection_t* connection, xcb_window_t root) {
    const auto numbers = property(connection, root).read();
    auto rest = std::span(numbers);
    FactoryRamps ramps;
    while (rest.size() > headerLength) {
        const auto crtc = static_cast<xcb_randr_crtc_t>(rest[0]) << 16 | rest[1];
        const auto size = std::size_t{rest[2]};
        rest = rest.subspan(headerLength);
        if (size == 0 || rest.size() < 3 * size) {
            break;
        }
        const auto channel = [&](std::size_t index) {
            auto const levels = rest.subspan(index * size, size);
            return std::vector<std::uint16_t>(levels.begin(), levels.end());
        };
        ramps.insert_or_assign(
            crtc, GammaRamp{.red = channel(0), .green = channel(1), .blue = channel(2)});
        rest = rest.subspan(3 * size);
    }
    return ramps;
}

void keepFactoryRamp(xcb_connection_t* connection, xcb_window_t root, xcb_randr_crtc_t crtc,
                     const GammaRamp& ramp) {
    std::vector<std::uint16_t> record = {static_cast<std::uint16_t>(crtc >> 16),
                                         static_cast<std::uint16_t>(crtc),
                                         static_cast<std::uint16_t>(ramp.size())};
    for (const auto* const channel : {&ramp.red, &ramp.green, &ramp.blue}) {
        record.insert(record.end(), channel->begin(), channel->end());
    }
    property(connection, root).append(record);
}

void giveBack(xcb_connection_t* connection, xcb_window_t root, const FactoryRamps& ramps) {
    for (const auto& [crtc, ramp] : ramps) {
        xcb_randr_set_crtc_gamma(connection, crtc, static_cast<std::uint16_t>(ramp.size()),
                                 ramp.red.data(), ramp.green.data(), ramp.blue.data());
    }
    property(connection, root).remove();
}

} // namespace nocta
