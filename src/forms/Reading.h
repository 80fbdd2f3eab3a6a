#pragma once

#include "base/TypeWords.h"
#include "forms/ValueForm.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavix::forms {

/// How the values of a field are read: its type, and what the column as a whole decided about numbers and dates that
/// could be read in two ways. docs/definitions.md explains it to users.
struct Reading {
    FieldType type = FieldType::Integer; ///< Integer, Real, Date or Boolean
    DateOrder order = DateOrder::None;
    DecimalMark decimal = DecimalMark::Point;
    UnitCode unit = kNoUnit; ///< of numbers; values without a unit fit every currency
    bool isEpoch = false;    ///< a date as seconds since 1970, which only a job states

    /// "integer", "real decimal-comma unit=€", "date day-first", "date epoch-seconds". A number that is open between
    /// point and comma is "integer open-mark".
    [[nodiscard]] std::string text() const;
    /// Of such a text exactly; none for any other.
    [[nodiscard]] static std::optional<Reading> parse(std::string_view text);

    /// Whether values of this form are read. Not for epoch seconds.
    [[nodiscard]] bool fits(const ValueForm& form) const;

    // White space at the ends of a value is ignored; empty and blank values never fit.
    [[nodiscard]] bool fits(std::string_view value) const;
    /// The value of an integer or real that fits.
    [[nodiscard]] std::optional<double> number(std::string_view value) const;
    /// The value of an integer that fits; also none beyond 64 bits.
    [[nodiscard]] std::optional<std::int64_t> integer(std::string_view value) const;
    /// The instant of a date that fits in units of 100 ns since 1970; UTC when it has no offset.
    [[nodiscard]] std::optional<std::int64_t> ticks(std::string_view value) const;
    /// The value of a boolean that fits.
    [[nodiscard]] std::optional<bool> boolean(std::string_view value) const;

    bool operator==(const Reading&) const = default;

  private:
    [[nodiscard]] bool fits(const WrittenNumber& number) const;
    [[nodiscard]] bool fitsUnit(UnitCode unit) const;
    [[nodiscard]] bool isNumber() const { return type == FieldType::Integer || type == FieldType::Real; }
};

} // namespace tavix::forms
