#pragma once

#include "settings/Profile.h"

#include <QRadioButton>

namespace nocta {

/// Shows a profile and lets the user choose it.
class ProfileCard final : public QRadioButton {
public:
    explicit ProfileCard(const Profile& profile);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void paintEvent(QPaintEvent* event) override;
};

} // namespace nocta
