#include "ui/Missing.h"

#include "ui/Text.h"

namespace nocta {

QString missingForBrightness(SharedInstances& instances) {
    return instances.desktop().gammaOutput.isAvailable()
               ? QString()
               : Text::tr("Nocta cannot darken the picture in this session.");
}

QString missingForWarmth(SharedInstances& instances) {
    const auto& output = instances.desktop().gammaOutput;
    if (!output.isAvailable()) {
        return Text::tr("Nocta cannot warm the displays in this session.");
    }
    return output.warmth() == Warmth::none
               ? Text::tr("Nocta can dim the displays of this desktop, but not warm them.")
               : QString();
}

QString noteOnWarmth(SharedInstances& instances) {
    return instances.desktop().gammaOutput.warmth() == Warmth::byNightLight
               ? Text::tr("Nocta warms the displays through KDE's Night Light.")
               : missingForWarmth(instances);
}

QString missingForGrayscale(SharedInstances& instances) {
    return instances.grayscaleService().isAvailable()
               ? QString()
               : Text::tr("Nocta cannot turn this desktop gray.");
}

QString missingForLocation(SharedInstances& instances) {
    switch (instances.locationService().authorizationStatus.get()) {
    case AuthorizationStatus::restricted:
        return Text::tr("No location service is available on this desktop.");
    case AuthorizationStatus::denied:
        return Text::tr("The desktop's settings do not let Nocta use your location.");
    default:
        return {};
    }
}

QString noteOnLocation(SharedInstances& instances) {
    const auto missing = missingForLocation(instances);
    const auto isUnknown = instances.settingsManager().locationEnabled.get() &&
                           !instances.locationService().currentLocation.get();
    return missing.isEmpty() && isUnknown
               ? Text::tr("Your location is unknown, so the default times apply.")
               : missing;
}

QString missingForUpdates(SharedInstances& instances) {
    switch (instances.desktop().updater.availability()) {
    case Updater::Availability::noFeed:
        return Text::tr("This build of Nocta has no address for updates.");
    case Updater::Availability::packageManager:
        return Text::tr("The system's package manager updates Nocta.");
    default:
        return {};
    }
}

QString missingForFeedback(SharedInstances& instances) {
    return instances.feedbackService().isAvailable()
               ? QString()
               : Text::tr("This build of Nocta has no address for feedback.");
}

} // namespace nocta
