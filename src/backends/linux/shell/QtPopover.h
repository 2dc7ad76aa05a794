#pragma once

#include "backends/linux/shell/LayerPopup.h"
#include "backends/linux/x11/X11Connection.h"
#include "platform/Popover.h"

#include <QWidget>

#include <memory>
#include <optional>

namespace nocta {

/// The popover as a separate window that closes when the user clicks elsewhere or presses Escape.
/// It opens at the status item, or at the pointer if the panel does not report the item's position,
/// or at the top right if the position of the pointer is not known.
/// The popover appears without a fade, because only a compositor could fade it. With a compositor,
/// the popover has rounded corners and a shadow. On Wayland it opens in the corner of the screen
/// that is nearest to the pointer or, if the compositor offers no layers, as an ordinary window.
class QtPopover final : public Popover {
public:
    /// `connection` is null without an X server. `seesPointer` is whether there is one that sees
    /// the pointer everywhere: one inside a Wayland session sees it only in the windows of X
    /// clients.
    QtPopover(const LayerShell& layerShell, X11Connection* connection, bool seesPointer);
    QtPopover(const QtPopover&) = delete;
    QtPopover& operator=(const QtPopover&) = delete;
    ~QtPopover() override;

    void setContentSize(double width, double height) override;
    void setBehavior(PopoverBehavior behavior) override;
    void setAnimates(bool /*animates*/) override {}
    void setContentView(std::unique_ptr<View> view) override;
    void show(StatusItem& relativeTo) override;
    void close() override;
    bool isShown() const override;

private:
    class Window;

    const LayerShell& layerShell_;
    X11Connection* connection_;
    bool seesPointer_;
    std::unique_ptr<Window> window_;
    std::optional<LayerPopup> inCorner_; ///< while the popover is shown in a layer
};

} // namespace nocta
