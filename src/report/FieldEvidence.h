#pragma once

#include "base/TypeWords.h"
#include "forms/Reading.h"
#include "report/FieldRecord.h"
#include "report/MetricHistory.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavix {

class PrViewer;

/// Figures of the fields of a table in the current run and those before it, read with a query for each metric.
struct TableEvidence {
    MetricHistory nonNulls, nulls, unique, minimum, maximum, longest;
    /// By field: of text fields whose figures are over the values that fit a narrower type, with the rows that do not.
    std::map<int, std::pair<forms::Reading, std::int64_t>> readings;
};
[[nodiscard]] TableEvidence readTableEvidence(PrViewer& viewer, int tableId);

/// A value or pattern with its rows.
struct CountedText {
    std::string text;
    std::int64_t count = 0;

    bool operator==(const CountedText&) const = default;
};

/// One of the lowest or highest values, the farthest out first.
struct ExtremeValue {
    std::string text;
    std::int64_t count = 0;
    bool isFar = false; ///< beyond the outer fence

    bool operator==(const ExtremeValue&) const = default;
};

/// Of the runs that have a figure, how many meet a condition.
struct RunShare {
    int meeting = 0;
    int all = 0;
};

/// All that is known about a field when rules are suggested for it.
struct FieldEvidence {
    FieldRecord field;
    const FieldTypeInfo* type = nullptr; ///< null for a field without a type
    /// Of a text field nearly all of whose values fit a narrower type: its figures are over those.
    std::optional<forms::Reading> reading;
    std::int64_t misfitRows = 0; ///< of such a field
    bool isSample = false;
    std::int64_t rows = 0;
    std::int64_t nulls = 0;
    std::int64_t blanks = 0;           ///< rows with an empty text or white space only
    std::int64_t distinct = 0;         ///< values, without null
    std::vector<CountedText> values;   ///< without null and blank ones, most frequent first
    bool hasAllValues = false;         ///< else `values` is empty: there are too many
    std::vector<CountedText> patterns; ///< of values that are not blank, most frequent first
    bool hasAllPatterns = false;
    std::vector<ExtremeValue> lowest, highest;
    // The figures of the runs, the oldest first and the current one last; NaN where a run has none.
    std::vector<double> nonNullHistory, nullHistory, uniqueHistory, minimumHistory, maximumHistory, longestHistory;

    [[nodiscard]] std::int64_t filled() const { return rows - nulls - blanks; }
    [[nodiscard]] std::optional<double> number(MetricId metric) const;
    [[nodiscard]] int runs() const { return static_cast<int>(uniqueHistory.size()); }
    [[nodiscard]] bool isType(FieldType wanted) const { return type && type->type == wanted; }
    /// The values as numbers or dates, those of a text field by its reading.
    [[nodiscard]] bool holdsNumbers() const;
    [[nodiscard]] bool holdsDates() const;
    [[nodiscard]] std::optional<double> numberIn(std::string_view text) const;
    [[nodiscard]] std::optional<std::int64_t> ticksIn(std::string_view text) const;
    /// The runs in which every value that is not null occurs once.
    [[nodiscard]] RunShare uniqueRuns() const;
    /// Whether its values identify rows, to judge by their number, its name and its place.
    [[nodiscard]] bool looksLikeKey() const;
    /// Whether it is an identifier that grows with each row: integers, nearly all different.
    [[nodiscard]] bool isGrowingIdentifier() const;
};

/// How many texts are as long as the longest, against those a little shorter.
struct LengthTail {
    static constexpr std::int64_t kBefore = 5; ///< lengths before the last
    std::int64_t valuesAtEnd = 0;
    std::int64_t valuesBefore = 0; ///< of all these lengths
};
[[nodiscard]] LengthTail readLengthTail(PrViewer& viewer, int fieldId, std::int64_t longest);

/// Counts the rows whose value meets a condition over `Value`. Throws GenException.
[[nodiscard]] std::int64_t rowsThatMeet(PrViewer& viewer, int fieldId, std::string_view condition);

/// Reads it for a field of the current run, with at most `mostValues` values. Throws GenException.
[[nodiscard]] FieldEvidence readFieldEvidence(PrViewer& viewer, FieldRecord field, const TableEvidence& table,
                                              bool isSample, std::size_t mostValues);

} // namespace tavix
