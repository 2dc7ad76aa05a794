#pragma once

#include <QString>
#include <QWidget>

namespace nocta {

enum class SymbolColor { text, accent, white };

/// A symbol in the colour of the text, in the accent, or white on a dark cover. It has a name for a
/// screen reader only where nothing beside it says what it stands for.
class SymbolView final : public QWidget {
public:
    /// `size` in points.
    SymbolView(QString name, int size, SymbolColor color = SymbolColor::text);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString name_;
    SymbolColor color_;
};

} // namespace nocta
