#pragma once

#include "settings/Setting.h"

#include <QSpinBox>

#include <cstdint>

namespace nocta {

/// A color temperature as a number, to type or to change in steps of 100 K, within the range of the
/// displays. A stored value outside of that range is shown as it is.
class KelvinField final : public QSpinBox {
public:
    KelvinField(const QString& name, Setting<std::int64_t>& setting);

protected:
    /// Ignores the wheel, so that scrolling the page does not change the value.
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace nocta
