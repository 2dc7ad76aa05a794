#pragma once

#include <QObject>
#include <QSize>

#include <cstdint>
#include <functional>

class QScreen;
class QWidget;
struct wl_registry;
struct zwlr_layer_shell_v1;
struct zwlr_layer_surface_v1;
struct zwlr_layer_surface_v1_listener;

namespace nocta {

/// Access to the compositor's layers above and below the ordinary windows, over Qt's connection. Qt
/// itself does not support layers.
class LayerShell {
public:
    /// Allows windows with Qt::BypassWindowManagerHint to be shown in a layer. Call this before Qt
    /// starts.
    static void prepare();

    /// Checks whether the compositor offers layers. Qt must already be connected to the compositor.
    /// Without Wayland, there are no layers. If the compositor draws window frames, also disables
    /// Qt's own frames: Qt would load OpenGL for them, even for windows without a frame, which
    /// would take about 15 MiB of memory.
    LayerShell();
    LayerShell(const LayerShell&) = delete;
    LayerShell& operator=(const LayerShell&) = delete;
    ~LayerShell();

    bool isAvailable() const { return shell_ != nullptr; }

private:
    friend class LayerSurface;
    zwlr_layer_shell_v1* shell_ = nullptr;
    std::uint32_t version_ = 0;
};

/// Shows a hidden top-level widget with Qt::BypassWindowManagerHint in a layer of one screen. The
/// widget appears when the compositor has sent its size. Destroying the surface hides the widget;
/// closing the widget releases the surface.
class LayerSurface final : public QObject {
public:
    enum class Layer : std::uint32_t { top = 2, overlay = 3 };

    struct Style {
        Layer layer = Layer::overlay;
        bool takesKeyboard = false; ///< no other window then has keyboard focus
        Qt::Edges edges;            ///< the edges of the screen that the surface is attached to
        int margin = 0;             ///< the distance from `edges` in points; negative beyond them
        bool avoidsPanels = false;
    };

    /// If `edges` contains two opposite edges, the surface fills the screen between them; otherwise
    /// it has the size of the widget. If `screen` is null, the compositor chooses the screen.
    LayerSurface(const LayerShell& shell, QWidget& widget, const QScreen* screen,
                 const Style& style);
    LayerSurface(const LayerSurface&) = delete;
    LayerSurface& operator=(const LayerSurface&) = delete;
    ~LayerSurface() override;

    void setTakesKeyboard(bool takesKeyboard);

    /// Called after the compositor has closed the surface, for example because its screen is gone.
    std::function<void()> onClosed;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void configure(QSize size);
    void close();
    void release();

    static const zwlr_layer_surface_v1_listener listener;

    QWidget& widget_;
    zwlr_layer_surface_v1* surface_ = nullptr;
};

} // namespace nocta
