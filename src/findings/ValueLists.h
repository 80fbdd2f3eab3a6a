#pragma once

#include "findings/Finding.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Lists of values in conditions.
namespace tavix::findings {

/// A condition never lists more values than this, so that it can be read and stored.
inline constexpr std::size_t kMostListed = 200;

/// A text in the expression language: 'O\'Brien'.
[[nodiscard]] std::string literalOf(std::string_view text);
/// "SUBJECT in ('a', 'b')"; the texts in the order of their code points, each once. Empty for no text or too many.
[[nodiscard]] std::string listCondition(std::string_view subject, std::vector<std::string_view> texts);

struct Counted {
    std::string_view text;
    std::uint64_t count = 0;
};

/// Some of the values of a field, with their counts; forgets all of them when they are too many, so that it does not
/// matter in which order they came.
class TextList {
  public:
    /// Forgets longer texts alone, `most` and more all.
    TextList(std::size_t most, std::size_t longest) : m_most(most), m_longest(longest) {}

    void add(std::string_view text, std::uint64_t count);
    [[nodiscard]] bool isFull() const { return m_isFull; }
    [[nodiscard]] bool hasLeftOut() const { return m_hasLeftOut; } ///< a text that was too long
    [[nodiscard]] std::size_t size() const { return m_entries.size(); }
    [[nodiscard]] Counted at(std::size_t i) const {
        const Entry& entry = m_entries[i];
        return {std::string_view(m_texts).substr(entry.begin, entry.size), entry.count};
    }
    /// The texts as a condition over `Value`; empty unless all are there.
    [[nodiscard]] std::string condition() const;

  private:
    struct Entry {
        std::size_t begin = 0;
        std::uint32_t size = 0;
        std::uint64_t count = 0;
    };
    std::size_t m_most;
    std::size_t m_longest;
    bool m_isFull = false;
    bool m_hasLeftOut = false;
    std::string m_texts;
    std::vector<Entry> m_entries;
};

} // namespace tavix::findings
