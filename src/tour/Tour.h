#pragma once

#include "tour/LiveDesktop.h"

#include <QString>

#include <utility>
#include <vector>

namespace nocta {

/// A picture of all displays at one moment of the day, and what it shows.
struct TourScene {
    QString file; ///< the picture, in the tour's folder
    QString time; ///< of the day
    QString title;
    QString text;
};

/// One value as a function of another, for a plot.
struct TourCurve {
    QString name;
    std::vector<std::pair<double, double>> points;
};

/// A day on a live desktop, and the record of it. The tour fails if an expectation is not met.
class Tour : public LiveDesktop {
public:
    /// Pictures are written to the folder, which must exist.
    explicit Tour(QString folder);

    void launch();
    void quit();

    void waitUntil(WallTime time);
    /// The next time at which the clock shows that hour and minute.
    WallTime next(int hour, int minute) const;

    /// Presses the button with that identifier in the program's windows.
    void press(const char* identifier);

    void take(const QString& title, const QString& text);
    void expect(bool holds, const QString& promise);

    /// The highest red level of a display's tables, which warmth does not change.
    double topOf(DisplayId id);

    const QString& folder() const { return folder_; }
    const std::vector<TourScene>& scenes() const { return scenes_; }
    bool isAsPromised() const { return isAsPromised_; }

    std::vector<TourCurve> brightnessCurves;
    std::vector<TourCurve> ramps;
    TourCurve temperature{QStringLiteral("of the screen"), {}};
    std::vector<std::pair<QString, QString>> breakStates; ///< time and state of each change

private:
    QString timeOfDay() const;
    Duration sinceMidnight() const;

    QString folder_;
    std::vector<TourScene> scenes_;
    bool isAsPromised_ = true;
    Cancellables cancellables_;
};

} // namespace nocta
