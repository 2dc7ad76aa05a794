#pragma once

#include <QCoreApplication>
#include <QString>

#include <string_view>

namespace nocta {

/// The texts that the face shows. `Text::tr` translates what stands in this program's face, `of`
/// what a service or a port holds in English; both from one context, so that a language is one
/// file.
struct Text {
    Q_DECLARE_TR_FUNCTIONS(Nocta)

public:
    static QString of(std::string_view english);
};

} // namespace nocta
