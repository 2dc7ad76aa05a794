#include "ui/Missing.h"

#include "ui/Text.h"

namespace nocta {

QString missingForBrightness(SharedInstances& instances) {
    return instances.desktop().gammaOutput.isAvailable()
               ? QString()
               : Text::tr("Nocta cannot change the colors of the displays in this session.");
}

QString missingForGrayscale(SharedInstances& instances) {
    return instances.grayscaleService().isAvailable()
               ? QString()
               : Text::tr("This desktop has no way to turn its displays gray.");
}

QString missingForLocation(SharedInstances& instances) {
    switch (instances.locationService().authorizationStatus.get()) {
    case AuthorizationStatus::restricted:
        return Text::tr("This desktop has no location service that answers.");
    case AuthorizationStatus::denied:
        return Text::tr("The desktop's settings do not allow Nocta to know the location.");
    default:
        return {};
    }
}

QString missingForUpdates(SharedInstances& instances) {
    switch (instances.desktop().updater.availability()) {
    case Updater::Availability::noFeed:
        return Text::tr("This build of Nocta does not know where to look for updates.");
    case Updater::Availability::packageManager:
        return Text::tr("Updates of Nocta come with those of the system.");
    default:
        return {};
    }
}

} // namespace nocta
