#include "settings/SettingGroup.h"

#include <algorithm>

namespace nocta {

void SettingGroup::add(AnySetting& setting, const ResetPlace& place) {
    loadOrder_.push_back(&setting);
    if (std::holds_alternative<NeverReset>(place)) {
        return;
    }
    const auto* const before = std::get_if<ResetBefore>(&place);
    const auto next =
        before == nullptr ? resetOrder_.end() : std::ranges::find(resetOrder_, &before->next);
    resetOrder_.insert(next, &setting);
}

void SettingGroup::load() {
    DefaultsMap defaults;
    for (const auto* const setting : loadOrder_) {
        setting->addDefault(defaults);
    }
    userDefaults_.registerDefaults(defaults);
    for (auto* const setting : loadOrder_) {
        setting->load();
    }
}

void SettingGroup::reset() {
    for (auto* const setting : resetOrder_) {
        setting->reset();
    }
}

} // namespace nocta
