#pragma once

#include <QVBoxLayout>
#include <QWidget>

namespace nocta {

/// A titled group of rows on a panel.
class FormSection final : public QWidget {
public:
    explicit FormSection(const QString& title);

    /// A row of its own.
    void add(QWidget* row);
    /// A small explanation under the row before.
    void addNote(const QString& text);
    /// A name and what belongs to it, at the two ends of a row.
    void addRow(const QString& name, QWidget* value);

private:
    QVBoxLayout* rows_;
};

/// A page of sections from the top down.
class FormPage : public QWidget {
protected:
    FormPage();

    FormSection* addSection(const QString& title);

private:
    QVBoxLayout* sections_;
};

} // namespace nocta
