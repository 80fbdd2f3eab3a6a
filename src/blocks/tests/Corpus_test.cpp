#include "base/tests/SourceFolder.h"
#include "blocks/tests/FuzzEntry.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace tavix::expression {
namespace {

TEST(Corpus, EachTextGivesTheSameByRowAndByBlock) {
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(testing::sourceFile("src/blocks/tests/corpus"))) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        SCOPED_TRACE(entry.path().filename().string());
        fuzzExpression(text);
        // A text that is cut off in the middle is as good a seed as the whole.
        for (std::size_t size = 0; size < text.size(); size += 1 + text.size() / 64)
            fuzzExpression(std::string_view(text).substr(0, size));
        ++files;
    }
    EXPECT_GT(files, 10U);
}

} // namespace
} // namespace tavix::expression
