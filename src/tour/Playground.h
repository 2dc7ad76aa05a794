#pragma once

#include "tour/LiveDesktop.h"

#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QTimer>
#include <QWidget>

#include <functional>

namespace nocta {

/// A window that shows the live desktop. The user can use its windows, press its keys, unplug the
/// external display, and choose how fast time passes.
class Playground final : public QWidget {
public:
    Playground();
    ~Playground() override;

    LiveDesktop& live() { return live_; }

private:
    class Displays;

    void addTools(QHBoxLayout& tools);
    void addTool(QHBoxLayout& tools, const QString& text, std::function<void()> action);
    void tick();

    LiveDesktop live_;
    Displays* displays_;
    QTimer timer_;
    QElapsedTimer sinceTick_;
    int speed_ = 1;
};

} // namespace nocta
