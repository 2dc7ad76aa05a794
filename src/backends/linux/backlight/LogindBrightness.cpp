#include "backends/linux/backlight/SysfsBacklight.h"
#include "backends/linux/bus/MessageBus.h"

#include <QDBusMessage>
#include <QString>

namespace nocta {

bool setBrightnessThroughLogind(const std::string& device, std::uint32_t level) {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"),
        QStringLiteral("/org/freedesktop/login1/session/auto"),
        QStringLiteral("org.freedesktop.login1.Session"), QStringLiteral("SetBrightness"));
    call << QStringLiteral("backlight") << QString::fromStdString(device) << level;
    return systemBus().send(call);
}

} // namespace nocta
