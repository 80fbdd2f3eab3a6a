#pragma once

#include "blocks/RowSet.h"
#include "blocks/Vector.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace tavix::expression {

/// Texts that are made one after the other in one piece of memory.
class AdjacentResults {
  public:
    /// Room for `size` bytes, which the frame allowed, and some more, which copying in steps may overwrite.
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
    /// The same for a text behind which, up to `readable` unless that is null, lie bytes that may be read: most are
    /// copied in one step.
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
    /// Room for as many bytes, to be written before the next call.
    [[nodiscard]] char* extend(std::size_t count) {
        char* const place = m_bytes.data() + m_size;
        m_size += count;
        return place;
    }
    void end(std::uint32_t row) { m_ends[row] = static_cast<std::uint32_t>(m_size); }
    /// Makes the texts of the rows by `append`; all others are empty.
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
