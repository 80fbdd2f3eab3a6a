#include "report/References.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/Ascii.h"
#include "base/NumberText.h"
#include "report/CheckedCursor.h"

#include <xxhash.h>

#include <algorithm>
#include <optional>
#include <unordered_set>

namespace tavix {

namespace {

constexpr std::int64_t kFewestValues = 5;     ///< of the referring field: fewer agree by chance
constexpr std::int64_t kFewestKeys = 10;      ///< of the field that is referred to
constexpr std::int64_t kMostKeys = 4'000'000; ///< held in memory, 16 bytes and a node each
constexpr double kFewWithout = 1;             ///< percent of the rows

struct Hash {
    std::uint64_t low = 0;
    std::uint64_t high = 0;

    bool operator==(const Hash&) const = default;
};
struct LowBits {
    std::size_t operator()(const Hash& hash) const { return hash.low; }
};
using Keys = std::unordered_set<Hash, LowBits>;

Hash hashOf(std::string_view text) {
    const XXH128_hash_t hash = XXH3_128bits(text.data(), text.size());
    return {hash.low64, hash.high64};
}

std::int64_t countAt(const FieldRecord& field, MetricId metric) {
    return parseInteger(field.metrics[index(metric)].view()).value_or(0);
}

bool isText(const FieldRecord& field) {
    return field.typeCode == "S";
}

/// Its values identify the rows of its table.
bool isKey(const ReferenceField& one) {
    const std::int64_t values = countAt(one.field, MetricId::UniqueCount);
    return !one.isFiltered && (isText(one.field) || one.field.typeCode == "I") && values >= kFewestKeys &&
           values <= kMostKeys && values == countAt(one.field, MetricId::Count);
}

/// Numbers agree by chance, so names must agree too: customer.id with orders.customer_id or orders.id_customer.
bool doNamesAgree(const ReferenceField& from, const ReferenceField& to) {
    const std::string own = asciiLower(from.field.name);
    const std::string other = asciiLower(to.field.name);
    std::string table = asciiLower(to.tableName);
    if (table.size() > 3 && table.ends_with('s'))
        table.pop_back();
    return own == other || (own.find(table) != std::string::npos && own.find(other) != std::string::npos);
}

bool mayRefer(const ReferenceField& from, const ReferenceField& to) {
    const std::int64_t values = countAt(from.field, MetricId::UniqueCount);
    const std::int64_t keys = countAt(to.field, MetricId::UniqueCount);
    if (from.base == to.base || from.field.typeCode != to.field.typeCode || values < kFewestValues ||
        values > keys + keys / 50)
        return false;
    // Of two keys with the same values, the later table refers to the earlier one.
    if (isKey(from) && values == keys && from.table < to.table)
        return false;
    return isText(from.field) || doNamesAgree(from, to);
}

class Search {
  public:
    Search(PrViewer& viewer, const std::function<void()>& pulse) : m_viewer(viewer), m_pulse(pulse) {}

    Keys keysOf(const ReferenceField& to) {
        Keys keys;
        keys.reserve(static_cast<std::size_t>(countAt(to.field, MetricId::UniqueCount)));
        walk(to, [&](std::string_view value, std::int64_t) {
            keys.insert(hashOf(value));
            return true;
        });
        return keys;
    }

    /// Nothing if too many rows have another value. The most frequent values come first, so that shows soon.
    std::optional<Reference> match(const ReferenceField& from, const Keys& keys) {
        const double most = kFewWithout / 100 * static_cast<double>(countAt(from.field, MetricId::NonNullCount));
        Reference found;
        bool isMatch = true;
        walk(from, [&](std::string_view value, std::int64_t rows) {
            ++found.values;
            if (keys.contains(hashOf(value)))
                return true;
            found.rowsWithout += rows;
            found.hasAllWithout = found.without.size() < Reference::kMostWithout;
            if (found.hasAllWithout)
                found.without.emplace_back(value);
            isMatch = static_cast<double>(found.rowsWithout) <= most;
            return isMatch;
        });
        return isMatch ? std::optional(std::move(found)) : std::nullopt;
    }

  private:
    /// Visits the values that are not null.
    template <typename Visit>
    void walk(const ReferenceField& one, const Visit& visit) {
        constexpr std::uint64_t kBetweenPulses = 65'536;
        const ProfileCursorHandle rows = checked(m_viewer, m_viewer.getFreqDist(one.field.id, ""));
        while (rows->next()) {
            if (m_pulse && ++m_steps % kBetweenPulses == 0)
                m_pulse();
            if (rows->isColumnNull(layout::FreqValue))
                continue;
            const KvbString value = rows->getColumnValue(layout::FreqValue);
            if (!visit(value.view(), rows->getColumnInt64(layout::FreqCount)))
                return;
        }
    }

    PrViewer& m_viewer;
    const std::function<void()>& m_pulse;
    std::uint64_t m_steps = 0;
};

} // namespace

std::vector<std::pair<std::size_t, Reference>> findReferences(PrViewer& viewer,
                                                              const std::vector<ReferenceField>& fields,
                                                              const std::vector<std::size_t>& wanted,
                                                              const std::function<void()>& pulse) {
    Search search(viewer, pulse);
    std::vector<std::optional<Reference>> best(fields.size());
    for (std::size_t to = 0; to < fields.size(); ++to) {
        if (!isKey(fields[to]))
            continue;
        std::optional<Keys> keys;
        for (const std::size_t from : wanted) {
            if (!mayRefer(fields[from], fields[to]))
                continue;
            if (pulse)
                pulse();
            if (!keys)
                keys = search.keysOf(fields[to]);
            std::optional<Reference> found = search.match(fields[from], *keys);
            // The smallest set of keys that has the values is the one that is meant.
            const auto size = [&](std::size_t field) { return countAt(fields[field].field, MetricId::UniqueCount); };
            if (found && (!best[from] || std::pair(found->rowsWithout, size(to)) <
                                             std::pair(best[from]->rowsWithout, size(best[from]->to)))) {
                found->to = to;
                best[from] = std::move(found);
            }
        }
    }
    std::vector<std::pair<std::size_t, Reference>> references;
    for (const std::size_t from : wanted)
        if (best[from])
            references.emplace_back(from, std::move(*best[from]));
    return references;
}

} // namespace tavix
