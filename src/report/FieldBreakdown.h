#pragma once

#include "base/KvbString.h"
#include "base/Result.h"
#include "report/FieldRecord.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Which types the values of a field fit, and the values that do not fit. Null, empty and blank values are left out.
namespace tavix {

class PrViewer;

/// A value with the number of rows that have it.
struct CountedValue {
    KvbString value;
    std::int64_t rows = 0;

    bool operator==(const CountedValue&) const = default;
};

struct FieldBreakdown {
    /// A way of writing. A value counts under the narrowest one that reads it.
    struct Form {
        std::string form; ///< "integer", "date day-first", "text"
        std::int64_t values = 0;
        std::int64_t rows = 0;
        KvbString example; ///< its most frequent value
        bool fits = false; ///< the reading

        bool operator==(const Form&) const = default;
    };

    bool isExamined = false; ///< false for a run of an older version: nothing else is known
    std::int64_t values = 0; ///< distinct
    std::int64_t rows = 0;
    std::string reading; ///< of the type that the values fit, a forms::Reading::text(); "" for text
    std::int64_t fitValues = 0;
    std::int64_t fitRows = 0;
    std::string ambiguity;   ///< "day-first or month-first"; "" where the values decide
    bool hasFigures = false; ///< metrics of the field are over the values that fit
    std::vector<Form> forms; ///< most rows first

    [[nodiscard]] bool hasMisfits() const { return !reading.empty() && fitValues < values; }
    [[nodiscard]] std::int64_t misfitValues() const { return hasMisfits() ? values - fitValues : 0; }
    [[nodiscard]] std::int64_t misfitRows() const { return hasMisfits() ? rows - fitRows : 0; }

    bool operator==(const FieldBreakdown&) const = default;
};

inline constexpr std::string_view kNotExamined = "not examined";
inline constexpr std::size_t kMisfitsInText = 3;

[[nodiscard]] Result<FieldBreakdown> readFieldBreakdown(PrViewer& viewer, int fieldId);
/// The most frequent values that do not fit, at most `most`.
[[nodiscard]] Result<std::vector<CountedValue>> readMisfits(PrViewer& viewer, int fieldId,
                                                            const FieldBreakdown& breakdown, std::size_t most);

/// An expression that is true for the values that do not fit the reading.
[[nodiscard]] std::string misfitCondition(std::string_view reading);
/// An expression that is true for exactly the values that a form of the breakdown counts; "" where there is none.
[[nodiscard]] std::string formCondition(const FieldBreakdown& breakdown, std::size_t form);

/// "integer 399 of 400; does not fit: unknown (1)". `misfits` are the first of those that do not fit. kNotExamined for
/// a run that did not look.
[[nodiscard]] std::string breakdownText(const FieldBreakdown& breakdown, const std::vector<CountedValue>& misfits);
/// "01/02/2003 can be read day-first or month-first; state it in the job: dates: day-first"; "" without an ambiguity.
[[nodiscard]] std::string ambiguityText(const FieldBreakdown& breakdown);
/// The type that the source declares beside the one of the values: "declared varchar(20); values: date day-first"; ""
/// if the source declares none, or the run did not look at the values.
[[nodiscard]] std::string declaredText(const FieldRecord& field, const FieldBreakdown& breakdown);
/// Whether the source declares another kind of type than the values have: text for numbers, numbers for dates.
[[nodiscard]] bool disagreesWithDeclared(const FieldRecord& field, const FieldBreakdown& breakdown);

} // namespace tavix
