#pragma once

#include <QVBoxLayout>
#include <QWidget>

namespace nocta {

/// A titled group of rows on a panel.
class FormSection final : public QWidget {
public:
    explicit FormSection(const QString& title);

    void add(QWidget* row);
    /// A small explanation under the previous row.
    void addNote(const QString& text);
    /// A name and its value, at the two ends of a row.
    void addRow(const QString& name, QWidget* value);

private:
    QVBoxLayout* rows_;
};

/// A page of sections, from top to bottom.
class FormPage : public QWidget {
protected:
    FormPage();

    FormSection* addSection(const QString& title);

private:
    QVBoxLayout* sections_;
};

} // namespace nocta
