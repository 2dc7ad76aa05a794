#pragma once

#include "backends/linux/GrayscaleFilter.h"
#include "backends/linux/x11/ColorMatrices.h"
#include "backends/linux/x11/Guardian.h"
#include "backends/linux/x11/X11Connection.h"
#include "backends/linux/x11/X11Displays.h"
#include "base/NotificationCenter.h"
#include "base/Subscription.h"

#include <vector>

namespace nocta {

/// Turns the screen gray with the color transformation matrices of the outputs. Graphics drivers
/// apply these before the gamma ramps, so dimming and warmth stay in effect. A display that is
/// plugged in while the filter is on turns gray as well. A display whose driver does not support
/// the matrix stays in color.
class X11ColorMatrixFilter final : public GrayscaleFilter {
public:
    X11ColorMatrixFilter(X11Connection& connection, X11Displays& displays,
                         NotificationCenter& notificationCenter, Guardian& guardian);
    X11ColorMatrixFilter(const X11ColorMatrixFilter&) = delete;
    X11ColorMatrixFilter& operator=(const X11ColorMatrixFilter&) = delete;
    ~X11ColorMatrixFilter() override;

    /// Whether any display has a matrix.
    bool isAvailable() const;

    bool isOn() override;
    void setOn(bool on) override;

private:
    struct DisplayMatrix {
        xcb_randr_output_t output = XCB_NONE;
        ColorMatrix matrix{};
    };

    std::vector<DisplayMatrix> matrices() const;
    void take(Guardian::Permission permission);
    void grayDisplays();
    void restoreDisplays();

    X11Connection& connection_;
    X11Displays& displays_;
    Guardian& guardian_;
    bool isOurs_ = false;    ///< this filter should make the screen gray
    bool isWaiting_ = false; ///< turning gray, or restoring, waits for the guardian's permission
    Subscription screens_;
    Subscription permission_;
};

} // namespace nocta
