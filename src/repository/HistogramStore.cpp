#include "repository/HistogramStore.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

#include <limits>
#include <string_view>

namespace tavix::repository {

namespace {

/// The repository version that added histograms.
constexpr std::int64_t kFirstVersion = 8;

/// The letter of a code, which must outlive the result.
template <typename Code>
std::string_view letter(const Code& code) {
    static_assert(sizeof(Code) == 1);
    return {reinterpret_cast<const char*>(&code), 1};
}

/// False unless the text is a list of counts.
bool readCounts(std::string_view text, std::vector<std::uint64_t>& counts) {
    const auto list = nlohmann::json::parse(text, nullptr, false);
    if (!list.is_array() || list.size() > Histogram::kMostBins)
        return false;
    for (const auto& count : list) {
        if (!count.is_number_unsigned())
            return false;
        counts.push_back(count.get<std::uint64_t>());
        if (counts.back() > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
            return false;
    }
    return true;
}

} // namespace

Status storeHistogram(sql::Connection& connection, int run, int field, const Histogram& histogram) {
    auto insert = connection.prepare("INSERT INTO histogram(run, field, kind, unit, first_bin, step, exponent, counts) "
                                     "VALUES(?1,?2,?3,?4,?5,?6,?7,?8)");
    if (!insert)
        return insert.error();
    insert->bind(1, run).bind(2, field).bind(3, letter(histogram.kind)).bind(4, letter(histogram.unit));
    insert->bind(5, histogram.first).bind(6, histogram.step).bind(7, histogram.exponent);
    insert->bind(8, fmt::format("[{}]", fmt::join(histogram.counts, ",")));
    return insert->run();
}

Result<std::optional<Histogram>> readHistogram(sql::Connection& connection, int run, int field) {
    const auto version = connection.schemaVersion();
    if (!version)
        return version.error();
    if (*version < kFirstVersion)
        return std::optional<Histogram>();
    auto select = connection.prepare("SELECT kind, unit, first_bin, step, exponent, counts FROM histogram "
                                     "WHERE run = ?1 AND field = ?2 ORDER BY kind LIMIT 1");
    if (!select)
        return select.error();
    const sql::Step step = select->bind(1, run).bind(2, field).step();
    if (step == sql::Step::Failed)
        return Error{connection.errorText()};
    if (step == sql::Step::Done)
        return std::optional<Histogram>();
    const std::string_view kind = select->text(0);
    const std::string_view unit = select->text(1);
    const std::int64_t exponent = select->integer(4);
    Histogram histogram;
    histogram.first = select->integer(2);
    histogram.step = select->integer(3);
    const bool isRead = kind.size() == 1 && unit.size() == 1 && exponent > -1000 && exponent < 1000 &&
                        readCounts(select->text(5), histogram.counts);
    if (isRead) {
        histogram.kind = static_cast<HistogramKind>(kind.front());
        histogram.unit = static_cast<BinUnit>(unit.front());
        histogram.exponent = static_cast<int>(exponent);
    }
    if (!isRead || !histogram.isSound())
        return Error{"A stored histogram is damaged."};
    return std::optional(std::move(histogram));
}

} // namespace tavix::repository
