#pragma once

#include "backends/virtual/VirtualDisplays.h"

#include <QImage>
#include <QRgb>

#include <array>

namespace nocta {

/// Converts the picture that a display receives into the picture that the user sees. It applies the
/// color filter, then the gamma tables, and then the backlight.
class DisplayPipeline {
public:
    /// `isGray` is true if the color filter removes all color. The backlight of an external display
    /// is assumed to be at 100%.
    DisplayPipeline(const VirtualDisplays::Display& display, bool isGray);

    /// Converts the picture in place. Its format must be RGB32.
    void apply(QImage& picture) const;

private:
    /// Contains the visible level for each input level of one channel, shifted to the channel's
    /// position in a QRgb.
    using Table = std::array<QRgb, 256>;

    Table red_{};
    Table green_{};
    Table blue_{};
    bool isGray_;
};

} // namespace nocta
