#include "backends/linux/x11/OtherGammaPrograms.h"

#include "backends/linux/DisplayServerName.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <string_view>

namespace nocta {

namespace {

constexpr std::array<std::string_view, 2> gammaPrograms = {"redshift", "gammastep"};

std::string nameOf(const std::filesystem::path& process) {
    std::string name;
    std::ifstream file(process / "comm");
    std::getline(file, name);
    return name;
}

/// Returns an empty string if the process does not have this variable or belongs to another user.
std::string displayOf(const std::filesystem::path& process) {
    constexpr std::string_view name = "DISPLAY=";
    std::ifstream file(process / "environ");
    for (std::string variable; std::getline(file, variable, '\0');) {
        if (variable.starts_with(name)) {
            return variable.substr(name.size());
        }
    }
    return {};
}

} // namespace

std::vector<std::string> otherGammaPrograms(const std::string& display,
                                            const std::filesystem::path& processes) {
    std::vector<std::string> found;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(processes, error), end; !error && entry != end;
         entry.increment(error)) {
        if (std::isdigit(static_cast<unsigned char>(entry->path().filename().string()[0])) == 0) {
            continue;
        }
        const auto name = nameOf(entry->path());
        if (std::ranges::find(gammaPrograms, name) == gammaPrograms.end()) {
            continue;
        }
        const auto theirs = displayOf(entry->path());
        if (!theirs.empty() && xServerName(theirs) == xServerName(display)) {
            found.push_back(name);
        }
    }
    return found;
}

} // namespace nocta
