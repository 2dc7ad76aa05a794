#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>

#include <functional>

namespace nocta {

/// Serves Qt's event loop until the condition holds; false if it never does in an ample time.
inline bool serveUntil(const std::function<bool()>& condition) {
    const QDeadlineTimer ample(30000);
    while (!condition() && !ample.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return condition();
}

} // namespace nocta
