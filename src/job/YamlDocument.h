#pragma once

#include "base/Result.h"

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>

namespace tavix::job {

/// A position in a text file; both numbers count from 1.
struct FilePosition {
    int line = 1;
    int column = 1;

    // NOLINTNEXTLINE(modernize-use-nullptr): a misreading of clang-tidy 14.
    auto operator<=>(const FilePosition&) const = default;
};

/// An error in a document and its position.
struct DocumentProblem {
    FilePosition position;
    std::string text;
};

/// A YAML document as plain values with their positions.
struct YamlDocument { // NOLINT(bugprone-exception-escape): the JSON value moves without throwing
    nlohmann::json value;
    /// By JSON pointer: where an element of a list begins, or the key of an entry of a map.
    std::unordered_map<std::string, FilePosition> entryPositions;
    std::unordered_map<std::string, FilePosition> valuePositions; ///< where the value itself begins
};

/// The pointer to an entry of the map or list at `parent`.
[[nodiscard]] std::string pointerTo(const std::string& parent, std::string_view key);

/// "FILE:LINE:COLUMN: " of the value at `pointer`, the beginning of messages about it.
[[nodiscard]] std::string placeText(const YamlDocument& document, const std::string& file, const std::string& pointer);

/// Parses one YAML document. Plain words become null, booleans and numbers as in YAML 1.2; quoted texts stay texts.
/// Rejects text that is not UTF-8, a zero byte, a quote that is never closed, a repeated key, keys that are not
/// scalars, nesting beyond 32 levels, and more than 200,000 values, which a file of reasonable size reaches only by
/// aliases of aliases.
[[nodiscard]] std::variant<YamlDocument, DocumentProblem> parseYaml(const std::string& text);

} // namespace tavix::job
