#include "base/tests/SourceFolder.h"
#include "repository/tests/FuzzBlock.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace tavix::repository {
namespace {

TEST(PackedBlockCorpus, EveryFileAndEachBeginningOfItIsReadInBounds) {
    int files = 0;
    for (const auto& file :
         std::filesystem::directory_iterator(testing::sourceFile("src/repository/tests/corpus/packed_block"))) {
        std::ifstream stream(file.path(), std::ios::binary);
        const std::string content((std::istreambuf_iterator<char>(stream)), {});
        for (std::size_t size = 0; size <= content.size(); ++size) {
            // A copy of just this size, so that a read behind the end is seen by the sanitizer.
            const std::string cut(content, 0, size);
            fuzzBlock(std::as_bytes(std::span(cut.data(), cut.size())));
        }
        ++files;
    }
    EXPECT_GE(files, 6);
}

} // namespace
} // namespace tavix::repository
