#pragma once

#include "base/Subscription.h"

#include <QAbstractButton>
#include <QAction>
#include <QObject>

#include <utility>

namespace nocta {

// How a view shows a value that somebody else has, and writes it. `Value` is whatever can be read
// with `get` and followed with `subscribe`: a setting, or what a service publishes. All of it lasts
// as long as the view.

/// Calls `show` with the present value and with each new one.
template <class Value, class Show>
void follow(QObject& view, Value& value, Show show) {
    class Following final : public QObject {
    public:
        Following(QObject& parent, Subscription subscription)
            : QObject(&parent), subscription_(std::move(subscription)) {}

    private:
        Subscription subscription_;
    };
    show(value.get());
    new Following(view, value.subscribe(show)); // goes with the view
}

/// A control that shows a value and writes what the user makes of it: `show` puts the value into
/// the control, `changed` is the signal of a change by the user, and `write` takes its argument. A
/// write that was refused shows in the control as well.
template <class Control, class Value, class Show, class Signal, class Write>
void bind(Control& control, Value& value, Show show, Signal changed, Write write) {
    follow(control, value, show);
    QObject::connect(&control, changed, &control, [&value, show, write](auto chosen) {
        write(chosen);
        show(value.get());
    });
}

/// A toggle over a value that something else than a plain write changes.
template <class Value, class Write>
void bind(QAbstractButton& toggle, Value& value, Write write) {
    bind(
        toggle, value, [&toggle](bool on) { toggle.setChecked(on); }, &QAbstractButton::clicked,
        write);
}

template <class Setting>
void bind(QAbstractButton& toggle, Setting& setting) {
    bind(toggle, setting, [&setting](bool on) { setting.set(on); });
}

template <class Setting>
void bind(QAction& item, Setting& setting) {
    bind(
        item, setting, [&item](bool on) { item.setChecked(on); }, &QAction::triggered,
        [&setting](bool on) { setting.set(on); });
}

} // namespace nocta
