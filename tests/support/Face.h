#pragma once

#include "backends/shared/FittingSize.h"
#include "support/TestDesktop.h"
#include "ui/WidgetViews.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QLabel>
#include <QLayout>
#include <QTest>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>

namespace nocta {

/// Shows one real view at a time on the virtual desktop, and simulates a user.
class Face : public TestDesktop {
protected:
    WidgetViews realViews{instances()};
    std::unique_ptr<View> view;

    /// Shows a view at the size that the view has in its window.
    void open(std::unique_ptr<View> newView, const QSize& least = {}) {
        view = std::move(newView);
        fit(least);
        widget().show();
        for (int turn = 0; turn < 2;
             ++turn) { // a scroller passes its content's needs on a turn later
            QCoreApplication::processEvents();
        }
        fit(least);
        ASSERT_TRUE(QTest::qWaitForWindowActive(&widget()));
    }
    void TearDown() override { view.reset(); }

    /// Gives the view less space than it needs, as a window on a small screen does.
    void shrink(const QSize& size) const {
        widget().layout()->setSizeConstraint(QLayout::SetNoConstraint);
        widget().setMinimumSize(0, 0);
        widget().resize(size);
        QCoreApplication::processEvents();
        ASSERT_EQ(widget().size(), size);
    }

    /// Whether nothing hides any part of the control.
    static bool isWhollyVisible(const QWidget& control) {
        return control.visibleRegion() == QRegion(control.rect());
    }

    QWidget& widget() const { return *static_cast<QWidget*>(view->nativeView()); }

    /// Finds a control by its identifier or by its accessible name.
    template <class Control = QWidget>
    Control& control(const QString& name) const {
        const auto all = widget().findChildren<Control*>();
        const auto found = std::ranges::find_if(all, [&](const Control* candidate) {
            return candidate->objectName() == name || accessibleName(*candidate) == name;
        });
        if (found == all.end()) {
            throw std::runtime_error("cannot find the control " + name.toStdString());
        }
        return **found;
    }
    QAbstractButton& button(const QString& name) const { return control<QAbstractButton>(name); }

    void click(const QString& name) const {
        auto& target = button(name);
        ASSERT_TRUE(target.isVisible()) << name.toStdString();
        QTest::mouseClick(&target, Qt::LeftButton);
    }

    /// The name of the widget, or else of its label. On Linux the accessible name of a list is its
    /// current choice.
    static QString accessibleName(const QWidget& widget) {
        if (!widget.accessibleName().isEmpty()) {
            return widget.accessibleName();
        }
        auto* const interface =
            QAccessible::queryAccessibleInterface(const_cast<QWidget*>(&widget));
        return interface == nullptr ? QString() : interface->text(QAccessible::Name);
    }

    /// The texts of the visible labels.
    QStringList shownTexts() const {
        QStringList texts;
        for (const auto* const label : widget().findChildren<QLabel*>()) {
            if (label->isVisible()) {
                texts << label->text();
            }
        }
        return texts;
    }
    bool shows(const QString& text) const { return shownTexts().contains(text); }

private:
    void fit(const QSize& least) { widget().resize(fittingSize(widget(), least, unlimitedSpace)); }
};

} // namespace nocta
