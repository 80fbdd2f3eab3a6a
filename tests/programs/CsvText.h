#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::testing {

using CsvRow = std::vector<std::optional<std::string>>;

/// Parses CSV, independently of the product: an unquoted empty cell is null, a quoted one an empty text.
[[nodiscard]] inline std::vector<CsvRow> readCsv(std::string_view text) {
    std::vector<CsvRow> rows;
    std::size_t i = 0;
    while (i < text.size()) {
        CsvRow row;
        for (bool more = true; more;) {
            std::optional<std::string> cell;
            if (i < text.size() && text[i] == '"') {
                cell.emplace();
                for (++i; i < text.size(); ++i) {
                    if (text[i] == '"' && (i + 1 >= text.size() || text[i + 1] != '"'))
                        break;
                    if (text[i] == '"')
                        ++i;
                    *cell += text[i];
                }
                ++i;
            } else {
                const std::size_t end = std::min(text.find_first_of(",\n", i), text.size());
                if (end > i)
                    cell = std::string(text.substr(i, end - i));
                i = end;
            }
            row.push_back(std::move(cell));
            more = i < text.size() && text[i] == ',';
            ++i;
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

} // namespace tavix::testing
