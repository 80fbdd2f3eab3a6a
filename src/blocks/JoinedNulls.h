#pragma once

#include "blocks/Vector.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tavix::expression {

/// The nulls of a result that is null where any of several vectors is.
class JoinedNulls {
  public:
    void begin() { m_joined = nullptr; }
    /// The vector must not be a null constant, and must live as long as the result.
    void add(const Vector& vector, std::size_t rows) {
        if (!vector.nulls)
            return;
        if (!m_joined) {
            m_joined = vector.nulls;
            return;
        }
        m_nulls.resize(rows);
        for (std::size_t row = 0; row < rows; ++row)
            m_nulls[row] = m_joined[row] | vector.nulls[row];
        m_joined = m_nulls.data();
    }
    /// A null pointer when no row is null.
    [[nodiscard]] const std::uint8_t* get() const { return m_joined; }

  private:
    const std::uint8_t* m_joined = nullptr;
    std::vector<std::uint8_t> m_nulls;
};

} // namespace tavix::expression
