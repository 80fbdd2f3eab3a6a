#include "base/Ascii.h"
#include "findings/FieldRules.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavix::findings {

namespace {

constexpr std::string_view kMissing = "isnull(`Value`) or isblank(`Value`)";

void addMissing(FieldCase& field) {
    const FieldFigures& figures = field.figures;
    const Hits& shown = field.values.shown();
    const Hits& blank = field.values.blank();
    const Hits missing{blank.values + (figures.nulls > 0 ? 1 : 0), blank.rows + figures.nulls};
    if (shown.rows == 0) {
        field.add("no-value", Likelihood::Definite, missing, std::string(kMissing));
        return;
    }
    constexpr double kNearlyAll = 0.95;
    if (figures.rows >= kLeastForShares &&
        static_cast<double>(missing.rows) >= kNearlyAll * static_cast<double>(figures.rows))
        field.add("mostly-missing", Likelihood::Possible, missing, std::string(kMissing));
    if (blank.rows > 0)
        field.add("blank-values", figures.nulls > 0 ? Likelihood::Likely : Likelihood::Possible, blank,
                  "isblank(`Value`)",
                  figures.nulls > 0 ? fmt::format("{} other rows are null", figures.nulls) : std::string());
}

/// The values of the field with one of these in a list: all have a letter and are kept.
bool areAllWords(const FieldCase& field) {
    const TextList& words = field.values.words();
    return !words.isFull() && words.size() == field.values.shown().values;
}

void addOneValue(FieldCase& field) {
    const Hits& shown = field.values.shown();
    const Counted top = field.values.top();
    if (top.count == 0 || shown.rows < kLeastRows)
        return;
    if (shown.values == 1) {
        field.addListed("one-value", Likelihood::Definite, {top});
        return;
    }
    constexpr double kNearlyAll = 0.98;
    if (shown.rows >= kLeastForShares && static_cast<double>(top.count) >= kNearlyAll * static_cast<double>(shown.rows))
        field.addListed("dominant-value", Likelihood::Possible, {top});
}

/// A category of a few frequent values, and some that hardly occur.
void addRare(FieldCase& field) {
    constexpr std::uint64_t kLeastRowsOfCategory = 1000;
    constexpr std::size_t kMostCategories = 30;
    constexpr double kFrequent = 0.01;
    constexpr double kRare = 0.001;
    constexpr double kNearlyAll = 0.995;
    const Hits& shown = field.values.shown();
    if (!field.isText() || shown.rows < kLeastRowsOfCategory || shown.values > kMostCategories || !areAllWords(field))
        return;
    Hits frequent;
    std::vector<Counted> rare;
    const auto rows = static_cast<double>(shown.rows);
    for (std::size_t i = 0; i < field.values.words().size(); ++i) {
        const Counted value = field.values.words().at(i);
        if (static_cast<double>(value.count) >= kFrequent * rows)
            frequent.add(value.count);
        else if (static_cast<double>(value.count) <= kRare * rows)
            rare.push_back(value);
    }
    // More rare values than frequent ones are the tail of an ordinary distribution.
    if (frequent.values >= 2 && rare.size() <= frequent.values && field.shareOf(frequent) >= kNearlyAll)
        field.addListed("rare-values", Likelihood::Possible, rare);
}

/// Whether the name says that the values identify something.
bool isNamedAsKey(std::string_view name) {
    const std::string lower = asciiLower(name);
    for (const std::string_view word : {"id", "key", "code", "no", "nr", "number", "identifier", "identification"}) {
        if (lower == word)
            return true;
        if (lower.size() > word.size() && lower.ends_with(word)) {
            const char before = name[name.size() - word.size() - 1];
            const char first = name[name.size() - word.size()];
            if (!isAsciiLetter(before) || first != asciiLower(first))
                return true;
        }
    }
    return false;
}

void addNearlyUnique(FieldCase& field) {
    constexpr double kNearlyAll = 0.99;
    constexpr double kAlmostAll = 0.999;
    constexpr std::uint64_t kLongestKey = 60;
    const Hits& shown = field.values.shown();
    const Hits& repeated = field.values.repeated();
    const auto longest = field.values.longest();
    if (shown.rows < kLeastForShares || repeated.values == 0 || longest.empty() || longest.front().length > kLongestKey)
        return;
    // Measures are often nearly unique, and nothing follows from it.
    const bool isKey = isNamedAsKey(field.figures.name) || (field.isText() && field.isOfOneLength());
    if (!isKey && !(field.isText() && field.figures.kindWord().empty()))
        return;
    const double share = static_cast<double>(shown.values) / static_cast<double>(shown.rows);
    if (share < kNearlyAll)
        return;
    field.add("nearly-unique", isKey && share >= kAlmostAll ? Likelihood::Likely : Likelihood::Possible, repeated,
              field.values.repeatedTexts().condition(),
              fmt::format("{} of {} values occur once", shown.values - repeated.values, shown.values));
}

} // namespace

void addFrequencies(FieldCase& field) {
    addMissing(field);
    addOneValue(field);
    addRare(field);
    addNearlyUnique(field);
}

} // namespace tavix::findings
