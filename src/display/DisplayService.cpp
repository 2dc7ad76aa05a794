#include "display/DisplayService.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

namespace nocta {

void DisplayService::startObserving(NotificationCenter& notificationCenter) {
    cancellables_.push_back(notificationCenter.observe(didChangeScreenParametersNotification,
                                                       [this] { displaysDidChange(); }));
}

void DisplayService::refreshDisplays() {
    auto list = activeDisplays();
    auto main = std::ranges::find_if(list, &DisplayInfo::isMain);
    if (main == list.end()) {
        main = list.begin();
    }
    auto newMain = list.empty() ? std::nullopt : std::optional(*main);
    displays.set(std::move(list));
    mainDisplay.set(std::move(newMain));
}

std::vector<DisplayInfo> DisplayService::activeDisplays() const {
    std::uint32_t count = 0;
    platform_.getActiveDisplayList({}, count);
    std::vector<DisplayId> ids(count);
    platform_.getActiveDisplayList(ids, count);
    ids.resize(std::min<std::size_t>(ids.size(), count)); // a display may have been removed

    std::vector<DisplayInfo> list;
    list.reserve(ids.size());
    for (const auto id : ids) {
        list.push_back(makeInfo(id));
    }
    return list;
}

DisplayInfo DisplayService::makeInfo(DisplayId display) const {
    DisplayInfo info;
    info.id = display;
    info.bounds = platform_.displayBounds(display);
    info.isMain = platform_.displayIsMain(display);
    info.isBuiltIn = platform_.displayIsBuiltin(display);
    info.supportsBrightnessControl = info.isBuiltIn;

    const auto mode = platform_.displayCopyDisplayMode(display);
    if (info.isBuiltIn) {
        info.name = "Built-in Display";
    } else if (mode) {
        info.name = std::to_string(mode->width) + "x" + std::to_string(mode->height);
    } else {
        info.name = "Display " + std::to_string(display);
    }
    return info;
}

} // namespace nocta
