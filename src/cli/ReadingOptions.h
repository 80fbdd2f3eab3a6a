#pragma once

#include "job/JobDescription.h"

#include <cstdint>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace tavix::cli {

/// The options of "profile" and "inspect" for reading text files.
class ReadingOptions {
  public:
    void declare(CLI::App& command);
    /// Which rows are profiled.
    void declareSample(CLI::App& command);
    /// Whether the user gave one of them.
    [[nodiscard]] bool isAnyGiven() const;
    /// A table with these options, without a name and a file. Throws CommandError.
    [[nodiscard]] job::TableDescription reading() const;

  private:
    [[nodiscard]] source::Sample sample() const;

    std::string m_delimiter;
    std::string m_header;
    bool m_noHeader = false;
    std::string m_encoding;
    std::string m_quote;
    std::optional<std::int64_t> m_first;
    std::optional<std::int64_t> m_every;
    std::optional<double> m_percent;
    std::optional<std::uint64_t> m_seed;
};

/// The character that the argument of --delimiter means: the character itself, or comma, semicolon, tab, pipe or "\t"
/// as a word. Nothing for a character that cannot separate cells.
[[nodiscard]] std::optional<char> parseDelimiter(const std::string& text);

/// The absolute paths of the files that names and patterns match. Throws CommandError for a missing file or a folder.
[[nodiscard]] std::vector<std::string> existingFiles(const std::vector<std::string>& names);

} // namespace tavix::cli
