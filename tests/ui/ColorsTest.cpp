#include "ui/Colors.h"

#include <gtest/gtest.h>

#include <vector>

namespace nocta {
namespace {

QPalette paletteOf(QColor window, QColor text) {
    QPalette palette;
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    return palette;
}

const std::vector<QPalette> desktops = {
    paletteOf({239, 239, 239}, Qt::black),    // Fusion
    paletteOf({36, 36, 36}, {238, 238, 238}), // dark
    paletteOf({250, 250, 251}, {46, 52, 54}), // Adwaita
    paletteOf({53, 53, 53}, {238, 238, 236}), // Adwaita dark
    paletteOf({239, 240, 241}, {35, 38, 41}), // Breeze
    paletteOf({42, 46, 50}, {252, 252, 252}), // Breeze dark
    paletteOf(Qt::white, Qt::black),          // high contrast
    paletteOf(Qt::black, Qt::white),
};

TEST(Colors, ContrastRatioMatchesTheGuidelines) {
    EXPECT_NEAR(contrastRatio(Qt::black, Qt::white), 21, 1e-9);
    EXPECT_NEAR(contrastRatio(Qt::white, Qt::white), 1, 1e-9);
    EXPECT_NEAR(contrastRatio({0x77, 0x77, 0x77}, Qt::white), 4.48, 0.005);
    EXPECT_NEAR(contrastRatio({0, 0, 255}, Qt::white), 8.59, 0.005);
}

TEST(Colors, TextIsReadableAndShapesAreVisibleOnEveryDesktop) {
    for (const auto& palette : desktops) {
        const auto window = palette.color(QPalette::Window);
        for (const auto& ground : {window, panelColor(palette)}) {
            EXPECT_GE(contrastRatio(secondaryColor(palette), ground), 4.5);
            EXPECT_GE(contrastRatio(palette.color(QPalette::WindowText), ground), 4.5);
            EXPECT_GE(contrastRatio(accentColor(palette), ground), 3);
            EXPECT_GE(contrastRatio(edgeColor(palette), ground), 3);
        }
        EXPECT_GE(contrastRatio(textOnAccent(palette), accentColor(palette)), 4.5);
        EXPECT_LT(contrastRatio(secondaryColor(palette), window),
                  contrastRatio(palette.color(QPalette::WindowText), window));
    }
}

TEST(Colors, AccentIsAmberOnEveryDesktop) {
    for (const auto& palette : desktops) {
        EXPECT_NEAR(accentColor(palette).hslHue(), 36, 2);
    }
}

} // namespace
} // namespace nocta
