#pragma once

#include "findings/FieldFindings.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The parts of fieldFindings().
namespace tavix::findings {

/// A field with fewer rows says nothing: one odd value in five may well be right.
inline constexpr std::uint64_t kLeastRows = 20;
/// Shares and shapes need more.
inline constexpr std::uint64_t kLeastForShares = 100;

/// A field that is examined, and what was found so far.
struct FieldCase {
    const FieldFigures& figures;
    const ValueDetectors& values;
    const OrderedNumbers* numbers;
    const OrderedDates* dates;
    std::vector<Finding> found{};

    void add(std::string_view code, Likelihood likelihood, Hits hits, std::string condition, std::string detail = {}) {
        found.push_back({code, likelihood, hits.values, hits.rows, std::move(detail), std::move(condition)});
    }
    /// The values of a list that must be complete.
    void addListed(std::string_view code, Likelihood likelihood, const std::vector<Counted>& list,
                   std::string detail = {});
    [[nodiscard]] bool has(std::string_view code) const;
    [[nodiscard]] bool isText() const { return figures.typeCode == 'S'; }
    /// Of the rows with a value.
    [[nodiscard]] double shareOf(const Hits& hits) const {
        const std::uint64_t rows = values.shown().rows;
        return rows > 0 ? static_cast<double>(hits.rows) / static_cast<double>(rows) : 0;
    }
    /// Whether nearly all values have as many characters as each other, as codes do.
    [[nodiscard]] bool isOfOneLength() const;
};

/// "Berlin", "Bonn" and 3 others
[[nodiscard]] std::string namesOf(std::vector<Counted> list);
[[nodiscard]] std::string quoted(std::string_view text);

void addWriting(FieldCase& field);      ///< how single values are written
void addKinds(FieldCase& field);        ///< e-mail addresses, card numbers, ...
void addShape(FieldCase& field);        ///< lengths and patterns
void addPlaceholders(FieldCase& field); ///< texts, dates and numbers where a value is missing
void addVariants(FieldCase& field);     ///< one value in several spellings
void addFrequencies(FieldCase& field);  ///< no value, one value, rare values, keys
void addTypes(FieldCase& field);        ///< numbers and dates kept as text
void addDates(FieldCase& field);
void addNumbers(FieldCase& field);

} // namespace tavix::findings
