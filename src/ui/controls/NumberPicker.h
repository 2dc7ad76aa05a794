#pragma once

#include "settings/Setting.h"

#include <QComboBox>
#include <QWheelEvent>

#include <cstdint>
#include <functional>
#include <span>

namespace nocta {

/// A list of numbers to choose from, bound to a setting. If the setting's value is not in the list,
/// the picker adds the value in order, and removes it when the setting has another value.
class NumberPicker final : public QComboBox {
public:
    NumberPicker(const QString& name, Setting<std::int64_t>& setting,
                 std::span<const std::int64_t> numbers, std::function<QString(std::int64_t)> label);

protected:
    /// Ignores the wheel, so that scrolling the page does not change the value.
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }

private:
    void choose(std::int64_t number);
    void insert(int index, std::int64_t number);

    std::function<QString(std::int64_t)> label_;
    int unlistedIndex_ = -1; ///< index of the added number; -1 if there is none
};

} // namespace nocta
