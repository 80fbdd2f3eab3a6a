#include "doc/Commands.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace tavix {
namespace {

TEST(Commands, EachIsListedOnceWithBothTexts) {
    std::set<CommandId> ids;
    for (const TavixCommand& command : kCommands) {
        EXPECT_TRUE(ids.insert(command.id).second) << command.text;
        const std::size_t split = command.text.find('\n');
        ASSERT_NE(std::string_view::npos, split) << command.text;
        EXPECT_GT(split, 0U) << command.text;
        EXPECT_LT(split + 1, command.text.size()) << command.text;
        EXPECT_EQ(std::string_view::npos, command.text.find('\n', split + 1)) << command.text;
    }
}

} // namespace
} // namespace tavix
