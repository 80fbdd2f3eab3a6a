#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// Files ".flt": an unsigned 16-bit little-endian length L, then L bytes of filter text in UTF-8.
namespace tavix {

inline constexpr std::string_view kFilterFilePatterns = "Filter Files (*.flt)|*.flt|All Files (*.*)|*.*||";
inline constexpr std::string_view kFilterFileExtension = "flt";
/// The entries of kFilterFilePatterns as file dialogs take them: "Filter Files (*.flt)", "All Files (*)".
[[nodiscard]] std::vector<std::string> filterFileKinds();

/// Why a filter file could not be read or written, as the user is told.
struct FilterFileProblem {
    std::string text;
    std::string_view caption;

    bool operator==(const FilterFileProblem&) const = default;
};
using LoadedFilter = std::variant<std::string, FilterFileProblem>;

[[nodiscard]] LoadedFilter loadFilter(const std::string& path);
/// Leaves an existing file unchanged on failure.
[[nodiscard]] std::optional<FilterFileProblem> saveFilter(const std::string& path, std::string_view text);

/// Reads as many bytes as the length says and ignores the rest. Bytes that are not UTF-8 become U+FFFD.
[[nodiscard]] LoadedFilter readFilter(std::istream& file);
/// The content of a filter file. The length is taken modulo 65,536 and the text is cut to it, since readers of the
/// format rely on both agreeing.
[[nodiscard]] std::string filterFileBytes(std::string_view text);

} // namespace tavix
