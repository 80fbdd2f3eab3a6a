#include "filter/ConditionBlock.h"
#include "filter/FilterModel.h"
#include "filter/FilterSummary.h"
#include "filter/ValueFilter.h"
#include "filter/tests/FuzzSupport.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

// Any text as a filter text: it is read in bounds, everything that is made of it holds together, and what is written
// again reads back the same.

namespace tavix {
namespace {

using testing::holdsOrAborts;
using testing::SilentMessages;

bool hasQuotes(const ConditionList& conditions) {
    return std::any_of(conditions.begin(), conditions.end(), [](const CCondition& condition) {
        return std::any_of(condition.values.begin(), condition.values.end(),
                           [](const std::string& value) { return value.find('"') != std::string::npos; });
    });
}

void readFilterText(std::string_view text) {
    const ParsedFilter parsed = ParseConditionBlock(text, FilterAction::RemoveFailing);
    holdsOrAborts(parsed.conditions.size() <= text.size() / 20);
    holdsOrAborts(parsed.understood || parsed.conditions.empty());
    const std::string block = WriteConditionBlock(parsed.conditions);
    if (!hasQuotes(parsed.conditions))
        holdsOrAborts(ParseConditionBlock(block, parsed.action).conditions == parsed.conditions);
    (void)FilterSummary(text);
    (void)FilterByValues(text, DistributionKind::Frequency, {"a", KvbString()}, ValueChoice::Exclude);

    SilentMessages messages;
    FilterModel model(messages, DistributionKind::Pattern, text);
    const bool accepted = model.Accept();
    holdsOrAborts(accepted == (model.EditMode() || !FindFault(model.Conditions())));
    if (accepted && model.EditMode())
        holdsOrAborts(model.FilterText() == text);
    (void)model.SetEditMode(false);
    (void)model.BoxText();
    while (model.Enabled().undo)
        model.Undo();
    holdsOrAborts(model.Parentheses() == ParenthesisCounts());
    (void)model.BoxText();
}

} // namespace
} // namespace tavix

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavix::readFilterText({reinterpret_cast<const char*>(data), size});
    return 0;
}
