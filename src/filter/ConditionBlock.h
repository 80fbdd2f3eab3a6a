#pragma once

#include "filter/FilterText.h"

#include <string>
#include <string_view>

/// A filter text is a condition block followed by code of the expression language. The block is a comment of that
/// language that records the condition list: ten lines KEY=value for each condition, ended by CR LF.
namespace tavix {

/// The block of a list; "" for an empty one. Values are not escaped: one with double quotes and commas, a line break,
/// or the end of a comment may read back differently.
[[nodiscard]] std::string WriteConditionBlock(const ConditionList& conditions);

struct ParsedFilter {
    /// Whether the text is a filter of conditions: it is empty or has a block. A block that is cut off or malformed
    /// counts, with the conditions before the fault.
    bool understood = false;
    ConditionList conditions;
    FilterAction action = FilterAction::RemoveFailing;
    /// The rest of the filter text: all of it when it was not understood, in lower case when its block was read, empty
    /// when its block has no end.
    std::string text;
};

/// Takes linear time for any text. `action` is kept when the code does not state one.
[[nodiscard]] ParsedFilter ParseConditionBlock(std::string_view filterText, FilterAction action);

/// The filter text of a list: its block and its code, or the code alone when the block would read back differently or
/// would end its comment too early.
[[nodiscard]] std::string ComposeFilterText(const ConditionList& conditions, FilterAction action);

} // namespace tavix
