#include "tour/DesktopScene.h"

#include "symbols/Symbol.h"
#include "tour/ApplicationWindow.h"
#include "tour/DisplayPipeline.h"
#include "tour/Wallpaper.h"

#include <QDateTime>
#include <QGraphicsItem>
#include <QGraphicsSceneMouseEvent>
#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <chrono>
#include <utility>

namespace nocta {

namespace {

// The layers, from back to front.
constexpr qreal groundLevel = 0;
constexpr qreal windowLevel = 10;
constexpr qreal menuBarLevel = 20;
constexpr qreal popoverLevel = 30;
constexpr qreal overlayLevel = 40;

constexpr qreal menuBarHeight = 28; // points
constexpr qreal titleBarHeight = 28;
constexpr qreal closeSize = 12;
constexpr qreal symbolSize = 18;
constexpr qreal statusItemWidth = 34;
constexpr qreal clockWidth = 96;
constexpr qreal cornerRadius = 10;
constexpr qreal popoverGap = 10;
constexpr int shadowSize = 8; // less than the gap, so that a shadow stays on its display
constexpr QSizeF popoverSize(300, 280);

QRectF frame(const Rect& bounds) {
    return {bounds.x, bounds.y, bounds.width, bounds.height};
}

QWidget& widgetOf(View& view) {
    return *static_cast<QWidget*>(view.nativeView());
}

} // namespace

/// The lowest layer of a display: the wallpaper and the window of an application.
class DesktopScene::Ground final : public QGraphicsItem {
public:
    Ground(VirtualDesktop& desktop, const Rect& bounds)
        : desktop_(desktop), area_(frame(bounds)),
          wallpaper_(paintWallpaper(area_.size().toSize())) {
        setZValue(groundLevel);
    }

    QRectF boundingRect() const override { return area_; }
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* /*option*/,
               QWidget* /*widget*/) override {
        painter->drawImage(area_.topLeft(), wallpaper_);
        const QRectF window(area_.left() + area_.width() * 0.06, area_.top() + 72,
                            area_.width() * 0.5, area_.height() * 0.62);
        const auto& frontmost = desktop_.workspace.frontmost;
        paintApplicationWindow(*painter, window,
                               area_.left() == 0 && frontmost ? *frontmost : colorsApplication);
    }

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent* /*event*/) override {
        desktop_.popover.clickElsewhere();
    }

private:
    VirtualDesktop& desktop_;
    QRectF area_;
    QImage wallpaper_;
};

/// The bar at the top of every display, with the status item.
class DesktopScene::MenuBar final : public QGraphicsItem {
public:
    MenuBar(VirtualDesktop& desktop, const Rect& bounds)
        : desktop_(desktop), area_(bounds.x, bounds.y, bounds.width, menuBarHeight) {
        setZValue(menuBarLevel);
    }

    QRectF statusItem() const {
        return {area_.right() - clockWidth - statusItemWidth, area_.top(), statusItemWidth,
                menuBarHeight};
    }

    QRectF boundingRect() const override { return area_; }
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* /*option*/,
               QWidget* /*widget*/) override {
        painter->fillRect(area_, QColor(246, 246, 246, 225));
        painter->setPen(QColor(30, 30, 30));
        const auto now = std::chrono::system_clock::to_time_t(
            std::chrono::time_point_cast<std::chrono::system_clock::duration>(
                desktop_.runLoop.wallNow()));
        painter->drawText(area_.adjusted(0, 0, -16, 0), Qt::AlignVCenter | Qt::AlignRight,
                          QDateTime::fromSecsSinceEpoch(now).toString(QStringLiteral("HH:mm")));
        if (!desktop_.statusBar.hasItem()) {
            return;
        }
        QRectF symbol(0, 0, symbolSize, symbolSize);
        symbol.moveCenter(statusItem().center());
        painter->setRenderHint(QPainter::Antialiasing);
        drawSymbol(*painter, symbol.toRect(),
                   QString::fromStdString(desktop_.statusBar.symbolName()), QColor(30, 30, 30));
    }

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override {
        if (statusItem().contains(event->scenePos())) {
            desktop_.statusBar.click();
        } else {
            desktop_.popover.clickElsewhere();
        }
    }

private:
    VirtualDesktop& desktop_;
    QRectF area_;
};

/// The parts that a desktop draws around a window: a background, a shadow, and, if the window has a
/// title, a title bar.
class DesktopScene::Frame final : public QGraphicsItem {
public:
    Frame(VirtualDesktop& desktop, QGraphicsProxyWidget& window, QString title)
        : QGraphicsItem(&window), desktop_(desktop), window_(window), title_(std::move(title)) {
        setFlag(ItemStacksBehindParent);
    }

    QRectF boundingRect() const override {
        return area().adjusted(-shadowSize, -shadowSize, shadowSize, shadowSize);
    }
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* /*option*/,
               QWidget* /*widget*/) override {
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(QColor(0, 0, 0, 12));
        for (int width = 1; width <= shadowSize; ++width) {
            const auto corner = cornerRadius + width;
            painter->drawRoundedRect(area().adjusted(-width, -width, width, width), corner, corner);
        }
        painter->setPen(QPen(QColor(0, 0, 0, 60), 1));
        painter->setBrush(window_.widget()->palette().window());
        painter->drawRoundedRect(area(), cornerRadius, cornerRadius);
        painter->setPen(window_.widget()->palette().windowText().color());
        painter->drawText(QRectF(area().topLeft(), QSizeF(area().width(), titleBarHeight)),
                          Qt::AlignCenter, title_);
        painter->setPen(Qt::NoPen);
        painter->setBrush(QColor(236, 106, 94));
        painter->drawEllipse(closeButton());
    }

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override {
        if (closeButton().contains(event->pos())) { // deferred, because it destroys this item
            desktop_.runLoop.post([&desktop = desktop_, title = title_.toStdString()] {
                desktop.appWindows.close(title);
            });
        }
    }

private:
    /// The area of the close button; empty if there is no title bar.
    QRectF closeButton() const {
        const auto place = area().topLeft() + QPointF(closeSize, (titleBarHeight - closeSize) / 2);
        return title_.isEmpty() ? QRectF() : QRectF(place, QSizeF(closeSize, closeSize));
    }
    QRectF area() const {
        return window_.rect().adjusted(0, title_.isEmpty() ? 0 : -titleBarHeight, 0, 0);
    }

    VirtualDesktop& desktop_;
    QGraphicsProxyWidget& window_;
    QString title_;
};

DesktopScene::DesktopScene(VirtualDesktop& desktop) : desktop_(desktop) {}

/// Does not delete the widgets, because their views own them.
DesktopScene::~DesktopScene() {
    for (const auto& [widget, proxy] : windows_) {
        if (proxy != nullptr) {
            proxy->setWidget(nullptr);
        }
    }
}

void DesktopScene::refresh() {
    std::erase_if(windows_, [](const auto& window) { return window.second == nullptr; });
    refreshDisplays();
    refreshWindows();
    refreshPopover();
    refreshOverlays();
}

void DesktopScene::refreshDisplays() {
    const auto isGone = [this](const auto& item) {
        return std::ranges::none_of(desktop_.displays.all(),
                                    [&](const auto& display) { return display.id == item.first; });
    };
    std::erase_if(grounds_, isGone);
    std::erase_if(menuBars_, isGone);
    for (const auto& display : desktop_.displays.all()) {
        if (!grounds_.contains(display.id)) {
            auto& ground = grounds_[display.id] =
                std::make_unique<Ground>(desktop_, display.bounds);
            auto& bar = menuBars_[display.id] = std::make_unique<MenuBar>(desktop_, display.bounds);
            addItem(ground.get());
            addItem(bar.get());
        }
    }
}

void DesktopScene::refreshWindows() {
    for (const auto& window : desktop_.appWindows.windows()) {
        if (!window.isOnScreen || desktop_.displays.all().empty()) {
            continue;
        }
        auto* const shown =
            placeInFrame(*window.content, windowLevel, QString::fromStdString(window.title));
        auto& widget = widgetOf(*window.content);
        widget.setMinimumSize(widget.minimumSize().expandedTo(
            QSize(qRound(window.style.width), qRound(window.style.height))));
        auto place = QRectF({}, shown->effectiveSizeHint(Qt::MinimumSize));
        const auto display = frame(desktop_.displays.all().front().bounds);
        place.moveCenter(display.center());
        place.moveTop(std::max(place.top(), display.top() + menuBarHeight + titleBarHeight));
        shown->setGeometry(place);
    }
}

void DesktopScene::refreshPopover() {
    if (!desktop_.popover.isShown() || desktop_.popover.contentView() == nullptr ||
        menuBars_.empty()) {
        return;
    }
    auto* const shown = placeInFrame(*desktop_.popover.contentView(), popoverLevel, {});
    const auto& bar = *menuBars_.begin()->second;
    const auto anchor = bar.statusItem();
    auto place = QRectF({}, shown->effectiveSizeHint(Qt::MinimumSize).expandedTo(popoverSize));
    place.moveCenter({anchor.center().x(), 0});
    place.moveTop(anchor.bottom() + popoverGap);
    place.moveRight(std::min(place.right(), bar.boundingRect().right() - popoverGap));
    shown->setGeometry(place);
}

void DesktopScene::refreshOverlays() {
    for (const auto& window : desktop_.overlayWindows.windows()) {
        auto* const shown = place(*window.content, overlayLevel);
        shown->setVisible(window.isOnScreen);
        shown->setOpacity(window.alpha);
        shown->setGeometry(frame(window.screen.frame));
    }
}

QGraphicsProxyWidget* DesktopScene::place(View& view, qreal level) {
    auto& widget = widgetOf(view);
    auto& proxy = windows_[&widget];
    if (proxy == nullptr) {
        widget.setAttribute(Qt::WA_TranslucentBackground);
        proxy = addWidget(&widget);
        proxy->setZValue(level);
    }
    return proxy;
}

QGraphicsProxyWidget* DesktopScene::placeInFrame(View& view, qreal level, const QString& title) {
    const auto isNew = windows_[&widgetOf(view)] == nullptr;
    auto* const proxy = place(view, level);
    if (isNew) {
        new Frame(desktop_, *proxy, title);
    }
    return proxy;
}

QImage DesktopScene::picture(DisplayId id) {
    refresh();
    const auto& display = desktop_.displays.display(id);
    const auto area = frame(display.bounds);
    QImage sent(area.size().toSize(), QImage::Format_RGB32);
    {
        QPainter painter(&sent);
        render(&painter, QRectF({}, area.size()), area);
    }
    DisplayPipeline(display, desktop_.filter.isOn).apply(sent);
    return sent;
}

} // namespace nocta
