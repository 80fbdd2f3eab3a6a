#pragma once

#include "base/Result.h"

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>

namespace tavix::job {

/// A place in a text file, both from 1.
struct FilePosition {
    int line = 1;
    int column = 1;

    // NOLINTNEXTLINE(modernize-use-nullptr): a misreading of clang-tidy 14.
    auto operator<=>(const FilePosition&) const = default;
};

/// What is wrong with a document, and where.
struct DocumentProblem {
    FilePosition position;
    std::string text;
};

/// A YAML document as plain values, with the place of each.
struct YamlDocument { // NOLINT(bugprone-exception-escape): the JSON value moves without throwing
    nlohmann::json value;
    /// By JSON pointer: of an element of a list where it begins, of an entry of a map where its key does.
    std::unordered_map<std::string, FilePosition> entryPositions;
    std::unordered_map<std::string, FilePosition> valuePositions; ///< where the value itself begins
};

/// The pointer of an entry of the map or list at `parent`.
[[nodiscard]] std::string pointerTo(const std::string& parent, std::string_view key);

/// "FILE:LINE:COLUMN: " of the value at `pointer`, with which messages about it begin.
[[nodiscard]] std::string placeText(const YamlDocument& document, const std::string& file, const std::string& pointer);

/// Reads one YAML document. Words become null, booleans and numbers as YAML 1.2 has it, anything in quotes stays
/// text. Refused: text that is not UTF-8, a zero byte, a quote that is never closed, a key that stands twice, keys that
/// are no words, nesting beyond 32 levels, and more than 200,000 values, which only aliases of aliases reach in a file
/// of reasonable size.
[[nodiscard]] std::variant<YamlDocument, DocumentProblem> parseYaml(const std::string& text);

} // namespace tavix::job
