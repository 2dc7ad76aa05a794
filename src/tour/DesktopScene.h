#pragma once

#include "backends/virtual/VirtualDesktop.h"

#include <QGraphicsProxyWidget>
#include <QGraphicsScene>
#include <QImage>
#include <QPointer>

#include <map>
#include <memory>

namespace nocta {

/// The virtual desktop as a person would find it: each display with a wallpaper, a menu bar and an
/// application, and on them the program's own windows, live. Display bounds are scene coordinates.
class DesktopScene final : public QGraphicsScene {
public:
    explicit DesktopScene(VirtualDesktop& desktop);
    ~DesktopScene() override;

    /// Updates the scene from the desktop. Call it before you show the scene.
    void refresh();

    /// A display as the eye sees it, at its own size.
    QImage picture(DisplayId id);

private:
    class Ground;
    class MenuBar;
    class Frame;

    void refreshDisplays();
    void refreshPopover();
    void refreshWindows();
    void refreshOverlays();

    /// The view's widget in the scene; adds it if it is new. Where the widget paints nothing, it is
    /// transparent.
    QGraphicsProxyWidget* place(View& view, qreal level);
    /// The same with a frame around it, which lives as long as the proxy.
    QGraphicsProxyWidget* placeInFrame(View& view, qreal level, const QString& title);

    VirtualDesktop& desktop_;
    std::map<DisplayId, std::unique_ptr<Ground>> grounds_;
    std::map<DisplayId, std::unique_ptr<MenuBar>> menuBars_;
    std::map<QWidget*, QPointer<QGraphicsProxyWidget>> windows_;
};

} // namespace nocta
