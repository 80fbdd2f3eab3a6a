#pragma once

#include "blocks/RowSet.h"
#include "blocks/Vector.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace tavix::expression {

/// Builds texts one after the other in one buffer.
class AdjacentResults {
  public:
    /// Makes room for `size` bytes, which the frame must have allowed, plus some that copying in steps may overwrite.
    void begin(std::size_t rows, std::size_t size) {
        if (m_bytes.size() < size + kStep)
            m_bytes.resize(size + kStep);
        m_ends.resize(rows);
        m_size = 0;
    }
    void append(std::string_view text) {
        if (text.empty())
            return;
        std::memcpy(m_bytes.data() + m_size, text.data(), text.size());
        m_size += text.size();
    }
    /// For a text whose memory may be read up to `readable` (unless that is null): copies most texts in one step.
    void append(std::string_view text, const char* readable) {
        if (text.empty() || text.size() > kStep || !readable ||
            readable - text.data() < static_cast<std::ptrdiff_t>(kStep))
            return append(text);
        std::memcpy(m_bytes.data() + m_size, text.data(), kStep);
        m_size += text.size();
    }
    void append(std::size_t count, char byte) {
        std::memset(m_bytes.data() + m_size, byte, count);
        m_size += count;
    }
    /// Room for `count` bytes, to be written before the next call.
    [[nodiscard]] char* extend(std::size_t count) {
        char* const place = m_bytes.data() + m_size;
        m_size += count;
        return place;
    }
    void end(std::uint32_t row) { m_ends[row] = static_cast<std::uint32_t>(m_size); }
    /// Calls `append` to make the text of each of the rows; all others are empty.
    template <typename Append>
    void makeEach(const RowSet& rows, Append append) {
        std::uint32_t next = 0;
        rows.forEach([&](std::uint32_t row) {
            for (; next < row; ++next)
                end(next);
            append(row);
            end(next++);
        });
        for (; next < m_ends.size(); ++next)
            end(next);
    }

    const Vector& vector(const std::uint8_t* nulls, bool isAscii) {
        m_vector = Vector{};
        m_vector.type = Type::Text;
        m_vector.bytes = m_bytes.data();
        m_vector.ends = m_ends.data();
        m_vector.readable = m_bytes.data() + m_bytes.size();
        m_vector.nulls = nulls;
        m_vector.ascii = AsciiAnswer(isAscii);
        return m_vector;
    }

  private:
    static constexpr std::size_t kStep = 16;

    std::vector<char> m_bytes;
    std::vector<std::uint32_t> m_ends;
    std::size_t m_size = 0;
    Vector m_vector;
};

} // namespace tavix::expression
