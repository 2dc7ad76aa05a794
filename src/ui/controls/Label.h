#pragma once

#include <QLabel>

namespace nocta {

enum class TextStyle {
    title,   ///< of a window or a step
    heading, ///< of a section
    body,
    secondary, ///< body in the secondary color
    paragraph, ///< secondary, wrapped
    note,      ///< small, in the secondary color, wrapped
};

/// Text in the desktop's font and colors. It updates when they change.
class Label final : public QLabel {
public:
    explicit Label(const QString& text, TextStyle style = TextStyle::body);

protected:
    void changeEvent(QEvent* event) override;

private:
    void updateStyle();

    TextStyle style_;
    bool isUpdating_ = false;
};

} // namespace nocta
