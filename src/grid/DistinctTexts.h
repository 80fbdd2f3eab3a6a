#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace tavix {

/// A set of texts numbered in the order of their first appearance.
class DistinctTexts {
  public:
    /// The text's number; a new text gets the next one. The bytes must outlive the set.
    std::uint32_t add(std::string_view text);
    [[nodiscard]] std::size_t size() const { return m_entries.size(); }

    /// The rank of each text, by its number, from 0: ignoring case, then by case.
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
