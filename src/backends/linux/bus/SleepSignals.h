#pragma once

#include <QObject>

#include <functional>

namespace nocta {

/// Takes logind's signal of sleep. Apart from its owner, as a D-Bus signal with arguments only
/// reaches a class that the toolkit has generated code for.
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
