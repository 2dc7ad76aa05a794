#pragma once

#include <QString>
#include <QWidget>

namespace nocta {

enum class SymbolColor { text, accent, white };

/// A symbol in the text color, in the accent color, or in white on a dark cover. It has a name for
/// screen readers only if no text next to it explains its meaning.
class SymbolView final : public QWidget {
public:
    /// `size` is in points.
    SymbolView(QString name, int size, SymbolColor color = SymbolColor::text);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString name_;
    SymbolColor color_;
};

} // namespace nocta
