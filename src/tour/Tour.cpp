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
    const auto note = [this](std::int64_t kelvin) {
        temperature.points.emplace_back(sinceMidnight() / 1.0h, static_cast<double>(kelvin));
    };
    auto& current = instances().colorTemperatureService().currentTemperature;
    note(current.get());
    cancellables_.push_back(current.subscribe(note));
}

void Tour::quit() {
    cancellables_.clear();
    LiveDesktop::quit();
}

void Tour::waitUntil(WallTime time) {
    desktop.runLoop.advance(time - desktop.runLoop.wallNow());
}

WallTime Tour::next(int hour, int minute) const {
    const auto wait = hour * 1h + minute * 1min - sinceMidnight();
    return desktop.runLoop.wallNow() + (wait < 0min ? wait + 24h : wait);
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

void Tour::expect(bool holds, const QString& expectation) {
    if (!holds) {
        std::cerr << "nocta-tour: at " << timeOfDay().toStdString()
                  << ", this expectation was not met: " << expectation.toStdString() << std::endl;
        passed_ = false;
    }
}

double Tour::topOf(DisplayId id) {
    const auto& red = desktop.displays.display(id).red;
    return red.empty() ? 1.0 : double{red.back()};
}

QString Tour::timeOfDay() const {
    const auto minute = sinceMidnight() / 1min;
    return QStringLiteral("%1:%2")
        .arg(minute / 60, 2, 10, QLatin1Char('0'))
        .arg(minute % 60, 2, 10, QLatin1Char('0'));
}

Duration Tour::sinceMidnight() const {
    const auto now = desktop.runLoop.wallNow();
    const auto local = now + Calendar::offsetFromGMT(now);
    return local - std::chrono::floor<std::chrono::days>(local);
}

} // namespace nocta
