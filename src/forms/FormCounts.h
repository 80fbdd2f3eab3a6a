#pragma once

#include "base/ByteMask.h"
#include "forms/ColumnReading.h"
#include "forms/ValueForm.h"
#include "forms/ValueKind.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>

namespace tavix::forms {

/// Counts the forms of a column's distinct values, which may come in any order.
class FormCounts {
  public:
    explicit FormCounts(StatedDates stated = StatedDates::Nothing) : m_stated(stated) {}
    ~FormCounts() = default;
    FormCounts(const FormCounts&) = delete; // m_lastTally points into it
    FormCounts& operator=(const FormCounts&) = delete;

    /// Takes a distinct value that occurs `count` times and is neither empty nor blank; `kind` is its kindOf() and
    /// `bytes` its byteMask().
    void take(std::string_view text, ValueKind kind, ByteMask bytes, std::uint64_t count) {
        if (kind == ValueKind::Text)
            takeText(text, bytes, count);
        else if (kind == ValueKind::Integer || kind == ValueKind::Real)
            takeNumber(text, kind, bytes, count);
        else
            m_kinds[static_cast<std::size_t>(kind)].add(text, count);
    }
    /// Adds the counts of other values of the column.
    void merge(const FormCounts& other);

    /// How the values that were taken are read as a whole.
    [[nodiscard]] ColumnReading read() const;

  private:
    static constexpr std::size_t kKinds = 6;

    void takeNumber(std::string_view text, ValueKind kind, ByteMask bytes, std::uint64_t count);
    void takeText(std::string_view text, ByteMask bytes, std::uint64_t count);
    void takeForm(const ValueForm& form, std::string_view text, std::uint64_t count);
    void takeEpoch(std::string_view text, std::uint64_t count);

    StatedDates m_stated;
    std::array<ValueTally, kKinds> m_kinds;                 ///< by ValueKind; Text: nothing reads it
    std::unordered_map<std::uint64_t, FormTally> m_written; ///< other forms, by ValueForm::key()
    std::uint64_t m_lastKey = UINT64_MAX;                   ///< equal forms often follow each other
    ValueTally* m_lastTally = nullptr;
    ValueTally m_epoch;                       ///< see ColumnTraits
    std::size_t m_shortestInteger = SIZE_MAX; ///< characters
    std::size_t m_shortestPadded = SIZE_MAX;  ///< of digits with leading zeros
};

} // namespace tavix::forms
