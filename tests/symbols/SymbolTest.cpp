#include "symbols/Symbol.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

#include <algorithm>

namespace nocta {
namespace {

const QColor ink(200, 40, 90);

QDir drawings() {
    return {NOCTA_SOURCE_DIR "/resources/symbols"};
}

QStringList allNames() {
    auto names = drawings().entryList(QDir::Files);
    for (auto& name : names) {
        EXPECT_TRUE(name.endsWith(".svg")) << name.toStdString();
        name.chop(4);
    }
    return names;
}

QImage blank(QSize pixels) {
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QImage drawn(const QString& name, int pixels, const QColor& color = ink) {
    auto image = blank({pixels, pixels});
    QPainter painter(&image);
    drawSymbol(painter, image.rect(), name, color);
    return image;
}

int darkest(const QImage& image, const QRect& part) {
    int alpha = 0;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            alpha = std::max(alpha, qAlpha(image.pixel(x, y)));
        }
    }
    return alpha;
}

bool isEmpty(const QImage& image) {
    return darkest(image, image.rect()) == 0;
}

TEST(Symbol, EverySymbolIsLegibleAtTextSize) {
    EXPECT_GE(allNames().size(), 21);
    for (const auto& name : allNames()) {
        for (const auto size : {16, 32}) {
            const auto image = drawn(name, size);
            EXPECT_GT(darkest(image, image.rect()), 128) << name.toStdString() << " at " << size;
        }
    }
}

TEST(Symbol, AllSymbolsHaveTheSameStyle) {
    for (const auto& name : allNames()) {
        QFile file(drawings().filePath(name + ".svg"));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const auto text = file.readAll();
        EXPECT_TRUE(
            text.startsWith(R"(<svg xmlns="http://www.w3.org/2000/svg" width="24" height="24" )"
                            R"(viewBox="0 0 24 24" fill="none" stroke="#000" stroke-width="1.75" )"
                            R"(stroke-linecap="round" stroke-linejoin="round">)"))
            << name.toStdString();
        for (const auto* const attribute : {"stroke-width", "stroke-linecap", "stroke-linejoin"}) {
            EXPECT_EQ(text.count(attribute), 1) << name.toStdString() << ": " << attribute;
        }
        const auto isSolid = name == "circle.lefthalf.filled" || name == "checkmark.circle.fill";
        EXPECT_EQ(text.count("fill="), isSolid ? 2 : 1) << name.toStdString();
    }
}

TEST(Symbol, SymbolsAreNotCutOff) {
    for (const auto& name : allNames()) {
        const auto image = drawn(name, 48);
        for (const auto& edge :
             {QRect(0, 0, 48, 1), QRect(0, 47, 48, 1), QRect(0, 0, 1, 48), QRect(47, 0, 1, 48)}) {
            EXPECT_EQ(darkest(image, edge), 0) << name.toStdString();
        }
    }
}

TEST(Symbol, SymbolsHaveOnlyTheRequestedColor) {
    for (const auto& name : allNames()) {
        const auto image = drawn(name, 64);
        bool isSolidSomewhere = false;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const auto color = image.pixelColor(x, y);
                if (color.alpha() == 255) {
                    isSolidSomewhere = true;
                    ASSERT_EQ(color, ink) << name.toStdString();
                }
            }
        }
        EXPECT_TRUE(isSolidSomewhere) << name.toStdString();
    }
}

TEST(Symbol, CheckMarkOfTheFilledDiscIsTransparent) {
    const auto image = drawn("checkmark.circle.fill", 96);
    EXPECT_EQ(qAlpha(image.pixel(96 * 107 / 240, 96 * 155 / 240)), 0)
        << "the corner of the check mark should be transparent";
    EXPECT_EQ(qAlpha(image.pixel(48, 16)), 255);
}

TEST(Symbol, UnknownNameIsNotDrawn) {
    for (const QString name : {"no such symbol", "", "symbols/eye"}) {
        EXPECT_FALSE(hasSymbol(name)) << name.toStdString();
        EXPECT_TRUE(isEmpty(drawn(name, 32))) << name.toStdString();
    }
    EXPECT_TRUE(hasSymbol("eye"));
}

TEST(Symbol, NothingIsPaintedIntoAnEmptyRectangle) {
    auto image = blank({8, 8});
    QPainter painter(&image);
    drawSymbol(painter, QRectF(2, 2, 0, 4), "eye", ink);
    drawSymbol(painter, QRectF(), "eye", ink);
    EXPECT_TRUE(isEmpty(image));
}

TEST(Symbol, SymbolIsAlignedToWholePixelsAtEveryPixelRatio) {
    for (const auto ratio : {1.0, 1.25, 1.5, 2.0, 3.0}) {
        auto image = blank({96, 96});
        image.setDevicePixelRatio(ratio);
        QPainter painter(&image);
        painter.translate(1.3, 0.4);
        drawSymbol(painter, QRectF(2.3, 3.4, 21, 21), "gear", ink);
        painter.end();
        image.setDevicePixelRatio(1);

        auto expected = blank({96, 96});
        QPainter exact(&expected);
        exact.drawImage(QPointF(3.6 * ratio, 3.8 * ratio).toPoint(),
                        drawn("gear", qRound(21 * ratio)));
        exact.end();
        EXPECT_EQ(image, expected) << ratio;
    }
}

TEST(Symbol, DrawingDoesNotChangeThePainter) {
    auto image = blank({32, 32});
    image.setDevicePixelRatio(2);
    QPainter painter(&image);
    painter.translate(3, 4);
    painter.setOpacity(0.5);
    const auto before = painter.worldTransform();
    drawSymbol(painter, QRectF(0, 0, 8, 8), "eye", ink);
    EXPECT_EQ(painter.worldTransform(), before);
    EXPECT_EQ(painter.opacity(), 0.5);
}

TEST(Symbol, SymbolKeepsItsShapeInAWideRectangle) {
    auto image = blank({64, 32});
    QPainter painter(&image);
    drawSymbol(painter, image.rect(), "gear", ink);
    painter.end();
    EXPECT_EQ(image.copy(16, 0, 32, 32), drawn("gear", 32));
}

} // namespace
} // namespace nocta
