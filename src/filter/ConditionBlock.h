#pragma once

#include "filter/FilterText.h"

#include <string>
#include <string_view>

/// A filter text is a condition block followed by code of the expression language. The block is a comment of that
/// language which records the condition list: for each condition ten lines KEY=value, ended by CR LF.
namespace tavix {

/// The block of a list; "" for an empty one. Values are not escaped: one that holds double quotes together with
/// commas, a line break, or the end of a comment may read back differently.
[[nodiscard]] std::string WriteConditionBlock(const ConditionList& conditions);

struct ParsedFilter {
    /// Whether the text is a filter of conditions: it is empty or has a block. A block that is cut or malformed counts,
    /// with the conditions before the fault.
    bool understood = false;
    ConditionList conditions;
    FilterAction action = FilterAction::RemoveFailing;
    /// What is left of the filter text: all of it when it was not understood; in lower case when its block was read;
    /// nothing when its block has no end.
    std::string text;
};

/// Takes linear time, whatever the text. `action` stays where the code does not tell another.
[[nodiscard]] ParsedFilter ParseConditionBlock(std::string_view filterText, FilterAction action);

} // namespace tavix
