#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavix {

/// The values that the figures of a field of texts are computed over: those that fit a narrower type.
struct FitFigures {
    std::string reading;   ///< how they are read: forms::Reading::text()
    std::int64_t rows = 0; ///< with such a value
    std::int64_t of = 0;   ///< rows that are neither null, empty nor blank

    bool operator==(const FitFigures&) const = default;
};

/// Follows the name, or the value, of a figure over what fits.
inline constexpr std::string_view kOverFits = " (fits)";

/// The same as a remark of its own.
inline constexpr std::string_view kFitsMark = kOverFits.substr(1);

/// Whether such a field has this metric over what fits. Counts, lengths, mode and patterns are those of all rows.
[[nodiscard]] bool isOverFits(int metricId);
/// The code of the type as which the values are read: "I", "R", "D" or "B"; "" for an invalid reading.
[[nodiscard]] std::string_view fitTypeCode(const FitFigures& fits);
/// The values in the plural, with all that says how they are read: "integers", "numbers with a decimal comma, in EUR",
/// "dates, day-first".
[[nodiscard]] std::string fitNoun(std::string_view reading);
/// "the 399 of 400 values that are integers".
[[nodiscard]] std::string fitValues(const FitFigures& fits);
/// For tooltips: "Over the 399 of 400 values that are integers".
[[nodiscard]] std::string fitSentence(const FitFigures& fits);
/// The number that such a value is, and the instant of a date in units of 100 ns since 1970; none for others.
[[nodiscard]] std::optional<double> fitNumber(const FitFigures& fits, std::string_view value);
[[nodiscard]] std::optional<std::int64_t> fitTicks(const FitFigures& fits, std::string_view value);
/// A text as a literal of the expression language.
[[nodiscard]] std::string quotedText(std::string_view text);
/// The value of a field as an expression: "tonumber(`Value`)"; with a reading "todate(`Value`, 'date day-first')".
[[nodiscard]] std::string convertedValue(std::string_view function, std::string_view reading);
/// kOverFits for a metric over what fits, else "".
[[nodiscard]] std::string_view fitSuffix(int metricId, const std::optional<FitFigures>& fits);

} // namespace tavix
