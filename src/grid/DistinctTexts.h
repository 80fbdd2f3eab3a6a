#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace tavix {

/// A set of texts, each with the number of its first appearance, that can be put in order.
class DistinctTexts {
  public:
    /// The text's number; a text that is new gets the next one. The bytes must outlive the set.
    std::uint32_t add(std::string_view text);
    [[nodiscard]] std::size_t size() const { return m_entries.size(); }

    /// By number, the text's place among all, from 0: without regard to case and then with it.
    [[nodiscard]] std::vector<std::uint32_t> ranks() const;

  private:
    struct Entry {
        std::string_view text;
        std::uint64_t hash;
    };
    void grow();

    std::vector<Entry> m_entries;       ///< by number
    std::vector<std::uint32_t> m_slots; ///< number + 1 by hash, open addressing; 0 for a free one
};

} // namespace tavix
