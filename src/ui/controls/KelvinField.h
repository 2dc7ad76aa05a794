#pragma once

#include "settings/Setting.h"

#include <QSpinBox>

#include <cstdint>

namespace nocta {

/// A colour temperature as a number that can be typed or stepped by 100 K, within what the displays
/// can show. One outside of that is shown as it is.
class KelvinField final : public QSpinBox {
public:
    KelvinField(const QString& name, Setting<std::int64_t>& setting);

protected:
    /// A page that is scrolled past must not change it.
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace nocta
