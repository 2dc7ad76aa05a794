#pragma once

#include "backends/virtual/VirtualDisplays.h"

#include <QImage>
#include <QRgb>

#include <array>

namespace nocta {

/// What a display makes of the picture that it is sent: the color filter, then its gamma tables,
/// then the light behind it. The outcome is a picture as well, of what the eye sees.
class DisplayPipeline {
public:
    /// `isGray` is whether the filter takes the color away. An external display is as bright as it
    /// was set by hand: full.
    DisplayPipeline(const VirtualDisplays::Display& display, bool isGray);

    /// In place; the picture has the format RGB32.
    void apply(QImage& picture) const;

private:
    /// Of one channel: the level that is seen for each that is sent, in its place in a QRgb.
    using Table = std::array<QRgb, 256>;

    Table red_{};
    Table green_{};
    Table blue_{};
    bool isGray_;
};

} // namespace nocta
