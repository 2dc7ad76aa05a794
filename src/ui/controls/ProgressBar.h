#pragma once

#include <QProgressBar>

namespace nocta {

/// A progress bar. It is indeterminate until it has a range and a value. Screen readers read its
/// name.
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
