#include "backends/linux/kde/ScreenBrightnessBacklight.h"

#include "backends/linux/bus/AsyncCall.h"
#include "backends/linux/bus/MessageBus.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QVariantMap>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace nocta {

namespace {

const auto service = QStringLiteral("org.kde.ScreenBrightness");
const auto servicePath = QStringLiteral("/org/kde/ScreenBrightness");
const auto interface = service;
const auto displayInterface = QStringLiteral("org.kde.ScreenBrightness.Display");
const auto properties = QStringLiteral("org.freedesktop.DBus.Properties");

constexpr auto suppressIndicator = 1U; // the desktop does not show the new level
constexpr qsizetype maxDisplays = 32;

QDBusMessage callTo(const QString& object, const QString& ofInterface, const QString& method) {
    auto call = QDBusMessage::createMethodCall(service, object, ofInterface, method);
    call.setAutoStartService(false);
    return call;
}

/// Returns -1 if the value is not an `int`.
int integerOf(const QVariant& value) {
    return value.typeId() == QMetaType::Int ? value.toInt() : -1;
}

} // namespace

ScreenBrightnessBacklight::ScreenBrightnessBacklight(Displays& displays, Backlight& fallback)
    : displays_(displays), fallback_(fallback), changes_([this] {
          isStale_ = true;
          proceed();
      }) {
    service_.addWatchedService(service);
    QObject::connect(&service_, &QDBusServiceWatcher::serviceOwnerChanged, [this] { restart(); });
    sessionBus_ =
        MessageBus::session().whenConnected([this](const QDBusConnection& bus) { follow(bus); });
}

Status ScreenBrightnessBacklight::getBrightness(DisplayId display, float& level) {
    if (!panel_ || !isOnlyBuiltIn(display)) {
        return fallback_.getBrightness(display, level);
    }
    level = unsent_.value_or(static_cast<float>(double(panel_->level) / panel_->maxLevel));
    return statusSuccess;
}

Status ScreenBrightnessBacklight::setBrightness(DisplayId display, float level) {
    if (!(level >= 0 && level <= 1)) {
        return statusFailure;
    }
    if (!isOnlyBuiltIn(display)) {
        return fallback_.setBrightness(display, level);
    }
    unsent_ = level; // sent to the service later if it has not answered yet
    if (!panel_) {
        return fallback_.setBrightness(display, level);
    }
    proceed();
    return statusSuccess;
}

bool ScreenBrightnessBacklight::isOnlyBuiltIn(DisplayId display) const {
    std::uint32_t count = 0;
    displays_.getActiveDisplayList({}, count);
    std::vector<DisplayId> ids(count);
    displays_.getActiveDisplayList(ids, count);
    ids.resize(count);
    std::erase_if(ids, [this](DisplayId id) { return !displays_.displayIsBuiltin(id); });
    return ids == std::vector{display};
}

void ScreenBrightnessBacklight::follow(QDBusConnection bus) {
    service_.setConnection(bus);
    for (const auto& signal :
         {QStringLiteral("DisplayAdded"), QStringLiteral("DisplayRemoved"),
          QStringLiteral("BrightnessChanged"), QStringLiteral("BrightnessRangeChanged")}) {
        changes_.connect(bus, servicePath, interface, signal);
    }
    restart();
}

/// Starts over, and ignores late answers from the previous service process.
void ScreenBrightnessBacklight::restart() {
    answers_ = std::make_unique<QObject>();
    panel_.reset();
    readNames();
}

/// Sends the next message, unless an answer is still pending.
void ScreenBrightnessBacklight::proceed() {
    if (isWaiting_) {
        return;
    }
    if (!unread_.isEmpty()) {
        readDisplay(servicePath + '/' + unread_.takeFirst());
    } else if (panel_ && unsent_) {
        write(*std::exchange(unsent_, std::nullopt));
    } else if (isStale_) {
        readNames();
    }
}

void ScreenBrightnessBacklight::write(float level) {
    // On a display with few levels, a low level must not be rounded down to 0.
    const auto lowest = level > 0 ? 1 : 0;
    panel_->level =
        std::max(static_cast<int>(std::lround(double{level} * panel_->maxLevel)), lowest);
    auto call = callTo(panel_->path, displayInterface, QStringLiteral("SetBrightness"));
    call << panel_->level << suppressIndicator;
    send(call, [this](const QDBusMessage& reply) {
        isStale_ = isStale_ || reply.type() == QDBusMessage::ErrorMessage;
    });
}

void ScreenBrightnessBacklight::readNames() {
    isStale_ = false;
    internal_.clear();
    auto call = callTo(servicePath, properties, QStringLiteral("Get"));
    call << interface << QStringLiteral("DisplaysDBusNames");
    send(call, [this](const QDBusMessage& reply) {
        const auto value =
            reply.signature() == QStringLiteral("v")
                ? qvariant_cast<QDBusVariant>(reply.arguments().constFirst()).variant()
                : QVariant();
        const auto names =
            value.typeId() == QMetaType::QStringList ? value.toStringList() : QStringList();
        unread_ = names.size() <= maxDisplays ? names : QStringList();
        finishReading();
    });
}

void ScreenBrightnessBacklight::readDisplay(const QString& path) {
    auto call = callTo(path, properties, QStringLiteral("GetAll"));
    call << displayInterface;
    send(call, [this, path](const QDBusMessage& reply) {
        QVariantMap values;
        if (reply.signature() == QStringLiteral("a{sv}")) {
            qvariant_cast<QDBusArgument>(reply.arguments().constFirst()) >> values;
        }
        const auto isInternal = values.value(QStringLiteral("IsInternal"));
        if (isInternal.typeId() == QMetaType::Bool && isInternal.toBool()) {
            const auto level = integerOf(values.value(QStringLiteral("Brightness")));
            const auto maxLevel = integerOf(values.value(QStringLiteral("MaxBrightness")));
            internal_.push_back(
                {.path = path, .level = std::min(level, maxLevel), .maxLevel = maxLevel});
        }
        finishReading();
    });
}

void ScreenBrightnessBacklight::finishReading() {
    if (unread_.isEmpty()) {
        const auto isUsable =
            internal_.size() == 1 && internal_[0].level >= 0 && internal_[0].maxLevel > 0;
        panel_ = isUsable ? std::optional(internal_[0]) : std::nullopt;
    }
}

void ScreenBrightnessBacklight::send(const QDBusMessage& call,
                                     std::function<void(const QDBusMessage&)> answered) {
    isWaiting_ = true;
    callAsync(service_.connection(), call, answers_.get(),
              [this, answered = std::move(answered)](const QDBusMessage& reply) {
                  isWaiting_ = false;
                  answered(reply);
                  proceed();
              });
}

} // namespace nocta
