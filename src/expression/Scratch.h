#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::expression {

/// A text that a function makes may not grow beyond this.
inline constexpr std::size_t kLongestText = std::size_t{16} << 20;
/// All texts that are made for one row may not take more than this together.
inline constexpr std::size_t kMostTextsOfRow = std::size_t{64} << 20;

/// Where the texts live that functions make while a row or a block of rows is evaluated, and where a function says that
/// it failed. Nothing that it gave out lives longer than until clear().
class Scratch {
  public:
    /// Forgets all texts and keeps the memory for the next ones, which may take `most` bytes together.
    void clear(std::size_t most = kMostTextsOfRow);
    /// Whether a text of `size` bytes can be kept; leaves a failure when it is beyond kLongestText or takes all texts
    /// together beyond what was given to clear().
    [[nodiscard]] bool fits(std::size_t size) {
        return (!m_isFull && size <= kLongestText && size <= m_most - m_total) || refuse(size);
    }
    /// Room for `size` bytes; null, with a failure, when they do not fit.
    [[nodiscard]] char* allocate(std::size_t size);
    /// A copy that lives here; an empty text on failure.
    [[nodiscard]] std::string_view keep(std::string_view text);

    /// A text to build in before it is kept; emptied by every call.
    [[nodiscard]] std::string& builder();

    /// Only the first failure since takeFailure() is kept.
    void fail(std::string message);
    [[nodiscard]] bool hasFailed() const { return !m_failure.empty(); }
    [[nodiscard]] std::string takeFailure();

    /// Whether the texts together reached their limit since clear(); nothing fits any more.
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
    std::size_t m_chunk = 0; ///< the one that is being filled
    std::size_t m_used = 0;  ///< of that chunk
    std::size_t m_total = 0;
    std::size_t m_most = kMostTextsOfRow;
    bool m_isFull = false;
    std::string m_builder;
    std::string m_failure;
};

} // namespace tavix::expression
