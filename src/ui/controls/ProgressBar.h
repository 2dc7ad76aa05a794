#pragma once

#include <QProgressBar>

namespace nocta {

/// A progress bar, which is indeterminate until it has a range and a value. `name` is for screen
/// readers.
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
