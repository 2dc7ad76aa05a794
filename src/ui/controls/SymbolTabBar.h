#pragma once

#include <QTabBar>

namespace nocta {

/// Tabs with a symbol above each title.
class SymbolTabBar final : public QTabBar {
public:
    SymbolTabBar();

    void addTab(const QString& title, const QString& symbol);

protected:
    QSize tabSizeHint(int index) const override;
    void paintEvent(QPaintEvent* event) override;
};

} // namespace nocta
