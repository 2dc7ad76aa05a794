#include "display/GammaController.h"

#include <algorithm>

namespace nocta {

namespace {

constexpr float neutralDimming = 0.0F;
constexpr float neutralSaturation = 1.0F;

constexpr std::int64_t lowestTemperature = 1000;
constexpr std::int64_t highestTemperature = 10000;

template <class Value>
Value valueOr(const std::map<DisplayId, Value>& values, DisplayId display, Value neutral) {
    const auto found = values.find(display);
    return found == values.end() ? neutral : found->second;
}

} // namespace

GammaController::GammaController(DisplayService& displayService, GammaOutput& output)
    : displayService_(displayService), output_(output) {}

void GammaController::start(NotificationCenter& notificationCenter) {
    displays_ = displayService_.activeDisplays();
    cancellables_.push_back(notificationCenter.observe(didChangeScreenParametersNotification,
                                                       [this] { displaysDidChange(); }));
}

void GammaController::setDimming(float amount) {
    store(currentDimming_, clamp01(amount));
}

void GammaController::setTemperature(std::int64_t kelvin) {
    store(currentTemperature_, std::clamp(kelvin, lowestTemperature, highestTemperature));
}

void GammaController::setSaturation(float amount) {
    store(currentSaturation_, clamp01(amount));
}

void GammaController::displaysDidChange() {
    displays_ = displayService_.activeDisplays();
}

std::optional<GammaError> GammaController::applyTables(std::span<const float> red,
                                                       std::span<const float> green,
                                                       std::span<const float> blue,
                                                       DisplayId display) {
    for (const auto& table : {red, green, blue}) {
        if (table.size() != gammaTableSize) {
            return GammaError::invalidTable;
        }
    }
    if (output_.setDisplayTransferByTable(display, red, green, blue) != statusSuccess) {
        return GammaError::setTableFailed;
    }
    return std::nullopt;
}

void GammaController::clearRecords() {
    currentDimming_.clear();
    currentTemperature_.clear();
    currentSaturation_.clear();
}

template <class Value>
void GammaController::store(std::map<DisplayId, Value>& values, Value value) {
    for (const auto& display : displays_) {
        values.insert_or_assign(display.id, value);
        const auto tables =
            makeGammaTables(valueOr(currentTemperature_, display.id, neutralTemperature),
                            valueOr(currentDimming_, display.id, neutralDimming),
                            valueOr(currentSaturation_, display.id, neutralSaturation));
        // Ignore an error: the tables of the other displays must still be written.
        static_cast<void>(applyTables(tables.red, tables.green, tables.blue, display.id));
    }
}

} // namespace nocta
