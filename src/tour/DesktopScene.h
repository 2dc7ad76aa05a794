#pragma once

#include "backends/virtual/VirtualDesktop.h"

#include <QGraphicsProxyWidget>
#include <QGraphicsScene>
#include <QImage>
#include <QPointer>

#include <map>
#include <memory>

namespace nocta {

/// Shows the virtual desktop as a user would see it: each display has a wallpaper, a menu bar and
/// an application, and above them are the program's own windows, which are live. Scene coordinates
/// are those of the displays' bounds.
class DesktopScene final : public QGraphicsScene {
public:
    explicit DesktopScene(VirtualDesktop& desktop);
    ~DesktopScene() override;

    /// Updates the scene from the desktop. Call it before showing the scene.
    void refresh();

    /// Returns a picture of a display as the user sees it, in the display's own size.
    QImage picture(DisplayId id);

private:
    class Ground;
    class MenuBar;
    class Frame;

    void refreshDisplays();
    void refreshPopover();
    void refreshWindows();
    void refreshOverlays();

    /// Returns the proxy of the view's widget, and adds it to the scene if it is new. The widget is
    /// transparent where it paints nothing.
    QGraphicsProxyWidget* place(View& view, qreal level);
    /// Like `place`, with a frame around the widget. The frame exists as long as the proxy.
    QGraphicsProxyWidget* placeInFrame(View& view, qreal level, const QString& title);

    VirtualDesktop& desktop_;
    std::map<DisplayId, std::unique_ptr<Ground>> grounds_;
    std::map<DisplayId, std::unique_ptr<MenuBar>> menuBars_;
    std::map<QWidget*, QPointer<QGraphicsProxyWidget>> windows_;
};

} // namespace nocta
