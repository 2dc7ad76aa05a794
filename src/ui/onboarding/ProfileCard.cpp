#include "ui/onboarding/ProfileCard.h"

#include "ui/Colors.h"
#include "ui/Descriptions.h"
#include "ui/Text.h"
#include "ui/controls/FocusRing.h"
#include "ui/controls/Label.h"
#include "ui/controls/SymbolView.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

#include <vector>

namespace nocta {

namespace {

constexpr int symbolSize = 28; // points
constexpr int smallSymbolSize = 14;
constexpr int padding = 8;
constexpr int spacing = 16;
constexpr int smallSpacing = 4;
constexpr qreal cornerRadius = 10;
constexpr qreal borderWidth = 1;
constexpr qreal chosenBorderWidth = 2;

/// A value of a profile, with the symbol for that kind of value.
struct Facet {
    QString symbol;
    QString text;
};

std::vector<Facet> facetsOf(const Profile& profile) {
    std::vector<Facet> facets = {
        {QStringLiteral("sun.max"), percentage(profile.brightness)},
        {QStringLiteral("thermometer"), warmthWord(profile.warmth)},
        {QStringLiteral("clock"), breakSummary(profile)},
    };
    if (profile.grayscaleEnabled) {
        facets.push_back({QStringLiteral("circle.lefthalf.filled"), Text::tr("Eye Relief")});
    }
    return facets;
}

} // namespace

ProfileCard::ProfileCard(const Profile& profile) {
    setObjectName(QString::fromStdString(profile.name));
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleName(Text::of(profile.name));

    auto* const facetRow = new QHBoxLayout;
    facetRow->setSpacing(smallSpacing);
    QStringList spoken = {Text::of(profile.description())};
    for (const auto& facet : facetsOf(profile)) {
        facetRow->addWidget(new SymbolView(facet.symbol, smallSymbolSize));
        auto* const text = new Label(facet.text, TextStyle::note);
        text->setWordWrap(false);
        facetRow->addWidget(text);
        facetRow->addSpacing(spacing - smallSpacing);
        spoken << facet.text;
    }
    facetRow->addStretch();
    setAccessibleDescription(spoken.join(QStringLiteral(", ")));

    auto* const heading = new QHBoxLayout;
    heading->addWidget(new Label(Text::of(profile.name), TextStyle::heading));
    heading->addWidget(new Label(Text::of(profile.description()), TextStyle::secondary));
    heading->addStretch();
    auto* const texts = new QVBoxLayout;
    texts->setSpacing(smallSpacing);
    texts->addLayout(heading);
    texts->addLayout(facetRow);

    auto* const row = new QHBoxLayout(this);
    constexpr auto margin = padding + focusRingRoom;
    row->setContentsMargins(margin + padding, margin, margin + padding, margin);
    row->setSpacing(spacing);
    row->addWidget(
        new SymbolView(QString::fromUtf8(profile.icon()), symbolSize, SymbolColor::accent));
    row->addLayout(texts, 1);
    for (auto* const part : findChildren<QWidget*>()) {
        part->setAttribute(Qt::WA_TransparentForMouseEvents);
    }
}

QSize ProfileCard::sizeHint() const {
    return layout()->sizeHint();
}

void ProfileCard::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto shape =
        QRectF(rect()).adjusted(focusRingRoom, focusRingRoom, -focusRingRoom, -focusRingRoom);
    const auto width = isChecked() ? chosenBorderWidth : borderWidth;
    painter.setPen(QPen(isChecked() ? accentColor(palette()) : hairlineColor(palette()), width));
    painter.setBrush(panelColor(palette()));
    const auto inset = width / 2;
    painter.drawRoundedRect(shape.adjusted(inset, inset, -inset, -inset), cornerRadius,
                            cornerRadius);
    paintFocusRing(painter, *this, shape, cornerRadius);
}

} // namespace nocta
