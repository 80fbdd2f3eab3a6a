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
/// A cell of a text file.
std::string cellOf(std::string text) {
    const bool isQuoted = text.find_first_of(",\"\n") != std::string::npos;
    for (std::size_t at = text.find('"'); at != std::string::npos; at = text.find('"', at + 2))
        text.insert(at, 1, '"');
    return isQuoted ? "\"" + text + "\"" : text;
}

class FiguresAgainstPython : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!std::filesystem::exists("/usr/bin/python3"))
            GTEST_SKIP() << "no /usr/bin/python3 to compare with";
    }
    tavix::testing::TempFolder m_folder;
};

TEST_F(FiguresAgainstPython, SampleTables) {
    for (const char* name : {"airports", "routes", "birdstrikes", "deliveries"})
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
            for (std::size_t c = 0; c < pools.size(); ++c)
                file << (c == 0 ? "" : ",") << cellOf(pools[c][random() % pools[c].size()]);
            file << "\r\n";
        }
        file.close();
        EXPECT_EQ(checkWithPython(path, m_folder.file("dump.json")), "") << "round " << round << ", rows " << rows;
    }
}

TEST_F(FiguresAgainstPython, ColumnsOfMixedKinds) {
    // Each column has values of one row of this table, and now and then one of any row.
    const std::vector<std::vector<std::string>> pools = {
        {"5", "17", "-3", "400", "0", "+2"},
        {"1.5", "2.25", "-0.5", "7", "1e3", ".5"},
        {"1.500", "2.250", "12.125"},
        {"1,234", "12,345", "1,234,567", "999", "-5,000"},
        {"1,234", "2,500"},
        {"1.234,5", "0,75", "12", "3,1e2", "-1.000.000"},
        {"1 234", "1'234'567", "12 345.5",
         "1\xC2\xA0"
         "234",
         "9\xE2\x80\x99"
         "999"},
        {"$5", "$1,200.50", "-$3", "($7.25)", "$ 9", "12"},
        {"5 \xE2\x82\xAC", "1.200,50 \xE2\x82\xAC", "-3,25\xC2\xA0\xE2\x82\xAC", "4,1-"},
        {"EUR 5", "6.5 EUR", "USD7", "CHF 8", "7"},
        {"5%", "12.5 %", "-3%", "100%"},
        {"10001", "00501", "90210", "20500"},
        {"9223372036854775807", "-9,223,372,036,854,775,808", "9223372036854775808", "5"},
        {"2001-01-14", "2001-02-03T21:55", "1999-12-31 23:59:59.5"},
        {"2001/01/14 21:55", "2001/1/4", "2001.01.14", "2001-1-4 9:05:03.25 PM"},
        {"14.01.2001", "01.02.2003", "5/5/2005", "31-12-1999 21:55"},
        {"01/14/2001", "01/02/2003 12:30 am", "12/31/1999"},
        {"01/02/2003", "03/04/2005", "05/05/2005"},
        {"Jan 14 2001", "Jan. 1, 2001", "January 31, 2001 9:55 PM", "Sunday, May 6, 2001", "jun 12 1998"},
        {"14 Jan 2001", "14-Feb-2001", "14MAR2001", "Sun, 14 Jan 2001 21:55:03 +0130", "1 sept 2001, 10:00Z"},
        {"14.01.01", "99-12-31", "1/2/3", "12-Jun-98"},
        {"true", "FALSE", " True"},
        {"unknown", "n/a", "-", "12 Main St", "007", "Mayor", "1.2.3", "5,", "30.02.2001", "$", "()",
         "2001/01/14 25:00"},
        {" 5", "7 ",
         "\xC2\xA0"
         "9"},
        {"", " "},
    };
    constexpr std::size_t kColumns = 30;
    std::mt19937 random(18);
    for (int round = 0; round < 10; ++round) {
        const std::string path = m_folder.file("mixed.csv");
        std::ofstream file(path, std::ios::binary);
        std::vector<std::pair<std::size_t, std::size_t>> columns; // the row of the table, and one value of others in n
        for (std::size_t c = 0; c < kColumns; ++c) {
            columns.emplace_back(random() % pools.size(), std::vector<std::size_t>{4, 15, 40, 1000}[random() % 4]);
            file << (c == 0 ? "f" : ",f") << c;
        }
        file << "\n";
        for (std::size_t r = 0; r < 150; ++r) {
            for (std::size_t c = 0; c < kColumns; ++c) {
                const auto [own, others] = columns[c];
                const auto& pool = pools[random() % others == 0 ? random() % pools.size() : own];
                file << (c == 0 ? "" : ",") << cellOf(pool[random() % pool.size()]);
            }
            file << "\n";
        }
        file.close();
        EXPECT_EQ(checkWithPython(path, m_folder.file("dump.json")), "") << "round " << round;
    }
}

} // namespace
} // namespace tavix::profiling
