#pragma once

#include <QCoreApplication>
#include <QString>

#include <string_view>

namespace nocta {

/// The texts on screen. `Text::tr` translates the texts of the views; `Text::of` translates English
/// texts from services and ports up to ": ", after which the details are shown as they are. Both use
/// one context, so that each language is one file.
///
///     new Label(Text::tr("Warmth"));
///     new Label(Text::of(profile.name));
struct Text {
    Q_DECLARE_TR_FUNCTIONS(Nocta)

public:
    static QString of(std::string_view english);
};

} // namespace nocta
