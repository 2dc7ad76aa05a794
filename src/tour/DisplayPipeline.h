#pragma once

#include "backends/virtual/VirtualDisplays.h"

#include <QImage>
#include <QRgb>

#include <array>

namespace nocta {

/// Turns the picture that a display receives into the picture that the eye sees: applies the color
/// filter, then the gamma tables, then the backlight.
class DisplayPipeline {
public:
    /// `isGray` is whether the filter removes the color. The backlight of an external display is
    /// assumed to be full.
    DisplayPipeline(const VirtualDisplays::Display& display, bool isGray);

    /// In place; the picture has the format RGB32.
    void apply(QImage& picture) const;

private:
    /// The visible level for each input level of one channel, shifted to its place in a QRgb.
    using Table = std::array<QRgb, 256>;

    Table red_{};
    Table green_{};
    Table blue_{};
    bool isGray_;
};

} // namespace nocta
