#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>

#include <functional>

namespace nocta {

/// Runs Qt's event loop until the condition holds. Returns false after a generous timeout.
inline bool serveUntil(const std::function<bool()>& condition) {
    const QDeadlineTimer ample(30000);
    while (!condition() && !ample.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return condition();
}

} // namespace nocta
