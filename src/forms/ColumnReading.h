#pragma once

#include "forms/Reading.h"
#include "forms/ValueForm.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::forms {

/// The statement of a job about the dates of a field.
enum class StatedDates : std::uint8_t { Nothing, DayFirst, MonthFirst, EpochSeconds };

/// Distinct values of a column that have something in common. Neither empty nor blank values take part.
struct ValueTally {
    std::uint64_t values = 0;
    std::uint64_t rows = 0;
    std::uint64_t most = 0; ///< how often the example occurs
    std::string example;    ///< the most frequent value; among equals the first by code point
    bool fits64 = true;     ///< whether all whole numbers among them have at most 64 bits

    void add(std::string_view text, std::uint64_t count) {
        ++values;
        rows += count;
        if (count >= most && (count > most || isBeforeExample(text)))
            setExample(text, count);
    }
    void merge(const ValueTally& other);

  private:
    /// The first bytes as a number of the same order; most values differ in them.
    static std::uint64_t startOf(std::string_view text) {
        std::uint64_t start = 0;
        if (text.size() >= sizeof start) // a copy of known size is one instruction
            std::memcpy(&start, text.data(), sizeof start);
        else
            std::memcpy(&start, text.data(), text.size());
        return __builtin_bswap64(start);
    }
    [[nodiscard]] bool isBeforeExample(std::string_view text) const {
        const std::uint64_t start = startOf(text);
        return start < m_exampleStart || (start == m_exampleStart && text < example);
    }
    void setExample(std::string_view text, std::uint64_t count);

    std::uint64_t m_exampleStart = 0;
};

/// The values that are written in one form.
struct FormTally {
    ValueForm form;
    ValueTally tally;
};

/// The values of a field that have a form of this name.
struct FormCount {
    std::string form; ///< as ValueForm::text()
    std::uint64_t values = 0;
    std::uint64_t rows = 0;
    std::string example; ///< as in ValueTally

    bool operator==(const FormCount&) const = default;
};

/// How a column as a whole is read.
struct ColumnReading {
    std::uint64_t values = 0; ///< distinct, of the column
    std::uint64_t rows = 0;
    std::vector<FormCount> forms;   ///< by rows, the most first, then by form
    std::optional<Reading> reading; ///< none if fewer than half of the rows can be read alike
    std::uint64_t fitValues = 0;    ///< those that fit the reading
    std::uint64_t fitRows = 0;
    std::string ambiguity; ///< such as "day-first or month-first": the values do not decide between these
    bool fits64 = true;    ///< whether all integers that fit have at most 64 bits

    /// Whether at least this percentage of the rows fits the reading.
    [[nodiscard]] bool isRead(double leastPercent) const {
        return reading && static_cast<double>(fitRows) * 100.0 >= leastPercent * static_cast<double>(rows);
    }
};

/// Further counts of a column, besides its forms.
struct ColumnTraits {
    StatedDates stated = StatedDates::Nothing;
    ValueTally epoch;      ///< of the integers that are seconds since 1970, if the job says so
    bool hasCodes = false; ///< digits with leading zeros, and no integer is shorter: digits are codes
};

/// Decides how a column is read whose values have these forms, each listed once and in any order, as
/// docs/definitions.md explains.
[[nodiscard]] ColumnReading readColumn(std::span<const FormTally> forms, const ColumnTraits& traits);

} // namespace tavix::forms
