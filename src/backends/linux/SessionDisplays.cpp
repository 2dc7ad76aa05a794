#include "backends/linux/SessionDisplays.h"

#include <algorithm>
#include <utility>

namespace nocta {

Status SessionDisplays::getActiveDisplayList(std::span<DisplayId> ids, std::uint32_t& count) {
    const auto number = ids.empty() ? displays_.size() : std::min(ids.size(), displays_.size());
    std::ranges::transform(std::span(displays_).first(std::min(ids.size(), number)), ids.begin(),
                           &Display::id);
    count = static_cast<std::uint32_t>(number);
    return statusSuccess;
}

std::vector<DisplayId> SessionDisplays::ids() const {
    std::vector<DisplayId> ids(displays_.size());
    std::ranges::transform(displays_, ids.begin(), &Display::id);
    return ids;
}

void SessionDisplays::publish(std::vector<Display> displays) {
    if (displays != displays_) {
        displays_ = std::move(displays);
        notificationCenter_.post(didChangeScreenParametersNotification);
    }
}

DisplayId SessionDisplays::idOf(const std::string& connector) {
    return idsOfConnectors_.try_emplace(connector, idsOfConnectors_.size() + 1).first->second;
}

const SessionDisplays::Display& SessionDisplays::find(DisplayId display) const {
    static const Display none;
    const auto found = std::ranges::find(displays_, display, &Display::id);
    return found == displays_.end() ? none : *found;
}

} // namespace nocta
