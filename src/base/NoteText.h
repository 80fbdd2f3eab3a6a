#pragma once

#include "base/Result.h"

#include <cstddef>
#include <string>
#include <string_view>

/// The rules for notes, names of note categories and descriptions of alerts, for the viewer, the tool and the
/// repository.
namespace tavix {

/// In characters. A note fits into a worksheet cell, which holds 32,767 of them.
inline constexpr std::size_t kLongestNote = 20'000;
inline constexpr std::size_t kLongestNoteCategory = 60;
/// As in job files.
inline constexpr std::size_t kLongestAlertDescription = 10'000;

/// The stored form: line ends as "\n", tabs as the only control characters, no white space at the end and no blank
/// lines at the beginning. Blank text becomes empty.
[[nodiscard]] std::string tidyNote(std::string_view text);
/// The stored form: one line, each run of white space a single space, none at the ends.
[[nodiscard]] std::string tidyNoteCategory(std::string_view name);

// For tidied texts. The errors are sentences for the user.
[[nodiscard]] Status checkNote(std::string_view text);
[[nodiscard]] Status checkNoteCategory(std::string_view name);
/// Tidied like a note; may be empty.
[[nodiscard]] Status checkAlertDescription(std::string_view text);

/// Names of categories are compared ignoring case.
[[nodiscard]] bool isSameNoteCategory(std::string_view a, std::string_view b);

} // namespace tavix
