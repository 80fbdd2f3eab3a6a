#include "report/FitFigures.h"

#include "base/Metrics.h"
#include "base/TypeWords.h"
#include "forms/Reading.h"
#include "report/CountText.h"

namespace tavix {

namespace {

/// The words of a reading, of which the first is the word of a type.
std::string_view firstWord(std::string_view& words) {
    const std::size_t end = words.find(' ');
    const std::string_view word = words.substr(0, end);
    words.remove_prefix(end == std::string_view::npos ? words.size() : end + 1);
    return word;
}

std::string_view pluralOf(std::string_view typeWord) {
    if (typeWord == "real")
        return "numbers";
    return typeWord == "integer" ? "integers" : typeWord == "date" ? "dates" : "booleans";
}

const FieldTypeInfo* typeOf(std::string_view reading) {
    const std::string_view word = firstWord(reading);
    for (const FieldTypeInfo& info : kFieldTypes)
        if (info.type != FieldType::Text && info.word == word)
            return &info;
    return nullptr;
}

} // namespace

bool isOverFits(int metricId) {
    const MetricInfo* const metric = findMetric(metricId);
    if (!metric)
        return false;
    switch (metric->id) {
    case MetricId::MinimumValue:
    case MetricId::MaximumValue:
    case MetricId::Mean:
    case MetricId::Median:
    case MetricId::StandardDeviation:
    case MetricId::StandardError:
        return true;
    default:
        return false;
    }
}

std::string_view fitTypeCode(const FitFigures& fits) {
    static constexpr std::string_view kCodes = "SIRDB";
    const FieldTypeInfo* const type = typeOf(fits.reading);
    return type ? kCodes.substr(kCodes.find(static_cast<char>(type->type)), 1) : std::string_view();
}

std::string fitNoun(std::string_view reading) {
    const FieldTypeInfo* const type = typeOf(reading);
    if (!type)
        return std::string(reading);
    std::string noun(pluralOf(firstWord(reading)));
    // The unit comes last and may contain blanks.
    constexpr std::string_view kUnit = "unit=";
    while (!reading.empty()) {
        if (reading.starts_with(kUnit))
            return noun + " in " + std::string(reading.substr(kUnit.size()));
        const std::string_view word = firstWord(reading);
        if (word == "decimal-comma")
            noun += " with a decimal comma";
        else if (!word.empty())
            noun += ", " + std::string(word);
    }
    return noun;
}

std::string fitValues(const FitFigures& fits) {
    const std::string noun = fitNoun(fits.reading);
    if (fits.rows == fits.of)
        return "all " + countOf(fits.of, "value") + ", which are " + noun;
    return "the " + groupedCount(fits.rows) + " of " + countOf(fits.of, "value") + " that are " + noun;
}

std::string fitSentence(const FitFigures& fits) {
    return "Over " + fitValues(fits);
}

std::optional<double> fitNumber(const FitFigures& fits, std::string_view value) {
    const auto reading = forms::Reading::parse(fits.reading);
    return reading ? reading->number(value) : std::nullopt;
}

std::optional<std::int64_t> fitTicks(const FitFigures& fits, std::string_view value) {
    const auto reading = forms::Reading::parse(fits.reading);
    return reading ? reading->ticks(value) : std::nullopt;
}

std::string convertedValue(std::string_view function, std::string_view reading) {
    std::string text(function);
    text += "(`Value`";
    if (!reading.empty())
        text += ", " + quotedText(reading);
    return text + ")";
}

std::string quotedText(std::string_view text) {
    std::string out = "'";
    for (const char c : text) {
        if (c == '\'')
            out += '\'';
        out += c;
    }
    return out + "'";
}

std::string_view fitSuffix(int metricId, const std::optional<FitFigures>& fits) {
    return fits && isOverFits(metricId) ? kOverFits : std::string_view();
}

} // namespace tavix
