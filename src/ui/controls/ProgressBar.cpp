#include "ui/controls/ProgressBar.h"

#include "ui/Colors.h"

#include <QEvent>

#include <utility>

namespace nocta {

ProgressBar::ProgressBar(const QString& name) {
    setAccessibleName(name);
    setRange(0, 0);
    setTextVisible(false);
    updateColors();
}

void ProgressBar::changeEvent(QEvent* event) {
    QProgressBar::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        updateColors();
    }
}

void ProgressBar::updateColors() {
    if (std::exchange(isUpdating_, true)) {
        return; // this function caused the change
    }
    setPalette({}); // the palette of the window
    auto colors = palette();
    colors.setColor(QPalette::Highlight, accentColor(colors));
    setPalette(colors);
    isUpdating_ = false;
}

} // namespace nocta
