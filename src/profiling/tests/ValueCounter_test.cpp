#include "profiling/ValueCounter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <utility>
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
    std::vector<std::string> texts; // more than a batch, some of them twice
    for (int i = 0; i < 1000; ++i)
        texts.push_back(std::to_string(random() % 700 * 3000));
    std::vector<Entry> counted;
    for (const std::string& text : texts) {
        counted.push_back({text.data(), random() % 5 + 1, static_cast<std::uint32_t>(text.size()), 0});
        expected[text] += counted.back().count;
    }
    counter.add(counted);
    counter.finish();
    std::map<std::string, std::uint64_t> found;
    for (const auto& chunk : counter.entries().chunks())
        for (const Entry& entry : chunk)
            EXPECT_TRUE(found.emplace(entry.text(), entry.count).second) << "twice: " << entry.text();
    EXPECT_EQ(found, expected);
    EXPECT_EQ(counter.nullCount(), nulls);
    EXPECT_GT(found.size(), 50'000U);
}

TEST(EntryList, JoinsListsOfAnyLength) {
    const std::vector<std::size_t> lengths = {0, 1, 3000, 65'535, 65'536, 65'537, 140'000};
    for (const std::size_t first : lengths)
        for (const std::size_t second : lengths) {
            EntryList list;
            std::uint64_t number = 0;
            for (; number < first; ++number)
                list.add({nullptr, number, 0, 0});
            // A third one finds what the second one left.
            for (const std::size_t size : {second, std::size_t{70'000}}) {
                EntryList other;
                for (std::size_t i = 0; i < size; ++i)
                    other.add({nullptr, number++, 0, 0});
                list.join(std::move(other));
            }
            ASSERT_EQ(list.size(), number);
            std::vector<bool> met(number);
            for (std::size_t i = 0; i < number; ++i)
                met[list[i].count] = true;
            EXPECT_EQ(std::count(met.begin(), met.end(), true), static_cast<std::ptrdiff_t>(number))
                << first << ' ' << second;
            std::size_t inChunks = 0;
            for (const auto& chunk : list.chunks())
                inChunks += chunk.size();
            EXPECT_EQ(inChunks, number);
        }
}

} // namespace
} // namespace tavix::profiling
