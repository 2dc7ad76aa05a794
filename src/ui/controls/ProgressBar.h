#pragma once

#include <QProgressBar>

namespace nocta {

/// How far something has come; made for what nobody knows the length of, until a value is set
/// within a range. Its name is what a screen reader says.
class ProgressBar final : public QProgressBar {
public:
    explicit ProgressBar(const QString& name);

protected:
    void changeEvent(QEvent* event) override;

private:
    void updateColors();

    bool isUpdating_ = false;
};

} // namespace nocta
