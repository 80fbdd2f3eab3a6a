#include "findings/FieldFindings.h"

#include "base/Characters.h"
#include "base/TypeWords.h"
#include "findings/FieldRules.h"

#include <fmt/format.h>

#include <algorithm>
#include <tuple>

namespace tavix::findings {

std::string_view FieldFigures::kindWord() const {
    if (isTyped())
        return typeWord(std::string_view(&typeCode, 1));
    return hasFigures ? reading.substr(0, reading.find(' ')) : std::string_view();
}

void FieldCase::addListed(std::string_view code, Likelihood likelihood, const std::vector<Counted>& list,
                          std::string detail) {
    if (list.empty())
        return;
    Hits hits;
    std::vector<std::string_view> texts;
    for (const Counted& value : list) {
        hits.add(value.count);
        texts.push_back(value.text);
    }
    add(code, likelihood, hits, listCondition("`Value`", std::move(texts)),
        detail.empty() ? namesOf(list) : std::move(detail));
}

bool FieldCase::has(std::string_view code) const {
    return std::any_of(found.begin(), found.end(), [code](const Finding& finding) { return finding.code == code; });
}

bool FieldCase::isOfOneLength() const {
    constexpr std::uint64_t kNearlyAll = 90; // percent
    return std::any_of(values.lengths().begin(), values.lengths().end(), [&](const Hits& hits) {
        return hits.values * 100 >= values.shown().values * kNearlyAll && hits.values > 0;
    });
}

std::string quoted(std::string_view text) {
    constexpr std::size_t kLongest = 40;
    return fmt::format("\"{}\"", shortened(text, kLongest));
}

std::string namesOf(std::vector<Counted> list) {
    constexpr std::size_t kNamed = 5;
    std::sort(list.begin(), list.end(), [](const Counted& a, const Counted& b) {
        return std::tuple(b.count, a.text) < std::tuple(a.count, b.text);
    });
    const std::size_t named = list.size() == kNamed + 1 ? list.size() : std::min(list.size(), kNamed);
    std::string names;
    for (std::size_t i = 0; i < named; ++i) {
        if (i > 0)
            names += i + 1 == list.size() ? " and " : ", ";
        names += fmt::format("{} ({})", quoted(list[i].text), list[i].count);
    }
    if (named < list.size())
        names += fmt::format(" and {} others", list.size() - named);
    return names;
}

void sortFindings(std::vector<Finding>& findings) {
    std::sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
        return std::tuple(b.likelihood, b.rows, a.code) < std::tuple(a.likelihood, a.rows, b.code);
    });
}

std::vector<Finding> fieldFindings(const FieldFigures& figures, const ValueDetectors& values,
                                   const OrderedNumbers* numbers, const OrderedDates* dates) {
    if (figures.rows < kLeastRows)
        return {};
    FieldCase field{figures, values, numbers, dates};
    addFrequencies(field);
    if (values.shown().rows >= kLeastRows) {
        addTypes(field);
        addWriting(field);
        addKinds(field);
        addShape(field);
        addPlaceholders(field);
        addVariants(field);
        if (dates)
            addDates(field);
        if (numbers)
            addNumbers(field);
    }
    sortFindings(field.found);
    return std::move(field.found);
}

} // namespace tavix::findings
