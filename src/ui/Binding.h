#pragma once

#include "base/Subscription.h"

#include <QAbstractButton>
#include <QAction>
#include <QObject>

#include <utility>

namespace nocta {

// Binds a view to a value that it does not own. A `Value` is any type that has `get` and
// `subscribe`, such as a setting or a published value of a service. The binding exists as long as
// the view.
//
//     follow(*label, service.isEnabled, [label](bool on) { label->setEnabled(on); });
//     bind(*toggle, settings.allowFullBlack);

/// Calls `show` with the current value, and with each new value.
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
    new Following(view, value.subscribe(show)); // the view owns it
}

/// Binds a control that shows a value and writes the user's changes. `show` displays the value in
/// the control. When the user changes the control, it emits the signal `changed`, and `write`
/// receives the signal's argument. If the write is refused, the control shows the old value again.
template <class Control, class Value, class Show, class Signal, class Write>
void bind(Control& control, Value& value, Show show, Signal changed, Write write) {
    follow(control, value, show);
    QObject::connect(&control, changed, &control, [&value, show, write](auto chosen) {
        write(chosen);
        show(value.get());
    });
}

/// Binds a toggle to a value that is changed by `write` instead of `set`.
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
