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
    return instances.desktop().locationManager.authorizationStatus() ==
                   AuthorizationStatus::restricted
               ? Text::tr("This desktop has no location service that answers.")
               : QString();
}

void explain(QWidget& control, const QString& text) {
    if (!text.isEmpty()) {
        control.setToolTip(text);
        control.setAccessibleDescription(text);
    }
}

} // namespace nocta
