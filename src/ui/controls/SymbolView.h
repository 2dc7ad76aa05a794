#pragma once

#include <QString>
#include <QWidget>

namespace nocta {

enum class SymbolColor { text, accent };

/// A symbol in the colour of the text or in the accent. It says nothing to a screen reader: what it
/// stands for is written beside it.
class SymbolView final : public QWidget {
public:
    /// `size` in points.
    SymbolView(const QString& name, int size, SymbolColor color = SymbolColor::text);

    void setName(const QString& name);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString name_;
    SymbolColor color_;
};

} // namespace nocta
