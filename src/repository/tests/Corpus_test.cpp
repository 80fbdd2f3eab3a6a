#include "base/tests/SourceFolder.h"
#include "repository/tests/FuzzBlock.h"
#include "repository/tests/FuzzHashes.h"
#include "repository/tests/FuzzOffsetIndex.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace tavix::repository {
namespace {

/// Runs each file of a corpus and each prefix of it; returns the number of files.
int runCorpus(const std::string& name, void (*fuzz)(std::span<const std::byte>)) {
    int files = 0;
    for (const auto& file :
         std::filesystem::directory_iterator(testing::sourceFile("src/repository/tests/corpus/" + name))) {
        std::ifstream stream(file.path(), std::ios::binary);
        const std::string content((std::istreambuf_iterator<char>(stream)), {});
        for (std::size_t size = 0; size <= content.size(); ++size) {
            // A copy of exactly this size, so that the sanitizer sees a read after the end.
            const std::string cut(content, 0, size);
            fuzz(std::as_bytes(std::span(cut.data(), cut.size())));
        }
        ++files;
    }
    return files;
}

TEST(RepositoryCorpus, PackedBlocksAreReadInBounds) {
    EXPECT_GE(runCorpus("packed_block", fuzzBlock), 14);
}

TEST(RepositoryCorpus, PackedHashesAreReadInBoundsAndComeBack) {
    EXPECT_GE(runCorpus("packed_hashes", fuzzHashes), 7);
}

TEST(RepositoryCorpus, PlacesAreReadInBoundsAndComeBack) {
    EXPECT_GE(runCorpus("offset_index_pages", fuzzOffsetIndex), 15);
}

} // namespace
} // namespace tavix::repository
