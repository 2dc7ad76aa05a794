#include "ui/preferences/PreferencesView.h"

#include "ui/Text.h"
#include "ui/controls/Hairline.h"
#include "ui/controls/Scroller.h"
#include "ui/controls/SymbolTabBar.h"
#include "ui/preferences/AboutPreferencesView.h"
#include "ui/preferences/BreaksPreferencesView.h"
#include "ui/preferences/BrightnessPreferencesView.h"
#include "ui/preferences/ColorPreferencesView.h"
#include "ui/preferences/FeedbackPreferencesView.h"
#include "ui/preferences/GeneralPreferencesView.h"
#include "ui/preferences/PreferencesTab.h"

#include <QStackedWidget>
#include <QVBoxLayout>

namespace nocta {

namespace {

constexpr int minWidth = 520; // points
constexpr int margin = 8;

QWidget* makePage(PreferencesTab tab, SharedInstances& instances) {
    switch (tab) {
    case PreferencesTab::general:
        return new GeneralPreferencesView(instances);
    case PreferencesTab::brightness:
        return new BrightnessPreferencesView(instances);
    case PreferencesTab::color:
        return new ColorPreferencesView(instances);
    case PreferencesTab::breaks:
        return new BreaksPreferencesView(instances);
    case PreferencesTab::feedback:
        return new FeedbackPreferencesView(instances);
    case PreferencesTab::about:
        return new AboutPreferencesView(instances);
    }
    return nullptr;
}

} // namespace

PreferencesView::PreferencesView(SharedInstances& instances) {
    auto* const tabs = new SymbolTabBar;
    tabs->setObjectName(QStringLiteral("preferencesTabs"));
    tabs->setAccessibleName(Text::tr("Preferences"));
    auto* const pages = new QStackedWidget;
    for (const auto tab : allPreferencesTabs) {
        auto* const page = makePage(tab, instances);
        page->setObjectName(QString::fromUtf8(rawValue(tab)));
        page->setAccessibleName(Text::of(title(tab)));
        tabs->addTab(Text::of(title(tab)), QString::fromUtf8(symbol(tab)));
        pages->addWidget(new Scroller(page));
    }
    connect(tabs, &QTabBar::currentChanged, pages, &QStackedWidget::setCurrentIndex);

    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, margin, 0, 0);
    column->setSpacing(0);
    column->addWidget(tabs, 0, Qt::AlignHCenter);
    column->addSpacing(margin);
    column->addWidget(new Hairline);
    column->addWidget(pages);
    setMinimumWidth(minWidth);
}

} // namespace nocta
