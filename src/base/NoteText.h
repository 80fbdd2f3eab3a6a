#pragma once

#include "base/Result.h"

#include <cstddef>
#include <string>
#include <string_view>

/// What a note and the name of a note category may be: one rule for the viewer, the tool and the repository.
namespace tavix {

/// In characters. A note fits into a cell of a worksheet, which holds 32,767 of them.
inline constexpr std::size_t kLongestNote = 20'000;
inline constexpr std::size_t kLongestNoteCategory = 60;

/// As it is stored: every kind of line end as "\n", no other control characters than tabs, no white space at the end
/// and no blank lines at the beginning. Blank text becomes empty.
[[nodiscard]] std::string tidyNote(std::string_view text);
/// As it is stored: one line, each run of white space a single space, none at the ends.
[[nodiscard]] std::string tidyNoteCategory(std::string_view name);

// Of tidied texts. The errors are sentences for the user.
[[nodiscard]] Status checkNote(std::string_view text);
[[nodiscard]] Status checkNoteCategory(std::string_view name);

/// Names of categories are told apart without regard to upper and lower case.
[[nodiscard]] bool isSameNoteCategory(std::string_view a, std::string_view b);

} // namespace tavix
