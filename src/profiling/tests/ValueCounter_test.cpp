#include "profiling/ValueCounter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace tavix::profiling {
namespace {

TEST(ValueCounter, CountsAsAMapDoes) {
    // Lengths around the hash's words, many distinct values, and a source text that is gone when the counts are read.
    std::mt19937 random(5);
    ValueCounter counter;
    std::map<std::string, std::uint64_t> expected;
    std::uint64_t nulls = 0;
    for (int block = 0; block < 40; ++block) {
        std::vector<std::string> texts;
        for (int i = 0; i < 5000; ++i) {
            std::string text = std::to_string(random() % (block < 20 ? 100 : 1'000'000));
            text.append(random() % 40, 'x');
            texts.push_back(random() % 3 == 0 ? text : text.substr(0, random() % 20));
        }
        std::vector<source::Cell> cells;
        for (const std::string& text : texts) {
            const bool isNull = random() % 10 == 0;
            cells.push_back({text.data(), static_cast<std::uint32_t>(text.size()), isNull});
            if (isNull)
                ++nulls;
            else
                ++expected[text];
        }
        counter.count(cells);
    }
    counter.add("added", 7);
    expected["added"] += 7;
    counter.finish();
    std::map<std::string, std::uint64_t> found;
    for (const auto& entry : counter.entries())
        EXPECT_TRUE(found.emplace(entry.text(), entry.count).second) << "twice: " << entry.text();
    EXPECT_EQ(found, expected);
    EXPECT_EQ(counter.nullCount(), nulls);
    EXPECT_GT(found.size(), 50'000U);
}

} // namespace
} // namespace tavix::profiling
