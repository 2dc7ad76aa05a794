// Preloaded into a headless sway, whose outputs do not support gamma. This library gives each
// output ramps of 256 entries and logs the ramps that the compositor sets. Each line of the file
// GAMMA_LOG contains the number of an output and its ramps: all red levels, then green, then blue.
// Outputs are numbered in the order in which their ramp sizes were first requested. If the original
// ramps are restored, the line contains only the number.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

std::size_t numberOf(const void* output) {
    static auto& outputs = *new std::vector<const void*>();
    const auto known = std::find(outputs.begin(), outputs.end(), output);
    const auto number = static_cast<std::size_t>(known - outputs.begin());
    if (known == outputs.end()) {
        outputs.push_back(output);
    }
    return number;
}

} // namespace

extern "C" std::size_t wlr_output_get_gamma_size(void* output) {
    numberOf(output);
    return 256;
}

extern "C" void wlr_output_set_gamma(void* output, std::size_t size, const std::uint16_t* red,
                                     const std::uint16_t* green, const std::uint16_t* blue) {
    auto* const log = std::fopen(std::getenv("GAMMA_LOG"), "a");
    std::fprintf(log, "%zu", numberOf(output));
    for (const auto* const channel : {red, green, blue}) {
        for (std::size_t i = 0; i < size; ++i) {
            std::fprintf(log, " %u", channel[i]);
        }
    }
    std::fprintf(log, "\n");
    std::fclose(log);
}
