#include "backends/linux/x11/FactoryRamps.h"

#include "backends/linux/x11/RootProperty.h"
#include "backends/linux/x11/XcbReply.h"

namespace nocta {

namespace {

// The property contains a record for each CRTC: the CRTC, the size, and then `size` levels each for
// red, green and blue.
constexpr std::size_t headerLength = 2;

RootProperty property(xcb_connection_t* connection, xcb_window_t root) {
    return {connection, root, "_NOCTA_FACTORY_RAMPS"};
}

/// Returns 0 if the server does not have this CRTC.
std::size_t sizeOf(xcb_connection_t* connection, xcb_randr_crtc_t crtc) {
    const XcbReply<xcb_randr_get_crtc_gamma_size_reply_t> reply(xcb_randr_get_crtc_gamma_size_reply(
        connection, xcb_randr_get_crtc_gamma_size(connection, crtc), nullptr));
    return reply ? reply->size : 0;
}

} // namespace

FactoryRamps readFactoryRamps(xcb_connection_t* connection, xcb_window_t root) {
    const auto numbers = property(connection, root).read();
    auto rest = std::span(numbers);
    FactoryRamps ramps;
    while (rest.size() > headerLength) {
        const auto crtc = xcb_randr_crtc_t{rest[0]};
        const auto size = std::size_t{rest[1]};
        rest = rest.subspan(headerLength);
        if (rest.size() < 3 * size) {
            break;
        }
        const auto channel = [&](std::size_t index) {
            auto const levels = rest.subspan(index * size, size);
            return std::vector<std::uint16_t>(levels.begin(), levels.end());
        };
        if (size > 0 && size == sizeOf(connection, crtc)) {
            ramps.insert_or_assign(
                crtc, GammaRamp{.red = channel(0), .green = channel(1), .blue = channel(2)});
        }
        rest = rest.subspan(3 * size);
    }
    return ramps;
}

void storeFactoryRamps(xcb_connection_t* connection, xcb_window_t root, const FactoryRamps& ramps) {
    std::vector<std::uint32_t> numbers;
    for (const auto& [crtc, ramp] : ramps) {
        numbers.push_back(crtc);
        numbers.push_back(static_cast<std::uint32_t>(ramp.size()));
        for (const auto* const channel : {&ramp.red, &ramp.green, &ramp.blue}) {
            numbers.insert(numbers.end(), channel->begin(), channel->end());
        }
    }
    property(connection, root).write(numbers);
}

void restore(xcb_connection_t* connection, xcb_window_t root, const FactoryRamps& ramps) {
    for (const auto& [crtc, ramp] : ramps) {
        xcb_randr_set_crtc_gamma(connection, crtc, static_cast<std::uint16_t>(ramp.size()),
                                 ramp.red.data(), ramp.green.data(), ramp.blue.data());
    }
    storeFactoryRamps(connection, root, {});
}

} // namespace nocta
