#include "report/RunList.h"

#include "base/NumberText.h"
#include "report/CountText.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavix {

namespace {

std::string inOneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < 0x20 || c == 0x7f; }, ' ');
    return text;
}

std::string changeText(std::int64_t before, std::int64_t after) {
    if (before == after)
        return "no change";
    const std::string sign = after > before ? "+" : "";
    std::string text = sign + groupedCount(after - before);
    if (before > 0)
        text += fmt::format(" ({}{} %)", sign,
                            formatFixed(100.0 * static_cast<double>(after - before) / static_cast<double>(before), 2));
    return text;
}

} // namespace

std::string RunRow::Label() const {
    std::string label = run + "  \u00b7  " + date;
    if (!description.empty())
        label += "  \u00b7  " + description;
    return label;
}

std::vector<RunRow> listRuns(std::vector<RunInfo> runs, const std::locale& locale) {
    std::sort(runs.begin(), runs.end(), [](const RunInfo& a, const RunInfo& b) { return a.id > b.id; });
    std::vector<RunRow> rows;
    rows.reserve(runs.size());
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const RunInfo& run = runs[i];
        const int number = static_cast<int>(runs.size() - i);
        rows.push_back(
            {run.id, number, number == run.id ? formatInteger(number) : fmt::format("{} (id {})", number, run.id),
             run.DateText(locale), inOneLine(run.description), groupedCount(run.tables), groupedCount(run.records),
             i + 1 < runs.size() ? changeText(runs[i + 1].records, run.records) : std::string()});
    }
    return rows;
}

} // namespace tavix
