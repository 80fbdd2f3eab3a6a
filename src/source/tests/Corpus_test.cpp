#include "base/tests/SourceFolder.h"
#include "source/tests/FuzzText.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace tavix::source {
namespace {

TEST(TextFileCorpus, EveryFileAndEachBeginningOfItIsReadAsTheSlowReaderDoes) {
    int files = 0;
    for (const auto& file :
         std::filesystem::directory_iterator(testing::sourceFile("src/source/tests/corpus/text_file"))) {
        std::ifstream stream(file.path(), std::ios::binary);
        const std::string content((std::istreambuf_iterator<char>(stream)), {});
        for (std::size_t size = 0; size <= content.size(); ++size)
            fuzzText(std::string_view(content).substr(0, size));
        ++files;
    }
    EXPECT_GE(files, 12);
}

} // namespace
} // namespace tavix::source
