#pragma once

#include "settings/Setting.h"

#include <QComboBox>
#include <QWheelEvent>

#include <cstdint>
#include <functional>
#include <span>

namespace nocta {

/// A list of numbers to choose from, bound to a setting. A number that the setting has and the list
/// has not is shown in its place among them while the setting has it.
class NumberPicker final : public QComboBox {
public:
    NumberPicker(const QString& name, Setting<std::int64_t>& setting,
                 std::span<const std::int64_t> numbers, std::function<QString(std::int64_t)> label);

protected:
    /// A page that is scrolled past must not change it.
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }

private:
    void choose(std::int64_t number);
    void insert(int index, std::int64_t number);

    std::function<QString(std::int64_t)> label_;
    int unlistedIndex_ = -1; ///< of the one that is not offered
};

} // namespace nocta
