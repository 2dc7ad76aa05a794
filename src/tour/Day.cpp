#include "tour/Day.h"

#include <chrono>
#include <cmath>
#include <variant>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr Location berlin{52.52, 13.41};

const RunningApplication editor{"com.example.editor", "Notes"};
const RunningApplication meeting{"us.zoom.xos", "zoom.us"};

void start(Tour& tour) {
    tour.desktop.runLoop.advance(0s);
    tour.launch();
    tour.expect(tour.desktop.appWindows.isOnScreen("Welcome to Nocta"),
                "the welcome window is shown");
    tour.take(
        "The first launch",
        "Nocta already works while its welcome window is open. The brightness starts at 75%.");
    tour.press("continueButton");
    tour.press("allowButton");
    tour.desktop.location.answer(AuthorizationStatus::authorized);
    tour.desktop.location.send(berlin);
    tour.expect(tour.settings().locationEnabled.get(),
                "granting the permission turns the setting on");
    tour.take("The location",
              "With your location, Nocta uses the actual times of sunrise and sunset.");
    tour.press("continueButton");
    tour.press("Everyday");
    tour.take("The style", "The style sets five settings. You can change each of them later.");
    tour.press("continueButton");
    tour.press("continueButton");
    tour.expect(!tour.desktop.appWindows.isOnScreen("Welcome to Nocta"),
                "the welcome window closes");
    tour.expect(!tour.settings().isFirstLaunch.get(),
                "the next launch does not show the welcome window");
    tour.desktop.runLoop.advance(1s); // until every transition has ended
}

void dim(Tour& tour) {
    tour.settings().unifiedBrightness.set(1.0);
    tour.desktop.statusBar.click();
    tour.take("100%", "The backlight is at 100%, and the picture is not dimmed on any display.");
    tour.settings().unifiedBrightness.set(0.6);
    tour.expect(tour.topOf(Tour::external) == 1,
                "the upper half does not change the external display");
    tour.expect(tour.desktop.displays.display(Tour::builtIn).backlight < 0.5F,
                "the upper half changes the backlight");
    tour.take(
        "60%",
        "The upper half changes only the backlight. The external display has no backlight that "
        "Nocta can change, so it stays at full brightness.");
    tour.settings().unifiedBrightness.set(0.25);
    tour.expect(std::abs(tour.topOf(Tour::external) - 0.5) < 0.01,
                "the lower half dims all displays");
    tour.take("25%", "The lower half also dims the picture on every display, below what the "
                     "hardware allows.");
    tour.settings().unifiedBrightness.set(0.0);
    tour.expect(std::abs(tour.topOf(Tour::external) - 0.1) < 0.01, "a faint glow remains");
    tour.take("0%, with the faint glow",
              "The picture keeps a tenth of its brightness, so that you can still see it. The "
              "backlight of the built-in display is at its lowest level.");
    tour.settings().allowFullBlack.set(true);
    tour.settings().unifiedBrightness.set(0.0);
    tour.expect(tour.topOf(Tour::external) == 0, "the display is black if the user allows it");
    tour.take("0%, with black allowed",
              "The displays turn black only if you allow it in the preferences.");
    tour.settings().allowFullBlack.set(false);

    TourCurve backlight{"backlight", {}};
    TourCurve dimming{"dimming of the picture", {}};
    for (int percent = 0; percent <= 100; ++percent) {
        tour.settings().unifiedBrightness.set(percent / 100.0);
        backlight.points.emplace_back(
            percent, double{tour.desktop.displays.display(Tour::builtIn).backlight});
        dimming.points.emplace_back(percent, 1 - tour.topOf(Tour::builtIn));
    }
    tour.brightnessCurves = {backlight, dimming};
    tour.settings().unifiedBrightness.set(0.75);
    tour.desktop.popover.clickElsewhere();
}

void pressKeys(Tour& tour) {
    const auto before = tour.settings().unifiedBrightness.get();
    for (int i = 0; i < 4; ++i) {
        tour.desktop.keyboard.pressBrightnessDown();
    }
    tour.expect(std::abs(before - 0.25 - tour.settings().unifiedBrightness.get()) < 1e-9,
                "four key presses lower the brightness by four sixteenths");
    tour.take("The brightness keys",
              "Each press changes the brightness by one sixteenth, in any application.");
    tour.settings().unifiedBrightness.set(before);
}

void connectDisplay(Tour& tour) {
    constexpr DisplayId projector = 3;
    tour.settings().unifiedBrightness.set(0.3);
    tour.desktop.displays.plug({.id = projector, .bounds = {1984, 0, 640, 480}});
    tour.expect(tour.desktop.displays.display(projector).red.empty(),
                "a newly connected display does not change immediately");
    tour.take("A display is connected",
              "The new display does not change until you change a setting.");
    tour.settings().unifiedBrightness.set(0.29);
    tour.expect(!tour.desktop.displays.display(projector).red.empty(),
                "the next change applies to the new display");
    tour.take("The next change", "The new display now changes like the others.");
    tour.desktop.displays.unplug(projector);
    tour.settings().unifiedBrightness.set(0.75);
}

void useGrayscale(Tour& tour) {
    tour.settings().grayscaleEnabled.set(true);
    tour.desktop.runLoop.advance(1s);
    tour.expect(tour.desktop.filter.isOn, "the grayscale filter is on");
    tour.take("Eye Relief", "All displays are gray.");
    tour.settings().grayscaleEnabled.set(false);
    tour.desktop.runLoop.advance(1s);
    tour.expect(!tour.desktop.filter.isOn, "the grayscale filter is off");
}

bool isPaused(Tour& tour) {
    return std::holds_alternative<Paused>(tour.instances().breakTimer().state.get());
}
bool isActive(Tour& tour) {
    return std::holds_alternative<Active>(tour.instances().breakTimer().state.get());
}

void waitForBreak(Tour& tour) {
    for (int second = 0; second < 3600 && !isActive(tour); ++second) {
        tour.desktop.runLoop.advance(1s);
    }
    tour.expect(isActive(tour), "a break starts");
    tour.desktop.runLoop.advance(2s);
}

void takeBreaks(Tour& tour) {
    auto& settings = tour.settings();
    waitForBreak(tour);
    tour.expect(tour.desktop.overlayWindows.windows().size() == 2, "every screen is covered");
    tour.take("A break", "Every 20 minutes, for 20 seconds: look at something far away.");
    tour.press("snoozeBreakButton");
    tour.desktop.runLoop.advance(1s);
    tour.expect(std::holds_alternative<Snoozed>(tour.instances().breakTimer().state.get()),
                "the break is snoozed");
    waitForBreak(tour);
    tour.desktop.overlayWindows.press(spaceKeyCode);
    tour.desktop.runLoop.advance(1s);
    tour.expect(tour.desktop.overlayWindows.windows().empty(), "the space key skips the break");
    waitForBreak(tour);
    tour.desktop.runLoop.advance(19s);
    tour.expect(tour.instances().breakTimer().statistics.get().completedBreaks == 1,
                "one break was completed");

    tour.desktop.workspace.bringToFront(meeting);
    tour.desktop.runLoop.advance(1s);
    tour.desktop.statusBar.click();
    tour.expect(isPaused(tour), "a meeting pauses the countdown");
    tour.take("A meeting", "While a meeting application is in front, no break starts.");
    tour.desktop.runLoop.advance(30min);
    tour.expect(isPaused(tour), "the countdown stays paused during the meeting");
    tour.desktop.workspace.bringToFront(editor);
    tour.desktop.runLoop.advance(5min);
    tour.expect(isPaused(tour), "the countdown stays paused after the meeting");
    settings.breakTimerEnabled.set(false);
    settings.breakTimerEnabled.set(true);
    tour.expect(!isPaused(tour), "turning breaks off and on again resumes the countdown");
    tour.take("Breaks turned on again",
              "After a meeting, the countdown stays paused until the user turns "
              "breaks off and on again.");
    tour.desktop.popover.clickElsewhere();
    settings.breakTimerEnabled.set(false);
}

TourCurve rampOf(Tour& tour, const char* name) {
    TourCurve curve{name, {}};
    const auto& blue = tour.desktop.displays.display(Tour::external).blue;
    for (std::size_t i = 0; i < blue.size(); i += 5) {
        curve.points.emplace_back(static_cast<double>(i), double{blue[i]});
    }
    return curve;
}

void waitForSunset(Tour& tour) {
    auto& temperature = tour.instances().colorTemperatureService().currentTemperature;
    const auto day = tour.settings().colorTemperatureDay.get();
    const auto night = tour.settings().colorTemperatureNight.get();
    const auto sunset = *tour.instances().scheduleService().sunsetTime.get();
    tour.waitUntil(sunset - 16min);
    tour.expect(temperature.get() == day,
                "the day temperature lasts until 15 minutes before sunset");
    tour.ramps.push_back(rampOf(tour, "day"));
    tour.waitUntil(sunset - 7min);
    tour.ramps.push_back(rampOf(tour, "before sunset"));
    tour.waitUntil(sunset + 1min);
    tour.expect(std::abs(temperature.get() - (day + night) / 2) < 200,
                "the temperature is halfway at sunset");
    tour.ramps.push_back(rampOf(tour, "sunset"));
    tour.take("Sunset", "Over half an hour, the colors become warmer, like the light outside.");
    tour.waitUntil(sunset + 16min);
    tour.expect(temperature.get() == night,
                "the night temperature is reached 15 minutes after sunset");
    tour.waitUntil(tour.next(22, 0));
    tour.ramps.push_back(rampOf(tour, "night"));
    tour.take("Night", "Most of the blue light is gone.");
    tour.settings().unifiedBrightness.set(0.3);
    tour.ramps.push_back(rampOf(tour, "night, at 30%"));
    tour.take("Late evening", "The displays are warm and dim.");
}

void reset(Tour& tour) {
    tour.program().showPreferencesWindow();
    tour.press("resetButton");
    tour.expect(tour.settings().unifiedBrightness.get() == 0.75, "the defaults are restored");
    tour.desktop.runLoop.advance(1s);
    tour.take("The preferences", "All settings are in six tabs. A button has just restored the "
                                 "defaults, including the brightness.");
    tour.desktop.appWindows.close("Preferences");
}

void end(Tour& tour) {
    tour.quit();
    for (const auto& display : tour.desktop.displays.all()) {
        tour.expect(display.red.empty(), "every display has its factory tables again");
    }
    tour.take("The end",
              "Every display has its factory tables again. The backlight does not change.");
}

} // namespace

void simulateDay(Tour& tour) {
    start(tour);
    dim(tour);
    pressKeys(tour);
    connectDisplay(tour);
    useGrayscale(tour);
    takeBreaks(tour);
    waitForSunset(tour);
    reset(tour);
    end(tour);
}

} // namespace nocta
