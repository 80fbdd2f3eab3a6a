#pragma once

#include "base/KvbDatavar.h"
#include "blocks/Vector.h"
#include "job/JobDescription.h"
#include "profiling/CellExtreme.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tavix::profiling {

/// Sum, average, minimum or maximum of an expression over rows. Null is skipped; for sum and average a text counts as
/// the number that it represents and is skipped when it is not one. Minimum and maximum of a column go by what its
/// cells are. docs/definitions.md defines the results.
class RowAggregate {
  public:
    /// `isColumn`: the values are the cells of a column.
    RowAggregate(job::Figure figure, bool isColumn);

    void add(const expression::Value& value);
    /// Null when no value counted.
    [[nodiscard]] KvbDatavar result() const;
    /// The rows whose value took part.
    [[nodiscard]] std::int64_t usedRows() const { return m_cells ? m_cells->used() : m_used; }

  private:
    void addNumber(const expression::Value& value);
    void addExtreme(const expression::Value& value);

    job::Figure m_figure;
    std::int64_t m_used = 0;
    __extension__ using WideInteger = __int128;
    WideInteger m_integers = 0; ///< the sum of the integers
    long double m_reals = 0;    ///< the sum of the reals
    bool m_hasReals = false;
    expression::Value m_extreme;
    std::string m_extremeText;
    std::optional<CellExtreme> m_cells; ///< of a column
};

} // namespace tavix::profiling
