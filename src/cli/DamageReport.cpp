#include "cli/DamageReport.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavix::cli {

namespace {

constexpr std::size_t kShownRows = 5;

std::string rowText(const source::DamagedRow& row, std::size_t fields, std::string_view place) {
    switch (row.damage) {
    case source::Damage::TooFewCells:
        return fmt::format("line {}: too few cells ({} of {})", row.line, row.cells, fields);
    case source::Damage::TooManyCells:
        return fmt::format("line {}: too many cells ({} for {})", row.line, row.cells, fields);
    case source::Damage::BadBytes:
        return fmt::format("{} {}: bytes that are no UTF-8", place, row.line);
    case source::Damage::OpenQuote:
        return fmt::format("line {}: a quote that is never closed", row.line);
    }
    return fmt::format("line {}", row.line);
}

} // namespace

std::string damageText(const std::string& file, const profiling::TableOutcome& outcome) {
    if (outcome.damagedRows == 0)
        return {};
    std::string text =
        fmt::format("{}: {} damaged {}", file, outcome.damagedRows, outcome.damagedRows == 1 ? "row" : "rows");
    const std::size_t shown = std::min(outcome.damage.size(), kShownRows);
    for (std::size_t i = 0; i < shown; ++i)
        text += (i == 0 ? "; " : ", ") +
                rowText(outcome.damage[i], outcome.fields, outcome.place == "Row" ? "row" : "line");
    if (const std::int64_t more = outcome.damagedRows - static_cast<std::int64_t>(shown); more > 0 && shown > 0)
        text += fmt::format(" and {} more", more);
    return text;
}

} // namespace tavix::cli
