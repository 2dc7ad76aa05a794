// nocta-pictures: draws the pictures of the documents into a folder, from the program's own views
// on the virtual desktop.

#include "app/SharedInstances.h"
#include "backends/virtual/VirtualDesktop.h"
#include "ui/BreakOverlayView.h"

#include <QApplication>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>

#include <chrono>
#include <cstdlib>
#include <iostream>

namespace {

using namespace nocta;
using namespace std::chrono_literals;

constexpr QSize screenSize(960, 600); // points

/// What lies under the cover: a desktop in the evening with a window on it.
void paintDesktop(QPainter& painter) {
    QLinearGradient evening(0, 0, 0, screenSize.height());
    evening.setColorAt(0, QColor(38, 64, 120));
    evening.setColorAt(1, QColor(232, 150, 90));
    painter.fillRect(QRect({}, screenSize), evening);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(245, 245, 245));
    painter.drawRoundedRect(QRect(70, 60, 430, 420), 8, 8);
    painter.setBrush(QColor(205, 205, 210));
    for (int line = 0; line < 14; ++line) {
        painter.drawRect(QRect(100, 100 + 26 * line, 370 - 53 * (line % 4), 8));
    }
}

QImage breakOverlay(qreal scale) {
    VirtualDesktop desktop;
    desktop.workspace.reducesMotion = true;
    SharedInstances instances(desktop.ports);
    auto& settings = instances.settingsManager();
    settings.breakIntervalMinutes.set(1);
    settings.breakDurationSeconds.set(20);
    desktop.runLoop.advance(0s);
    auto& timer = instances.breakTimer();
    timer.start();
    desktop.runLoop.advance(60s);
    BreakOverlayView view(
        timer, settings, desktop.workspace, desktop.runLoop, [] {}, [] {});
    view.setAttribute(Qt::WA_DontShowOnScreen);
    view.resize(screenSize);
    view.show();
    desktop.runLoop.advance(7s);

    QImage picture(screenSize * scale, QImage::Format_RGB32);
    picture.setDevicePixelRatio(scale);
    QPainter painter(&picture);
    paintDesktop(painter);
    view.render(&painter, {}, {}, QWidget::DrawChildren);
    return picture;
}

bool save(const QImage& picture, const QString& file) {
    const auto isSaved = picture.save(file);
    if (!isSaved) {
        std::cerr << "nocta-pictures: cannot write " << file.toStdString() << std::endl;
    }
    return isSaved;
}

} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        std::cerr << "usage: nocta-pictures FOLDER" << std::endl;
        return EXIT_FAILURE;
    }
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    const QApplication application(argumentCount, arguments);
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 10));
    bool isComplete = true;
    for (const auto percent : {100, 150, 200}) {
        isComplete &=
            save(breakOverlay(percent / 100.0),
                 QStringLiteral("%1/break-overlay-%2.png").arg(arguments[1]).arg(percent));
    }
    return isComplete ? EXIT_SUCCESS : EXIT_FAILURE;
}
