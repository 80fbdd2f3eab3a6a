#include "cli/DamageReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

namespace tavix::cli {

namespace {

constexpr std::size_t kShownRows = 5;

std::string rowText(const source::DamagedRow& row, const profiling::TableOutcome& outcome) {
    const std::size_t fields = outcome.fields;
    const char* const word = outcome.place == "Row" ? "row" : "line";
    std::string place =
        outcome.files.empty()
            ? fmt::format("{} {}", word, row.line)
            : fmt::format("{} {} {}", std::filesystem::path(outcome.files[row.file]).filename().string(), word,
                          row.line);
    switch (row.damage) {
    case source::Damage::TooFewCells:
        return fmt::format("{}: too few cells ({} of {})", place, row.cells, fields);
    case source::Damage::TooManyCells:
        return fmt::format("{}: too many cells ({} for {})", place, row.cells, fields);
    case source::Damage::BadBytes:
        return fmt::format("{}: bytes that are no {}", place, outcome.encoding);
    case source::Damage::OpenQuote:
        return place + ": a quote that is never closed";
    }
    return place;
}

} // namespace

std::string damageText(const std::string& file, const profiling::TableOutcome& outcome) {
    if (outcome.damagedRows == 0)
        return {};
    std::string text =
        fmt::format("{}: {} damaged {}", file, outcome.damagedRows, outcome.damagedRows == 1 ? "row" : "rows");
    const std::size_t shown = std::min(outcome.damage.size(), kShownRows);
    for (std::size_t i = 0; i < shown; ++i)
        text += (i == 0 ? "; " : ", ") + rowText(outcome.damage[i], outcome);
    if (const std::int64_t more = outcome.damagedRows - static_cast<std::int64_t>(shown); more > 0 && shown > 0)
        text += fmt::format(" and {} more", more);
    return text;
}

} // namespace tavix::cli
