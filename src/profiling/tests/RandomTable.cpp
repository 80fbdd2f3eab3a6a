#include "profiling/tests/RandomTable.h"

#include <algorithm>
#include <functional>
#include <memory>

namespace tavix::profiling::testing {

namespace {

using Draw = std::function<std::optional<std::string>(std::mt19937&)>;

Draw from(std::vector<std::string> pool) {
    return [pool = std::move(pool)](std::mt19937& random) { return std::optional(pool[random() % pool.size()]); };
}

std::string padded(unsigned long number, std::size_t width) {
    const std::string text = std::to_string(number);
    return std::string(width - std::min(width, text.size()), '0') + text;
}

std::vector<Draw> columns() {
    using namespace std::string_literals;
    return {
        [](auto&) { return std::optional<std::string>(); },
        [](auto& random) { return std::to_string(static_cast<int>(random() % 4001) - 2000); },
        [](auto& random) { return std::to_string(random()); },
        [](auto& random) { return std::to_string(random()) + std::string(random() % 25, '7'); }, // beyond 64 bits
        from({"9223372036854775807", "-9223372036854775808", "+7", "7", "0", "-0", "9223372036854775806", "12"}),
        from({"100000000000000000001", "100000000000000000002", "-100000000000000000001", "+5", "5"}),
        [](auto& random) { return std::to_string(random() % 1000) + "." + std::to_string(random() % 100); },
        from({"1.0", "1.00", "1e0", "1", ".5", "5.", "-2e3", "1E-2", "2.5e-3", "-0.0", "0"}),
        [](auto& random) {
            return "20" + padded(random() % 30, 2) + "-0" + std::to_string(random() % 9 + 1) + "-" +
                   padded(random() % 28 + 1, 2);
        },
        from({"2024-02-29", "2023-12-31T23:59:59.5Z", "2024-01-01 00:00", "2024-01-01T01:00:00+02:00",
              "2023-12-31T22:00:00-01", "0001-01-01", "9999-12-31", "2024-01-01T00:00"}),
        from({"true", "FALSE", "False", "TRUE", "", " "}),
        from({"", "  ", "\t", "\xC2\xA0", "\xE2\x80\x83"}),
        from({"a", "a\0"s, "a\0\0"s, "a\0b"s, "a\0\0\0\0\0\0\0\0"s, "a\0\0\0\0\0\0\0\0c"s, "", "\0"s, "\0\0"s}),
        [](auto& random) { return "a common beginning " + std::to_string(random() % 500) + " and an end"; },
        [](auto& random) { return std::string(random() % 40, 'x') + std::string(random() % 3, 'y'); },
        from({"\xC3\x84rger", "\xC3\xA4rger", "\xF0\x9F\x98\x80", "\xD9\xA4\xD9\xA2", "\xC7\x85", "Z\xCC\x88", "z{4}",
              "9,5"}),
        [](auto& random) { return random() % 10 == 0 ? std::nullopt : std::optional(padded(random() % 300, 3)); },
        [](auto& random) { return random() % 300 == 0 ? "many" : std::to_string(random() % 30); },
        [](auto& random) { return std::string(random() % 2000, static_cast<char>('a' + random() % 26)); },
        // Numbers, dates and booleans as people write them, most with a few values that do not fit.
        [](auto& random) {
            return random() % 60 == 0 ? "n/a"
                                      : "$" + std::to_string(random() % 9 + 1) + "," + padded(random() % 1000, 3) +
                                            (random() % 2 == 0 ? ".50" : "");
        },
        [](auto& random) {
            return random() % 60 == 0 ? "tbd"
                                      : padded(random() % 12 + 1, 2) + "/" + padded(random() % 28 + 1, 2) + "/20" +
                                            padded(random() % 30, 2) + (random() % 3 == 0 ? " 9:55 PM" : "");
        },
        from({"01/02/2003", "03.04.2005", "05-06-2007 21:55"}),
        [](auto& random) { return (random() % 4 == 0 ? " " : "") + std::to_string(random() % 200) + ",5"; },
        [](auto& random) {
            return random() % 50 == 0 ? "-" : std::to_string(random()) + std::string(random() % 25, '3');
        },
        [](auto& random) { return random() % 50 == 0  ? "maybe"
                                  : random() % 2 == 0 ? "true"
                                                      : " False"; },
        [](auto& random) {
            return random() % 50 == 0
                       ? "2024-02-30"
                       : "20" + padded(random() % 30, 2) + "-0" + std::to_string(random() % 9 + 1) + "-11";
        },
    };
}

} // namespace

TableRows randomTable(std::mt19937& random, std::size_t rows) {
    TableRows table;
    for (const Draw& draw : columns()) {
        auto& column = table.emplace_back();
        for (std::size_t i = 0; i < rows; ++i)
            column.push_back(draw(random));
    }
    return table;
}

Result<bool> TableReader::read(source::RowBlock& block) {
    const std::size_t rows = std::min(m_rowsPerBlock, m_table.front().size() - m_next);
    block.columns.resize(m_table.size());
    auto texts = std::make_shared<std::vector<std::string>>();
    texts->reserve(rows * m_table.size());
    for (std::size_t c = 0; c < m_table.size(); ++c) {
        block.columns[c].assign(rows, {});
        for (std::size_t i = 0; i < rows; ++i)
            if (const auto& cell = m_table[c][m_next + i]) {
                const std::string& text = texts->emplace_back(*cell);
                block.columns[c][i] = {text.data(), static_cast<std::uint32_t>(text.size()), false};
            }
    }
    m_next += rows;
    block.rows = rows;
    block.text = texts;
    return rows > 0;
}

} // namespace tavix::profiling::testing
