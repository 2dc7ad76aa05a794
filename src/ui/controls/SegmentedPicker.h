#pragma once

#include "ui/Binding.h"

#include <QButtonGroup>
#include <QString>
#include <QWidget>

#include <algorithm>
#include <vector>

namespace nocta {

/// What a segment shows: a text, or the symbol of that name with the text for a screen reader.
struct SegmentLook {
    QString text;
    QString symbol{};
};

/// A few choices side by side, one of which is taken.
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

/// One segment for each of all the values that the setting can have, in their order.
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
