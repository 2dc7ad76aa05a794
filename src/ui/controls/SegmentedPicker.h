#pragma once

#include "ui/Binding.h"

#include <QButtonGroup>
#include <QString>
#include <QWidget>

#include <algorithm>
#include <vector>

namespace nocta {

/// The content of a segment: either a label, or the name of a symbol and a label for screen
/// readers.
struct SegmentLook {
    QString text;
    QString symbol{};
};

/// A few choices side by side, one of which is selected.
class SegmentedPicker final : public QWidget {
public:
    SegmentedPicker(const QString& name, const std::vector<SegmentLook>& segments);

    QButtonGroup& segments() { return segments_; }

    void choose(qsizetype index);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QButtonGroup segments_;
};

/// Binds the picker to a setting. `values` has the value of each segment, in the same order as the
/// segments.
template <class Setting, class T>
void bind(SegmentedPicker& picker, Setting& setting, std::vector<T> values) {
    follow(picker, setting, [&picker, values](const T& value) {
        picker.choose(std::ranges::find(values, value) - values.begin());
    });
    QObject::connect(
        &picker.segments(), &QButtonGroup::idClicked, &picker,
        [&setting, values](int index) { setting.set(values.at(static_cast<std::size_t>(index))); });
}

} // namespace nocta
