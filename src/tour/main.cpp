// nocta-tour: runs Nocta on a virtual desktop. If there is a screen, it opens a window in which you
// can try out Nocta. Otherwise it simulates a day and writes a page with pictures of that day.

#include "tour/Day.h"
#include "tour/Playground.h"
#include "tour/TourPage.h"

#include <QApplication>
#include <QDir>
#include <QStyleFactory>

#include <cstdlib>
#include <iostream>

namespace {

bool hasScreen() {
    return !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

/// Ignores warnings, because Qt's offscreen platform prints one for every window.
void printErrorsOnly(QtMsgType type, const QMessageLogContext& /*place*/, const QString& message) {
    if (type == QtCriticalMsg || type == QtFatalMsg) {
        std::cerr << "nocta-tour: " << message.toStdString() << std::endl;
    }
}

int simulateDay() {
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1); // independent of the time zone of the machine
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 10));
    QApplication::setCursorFlashTime(0);
    const auto folder = QDir::current().absoluteFilePath(QStringLiteral("nocta-tour"));
    QDir(folder).removeRecursively(); // remove the pictures of an earlier run
    if (!QDir().mkpath(folder)) {
        std::cerr << "nocta-tour: cannot create " << folder.toStdString() << std::endl;
        return EXIT_FAILURE;
    }
    nocta::Tour tour(folder);
    nocta::simulateDay(tour);
    tour.expect(nocta::writeTour(tour), QStringLiteral("the page can be written"));
    std::cout << "A day with Nocta: " << folder.toStdString() << "/index.html" << std::endl;
    return tour.passed() ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argumentCount, char** arguments) {
    if (!hasScreen()) {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
        qInstallMessageHandler(printErrorsOnly);
    }
    const QApplication application(argumentCount, arguments);
    if (!hasScreen()) {
        return simulateDay();
    }
    nocta::Playground playground;
    playground.show();
    return QApplication::exec();
}
