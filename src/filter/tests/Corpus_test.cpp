// The fuzzers' entry functions run over their corpora in every build, under names of their own.
#define LLVMFuzzerTestOneInput fuzzConditionBlock
#include "base/tests/SourceFolder.h"
#include "filter/tests/fuzz_condition_block.cpp"
#undef LLVMFuzzerTestOneInput
#define LLVMFuzzerTestOneInput fuzzFilterFile
#include "filter/tests/fuzz_filter_file.cpp"
#undef LLVMFuzzerTestOneInput

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace tavix {
namespace {

using Entry = int (*)(const std::uint8_t*, std::size_t);

/// Runs each file of a corpus, and each beginning of it: a cut block or file is what really happens.
void runCorpus(const std::string& name, Entry entry) {
    std::size_t files = 0;
    for (const auto& file :
         std::filesystem::directory_iterator(testing::sourceFile("src/filter/tests/corpus/" + name))) {
        std::ifstream in(file.path(), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(in), {}};
        ASSERT_TRUE(in) << file.path();
        for (std::size_t length = 0; length <= bytes.size(); ++length)
            entry(reinterpret_cast<const std::uint8_t*>(bytes.data()), length);
        ++files;
    }
    EXPECT_GE(files, 5u) << name;
}

TEST(Corpus, ConditionBlocks) {
    runCorpus("condition_block", &fuzzConditionBlock);
}

TEST(Corpus, FilterFiles) {
    runCorpus("filter_file", &fuzzFilterFile);
}

} // namespace
} // namespace tavix
