#include "findings/RunFindings.h"

#include "base/Ascii.h"
#include "base/DateTicks.h"
#include "base/TypeWords.h"
#include "findings/FieldRules.h"
#include "pattern/CharacterPattern.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>

namespace tavix::findings {

namespace {

/// Names that fields of different meaning share.
bool isCommonName(std::string_view lower) {
    constexpr std::array<std::string_view, 19> kNames = {
        "id",   "name",  "code",   "type", "date",  "value",   "count",  "number", "index", "year",
        "time", "state", "status", "key",  "title", "comment", "amount", "remark", "month"};
    return std::find(kNames.begin(), kNames.end(), lower) != kNames.end();
}

/// Integers and reals go together.
std::string_view familyOf(const FieldSummary& field) {
    if (field.kind == "integer" || field.kind == "real")
        return "number";
    return field.kind.empty() ? std::string_view("text") : std::string_view(field.kind);
}

std::string_view kindOf(const FieldSummary& field) {
    return field.kind.empty() ? std::string_view("text") : std::string_view(field.kind);
}

class Differences {
  public:
    explicit Differences(std::span<const FieldSummary> fields) : m_fields(fields) {}

    std::vector<FoundIn> find() {
        std::map<std::string, std::vector<std::size_t>> byName;
        for (std::size_t i = 0; i < m_fields.size(); ++i)
            if (m_fields[i].shown.rows >= kLeastRows)
                byName[asciiLower(m_fields[i].name)].push_back(i);
        for (const auto& [name, members] : byName)
            for (const std::size_t i : isCommonName(name) ? std::span<const std::size_t>() : std::span(members))
                compare(i, members);
        return std::move(m_found);
    }

  private:
    void compare(std::size_t index, const std::vector<std::size_t>& members) {
        const FieldSummary& field = m_fields[index];
        const FieldSummary* otherType = nullptr;
        const FieldSummary* otherPattern = nullptr;
        for (const std::size_t i : members) {
            const FieldSummary& other = m_fields[i];
            if (other.source == field.source)
                continue;
            if (familyOf(other) != familyOf(field))
                otherType = otherType ? otherType : &other;
            else if (!field.pattern.empty() && !other.pattern.empty() && field.pattern != other.pattern)
                otherPattern = otherPattern ? otherPattern : &other;
        }
        if (otherType)
            add(index, "type-differs-elsewhere", Likelihood::Likely,
                fmt::format("{} here, {} in {}", kindOf(field), kindOf(*otherType), otherType->table));
        if (otherPattern)
            add(index, "pattern-differs-elsewhere", Likelihood::Possible,
                fmt::format("{} here, {} in {}", quoted(pattern::shortPattern(field.pattern)),
                            quoted(pattern::shortPattern(otherPattern->pattern)), otherPattern->table));
    }

    void add(std::size_t index, std::string_view code, Likelihood likelihood, std::string detail) {
        m_found.push_back({index, {code, likelihood, 0, 0, std::move(detail), {}}});
    }

    std::span<const FieldSummary> m_fields;
    std::vector<FoundIn> m_found;
};

std::string_view wordOf(char typeCode) {
    return typeWord(std::string_view(&typeCode, 1));
}

} // namespace

std::vector<FoundIn> findDifferences(std::span<const FieldSummary> fields) {
    return Differences(fields).find();
}

std::vector<Finding> findChanges(const FieldSummary& field, const EarlierField& before, std::int64_t now) {
    std::vector<Finding> found;
    if (field.shown.rows < kLeastRows || before.rows < kLeastRows || before.typeCode == 0 || field.typeCode == 0)
        return found;
    const bool wasReal = before.typeCode == 'R' && before.decimals.value_or(0) > 0;
    const bool isInteger = field.typeCode == 'I' || (field.typeCode == 'R' && field.decimals.value_or(1) == 0);
    // Integers among which a first real occurs were reals by chance.
    const bool bothNumbers =
        isNumericType(std::string_view(&before.typeCode, 1)) && isNumericType(std::string_view(&field.typeCode, 1));
    if (wasReal && isInteger && field.shown.rows >= kLeastForShares)
        found.push_back(
            {"decimals-lost",
             Likelihood::Likely,
             0,
             0,
             fmt::format("{} before", *before.decimals == 1 ? "1 decimal place"
                                                            : fmt::format("{} decimal places", *before.decimals)),
             {}});
    else if (field.typeCode != before.typeCode && !bothNumbers)
        found.push_back({"type-changed",
                         Likelihood::Likely,
                         0,
                         0,
                         fmt::format("{} before, {} now", wordOf(before.typeCode), wordOf(field.typeCode)),
                         {}});
    // The runs must be far enough apart to expect something new.
    constexpr std::int64_t kLeastApart = 7 * kTicksPerDay;
    constexpr std::int64_t kLate = 30 * kTicksPerDay; ///< a date that was recent when the run before was made
    if (field.lastDate && field.lastDate == before.lastDate && now - before.moment >= kLeastApart &&
        before.moment - *before.lastDate <= kLate && *before.lastDate <= before.moment)
        found.push_back({"no-recent-dates",
                         Likelihood::Likely,
                         0,
                         0,
                         fmt::format("the last one is {} as in the run {} days before", formatDate(*field.lastDate),
                                     (now - before.moment) / kTicksPerDay),
                         {}});
    return found;
}

std::string usualPattern(const ValueDetectors& values) {
    constexpr double kNearlyAll = 0.95;
    for (const auto& pattern : values.patterns())
        if (pattern.hits.values >= kLeastRows &&
            static_cast<double>(pattern.hits.rows) >= kNearlyAll * static_cast<double>(values.shown().rows))
            return pattern.pattern;
    return {};
}

} // namespace tavix::findings
