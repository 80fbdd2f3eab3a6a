#pragma once

#include "base/KvbDatavar.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavix::profiling {

/// The least or greatest cell of a column: the number when all cells are numbers, the date when all are dates, leaving
/// out empty and blank ones, else the text. Which one is known only at the end, so all three are kept.
class CellExtreme {
  public:
    explicit CellExtreme(bool isGreatest) : m_isGreatest(isGreatest) {}

    void add(std::string_view cell);
    /// Null without cells.
    [[nodiscard]] KvbDatavar result() const;
    /// The cells that took part.
    [[nodiscard]] std::int64_t used() const { return isTyped() ? m_filled : m_cells; }

  private:
    /// Adds a cell that is neither empty nor blank.
    void addFilled(std::string_view cell);
    void keep(std::optional<std::string>& best, std::string_view cell, bool isTyped) const;
    [[nodiscard]] bool isTyped() const { return m_filled > 0 && (m_areNumbers || m_areDates); }

    bool m_isGreatest;
    std::int64_t m_cells = 0;
    std::int64_t m_filled = 0;
    bool m_areNumbers = true;
    bool m_areDates = true;
    std::optional<std::string> m_text;
    std::optional<std::string> m_typed; ///< of numbers or dates
};

} // namespace tavix::profiling
