#include "backends/linux/kde/NightLight.h"

#include "base/WhitePoint.h"

#include <QDBusMessage>
#include <QDBusVariant>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <iostream>
#include <utility>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr auto programName = "nocta-warmth";
constexpr auto endTimeout = 2s; // restoring takes a few milliseconds
constexpr auto minPause = 2s;   // KWin needs this long to reach a temperature
constexpr int maxReplacements = 3;
constexpr std::int64_t maxIgnoredStep = 50; // kelvin; KWin ignores small differences
constexpr int timeoutAtStart = 500;         // milliseconds

/// Returns whether KWin can change the color temperature. KWin 6 renamed the service.
bool canChangeTemperature(const QDBusConnection& bus) {
    const std::array<std::pair<QString, QString>, 2> services = {
        {{QStringLiteral("/org/kde/KWin/NightLight"), QStringLiteral("org.kde.KWin.NightLight")},
         {QStringLiteral("/ColorCorrect"), QStringLiteral("org.kde.kwin.ColorCorrect")}}};
    return std::ranges::any_of(services, [&](const auto& object) {
        auto question = QDBusMessage::createMethodCall(
            QStringLiteral("org.kde.KWin"), object.first,
            QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
        question.setAutoStartService(false);
        question << object.second << QStringLiteral("available");
        const QDBusMessage reply = bus.call(question, QDBus::Block, timeoutAtStart);
        return reply.signature() == QStringLiteral("v") &&
               reply.arguments().constFirst().value<QDBusVariant>().variant() == QVariant(true);
    });
}

} // namespace

NightLight::NightLight(const QDBusConnection& bus, RunLoop& runLoop, std::filesystem::path notes)
    : runLoop_(runLoop), notes_(std::move(notes)), isAvailable_(canChangeTemperature(bus)) {
    std::error_code error;
    if (std::filesystem::exists(notes_, error) && start()) {
        helper_.endInput(); // restores the settings that an earlier helper has changed
        isEnding_ = true;
    }
}

NightLight::~NightLight() {
    restore();
}

void NightLight::setTemperature(std::int64_t kelvin) {
    const auto wanted = kelvin < neutralTemperature - maxIgnoredStep
                            ? std::optional(static_cast<NightLightTemperature>(kelvin))
                            : std::nullopt;
    if (!isAvailable_ || wanted == wanted_) {
        return;
    }
    wanted_ = wanted;
    replacements_ = 0;
    if (!pause_.isValid()) {
        send();
    }
}

void NightLight::restore() {
    pause_.invalidate();
    wanted_.reset();
    sent_.reset();
    if (helper_.isRunning()) {
        helper_.endInput();
        if (!helper_.waitForEnd(endTimeout)) {
            helper_.release(); // the helper restores the settings later
        }
    }
}

/// Performs the next step toward the requested temperature.
void NightLight::send() {
    if (wanted_ == sent_ || isEnding_) {
        return; // `receive` calls this again when the helper has exited
    }
    if (!wanted_) {
        helper_.endInput();
        isEnding_ = true;
    } else if ((!helper_.isRunning() && !start()) || !helper_.send(&*wanted_, sizeof *wanted_)) {
        complain("cannot start " + HelperProcess::path(programName));
    }
    sent_ = wanted_;
    pause_.start(runLoop_, minPause, Repeat::no, [this] { send(); });
}

bool NightLight::start() {
    isEnding_ = false;
    if (!helper_.start(programName, {notes_.string()})) {
        return false;
    }
    helper_.whenReadable([this] { receive(); });
    return true;
}

void NightLight::receive() {
    auto answer = NightLightAnswer::done;
    const auto size = helper_.receive(reinterpret_cast<char*>(&answer), 1);
    if (size < 0 && errno == EAGAIN) {
        return;
    }
    if (size > 0) {
        if (answer == NightLightAnswer::failed) {
            complain("cannot change the settings of Night Light");
        }
        return;
    }
    helper_.kill();
    isEnding_ = false;
    sent_.reset();
    if (wanted_ && ++replacements_ > maxReplacements) {
        wanted_.reset();
    }
    if (!pause_.isValid()) {
        send();
    }
}

void NightLight::complain(const std::string& problem) {
    if (!std::exchange(hasComplained_, true)) {
        std::cerr << "nocta: " << problem << "; the displays are not warmed" << std::endl;
    }
}

} // namespace nocta
