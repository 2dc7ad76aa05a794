#pragma once

#include <QObject>

#include <functional>

namespace nocta {

/// Receives logind's sleep signal. This is a separate class because Qt delivers a D-Bus signal with
/// arguments only to a class that moc has processed.
class SleepSignals final : public QObject {
    Q_OBJECT

public:
    std::function<void()> woken;

public Q_SLOTS:
    void prepareForSleep(bool isStarting) {
        if (!isStarting) {
            woken();
        }
    }
};

} // namespace nocta
