// nocta-iconset DRAWING FOLDER: renders an SVG at every macOS icon size and writes the images to a
// folder for iconutil.

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdlib>
#include <iostream>

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) {
        std::cerr << "usage: nocta-iconset DRAWING FOLDER" << std::endl;
        return EXIT_FAILURE;
    }
    QSvgRenderer drawing(QString::fromLocal8Bit(arguments[1]));
    const auto folder = QString::fromLocal8Bit(arguments[2]);
    bool isWritten = drawing.isValid() && QDir().mkpath(folder);
    for (const int points : {16, 32, 128, 256, 512}) {
        for (const int scale : {1, 2}) {
            QImage image(points * scale, points * scale, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::transparent);
            QPainter painter(&image);
            drawing.render(&painter);
            painter.end();
            const auto suffix = scale == 1 ? QString() : QStringLiteral("@2x");
            isWritten &= image.save(
                QStringLiteral("%1/icon_%2x%2%3.png").arg(folder).arg(points).arg(suffix));
        }
    }
    if (!isWritten) {
        std::cerr << "nocta-iconset: cannot draw " << arguments[1] << " into " << arguments[2]
                  << std::endl;
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
