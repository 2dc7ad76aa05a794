#include "ui/BreakOverlayView.h"

#include "base/Checked.h"
#include "ui/BreakButtonStyle.h"
#include "ui/Text.h"
#include "ui/controls/SymbolView.h"

#include <QAccessible>
#include <QFontInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPaintEvent>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr qreal backdropOpacity = 0.7;
constexpr qreal textOpacity = 0.8;
constexpr qreal hintOpacity = 0.5;

constexpr int symbolSize = 60; // points; a symbol fills five sixths of its square
constexpr int ringSize = 100;  // diameter, measured at the middle of the line
constexpr int ringWidth = 4;
constexpr int ringRoom = ringWidth / 2; // for the outer half of the line
constexpr qreal ringOpacity = 0.2;
constexpr int buttonSpacing = 20; // between their painted shapes
constexpr int smallPadding = 20;
constexpr int largePadding = 30;

// The sizes of the text styles as multiples of the body size.
constexpr qreal titleScale = 22.0 / 13;
constexpr qreal footnoteScale = 10.0 / 13;

constexpr Duration movementDuration = 1s;
constexpr int movementSteps = 30;
constexpr std::int64_t announcementInterval = 10; // seconds

QColor withOpacity(QColor color, qreal opacity) {
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

QColor white(qreal opacity) {
    return withOpacity(Qt::white, opacity);
}

QLabel* makeLabel(const QString& text, qreal scale, QFont::Weight weight, qreal opacity) {
    auto* const label = new QLabel(text);
    auto font = label->font();
    font.setPointSizeF(QFontInfo(font).pointSizeF() * scale);
    font.setWeight(weight);
    label->setFont(font);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    auto palette = label->palette();
    palette.setColor(QPalette::WindowText, white(opacity));
    label->setPalette(palette);
    return label;
}

/// Stops the program with a message that names the setting if the duration is too large.
std::int64_t secondsLeft(const BreakState& state, const SettingsManager& settings) {
    const FaultContext context({settings.breakDurationSeconds.origin()});
    return secondsLeft(state);
}

} // namespace

std::int64_t secondsLeft(const BreakState& state) {
    const auto* const active = std::get_if<Active>(&state);
    return active == nullptr ? 0 : truncated(active->timeRemaining);
}

double breakProgress(double remaining, double duration) {
    return duration > 0 ? std::clamp((duration - remaining) / duration, 0.0, 1.0) : 1.0;
}

BreakProgressRing::BreakProgressRing(std::int64_t seconds) : seconds_(seconds) {
    setFixedSize(ringSize + 2 * ringRoom, ringSize + 2 * ringRoom);
    announceSeconds();
}

void BreakProgressRing::setProgress(double progress) {
    progress_ = progress;
    update();
}

void BreakProgressRing::setSeconds(std::int64_t seconds) {
    seconds_ = seconds;
    update();
    if (seconds % announcementInterval == 0) {
        announceSeconds();
    }
}

void BreakProgressRing::announceSeconds() {
    setAccessibleName(Text::tr("Seconds left: %1").arg(seconds_));
    QAccessibleEvent event(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
}

void BreakProgressRing::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    const auto circle = QRectF(rect()).adjusted(ringRoom, ringRoom, -ringRoom, -ringRoom);
    painter.setPen(QPen(white(ringOpacity), ringWidth, Qt::SolidLine, Qt::FlatCap));
    painter.drawEllipse(circle);
    constexpr int top = 90 * 16; // sixteenths of a degree
    constexpr int wholeTurn = 360 * 16;
    painter.setPen(QPen(Qt::white, ringWidth, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(circle, top, -qRound(progress_ * wholeTurn));
    auto medium = font();
    medium.setWeight(QFont::Medium);
    painter.setFont(medium);
    painter.setPen(Qt::white);
    painter.drawText(rect(), Qt::AlignCenter, Text::tr("%1s").arg(seconds_));
}

BreakOverlayView::BreakOverlayView(BreakTimer& breakTimer, SettingsManager& settings,
                                   Workspace& workspace, RunLoop& runLoop,
                                   std::function<void()> onSkip, std::function<void()> onSnooze)
    : settings_(settings), workspace_(workspace), runLoop_(runLoop), onSkip_(std::move(onSkip)),
      onSnooze_(std::move(onSnooze)),
      ring_(new BreakProgressRing(secondsLeft(breakTimer.state.get(), settings))) {
    setAccessibleName(Text::tr("Time for a break"));
    auto colors = palette();
    colors.setColor(QPalette::Window, withOpacity(Qt::black, backdropOpacity));
    setPalette(colors);
    auto* const skip = new BreakButton(Text::tr("Skip"), {.isPrimary = false});
    skip->setObjectName(QStringLiteral("skipBreakButton"));
    connect(skip, &QPushButton::clicked, this, onSkip_);
    auto* const snooze = new BreakButton(Text::tr("Snooze 5 min"), {.isPrimary = true});
    snooze->setObjectName(QStringLiteral("snoozeBreakButton"));
    connect(snooze, &QPushButton::clicked, this, onSnooze_);
    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(buttonSpacing - 2 * BreakButtonStyle::focusRoom);
    buttons->addStretch();
    buttons->addWidget(skip);
    buttons->addWidget(snooze);
    buttons->addStretch();

    auto* const column = new QVBoxLayout(this);
    column->setSpacing(0);
    column->addStretch();
    column->addWidget(new SymbolView(QStringLiteral("eye"), symbolSize, SymbolColor::white), 0,
                      Qt::AlignHCenter);
    column->addSpacing(smallPadding);
    column->addWidget(makeLabel(Text::tr("Time for a break"), titleScale, QFont::DemiBold, 1));
    column->addSpacing(smallPadding / 2);
    column->addWidget(makeLabel(Text::tr("Look at something far away for 20 seconds"), 1,
                                QFont::Normal, textOpacity));
    column->addSpacing(largePadding - ringRoom);
    column->addWidget(ring_, 0, Qt::AlignHCenter);
    column->addSpacing(largePadding - ringRoom - BreakButtonStyle::focusRoom);
    column->addLayout(buttons);
    column->addSpacing(smallPadding - BreakButtonStyle::focusRoom);
    column->addWidget(
        makeLabel(Text::tr("Press Space to skip"), footnoteScale, QFont::Normal, hintOpacity));
    column->addStretch();
    cancellables_.push_back(
        breakTimer.state.subscribe([this](const BreakState& state) { follow(state); }));
}

void BreakOverlayView::paintEvent(QPaintEvent* event) {
    QPainter(this).fillRect(event->rect(), palette().color(QPalette::Window));
}

void BreakOverlayView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    setFocus(); // no button has focus yet; Tab moves to the first button
}

void BreakOverlayView::follow(const BreakState& state) {
    ring_->setSeconds(secondsLeft(state, settings_));
    if (const auto* const active = std::get_if<Active>(&state)) {
        moveTo(breakProgress(active->timeRemaining,
                             static_cast<double>(settings_.breakDurationSeconds.get())));
    }
}

void BreakOverlayView::moveTo(double progress) {
    if (reduceMotion()) {
        ring_->setProgress(progress);
        return;
    }
    movement_.start(runLoop_, movementSteps, movementDuration,
                    [this, from = ring_->progress(), progress](int step) {
                        ring_->setProgress(
                            std::lerp(from, progress, static_cast<double>(step) / movementSteps));
                    },
                    {});
}

} // namespace nocta
