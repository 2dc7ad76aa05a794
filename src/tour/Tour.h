#pragma once

#include "tour/LiveDesktop.h"

#include <QString>

#include <utility>
#include <vector>

namespace nocta {

/// A picture of both displays at one moment of the day, and what is to be seen on it.
struct TourScene {
    QString file; ///< of the picture, in the tour's folder
    QString time; ///< of the day
    QString title;
    QString text;
};

/// A value over another, for a plot.
struct TourCurve {
    QString name;
    std::vector<std::pair<double, double>> points;
};

/// A day on a live desktop, and the record of what was seen. A scene whose promise does not hold
/// fails the tour.
class Tour : public LiveDesktop {
public:
    /// Pictures are written to the folder, which exists.
    explicit Tour(QString folder);

    void launch();
    void quit();

    void waitUntil(WallTime time);
    /// The next moment of that hour and minute.
    WallTime next(int hour, int minute) const;

    /// Presses a button of the program's windows by its identifier.
    void press(const char* identifier);

    void take(const QString& title, const QString& text);
    void expect(bool holds, const QString& promise);

    /// The highest red level of a display's tables, which warmth leaves alone.
    double topOf(DisplayId id);

    const QString& folder() const { return folder_; }
    const std::vector<TourScene>& scenes() const { return scenes_; }
    bool isAsPromised() const { return isAsPromised_; }

    std::vector<TourCurve> brightnessCurves;
    std::vector<TourCurve> ramps;
    TourCurve temperature{QStringLiteral("of the screen"), {}};
    std::vector<std::pair<QString, QString>> breakStates; ///< time and state, when it changed

private:
    QString timeOfDay() const;
    Duration sinceMidnight() const;

    QString folder_;
    std::vector<TourScene> scenes_;
    bool isAsPromised_ = true;
    Cancellables cancellables_;
};

} // namespace nocta
