#include "ui/controls/Label.h"

#include "ui/Colors.h"
#include "ui/controls/FocusRing.h"

#include <QApplication>
#include <QEvent>
#include <QFontInfo>

#include <array>
#include <cstddef>
#include <utility>

namespace nocta {

namespace {

struct Look {
    qreal scale;
    QFont::Weight weight;
    bool isSecondary;
    bool isWrapped;
};

constexpr std::array looks = {
    Look{1.7, QFont::DemiBold, false, true},    // title
    Look{1.0, QFont::DemiBold, false, false},   // heading
    Look{1.0, QFont::Normal, false, false},     // body
    Look{1.0, QFont::Normal, true, false},      // secondary
    Look{1.0, QFont::Normal, true, true},       // paragraph
    Look{11.0 / 13, QFont::Normal, true, true}, // note
};

} // namespace

Label::Label(const QString& text, TextStyle style) : QLabel(text), style_(style) {
    setTextFormat(Qt::PlainText);
    setForegroundRole(QPalette::WindowText); // a label on a button would have another role
    setWordWrap(looks.at(static_cast<std::size_t>(style)).isWrapped);
    setContentsMargins(focusRingRoom, 0, focusRingRoom, 0); // aligned with ringed controls
    updateStyle();
}

void Label::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ApplicationFontChange) {
        updateStyle();
    }
}

void Label::updateStyle() {
    if (std::exchange(isUpdating_, true)) {
        return; // this function caused the change
    }
    const auto& look = looks.at(static_cast<std::size_t>(style_));
    auto font = QApplication::font();
    font.setPointSizeF(QFontInfo(font).pointSizeF() * look.scale);
    font.setWeight(look.weight);
    setFont(font);
    if (look.isSecondary) {
        setPalette({}); // the palette of the window
        auto colors = palette();
        colors.setColor(QPalette::WindowText, secondaryColor(colors));
        setPalette(colors);
    }
    isUpdating_ = false;
}

} // namespace nocta
