#include "backends/linux/shell/LayerShell.h"

#include "backends/linux/wayland/LayerShellProtocol.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>
#include <qpa/qplatformnativeinterface.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace nocta {

namespace {

constexpr std::uint32_t newestVersion = 4;
constexpr std::uint32_t destroyVersion = 3;
constexpr std::int32_t coverPanels = -1;
// In points. Up to a scale factor of 3, a Wayland buffer can hold an image of this size.
constexpr std::uint32_t maxLength = 16384;
constexpr std::uint32_t maxArea = 1U << 25U;

QPlatformNativeInterface& native() {
    return *QGuiApplication::platformNativeInterface();
}

bool isWayland() {
    return QGuiApplication::platformName().startsWith(QStringLiteral("wayland"));
}

wl_surface* surfaceOf(QWindow* window) {
    return static_cast<wl_surface*>(native().nativeResourceForWindow("surface", window));
}

wl_output* outputOf(const QScreen* screen) {
    return screen == nullptr ? nullptr
                             : static_cast<wl_output*>(native().nativeResourceForScreen(
                                   "output", const_cast<QScreen*>(screen)));
}

/// Returns the size, or an empty size if no buffer can be that large.
QSize checkedSize(std::uint32_t width, std::uint32_t height) {
    const auto fits = width <= maxLength && height <= maxLength && width * height <= maxArea;
    return fits ? QSize(static_cast<int>(width), static_cast<int>(height)) : QSize();
}

std::uint32_t anchorsOf(Qt::Edges edges) {
    std::uint32_t anchors = 0;
    for (const auto& [edge, anchor] :
         {std::pair(Qt::TopEdge, ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP),
          std::pair(Qt::BottomEdge, ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM),
          std::pair(Qt::LeftEdge, ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT),
          std::pair(Qt::RightEdge, ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT)}) {
        if (edges.testFlag(edge)) {
            anchors |= anchor;
        }
    }
    return anchors;
}

} // namespace

void LayerShell::prepare() {
    qputenv("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", "1");
}

LayerShell::LayerShell() {
    if (!isWayland()) {
        return;
    }
    static constexpr wl_registry_listener listener{
        .global =
            [](void* data, wl_registry* registry, std::uint32_t name, const char* interface,
               std::uint32_t version) {
                auto& self = *static_cast<LayerShell*>(data);
                if (std::string_view(interface) == "zxdg_decoration_manager_v1") {
                    qputenv("QT_WAYLAND_DISABLE_WINDOWDECORATION", "1");
                }
                if (std::string_view(interface) == zwlr_layer_shell_v1_interface.name) {
                    self.version_ = std::min(version, newestVersion);
                    self.shell_ = static_cast<zwlr_layer_shell_v1*>(wl_registry_bind(
                        registry, name, &zwlr_layer_shell_v1_interface, self.version_));
                }
            },
        .global_remove = [](void* /*data*/, wl_registry* /*registry*/, std::uint32_t /*name*/) {}};
    auto* const display =
        static_cast<wl_display*>(native().nativeResourceForIntegration("wl_display"));
    // This code uses a separate queue, because Qt must not handle its own events during the round
    // trip.
    auto* const queue = wl_display_create_queue(display);
    auto* const wrapper = static_cast<wl_display*>(wl_proxy_create_wrapper(display));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), queue);
    auto* const registry = wl_display_get_registry(wrapper);
    wl_proxy_wrapper_destroy(wrapper);
    wl_registry_add_listener(registry, &listener, this);
    wl_display_roundtrip_queue(display, queue);
    if (shell_ != nullptr) {
        wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(shell_), nullptr);
    }
    wl_registry_destroy(registry);
    wl_event_queue_destroy(queue);
}

LayerShell::~LayerShell() {
    if (shell_ == nullptr) {
        return;
    }
    if (version_ >= destroyVersion) {
        zwlr_layer_shell_v1_destroy(shell_);
    } else {
        wl_proxy_destroy(reinterpret_cast<wl_proxy*>(shell_));
    }
}

const zwlr_layer_surface_v1_listener LayerSurface::listener = {
    .configure =
        [](void* data, zwlr_layer_surface_v1* surface, std::uint32_t serial, std::uint32_t width,
           std::uint32_t height) {
            zwlr_layer_surface_v1_ack_configure(surface, serial);
            static_cast<LayerSurface*>(data)->configure(checkedSize(width, height));
        },
    .closed =
        [](void* data, zwlr_layer_surface_v1* /*surface*/) {
            static_cast<LayerSurface*>(data)->close();
        }};

LayerSurface::LayerSurface(const LayerShell& shell, QWidget& widget, const QScreen* screen,
                           const Style& style)
    : widget_(widget) {
    widget_.installEventFilter(this);
    const auto isStretched = [&](Qt::Edges edges) { return (style.edges & edges) == edges; };
    const auto fillsWidth = isStretched(Qt::LeftEdge | Qt::RightEdge);
    const auto fillsHeight = isStretched(Qt::TopEdge | Qt::BottomEdge);
    if (screen != nullptr) { // in case the compositor leaves the size to the widget
        widget_.resize(fillsWidth ? screen->geometry().width() : widget_.width(),
                       fillsHeight ? screen->geometry().height() : widget_.height());
    }
    // Create a new surface even if the widget was shown before.
    if (auto* const window = widget_.windowHandle()) {
        window->destroy();
    }
    widget_.winId();
    auto* const window = widget_.windowHandle();
    window->create();
    auto* const surface = surfaceOf(window);
    if (surface == nullptr) {
        return;
    }
    surface_ = zwlr_layer_shell_v1_get_layer_surface(
        shell.shell_, surface, outputOf(screen), static_cast<std::uint32_t>(style.layer), "nocta");
    zwlr_layer_surface_v1_add_listener(surface_, &listener, this);
    zwlr_layer_surface_v1_set_size(surface_,
                                   fillsWidth ? 0U : static_cast<std::uint32_t>(widget_.width()),
                                   fillsHeight ? 0U : static_cast<std::uint32_t>(widget_.height()));
    zwlr_layer_surface_v1_set_anchor(surface_, anchorsOf(style.edges));
    zwlr_layer_surface_v1_set_margin(surface_, style.margin, style.margin, style.margin,
                                     style.margin);
    zwlr_layer_surface_v1_set_exclusive_zone(surface_, style.avoidsPanels ? 0 : coverPanels);
    setTakesKeyboard(style.takesKeyboard);
}

LayerSurface::~LayerSurface() {
    release();
    widget_.hide();
}

void LayerSurface::setTakesKeyboard(bool takesKeyboard) {
    if (surface_ == nullptr) {
        return;
    }
    zwlr_layer_surface_v1_set_keyboard_interactivity(
        surface_, takesKeyboard ? ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_EXCLUSIVE
                                : ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_NONE);
    wl_surface_commit(surfaceOf(widget_.windowHandle()));
}

/// If the size is empty, the widget keeps its size.
void LayerSurface::configure(QSize size) {
    if (!size.isEmpty()) {
        widget_.resize(size);
    }
    widget_.show();
    widget_.update(); // the compositor waits for a frame of this size
}

void LayerSurface::close() {
    release();
    widget_.hide();
    if (onClosed) {
        onClosed();
    }
}

bool LayerSurface::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Close) {
        release(); // before Qt destroys the surface that has this role
    }
    return QObject::eventFilter(watched, event);
}

void LayerSurface::release() {
    if (surface_ != nullptr) {
        zwlr_layer_surface_v1_destroy(std::exchange(surface_, nullptr));
    }
}

} // namespace nocta
