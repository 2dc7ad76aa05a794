#pragma once

#include <QDBusServiceWatcher>
#include <QTimer>

namespace nocta {

/// Whether the user wishes for less movement on the screen, by the settings that the desktop's
/// portal tells: the wish itself, or that animations are off. False until it is known; nothing
/// waits for the portal. Changes are followed.
class ReducedMotion {
public:
    ReducedMotion();
    ReducedMotion(const ReducedMotion&) = delete;
    ReducedMotion& operator=(const ReducedMotion&) = delete;

    bool isWished() const { return isWished_; }

private:
    void read();

    bool isWished_ = false;
    QDBusServiceWatcher portal_;
    QTimer read_; ///< reads at the end of the turn; a D-Bus signal can start a timer by itself
};

} // namespace nocta
