#pragma once

#include <QCoreApplication>
#include <QString>

#include <string_view>

namespace nocta {

/// Translates the strings on screen. `Text::tr` translates the strings of the views. `Text::of`
/// translates English strings from services and ports up to ": "; the details after it are not
/// translated. Both functions use one context, so that each language needs only one file.
///
///     new Label(Text::tr("Warmth"));
///     new Label(Text::of(profile.name));
struct Text {
    Q_DECLARE_TR_FUNCTIONS(Nocta)

public:
    static QString of(std::string_view english);
};

} // namespace nocta
