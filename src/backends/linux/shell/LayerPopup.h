#pragma once

#include "backends/linux/shell/LayerShell.h"

#include <QLabel>
#include <QObject>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace nocta {

/// Shows a widget in the corner of a screen that is nearest to the pointer, until the user clicks
/// elsewhere. A Wayland program does not know where the pointer is outside its own windows. So this
/// class first covers every screen with a transparent window. The window that the pointer enters
/// determines the screen and the corner, and a click on any of these windows counts as a click
/// elsewhere. Without a pointer, the compositor chooses the screen, and the corner is at the top
/// right. The tool tips of the widget are shown inside the widget, because Qt cannot open a tool
/// tip window whose parent is in a layer.
class LayerPopup final : public QObject {
public:
    /// `margin` is the distance in points from the edges of the screen, or from panels there; it
    /// may be negative. `dismiss` should destroy this object.
    LayerPopup(const LayerShell& shell, QWidget& widget, int margin, std::function<void()> dismiss);
    LayerPopup(const LayerPopup&) = delete;
    LayerPopup& operator=(const LayerPopup&) = delete;
    ~LayerPopup() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Surroundings;

    void surroundingsArePainted();
    void open(const QScreen* screen, Qt::Edges corner);
    void dismissLater();
    void showTip(const QWidget& control);

    const LayerShell& shell_;
    QWidget& widget_;
    int margin_;
    std::function<void()> dismiss_;
    std::vector<std::unique_ptr<Surroundings>> surroundings_;
    QTimer withoutPointer_;
    std::optional<LayerSurface> surface_;
    QLabel tip_;
};

} // namespace nocta
