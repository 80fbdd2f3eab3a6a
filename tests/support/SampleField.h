#pragma once

#include "repository/Facts.h"

#include <deque>
#include <string>
#include <utility>
#include <vector>

namespace tavix::testing {

/// A field's facts with the texts that they borrow.
class SampleField {
  public:
    /// A value and its count; null is a value of its own.
    using Values = std::vector<std::pair<KvbString, std::uint64_t>>;

    /// Computes counts, lengths, patterns, extremes and, for numbers, the mean from the values, in any order. Median,
    /// mode, deviation and error stay null.
    SampleField(std::string name, int ordinal, char typeCode, const Values& values);
    SampleField(const SampleField&) = delete;
    SampleField& operator=(const SampleField&) = delete;

    [[nodiscard]] repository::FieldFacts& facts() { return m_facts; }

  private:
    void fillCounts();
    void fillNumbers();

    std::deque<std::string> m_texts;
    std::vector<repository::ValueCount> m_values;
    std::vector<repository::ValueCount> m_patterns;
    repository::FieldFacts m_facts;
};

} // namespace tavix::testing
