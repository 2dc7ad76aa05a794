#pragma once

#include "tour/LiveDesktop.h"

#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QTimer>
#include <QWidget>

#include <functional>

namespace nocta {

/// A window with the live desktop in it: its windows can be used, its keys pressed, its displays
/// unplugged, and its time runs as fast as one likes.
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
