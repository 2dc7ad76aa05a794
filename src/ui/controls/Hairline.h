#pragma once

#include <QWidget>

namespace nocta {

/// A thin line between two parts of a view.
class Hairline final : public QWidget {
public:
    Hairline();

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace nocta
