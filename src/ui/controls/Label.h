#pragma once

#include <QLabel>

namespace nocta {

enum class TextStyle {
    title,   ///< of a window or a step
    heading, ///< of a section
    body,
    secondary, ///< body of less weight
    paragraph, ///< the same, over as many lines as it takes
    note,      ///< small, of less weight, over as many lines as it takes
};

/// A text in the desktop's font and colours, also when they change.
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
