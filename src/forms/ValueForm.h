#pragma once

#include "base/ByteMask.h"
#include "forms/Unit.h"
#include "forms/ValueKind.h"
#include "forms/WrittenDate.h"
#include "forms/WrittenNumber.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavix::forms {

/// How 01/02/2003 is read. None: only dates of which both orders give the same.
enum class DateOrder : std::uint8_t { None, DayFirst, MonthFirst };
/// Open: only numbers of which both marks give the same.
enum class DecimalMark : std::uint8_t { Point, Comma, Open };

/// How a single value is written, which every value with the same key() shares. The column as a whole decides how such
/// values are read.
struct ValueForm {
    enum class Family : std::uint8_t { Text, Boolean, Number, Date, ShortYear, PaddedDigits };
    /// Of a number by its decimal mark, of a date by the order of day and month.
    enum class Readings : std::uint8_t { Same, First, Second, Different };

    Family family = Family::Text;
    bool hasBlanks = false;             ///< white space at its ends
    bool isStrict = false;              ///< apart from the blanks, as docs/definitions.md defines the types
    Readings readings = Readings::Same; ///< First: a point or the day first; Second: a comma or the month first
    MarkReading point, comma;           ///< of numbers
    NegativeMark negative = NegativeMark::None;
    UnitCode unit = kNoUnit;
    DateShape shape = DateShape::Iso; ///< of dates
    char separator = '\0';
    bool hasTime = false;

    /// Of a value that is neither empty nor blank; `kind` is its kindOf().
    [[nodiscard]] static ValueForm of(std::string_view text, ValueKind kind);

    /// Of a text that is neither empty nor blank and fits no strict type; none if it is plain text, which costs little.
    /// `bytes` is its byteMask().
    [[nodiscard]] static std::optional<ValueForm> written(std::string_view text, ByteMask bytes);

    /// Different for different forms.
    [[nodiscard]] std::uint64_t key() const;
    [[nodiscard]] bool isReadBy(DecimalMark mark) const;
    [[nodiscard]] bool isReadBy(DateOrder order) const;
    /// A number that this mark reads as a whole one.
    [[nodiscard]] bool isWhole(DecimalMark mark) const { return (mark == DecimalMark::Comma ? comma : point).isWhole; }
    /// The words for users, such as "integer", "real grouped with $" or "date DD.MM.YYYY hh:mm", in a column that is
    /// read with this mark and order.
    [[nodiscard]] std::string text(DecimalMark mark, DateOrder order) const;

    bool operator==(const ValueForm&) const = default;
};

/// The text without white space at its ends.
[[nodiscard]] std::string_view withoutBlanks(std::string_view text);

} // namespace tavix::forms
