#pragma once

#include "settings/Setting.h"

#include <QComboBox>

#include <cstdint>
#include <functional>
#include <span>

namespace nocta {

/// A list of numbers to choose from, bound to a setting. A number that the setting has and the list
/// has not is shown in its place among them.
class NumberPicker final : public QComboBox {
public:
    NumberPicker(const QString& name, Setting<std::int64_t>& setting,
                 std::span<const std::int64_t> numbers, std::function<QString(std::int64_t)> label);

private:
    int indexOf(std::int64_t number);
    void insert(int index, std::int64_t number);

    std::function<QString(std::int64_t)> label_;
};

} // namespace nocta
