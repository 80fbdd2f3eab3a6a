#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace tavix::source {

/// A cell as it is in the file.
struct RawCell {
    const char* data = nullptr;
    std::size_t size = 0;
    bool isQuoted = false;
    bool hasDoubledQuotes = false; ///< contains doubled quotes, to be read as one
    std::size_t tailSize = 0;      ///< of the text between the closing quote, which follows `data`, and the separator
};

enum class RowEnd {
    Complete,
    Unfinished, ///< the text ends before the end of the row is known; nothing was consumed
};

struct ScannedRow {
    RowEnd end = RowEnd::Complete;
    std::size_t cells = 0;
    std::int64_t lines = 0; ///< physical lines of the row
    bool isEmptyLine = false;
    bool isQuoteOpen = false; ///< an unclosed quote took the rest of the text
};

/// Splits delimited text into rows and cells (RFC 4180; LF, CRLF and a lone CR end a line). The text must be followed
/// by kPadding readable bytes.
class RowScanner {
  public:
    static constexpr std::size_t kPadding = 64;

    /// `delimiter` 0: every line is one cell. `isLast`: the file ends with the text. `quote` 0: none.
    RowScanner(const char* begin, const char* end, char delimiter, bool isLast, char quote = '"')
        : m_delimiter(delimiter == '\0' ? '\n' : delimiter),
          m_isLast(isLast),
          m_quote(quote == '\0' ? kNoQuote : static_cast<unsigned char>(quote)),
          m_pos(begin),
          m_end(end) {
        load(begin);
    }

    [[nodiscard]] const char* position() const { return m_pos; }
    [[nodiscard]] const char* end() const { return m_end; }
    [[nodiscard]] bool isAtEnd() const { return m_pos == m_end; }
    [[nodiscard]] bool isLast() const { return m_isLast; }

    /// Passes each cell of the next row to emit(index, RawCell). After Unfinished the cells passed so far are void.
    /// Must not be called at the end.
    template <typename Emit>
    ScannedRow scan(Emit&& emit) {
        ScannedRow row;
        row.lines = 1;
        const char* p = m_pos;
        for (;;) {
            if (p == m_end && !m_isLast)
                return unfinished();
            const char* separator = nullptr;
            RawCell cell;
            if (p < m_end && static_cast<unsigned char>(*p) == m_quote) {
                if (!scanQuoted(p + 1, cell, separator, row))
                    return unfinished();
            } else {
                separator = find(p);
                if (separator == m_end && !m_isLast)
                    return unfinished();
                cell.data = p;
                cell.size = static_cast<std::size_t>(separator - p);
            }
            if (separator != m_end && *separator == '\r' && separator + 1 == m_end && !m_isLast)
                return unfinished();
            emit(row.cells++, cell);
            if (separator == m_end) {
                m_pos = m_end;
                return row;
            }
            if (*separator != '\n' && *separator != '\r') {
                p = separator + 1;
                continue;
            }
            row.isEmptyLine = separator == m_pos;
            const bool isPair = *separator == '\r' && separator + 1 != m_end && separator[1] == '\n';
            m_pos = separator + (isPair ? 2 : 1);
            return row;
        }
    }

  private:
    static ScannedRow unfinished() {
        ScannedRow row;
        row.end = RowEnd::Unfinished;
        return row;
    }

    bool scanQuoted(const char* begin, RawCell& cell, const char*& separator, ScannedRow& row) {
        const char* p = begin;
        const char* close = nullptr;
        cell.isQuoted = true;
        cell.data = begin;
        for (;;) {
            close = static_cast<const char*>(std::memchr(p, m_quote, static_cast<std::size_t>(m_end - p)));
            if (!close) {
                if (!m_isLast)
                    return false;
                row.isQuoteOpen = true;
                close = m_end;
                break;
            }
            if (close + 1 == m_end && !m_isLast)
                return false;
            if (close + 1 == m_end || static_cast<unsigned char>(close[1]) != m_quote)
                break;
            cell.hasDoubledQuotes = true;
            p = close + 2;
        }
        cell.size = static_cast<std::size_t>(close - begin);
        row.lines += lineEnds(begin, close);
        if (close == m_end) {
            separator = m_end;
            return true;
        }
        separator = find(close + 1);
        cell.tailSize = static_cast<std::size_t>(separator - close) - 1;
        return separator != m_end || m_isLast;
    }

    static std::int64_t lineEnds(const char* begin, const char* end) {
        std::int64_t count = 0;
        for (const char* p = begin; p < end; ++p)
            count += *p == '\n' || (*p == '\r' && (p + 1 == end || p[1] != '\n')) ? 1 : 0;
        return count;
    }

    /// The next delimiter or line end at or after `p`; the end of the text without one.
    const char* find(const char* p) {
        for (;;) {
            const auto offset = static_cast<std::size_t>(p - m_window);
            if (offset < 64) {
                const std::uint64_t left = m_mask >> offset;
                if (left != 0) {
                    const char* found = p + std::countr_zero(left);
                    return found < m_end ? found : m_end;
                }
                p = m_window + 64;
            }
            if (p >= m_end)
                return m_end;
            load(p);
        }
    }

    /// Marks the separators among the 64 bytes at `p`, so that a short cell costs one test of a word and no loop.
    void load(const char* p) {
        m_window = p;
        m_mask = 0;
#ifdef __SSE2__
        const __m128i delimiter = _mm_set1_epi8(m_delimiter);
        const __m128i lf = _mm_set1_epi8('\n');
        const __m128i cr = _mm_set1_epi8('\r');
        for (unsigned i = 0; i < 4; ++i) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i * std::size_t{16}));
            const __m128i hits = _mm_or_si128(_mm_cmpeq_epi8(bytes, delimiter),
                                              _mm_or_si128(_mm_cmpeq_epi8(bytes, lf), _mm_cmpeq_epi8(bytes, cr)));
            m_mask |= static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(hits))) << (i * 16);
        }
#else
        for (unsigned i = 0; i < 64; ++i)
            m_mask |= static_cast<std::uint64_t>(p[i] == m_delimiter || p[i] == '\n' || p[i] == '\r') << i;
#endif
    }

    static constexpr int kNoQuote = -1;

    char m_delimiter;
    bool m_isLast;
    int m_quote;
    const char* m_pos;
    const char* m_end;
    const char* m_window = nullptr;
    std::uint64_t m_mask = 0;
};

} // namespace tavix::source
