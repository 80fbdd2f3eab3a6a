#include "cli/ReadingOptions.h"

#include "base/HeldRepositories.h"
#include "cli/ArgumentChecks.h"
#include "cli/CommandError.h"
#include "job/FilePatterns.h"
#include "job/JobChecks.h"

#include <CLI/App.hpp>
#include <fmt/format.h>

#include <array>
#include <filesystem>
#include <system_error>

namespace tavix::cli {

namespace {

[[noreturn]] void failUsage(const std::string& text) {
    throw CommandError(ExitCode::Usage, text);
}

char parseQuote(const std::string& text) {
    if (text == "none")
        return '\0';
    if (text.size() != 1 || text == "\n" || text == "\r" || text.front() <= 0)
        failUsage(fmt::format("\"{}\" cannot enclose cells: give one ASCII character, or none", text));
    return text.front();
}

} // namespace

std::optional<char> parseDelimiter(const std::string& text) {
    struct Name {
        std::string_view text;
        char delimiter;
    };
    constexpr std::array<Name, 5> kNames{
        {{"comma", ','}, {"semicolon", ';'}, {"tab", '\t'}, {"\\t", '\t'}, {"pipe", '|'}}};
    for (const Name& name : kNames)
        if (text == name.text)
            return name.delimiter;
    if (text.size() != 1 || text == "\"" || text == "\n" || text == "\r" || text.front() <= 0)
        return std::nullopt;
    return text.front();
}

std::vector<std::string> existingFiles(const std::vector<std::string>& names) {
    std::vector<std::string> files;
    for (const std::string& name : names) {
        const auto matching = job::matchingFiles(std::filesystem::absolute(name).lexically_normal().string());
        if (!matching)
            throw CommandError(ExitCode::Source, matching.error().text);
        for (const std::string& file : *matching) {
            // A missing file is a failure of the source, not a usage error.
            const std::string& shown = matching->size() == 1 ? name : file;
            std::error_code error;
            const std::filesystem::file_status status = std::filesystem::status(file, error);
            if (!std::filesystem::exists(status))
                throw CommandError(ExitCode::Source,
                                   fmt::format("cannot read \"{}\": {}", shown,
                                               error ? error.message() : std::string("no such file")));
            if (std::filesystem::is_directory(status))
                throw CommandError(ExitCode::Source,
                                   fmt::format("cannot read \"{0}\": it is a folder; name its files, as '{0}{1}*'",
                                               shown, shown.ends_with('/') ? "" : "/"));
            if (const Status free = requireNotHeld(file); !free)
                failUsage(free.error().text);
            files.push_back(file);
        }
    }
    return files;
}

void ReadingOptions::declare(CLI::App& command) {
    command
        .add_option("--delimiter", m_delimiter,
                    "The separator of cells: a character, or comma, semicolon, tab, pipe. Default: detected")
        ->type_name("C");
    command
        .add_option("--header", m_header,
                    "Whether the first row has the names of the fields: yes (default), no, or auto, which takes a cell "
                    "with digits and no letters for data")
        ->type_name("WHEN");
    command.add_flag("--no-header", m_noHeader, "The same as --header no");
    command
        .add_option("--encoding", m_encoding,
                    "The encoding, by name or code page: UTF-8, windows-1252, 850. Default: detected")
        ->type_name("NAME");
    command.add_option("--quote", m_quote, "The quote around cells: a character, or none. Default: the double quote")
        ->type_name("C");
}

void ReadingOptions::declareSample(CLI::App& command) {
    command.add_option("--first", m_first, "Profile only the first N rows of each table")
        ->type_name("N")
        ->transform(wholeNumber(1));
    command.add_option("--every", m_every, "Profile only every Kth row, beginning with the first")
        ->type_name("K")
        ->transform(wholeNumber(1));
    command.add_option("--percent", m_percent, "Profile only a random share of the rows")->type_name("P");
    command.add_option("--seed", m_seed, "With --percent: the same seed selects the same rows. Default: 1")
        ->type_name("N")
        ->transform(wholeNumber());
}

bool ReadingOptions::isAnyGiven() const {
    return !m_delimiter.empty() || !m_header.empty() || m_noHeader || !m_encoding.empty() || !m_quote.empty() ||
           m_first || m_every || m_percent || m_seed;
}

source::Sample ReadingOptions::sample() const {
    using Kind = source::Sample::Kind;
    if (int{m_first.has_value()} + int{m_every.has_value()} + int{m_percent.has_value()} > 1)
        failUsage("a sample is one of --first, --every and --percent");
    if (m_seed && !m_percent)
        failUsage("--seed goes with --percent");
    if (m_percent && !(*m_percent > 0 && *m_percent <= 100))
        failUsage("--percent takes a number above 0 and up to 100");
    if (m_first)
        return {Kind::First, *m_first, 0, 0};
    if (m_every)
        return {Kind::Every, *m_every, 0, 0};
    if (m_percent)
        return {Kind::Random, 0, *m_percent, m_seed.value_or(1)};
    return {};
}

job::TableDescription ReadingOptions::reading() const {
    job::TableDescription table;
    if (!m_delimiter.empty()) {
        table.delimiter = parseDelimiter(m_delimiter);
        if (!table.delimiter)
            failUsage(fmt::format("\"{}\" cannot separate cells: give one ASCII character, or comma, semicolon, tab or "
                                  "pipe",
                                  m_delimiter));
    }
    if (!m_header.empty() && m_header != "yes" && m_header != "no" && m_header != "auto")
        failUsage("--header takes yes, no or auto");
    if (m_noHeader && !m_header.empty() && m_header != "no")
        failUsage("--no-header and --header say two things");
    table.findHeader = m_header == "auto";
    table.hasHeader = !m_noHeader && m_header != "no";
    if (!m_encoding.empty()) {
        table.encoding = findEncoding(m_encoding);
        if (!table.encoding)
            failUsage(job::unknownEncoding(m_encoding));
    }
    if (!m_quote.empty())
        table.quote = parseQuote(m_quote);
    if (table.delimiter && *table.delimiter == table.quote)
        failUsage("the delimiter and the quote are two characters");
    table.sample = sample();
    return table;
}

} // namespace tavix::cli
