#include "backends/linux/backlight/BacklightDevice.h"

#include "backends/linux/backlight/ConnectorName.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <string_view>
#include <system_error>
#include <tuple>
#include <vector>

namespace nocta {

namespace {

using std::filesystem::path;

/// From most to least trusted, as the kernel's documentation for class/backlight recommends.
constexpr std::array<std::string_view, 3> types = {"firmware", "platform", "raw"};

enum class Relation { ofConnector, ofCard, ofNone, ofAnother };

std::vector<path> entriesOf(const path& folder) {
    std::vector<path> entries;
    std::error_code error;
    for (auto entry = std::filesystem::directory_iterator(folder, error);
         !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        entries.push_back(entry->path());
    }
    return entries;
}

std::string wordIn(const path& file) {
    std::string word;
    std::ifstream(file) >> word;
    return word;
}

/// The target of a link in sysfs; empty if the link or its target does not exist.
path targetOf(const path& link) {
    std::error_code error;
    auto target = std::filesystem::canonical(link, error);
    return error ? path() : target;
}

/// The connector of a folder such as "card0-eDP-1".
std::string connectorNameOf(const path& folder) {
    const auto name = folder.filename().string();
    const auto dash = name.find('-');
    return name.starts_with("card") && dash != std::string::npos ? name.substr(dash + 1)
                                                                 : std::string();
}

/// The folder of the connector that drives the output. A display that is on has a connected
/// connector, so names matter only if several connectors are connected.
path connectorOf(const path& sysfs, const std::string& outputName) {
    auto connectors = entriesOf(sysfs / "class/drm");
    std::erase_if(connectors, [](const path& folder) {
        return !ConnectorName(connectorNameOf(folder)).isBuiltIn() ||
               wordIn(folder / "status") != "connected";
    });
    const ConnectorName output(outputName);
    for (const auto part : {&ConnectorName::type, &ConnectorName::number}) {
        if (connectors.size() > 1) {
            std::erase_if(connectors, [&](const path& folder) {
                const auto name = connectorNameOf(folder);
                return (ConnectorName(name).*part)() != (output.*part)();
            });
        }
    }
    return connectors.size() == 1 ? targetOf(connectors[0]) : path();
}

Relation relation(const path& device, const path& connector) {
    const auto parent = targetOf(device / "device");
    if (connector.empty() || parent.empty()) {
        return Relation::ofNone;
    }
    if (parent == connector) {
        return Relation::ofConnector;
    }
    if (parent == targetOf(connector / "device/device")) {
        return Relation::ofCard;
    }
    // A graphics card's folder contains a folder named "drm".
    return !connectorNameOf(parent).empty() || !targetOf(parent / "drm").empty()
               ? Relation::ofAnother
               : Relation::ofNone;
}

} // namespace

std::optional<path> backlightDevice(const path& sysfs, const std::string& outputName) {
    const auto connector = connectorOf(sysfs, outputName);
    std::optional<path> best;
    std::tuple bestRank(Relation::ofAnother, types.begin(), path());
    for (const auto& device : entriesOf(sysfs / "class/backlight")) {
        const auto* const type = std::ranges::find(types, wordIn(device / "type"));
        const std::tuple rank(relation(device, connector), type, device);
        if (type != types.end() && rank < bestRank) {
            bestRank = rank;
            best = device;
        }
    }
    return best;
}

} // namespace nocta
