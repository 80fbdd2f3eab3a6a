#include "base/tests/SourceFolder.h"
#include "base/tests/TempFolder.h"
#include "profiling/tests/DumpFigures.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace tavix::profiling {
namespace {

using testing::checkWithPython;

/// Compared with a recomputation in Python, which was written from docs/definitions.md and not from our code.
class FiguresAgainstPython : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!std::filesystem::exists("/usr/bin/python3"))
            GTEST_SKIP() << "no /usr/bin/python3 to compare with";
    }
    tavix::testing::TempFolder m_folder;
};

TEST_F(FiguresAgainstPython, SampleTables) {
    for (const char* name : {"airports", "routes", "birdstrikes"})
        EXPECT_EQ(checkWithPython(tavix::testing::sourceFile(std::string("share/examples/") + name + ".csv"),
                                  m_folder.file(name)),
                  "")
            << name;
}

TEST_F(FiguresAgainstPython, ValuesAtTheEdgesOfTypesAndPatterns) {
    // Every pool is a field; the rows are drawn from it at random, so that type, order and ties vary with the seed.
    const std::vector<std::vector<std::string>> pools = {
        {"1", "2", "-3", "+4", "0", "-0", "100000", "9223372036854775807", "-9223372036854775808"},
        {"9223372036854775808", "-99999999999999999999", "5", "100000000000000000000", "+7"},
        {"1.50", "1.5", ".5", "5.", "-2e3", "1E-2", "7", "0.1", "0.2", "-0.0", "1.5e-3"},
        {"1e15", "1e15", "3e15", "2e300", "4.9e-324", "1.7e308"},
        {"1", "2", "3", "4", "5", "6", "7", "8", "1000", "-1000", "20"},
        {"true", "FALSE", "False", "TRUE", "", " "},
        {"2024-02-29", "2023-12-31T23:59:59.5Z", "2024-01-01 00:00", "2024-01-01T01:00:00+02:00",
         "2023-12-31T22:00:00-01", "0001-01-01", "9999-12-31"},
        {"2024-02-30", "2024-01-01", "12:30", "2024-1-1"},
        {"007", "7", "7.0"},
        {"NaN", "1"},
        {"1e400", "1"},
        {"1.2e-10000", "3"},
        {"", "  ", "\t", "\xC2\xA0"},
        {""},
        {"a", "B", "\xC3\xA4", "\xEF\xBF\xBD", "\xF0\x9F\x98\x80", "Z", "z{4}", "a,b", "say \"x\"", "two\nlines", ""},
        {"5", " 5", "5 "},
        {"\xD9\xA4\xD9\xA2", "12"},
    };
    std::mt19937 random(7);
    for (int round = 0; round < 12; ++round) {
        const std::string path = m_folder.file("edges.csv");
        std::ofstream file(path, std::ios::binary);
        for (std::size_t c = 0; c < pools.size(); ++c)
            file << (c == 0 ? "f" : ",f") << c;
        file << "\r\n";
        const std::size_t rows = round < 4 ? static_cast<std::size_t>(round) : random() % 400 + 1;
        for (std::size_t r = 0; r < rows; ++r) {
            for (std::size_t c = 0; c < pools.size(); ++c) {
                std::string text = pools[c][random() % pools[c].size()];
                for (std::size_t at = text.find('"'); at != std::string::npos; at = text.find('"', at + 2))
                    text.insert(at, 1, '"');
                const bool isQuoted = text.find_first_of(",\"\n") != std::string::npos;
                file << (c == 0 ? "" : ",") << (isQuoted ? "\"" + text + "\"" : text);
            }
            file << "\r\n";
        }
        file.close();
        EXPECT_EQ(checkWithPython(path, m_folder.file("dump.json")), "") << "round " << round << ", rows " << rows;
    }
}

} // namespace
} // namespace tavix::profiling
