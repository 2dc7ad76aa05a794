#pragma once

#include "tour/LiveDesktop.h"

#include <QString>

#include <utility>
#include <vector>

namespace nocta {

/// A picture of all displays at one moment of the day, with a description.
struct TourScene {
    QString file; ///< the name of the picture's file in the tour's folder
    QString time; ///< the time of day
    QString title;
    QString text;
};

/// A curve in a plot: one value as a function of another.
struct TourCurve {
    QString name;
    std::vector<std::pair<double, double>> points;
};

/// Simulates a day on a live desktop and records its scenes. The tour fails if an expectation is
/// not met.
class Tour : public LiveDesktop {
public:
    /// Writes its pictures to the folder, which must exist.
    explicit Tour(QString folder);

    void launch();
    void quit();

    void waitUntil(WallTime time);
    /// Returns the next time at which the clock shows this hour and minute.
    WallTime next(int hour, int minute) const;

    /// Presses the button with this identifier in the program's windows.
    void press(const char* identifier);

    void take(const QString& title, const QString& text);
    void expect(bool holds, const QString& expectation);

    /// Returns the highest red level in a display's tables, which does not depend on the warmth.
    double topOf(DisplayId id);

    const QString& folder() const { return folder_; }
    const std::vector<TourScene>& scenes() const { return scenes_; }
    bool passed() const { return passed_; }

    std::vector<TourCurve> brightnessCurves;
    std::vector<TourCurve> ramps;
    TourCurve temperature{QStringLiteral("screen"), {}};
    std::vector<std::pair<QString, QString>> breakStates; ///< time and state of each change

private:
    QString timeOfDay() const;
    Duration sinceMidnight() const;

    QString folder_;
    std::vector<TourScene> scenes_;
    bool passed_ = true;
    Cancellables cancellables_;
};

} // namespace nocta
