#pragma once

#include "findings/Finding.h"
#include "findings/OrderedValues.h"
#include "findings/ValueDetectors.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::findings {

/// A value that a field keeps among its lowest or highest ones.
struct Extreme {
    std::string_view text;
    std::uint64_t count = 0;
    std::optional<double> number{};      ///< of a field that is read as numbers
    std::optional<std::int64_t> ticks{}; ///< of one that is read as dates
};

/// How many values are written in a form; see docs/definitions.md.
struct FormFigure {
    std::string_view form;
    Hits hits;
    std::string_view example;
};

/// The figures of a profiled field that findings follow from. Texts are borrowed.
struct FieldFigures {
    std::string_view name;
    char typeCode = 0; ///< base/TypeWords.h; 0 without values
    std::uint64_t rows = 0;
    std::uint64_t nulls = 0;
    std::optional<double> lowQuartile{}; ///< of numbers
    std::optional<double> median{};
    std::optional<double> highQuartile{};
    std::vector<Extreme> lowest{}; ///< the farthest out first
    std::vector<Extreme> highest{};
    std::int64_t now = 0; ///< the moment of the run, in units of base/DateTicks.h

    std::string_view reading{}; ///< how most values are read; empty for texts
    Hits fit{};                 ///< the values that are read so
    bool hasFigures = false;    ///< whether the figures are over the values that fit
    std::string_view ambiguity{};
    std::vector<FormFigure> forms{};

    /// The word of the type, or the first one of the reading if there are figures over the values that fit; else empty.
    [[nodiscard]] std::string_view kindWord() const;
    /// Whether the values are of their type as docs/definitions.md defines it, so that tonumber() and todate() read
    /// them.
    [[nodiscard]] bool isTyped() const { return typeCode != 'S' && typeCode != 0 && !hasFigures; }
};

/// The findings that follow from the figures of a field: at most one for each code, by likelihood, then rows. `numbers`
/// or `dates` is null unless the values are read so.
[[nodiscard]] std::vector<Finding> fieldFindings(const FieldFigures& figures, const ValueDetectors& values,
                                                 const OrderedNumbers* numbers, const OrderedDates* dates);

/// Puts the most certain ones first, then those of the most rows, then by code.
void sortFindings(std::vector<Finding>& findings);

} // namespace tavix::findings
