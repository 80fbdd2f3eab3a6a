#pragma once

#include "base/KvbDatavar.h"
#include "blocks/Vector.h"
#include "job/JobDescription.h"

#include <cstdint>
#include <string>

namespace tavix::profiling {

/// A value as it is stored and shown: dates and booleans as text.
[[nodiscard]] KvbDatavar figureOf(const expression::Value& value);

/// Sum, average, minimum or maximum of the values of an expression. Null takes no part; for sum and average a text is
/// read as a number and takes no part when it is none. docs/definitions.md says what comes out.
class RowAggregate {
  public:
    explicit RowAggregate(job::Figure figure) : m_figure(figure) {}

    void add(const expression::Value& value);
    /// Null when no value took part.
    [[nodiscard]] KvbDatavar result() const;
    [[nodiscard]] std::int64_t usedRows() const { return m_used; }

  private:
    void addNumber(const expression::Value& value);
    void addExtreme(const expression::Value& value);

    job::Figure m_figure;
    std::int64_t m_used = 0;
    __extension__ using WideInteger = __int128;
    WideInteger m_integers = 0; ///< the sum of those that are integers
    long double m_reals = 0;    ///< of the others
    bool m_hasReals = false;
    expression::Value m_extreme;
    std::string m_extremeText;
};

} // namespace tavix::profiling
