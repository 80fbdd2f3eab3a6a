#include "expression/FixedPatterns.h"

#include "expression/Wildcard.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

namespace tavix::expression {

namespace {

constexpr std::size_t kMostRegulars = 500;
constexpr std::size_t kMostAutomata = 100;
constexpr std::size_t kLongestWildcard = 4096;

/// The first patterns may be large; later ones share the rest, so that all together stay below 150 MB.
std::int64_t memoryOf(std::size_t number) {
    constexpr std::int64_t kMost = std::int64_t{8} << 20;
    constexpr std::int64_t kLeast = std::int64_t{128} << 10;
    constexpr std::size_t kOfEachSize = 4;
    return std::max(kLeast, kMost >> std::min<std::size_t>(number / kOfEachSize, 8));
}

} // namespace

bool FixedPatterns::mayHaveAutomaton() const {
    return m_regulars.size() + m_wildcards.size() < kMostAutomata;
}

Status FixedPatterns::roomForAnother() const {
    if (expressions() < kMostRegulars)
        return {};
    return Error{fmt::format("an expression has at most {} different regular expressions", kMostRegulars)};
}

FixedPatterns::Made FixedPatterns::regular(const std::string& pattern) {
    const auto known = m_regulars.find(pattern);
    if (known != m_regulars.end())
        return known->second;
    if (const Status room = roomForAnother(); !room)
        return room.error();
    Made made = makeRegularExpression(pattern, {memoryOf(expressions()), mayHaveAutomaton()});
    if (!made)
        return made.error();
    return m_regulars.emplace(pattern, std::move(made).value()).first->second;
}

FixedPatterns::Made FixedPatterns::wildcard(const std::string& pattern) {
    const auto known = m_wildcards.find(pattern);
    if (known != m_wildcards.end())
        return known->second;
    if (pattern.size() > kLongestWildcard)
        return Error{fmt::format("the pattern is longer than {} bytes", kLongestWildcard)};
    return m_wildcards.emplace(pattern, std::make_shared<Wildcard>(pattern, mayHaveAutomaton())).first->second;
}

Prepared FixedPatterns::extraction(std::string_view pattern) {
    if (const Status room = roomForAnother(); !room)
        return room.error();
    return prepareExtraction(pattern, memoryOf(m_searches++ + m_regulars.size()));
}

Prepared FixedPatterns::replacement(std::string_view pattern, std::string_view replacement) {
    if (const Status room = roomForAnother(); !room)
        return room.error();
    return prepareReplacement(pattern, replacement, memoryOf(m_searches++ + m_regulars.size()));
}

} // namespace tavix::expression
