#include "ui/controls/NumberPicker.h"

#include "ui/Binding.h"

#include <utility>

namespace nocta {

NumberPicker::NumberPicker(const QString& name, Setting<std::int64_t>& setting,
                           std::span<const std::int64_t> numbers,
                           std::function<QString(std::int64_t)> label)
    : label_(std::move(label)) {
    setAccessibleName(name);
    for (const auto number : numbers) {
        insert(count(), number);
    }
    bind(
        *this, setting, [this](std::int64_t number) { choose(number); }, &QComboBox::activated,
        [this, &setting](int index) { setting.set(itemData(index).toLongLong()); });
}

void NumberPicker::choose(std::int64_t number) {
    if (unlistedIndex_ >= 0) {
        removeItem(std::exchange(unlistedIndex_, -1));
    }
    int index = 0;
    while (index < count() && itemData(index).toLongLong() < number) {
        ++index;
    }
    if (index == count() || itemData(index).toLongLong() != number) {
        insert(index, number);
        unlistedIndex_ = index;
    }
    setCurrentIndex(index);
}

void NumberPicker::insert(int index, std::int64_t number) {
    insertItem(index, label_(number), QVariant::fromValue(qlonglong{number}));
}

} // namespace nocta
