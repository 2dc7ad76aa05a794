#include "tour/Tour.h"

#include "base/Calendar.h"

#include <QAbstractButton>
#include <QWidget>

#include <chrono>
#include <iostream>
#include <utility>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr int minutesOfADay = 24 * 60;

QString stateName(const BreakState& state) {
    static const std::array names = {QStringLiteral("counting"), QStringLiteral("break"),
                                     QStringLiteral("paused"), QStringLiteral("snoozed"),
                                     QStringLiteral("off")};
    return names.at(state.index());
}

} // namespace

Tour::Tour(QString folder) : folder_(std::move(folder)) {}

void Tour::launch() {
    LiveDesktop::launch();
    cancellables_.push_back(
        instances().breakTimer().state.subscribe([this](const BreakState& state) {
            const auto name = stateName(state);
            if (breakStates.empty() || breakStates.back().second != name) {
                breakStates.emplace_back(timeOfDay(), name);
            }
        }));
}

void Tour::quit() {
    cancellables_.clear();
    LiveDesktop::quit();
}

void Tour::waitUntil(int hour, int minute) {
    const auto wait = (60 * hour + minute - minuteOfDay() + minutesOfADay) % minutesOfADay;
    for (int i = 0; i < wait; ++i) {
        desktop.runLoop.advance(1min);
        temperature.points.emplace_back(
            minuteOfDay() / 60.0,
            static_cast<double>(instances().colorTemperatureService().currentTemperature.get()));
    }
}

void Tour::press(const char* identifier) {
    std::vector<View*> shown;
    if (desktop.popover.isShown()) {
        shown.push_back(desktop.popover.contentView());
    }
    for (const auto& window : desktop.appWindows.windows()) {
        shown.push_back(window.content);
    }
    for (const auto& window : desktop.overlayWindows.windows()) {
        shown.push_back(window.content);
    }
    for (auto* const view : shown) {
        const auto& widget = *static_cast<QWidget*>(view->nativeView());
        if (auto* const button = widget.findChild<QAbstractButton*>(QLatin1String(identifier))) {
            button->click();
            desktop.runLoop.advance(0s);
            return;
        }
    }
    expect(false, QStringLiteral("there is a button %1").arg(QLatin1String(identifier)));
}

void Tour::take(const QString& title, const QString& text) {
    const auto file = QStringLiteral("%1.png").arg(scenes_.size() + 1, 2, 10, QLatin1Char('0'));
    expect(picture().save(folder_ + '/' + file), QStringLiteral("%1 can be written").arg(file));
    scenes_.push_back({file, timeOfDay(), title, text});
}

void Tour::expect(bool holds, const QString& promise) {
    if (!holds) {
        std::cerr << "nocta-tour: at " << timeOfDay().toStdString() << " it does not hold that "
                  << promise.toStdString() << std::endl;
        isAsPromised_ = false;
    }
}

double Tour::topOf(DisplayId id) {
    const auto& red = desktop.displays.display(id).red;
    return red.empty() ? 1.0 : double{red.back()};
}

QString Tour::timeOfDay() const {
    const auto minute = minuteOfDay();
    return QStringLiteral("%1:%2")
        .arg(minute / 60, 2, 10, QLatin1Char('0'))
        .arg(minute % 60, 2, 10, QLatin1Char('0'));
}

int Tour::minuteOfDay() const {
    const auto now = desktop.runLoop.wallNow();
    const auto local = now + Calendar::offsetFromGMT(now);
    return static_cast<int>((local - std::chrono::floor<std::chrono::days>(local)) / 1min);
}

} // namespace nocta
