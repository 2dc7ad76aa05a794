#include "symbols/Symbol.h"
#include "ui/ShownBreak.h"

#include <QImage>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>

#include <cmath>
#include <numbers>
#include <string>
#include <vector>

// Checks the appearance of the break cover in rendered pictures.

namespace nocta {
namespace {

using namespace std::chrono_literals;

struct DrawnText {
    QString text;
    QFont font;
    QColor color;
    QPointF place;
};

/// Records each string painted on this device, with its font. A rendered picture is not enough,
/// because two weights can look the same with the installed fonts.
class TextRecorder final : public QPaintDevice {
public:
    explicit TextRecorder(QSize size) : size_(size) {}

    std::vector<DrawnText> texts() const { return engine_.texts; }
    QPaintEngine* paintEngine() const override { return &engine_; }

protected:
    int metric(PaintDeviceMetric metric) const override {
        switch (metric) {
        case PdmWidth:
            return size_.width();
        case PdmHeight:
            return size_.height();
        case PdmDevicePixelRatio:
        case PdmNumColors:
            return 1;
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(QPaintDevice::devicePixelRatioFScale());
        case PdmDepth:
            return 32;
        default:
            return 96; // dots per inch
        }
    }

private:
    class Engine final : public QPaintEngine {
    public:
        Engine() : QPaintEngine(AllFeatures) {}
        std::vector<DrawnText> texts;

        bool begin(QPaintDevice* /*device*/) override { return true; }
        bool end() override { return true; }
        Type type() const override { return User; }
        void updateState(const QPaintEngineState& /*state*/) override {}
        void drawPixmap(const QRectF& /*to*/, const QPixmap& /*picture*/,
                        const QRectF& /*from*/) override {}
        void drawPath(const QPainterPath& /*path*/) override {}
        void drawTextItem(const QPointF& place, const QTextItem& item) override {
            texts.push_back({item.text(), item.font(), painter()->pen().color(),
                             painter()->deviceTransform().map(place)});
        }
    };

    QSize size_;
    mutable Engine engine_;
};

class BreakOverlayLookTest : public ShownBreak {
protected:
    static constexpr int backdropAlpha = 179; // 0.7
    static constexpr int white = 255;
    static constexpr int faint = 51; // white with alpha 0.2

    void SetUp() override {
        desktop.workspace.reducesMotion = true; // the ring moves in steps
        ShownBreak::SetUp();
    }

    /// Renders the view on a transparent background, so that opacities can be measured. The colors
    /// are premultiplied: red is the amount of white.
    QImage picture() {
        QImage picture(view->size(), QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        view->render(&picture, {}, {}, QWidget::DrawChildren);
        return picture;
    }
    static QRgb raw(const QImage& picture, QPoint point) {
        return reinterpret_cast<const QRgb*>(picture.constScanLine(point.y()))[point.x()];
    }
    static int red(const QImage& picture, QPoint point) { return qRed(raw(picture, point)); }

    std::vector<DrawnText> texts() {
        TextRecorder recorder(view->size());
        view->render(&recorder, {}, {}, QWidget::DrawChildren);
        return recorder.texts();
    }
    QString seconds() {
        for (const auto& drawn : texts()) {
            if (drawn.text.endsWith('s') && drawn.text.at(0).isDigit()) {
                return drawn.text;
            }
        }
        return {};
    }

    /// Returns the amount of white at `degrees` clockwise from the top of the ring, by default in
    /// the middle of its line.
    int onRing(const QImage& picture, double degrees, double radius = 50) {
        const auto angle = degrees * std::numbers::pi / 180;
        const auto center = QRectF(QRect(ring().mapTo(&*view, QPoint()), ring().size())).center();
        const auto point = center + QPointF(std::sin(angle), -std::cos(angle)) * radius;
        return red(picture, {static_cast<int>(std::floor(point.x())),
                             static_cast<int>(std::floor(point.y()))});
    }
    void expectRing(double progress) {
        const auto now = picture();
        constexpr double cap = 4; // degrees: the rounded end and one pixel
        for (double degrees = cap; degrees <= 360 - cap; degrees += 1) {
            const auto end = 360 * progress;
            if (std::abs(degrees - end) > cap) {
                EXPECT_NEAR(onRing(now, degrees), degrees < end ? white : faint, 2) << degrees;
            }
        }
    }

    /// Returns the filled area of a button. Searches the picture from the middle of the left
    /// padding.
    QRect bodyOf(QPushButton& button, const QImage& picture, int fill) {
        const auto place = QRect(button.mapTo(&*view, QPoint()), button.size());
        const auto start = QPoint(place.left() + 14, place.center().y());
        EXPECT_NEAR(red(picture, start), fill, 1);
        const auto reach = [&](QPoint step) {
            auto point = start;
            while (red(picture, point + step) >= fill - 1) {
                point += step;
            }
            return point;
        };
        const auto top = reach({0, -1}).y();
        const auto left = reach({-1, 0}).x();
        // Search to the right below the label to avoid the text.
        auto right = QPoint(start.x(), top + 9);
        while (red(picture, right + QPoint(1, 0)) >= fill - 1) {
            right += QPoint(1, 0);
        }
        return {QPoint(left, top), QPoint(right.x(), reach({0, 1}).y())};
    }
    /// Expects the label in the body font, centered in the fill. Compares every pixel except at the
    /// corners.
    void expectLabel(QPushButton& button, const QString& text, QColor fill, QColor ink) {
        const auto now = picture();
        const auto body = bodyOf(button, now, qRound(white * fill.alphaF()));
        EXPECT_EQ(body.width(), QFontMetrics(view->font()).horizontalAdvance(text) + 2 * 24);
        EXPECT_EQ(body.height(), QFontMetrics(view->font()).height() + 2 * 12);
        QImage expected(now.size(), now.format());
        expected.fill(qPremultiply(qRgba(0, 0, 0, backdropAlpha)));
        QPainter painter(&expected);
        painter.fillRect(body, fill);
        painter.setPen(ink);
        painter.drawText(body, Qt::AlignCenter, text);
        painter.end();
        for (int y = body.top(); y <= body.bottom(); ++y) {
            for (int x = body.left() + 8; x <= body.right() - 8; ++x) {
                ASSERT_NEAR(red(now, {x, y}), red(expected, {x, y}), 2) << x << " " << y;
            }
        }
        EXPECT_LT(red(now, body.topLeft()), red(now, body.topLeft() + QPoint(8, 8)) / 2)
            << "the corners should be rounded";
    }
};

TEST_F(BreakOverlayLookTest, BackdropIsSeventyPercentBlackUpToEveryEdge) {
    const auto now = picture();
    for (const auto point : {QPoint(0, 0), QPoint(1279, 0), QPoint(0, 799), QPoint(1279, 799)}) {
        const auto pixel = raw(now, point);
        EXPECT_NEAR(qAlpha(pixel), backdropAlpha, 1);
        EXPECT_EQ(pixel & 0xFFFFFFU, 0U);
    }
}

TEST_F(BreakOverlayLookTest, TextsAreWhiteWithTheCorrectOpacityWeightAndSize) {
    struct Expected {
        QString text;
        QFont::Weight weight;
        double scale; // of the body font's size
        double opacity;
    };
    const std::vector<Expected> expected = {
        {"Time for a break", QFont::DemiBold, 22.0 / 13, 1},
        {"Look at something far away for 20 seconds", QFont::Normal, 1, 0.8},
        {"20s", QFont::Medium, 1, 1},
        {"Press Space to skip", QFont::Normal, 10.0 / 13, 0.5}};
    const auto drawn = texts();
    ASSERT_EQ(drawn.size(), expected.size()) << "these texts should be drawn from top to bottom";
    const auto body = QFontInfo(view->font()).pointSizeF();
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(drawn[i].text, expected[i].text);
        EXPECT_EQ(drawn[i].font.weight(), expected[i].weight) << i;
        EXPECT_NEAR(drawn[i].font.pointSizeF(), body * expected[i].scale, 0.01) << i;
        EXPECT_NEAR(drawn[i].color.alphaF(), expected[i].opacity, 0.001) << i;
        auto opaque = drawn[i].color;
        opaque.setAlpha(white);
        EXPECT_EQ(opaque, QColor(Qt::white)) << i;
    }
}

TEST_F(BreakOverlayLookTest, ColumnIsCenteredAndInOrder) {
    const auto drawn = texts();
    ASSERT_EQ(drawn.size(), 4U);
    const auto now = picture();
    std::vector<int> rows; // the rows that are not empty, from top to bottom
    for (int y = 0; y < now.height(); ++y) {
        bool isEmpty = true;
        for (int x = 0; isEmpty && x < now.width(); ++x) {
            isEmpty = red(now, {x, y}) == 0;
        }
        if (!isEmpty) {
            rows.push_back(y);
        }
    }
    ASSERT_FALSE(rows.empty());
    EXPECT_NEAR(rows.front() + rows.back(), now.height(), 25) << "the column should be centered";
    const auto ringTop = ring().mapTo(&*view, QPoint()).y();
    const auto ringBottom = ringTop + ring().height();
    const auto buttonTop = skip().mapTo(&*view, QPoint()).y();
    EXPECT_LT(rows.front() + 40, drawn[0].place.y()) << "the eye should be at the top";
    EXPECT_LT(drawn[0].place.y(), drawn[1].place.y());
    EXPECT_LT(drawn[1].place.y() + 20, ringTop);
    EXPECT_NEAR(drawn[2].place.y(), (ringTop + ringBottom) / 2.0, 10);
    EXPECT_LT(ringBottom, buttonTop);
    EXPECT_EQ(snooze().mapTo(&*view, QPoint()).y(), buttonTop);
    EXPECT_LT(buttonTop + skip().height(), drawn[3].place.y());
}

TEST_F(BreakOverlayLookTest, EyeIsAtTheTopAndAsLargeAsInAFiftyPointFont) {
    const auto now = picture();
    QImage eye(60, 60, now.format());
    eye.fill(qPremultiply(qRgba(0, 0, 0, backdropAlpha)));
    QPainter painter(&eye);
    drawSymbol(painter, eye.rect(), "eye", Qt::white);
    painter.end();
    int top = 0;
    while (red(now, {640, top}) == 0) {
        ++top;
    }
    int eyeTop = 0;
    while (red(eye, {30, eyeTop}) == 0) {
        ++eyeTop;
    }
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 60; ++x) {
            ASSERT_NEAR(red(now, {x + 640 - 30, y + top - eyeTop}), red(eye, {x, y}), 1)
                << x << " " << y;
        }
    }
}

TEST_F(BreakOverlayLookTest, RingClosesClockwiseFromTheTop) {
    expectRing(0);
    EXPECT_NEAR(onRing(picture(), 0), faint, 2) << "there should be no arc yet";
    for (int second = 1; second <= 19; ++second) {
        desktop.runLoop.advance(1s);
        expectRing(second / 20.0);
    }
    breakTimer().stop();
    ring().setProgress(1);
    EXPECT_NEAR(onRing(picture(), 0), white, 2) << "the ring should be closed";
}

TEST_F(BreakOverlayLookTest, RingIsAHundredPointsWideWithAFourPointLineAndRoundedEnds) {
    EXPECT_NEAR(ring().mapTo(&*view, QPoint()).x() + ring().width() / 2.0, 640, 0.5);
    desktop.runLoop.advance(10s); // half of the break
    const auto now = picture();
    for (const auto& [degrees, level] : {std::pair{90, white}, {270, faint}}) {
        for (const double radius : {48.5, 49.5, 50.5, 51.5}) {
            EXPECT_NEAR(onRing(now, degrees, radius), level, 12) << degrees << " " << radius;
        }
        for (const double radius : {47.5, 52.5}) {
            EXPECT_NEAR(onRing(now, degrees, radius), 0, 12) << degrees << " " << radius;
        }
    }
    constexpr double onePoint = 360 / (2 * std::numbers::pi * 50); // degrees
    EXPECT_GT(onRing(now, -onePoint), 200);
    EXPECT_GT(onRing(now, 180 + onePoint), 200);
    EXPECT_NEAR(onRing(now, -3.5 * onePoint), faint, 2);
    EXPECT_NEAR(onRing(now, 180 + 3.5 * onePoint), faint, 2);
}

TEST_F(BreakOverlayLookTest, RemainingSecondsAreInTheMiddleOfTheRing) {
    EXPECT_EQ(seconds(), "20s");
    const auto now = picture();
    QRect ink;
    const auto place = QRect(ring().mapTo(&*view, QPoint()), ring().size());
    const auto inside = place.adjusted(25, 25, -25, -25);
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        for (int x = inside.left(); x <= inside.right(); ++x) {
            ink |= red(now, {x, y}) > 0 ? QRect(x, y, 1, 1) : QRect();
        }
    }
    EXPECT_NEAR(ink.center().x(), place.center().x(), 2);
    EXPECT_NEAR(ink.center().y(), place.center().y(), 3);
    desktop.runLoop.advance(7s);
    EXPECT_EQ(seconds(), "13s");
}

TEST_F(BreakOverlayLookTest, RingIsUnchangedAndSecondsAreZeroInOtherStates) {
    desktop.runLoop.advance(5s);
    breakTimer().stop();
    EXPECT_EQ(seconds(), "0s");
    expectRing(0.25);
    breakTimer().start();
    desktop.runLoop.advance(10s);
    EXPECT_EQ(seconds(), "0s") << "the countdown should not be shown";
    expectRing(0.25);
    makeView();
    EXPECT_EQ(seconds(), "0s") << "a new view should not show the countdown either";
    expectRing(0);
}

TEST_F(BreakOverlayLookTest, ButtonsAreTwentyPointsApartWithTheFilledOneOnTheRight) {
    const auto now = picture();
    const auto left = bodyOf(skip(), now, faint);
    const auto right = bodyOf(snooze(), now, white);
    EXPECT_EQ(right.left() - left.right() - 1, 20);
    EXPECT_EQ(left.top(), right.top());
    EXPECT_NEAR(left.left() + right.right() + 1, 1280, 1) << "the row should be centered";
}

TEST_F(BreakOverlayLookTest, ButtonsShowTheirLabels) {
    expectLabel(skip(), "Skip", QColor(255, 255, 255, faint), Qt::white);
    expectLabel(snooze(), "Snooze 5 min", Qt::white, Qt::black);
}

TEST_F(BreakOverlayLookTest, PressedButtonIsEightyPercentOpaque) {
    const auto before = picture();
    for (auto* const button : {&skip(), &snooze()}) {
        button->setDown(true);
        const auto now = picture();
        const auto place = QRect(button->mapTo(&*view, QPoint()), button->size());
        for (int y = place.top(); y <= place.bottom(); ++y) {
            for (int x = place.left(); x <= place.right(); ++x) {
                ASSERT_NEAR(red(now, {x, y}), 0.8 * red(before, {x, y}), 2) << x << " " << y;
            }
        }
        button->setDown(false);
        EXPECT_EQ(picture(), before);
    }
}

TEST_F(BreakOverlayLookTest, FocusedButtonHasARingAroundIt) {
    const auto before = picture();
    const auto body = bodyOf(snooze(), before, white);
    const auto gap = body.topLeft() + QPoint(20, -2);
    const auto line = body.topLeft() + QPoint(20, -4);
    EXPECT_EQ(red(before, line), 0);
    snooze().setFocus();
    const auto now = picture();
    EXPECT_EQ(red(now, gap), 0);
    EXPECT_EQ(red(now, line), white);
    EXPECT_EQ(red(now, line - QPoint(0, 1)), white);
    EXPECT_EQ(red(now, line - QPoint(0, 2)), 0);
    EXPECT_EQ(bodyOf(snooze(), now, white), body);
}

} // namespace
} // namespace nocta
