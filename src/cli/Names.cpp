#include "cli/Names.h"

#include "cli/CommandError.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

namespace tavix::cli {

namespace {

constexpr std::size_t kListedNames = 10;

/// Removes a quoted name from the front of `text`; nothing when the quote is not closed.
std::optional<std::string> takeQuoted(std::string_view& text) {
    std::string name;
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] != '"') {
            name += text[i];
        } else if (i + 1 < text.size() && text[i + 1] == '"') {
            name += '"';
            ++i;
        } else {
            text.remove_prefix(i + 1);
            return name;
        }
    }
    return std::nullopt;
}

/// The name within quotes; a text without quotes is returned unchanged.
std::string unquoted(std::string_view text) {
    if (text.starts_with('"')) {
        std::string_view rest = text;
        if (std::optional<std::string> name = takeQuoted(rest); name && rest.empty())
            return *name;
    }
    return std::string(text);
}

} // namespace

std::string listNames(std::span<const std::string> names) {
    std::string list;
    for (std::size_t i = 0; i < std::min(names.size(), kListedNames); ++i)
        list += fmt::format("{}\"{}\"", i == 0 ? "" : ", ", names[i]);
    if (names.size() > kListedNames)
        list += fmt::format(" and {} more", names.size() - kListedNames);
    return list;
}

std::size_t pickByName(std::string_view what, std::string_view wanted, std::span<const std::string> names) {
    const auto found = std::find(names.begin(), names.end(), wanted);
    if (found == names.end())
        throw CommandError(ExitCode::Usage,
                           names.empty()
                               ? fmt::format("there is no {0} \"{1}\", nor any other {0}", what, wanted)
                               : fmt::format("there is no {0} \"{1}\"; known: {2}", what, wanted, listNames(names)));
    if (const auto count = std::count(found, names.end(), wanted); count > 1)
        throw CommandError(ExitCode::Usage, fmt::format("\"{}\" is the name of {} {}s", wanted, count, what));
    return static_cast<std::size_t>(found - names.begin());
}

std::vector<FieldAddress> readFieldAddress(std::string_view text, std::span<const std::string> tables) {
    std::vector<FieldAddress> ways;
    std::string_view rest = text;
    const std::optional<std::string> quotedTable = text.starts_with('"') ? takeQuoted(rest) : std::nullopt;
    for (const std::string& table : tables) {
        if (quotedTable && *quotedTable == table && rest.size() > 1 && rest.front() == '.')
            ways.push_back({table, unquoted(rest.substr(1))});
        else if (text.starts_with(table) && text.size() > table.size() + 1 && text[table.size()] == '.')
            ways.push_back({table, unquoted(text.substr(table.size() + 1))});
    }
    std::stable_sort(ways.begin(), ways.end(),
                     [](const FieldAddress& a, const FieldAddress& b) { return a.table.size() > b.table.size(); });
    return ways;
}

} // namespace tavix::cli
