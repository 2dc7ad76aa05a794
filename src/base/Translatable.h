#pragma once

namespace nocta {

/// Marks an English string that views show with `Text::of`. The translation tools find it by the
/// name of this function and its first argument, "Nocta". Untranslated details may follow the
/// string, after ": ".
///
///     return translatable("Nocta", "The file cannot be opened") + (": " + reason);
constexpr const char* translatable(const char* /*context*/, const char* text) {
    return text;
}

} // namespace nocta
