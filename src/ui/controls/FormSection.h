#pragma once

#include <QVBoxLayout>
#include <QWidget>

namespace nocta {

/// A titled group of rows on a panel.
class FormSection final : public QWidget {
public:
    explicit FormSection(const QString& title);

    void add(QWidget* row);
    /// Adds a small explanation below the previous row.
    void addNote(const QString& text);
    /// Adds a row with a name at one end and its value at the other end.
    void addRow(const QString& name, QWidget* value);

private:
    QVBoxLayout* rows_;
};

/// A page that shows sections from top to bottom.
class FormPage : public QWidget {
protected:
    FormPage();

    FormSection* addSection(const QString& title);

private:
    QVBoxLayout* sections_;
};

} // namespace nocta
