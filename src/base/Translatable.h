#pragma once

namespace nocta {

/// Marks an English text that views show with `Text::of`. The translators' tools find it by the
/// name of this function and its first argument, "Nocta". Untranslated details may follow the text,
/// after ": ".
///
///     return translatable("Nocta", "The file cannot be kept") + (": " + reason);
constexpr const char* translatable(const char* /*context*/, const char* text) {
    return text;
}

} // namespace nocta
