#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::expression {

/// The longest text that a function may make.
inline constexpr std::size_t kLongestText = std::size_t{16} << 20;
/// The most bytes of all texts that are made for one row.
inline constexpr std::size_t kMostTextsOfRow = std::size_t{64} << 20;

/// Holds the texts that functions make while a row or a block of rows is evaluated, and the failure of a function. All
/// texts are invalid after clear().
class Scratch {
  public:
    /// Drops all texts and keeps the memory for the next ones, which may take `most` bytes together.
    void clear(std::size_t most = kMostTextsOfRow);
    /// Whether a text of `size` bytes can be kept; leaves a failure when it exceeds kLongestText, or all texts together
    /// the bound given to clear().
    [[nodiscard]] bool fits(std::size_t size) {
        return (!m_isFull && size <= kLongestText && size <= m_most - m_total) || refuse(size);
    }
    /// Memory for `size` bytes; null, with a failure, when they do not fit.
    [[nodiscard]] char* allocate(std::size_t size);
    /// A copy that lives here; an empty text on failure.
    [[nodiscard]] std::string_view keep(std::string_view text);

    /// A buffer to build a text in before it is kept; empty after every call.
    [[nodiscard]] std::string& builder();

    /// Keeps the first failure since takeFailure().
    void fail(std::string message);
    [[nodiscard]] bool hasFailed() const { return !m_failure.empty(); }
    [[nodiscard]] std::string takeFailure();

    /// Whether the texts reached their bound since clear(); nothing fits any more.
    [[nodiscard]] bool isFull() const { return m_isFull; }
    /// The bytes of all texts since clear().
    [[nodiscard]] std::size_t size() const { return m_total; }

  private:
    /// Leaves the failure; true for an empty text, which always fits.
    bool refuse(std::size_t size);

    struct Chunk {
        std::unique_ptr<char[]> bytes;
        std::size_t size = 0;
    };
    std::vector<Chunk> m_chunks;
    std::size_t m_chunk = 0; ///< the chunk being filled
    std::size_t m_used = 0;  ///< used bytes of that chunk
    std::size_t m_total = 0;
    std::size_t m_most = kMostTextsOfRow;
    bool m_isFull = false;
    std::string m_builder;
    std::string m_failure;
};

} // namespace tavix::expression
