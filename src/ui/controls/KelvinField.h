#pragma once

#include "settings/Setting.h"

#include <QSpinBox>

#include <cstdint>

namespace nocta {

/// A field for a color temperature, which the user can type or change in steps of 100 K, within the
/// range that the displays support. A stored value outside that range is shown unchanged.
class KelvinField final : public QSpinBox {
public:
    KelvinField(const QString& name, Setting<std::int64_t>& setting);

protected:
    /// Ignores the wheel unless the field has focus, so that scrolling the page does not change the
    /// value.
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace nocta
