#include "ui/controls/FormSection.h"

#include "ui/Colors.h"
#include "ui/controls/Label.h"

#include <QHBoxLayout>
#include <QPainter>

namespace nocta {

namespace {

constexpr int pageMargin = 24; // points
constexpr int sectionSpacing = 16;
constexpr int titleSpacing = 6;
constexpr int panelMargin = 12;
constexpr int rowSpacing = 8;
constexpr qreal cornerRadius = 8;

class Panel final : public QWidget {
protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(hairlineColor(palette()), 1));
        painter.setBrush(panelColor(palette()));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius,
                                cornerRadius);
    }
};

} // namespace

FormSection::FormSection(const QString& title) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(titleSpacing);
    column->addWidget(new Label(title, TextStyle::heading));
    auto* const panel = new Panel;
    rows_ = new QVBoxLayout(panel);
    rows_->setContentsMargins(panelMargin, panelMargin, panelMargin, panelMargin);
    rows_->setSpacing(rowSpacing);
    column->addWidget(panel);
}

void FormSection::add(QWidget* row) {
    rows_->addWidget(row);
}

void FormSection::addNote(const QString& text) {
    rows_->addWidget(new Label(text, TextStyle::note));
}

void FormSection::addRow(const QString& name, QWidget* value) {
    auto* const row = new QHBoxLayout;
    auto* const label = new Label(name);
    label->setBuddy(value);
    row->addWidget(label);
    row->addStretch();
    row->addWidget(value);
    rows_->addLayout(row);
}

FormPage::FormPage() : sections_(new QVBoxLayout(this)) {
    sections_->setContentsMargins(pageMargin, pageMargin, pageMargin, pageMargin);
    sections_->setSpacing(sectionSpacing);
    sections_->addStretch();
}

FormSection* FormPage::addSection(const QString& title) {
    auto* const section = new FormSection(title);
    sections_->insertWidget(sections_->count() - 1, section);
    return section;
}

} // namespace nocta
