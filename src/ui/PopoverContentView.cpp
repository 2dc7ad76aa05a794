#include "ui/PopoverContentView.h"

#include "ui/Percent.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>

#include <algorithm>
#include <cstdint>
#include <utility>

namespace nocta {

namespace {
constexpr int margin = 16; // points
constexpr int spacing = 8;
constexpr int wholeRange = 100; // per cent
constexpr int pageStep = 10;
} // namespace

PopoverContentView::PopoverContentView(SettingsManager& settings, std::function<void()> quit) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(margin, margin, margin, margin);
    column->setSpacing(spacing);
    addBrightness(settings);
    column->addStretch();
    addFooter(std::move(quit));
}

void PopoverContentView::addBrightness(SettingsManager& settings) {
    auto* const label = new QLabel(tr("Brightness"));
    auto* const value = new QLabel;
    auto* const slider = new QSlider(Qt::Horizontal);
    slider->setObjectName(QStringLiteral("brightnessSlider"));
    slider->setAccessibleName(tr("Brightness"));
    slider->setRange(0, wholeRange);
    slider->setPageStep(pageStep);

    auto* const heading = new QHBoxLayout;
    heading->addWidget(label);
    heading->addStretch();
    heading->addWidget(value);
    auto* const column = static_cast<QVBoxLayout*>(layout());
    column->addLayout(heading);
    column->addWidget(slider);

    const auto show = [value, slider](double brightness) {
        QSignalBlocker const quiet(slider); // showing a value must not write it
        auto const percent = wholePercent(brightness);
        slider->setValue(static_cast<int>(std::clamp<std::int64_t>(percent, 0, wholeRange)));
        value->setText(tr("%1%").arg(percent));
    };
    show(settings.unifiedBrightness.get());
    cancellables_.push_back(settings.unifiedBrightness.subscribe(show));
    connect(slider, &QSlider::valueChanged, this, [&settings](int percent) {
        settings.unifiedBrightness.set(fractionOfPercent(percent));
    });
}

void PopoverContentView::addFooter(std::function<void()> quit) {
    auto* const button = new QPushButton(tr("Quit Nocta"));
    button->setObjectName(QStringLiteral("quitButton"));
    connect(button, &QPushButton::clicked, this, std::move(quit));

    auto* const footer = new QHBoxLayout;
    footer->addStretch();
    footer->addWidget(button);
    static_cast<QVBoxLayout*>(layout())->addLayout(footer);
}

} // namespace nocta
