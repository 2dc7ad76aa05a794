#include "ui/Text.h"

#include <algorithm>

namespace nocta {

QString Text::of(std::string_view english) {
    const auto end = std::min(english.find(": "), english.size());
    const auto text = tr(std::string(english.substr(0, end)).c_str());
    return end == english.size()
               ? text
               : tr("%1: %2").arg(text,
                                  QString::fromStdString(std::string(english.substr(end + 2))));
}

} // namespace nocta
