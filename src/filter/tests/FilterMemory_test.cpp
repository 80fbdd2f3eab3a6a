#include "base/tests/TempFolder.h"
#include "filter/FilterMemory.h"
#include "filter/tests/Conditions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr DistributionKind kValues = DistributionKind::Frequency;
constexpr DistributionKind kPatterns = DistributionKind::Pattern;

std::string nameOf(std::size_t index) {
    return "; [" + std::to_string(index) + "] = 'ü|\\'";
}

TEST(FilterMemory, SurvivesTheSettingsFile) {
    const testing::TempFolder folder;
    const std::string path = folder.file("settings.ini");
    const std::string filter = testing::expectedText("long_list.block") + testing::expectedText("long_list.keep.code");
    const std::vector<std::string> odd = {filter, " \"a\" ", "a|b\\n\\", std::string("\0\n\r\t;#=[x]", 11), "<<<END"};
    {
        auto store = openSettingsFile(path);
        ASSERT_TRUE(store);
        FilterMemory memory(**store);
        for (std::size_t i = 0; i < odd.size(); ++i) {
            ASSERT_TRUE(memory.Remember(kPatterns, odd[i]));
            ASSERT_TRUE(memory.Keep(kPatterns, nameOf(i), odd[i]));
        }
        ASSERT_TRUE(memory.Keep(kPatterns, "  two\r\nlines\t", "x"));
        EXPECT_THAT(memory.Recent(kValues), IsEmpty());
        EXPECT_THAT(memory.Named(kValues), IsEmpty());
    }
    auto store = openSettingsFile(path);
    ASSERT_TRUE(store);
    const FilterMemory memory(**store);
    EXPECT_EQ(memory.Recent(kPatterns), std::vector<std::string>(odd.rbegin(), odd.rend()));
    const auto named = memory.Named(kPatterns);
    ASSERT_EQ(named.size(), odd.size() + 1);
    EXPECT_EQ(named.back(), (NamedFilter{"two  lines", "x"}));
    for (std::size_t i = 0; i < odd.size(); ++i)
        EXPECT_EQ(named[i], (NamedFilter{nameOf(i), odd[i]}));
}

TEST(FilterMemory, TheLastOnesComeFirstAndOnce) {
    const auto store = makeMemorySettings();
    FilterMemory memory(*store);
    ASSERT_TRUE(memory.Remember(kValues, ""));
    ASSERT_TRUE(memory.Remember(kValues, std::string(FilterMemory::kLongestText + 1, 'x')));
    EXPECT_THAT(memory.Recent(kValues), IsEmpty());
    for (const std::string text : {"a", "b", "c", "a", "a"})
        ASSERT_TRUE(memory.Remember(kValues, text));
    EXPECT_THAT(memory.Recent(kValues), ElementsAre("a", "c", "b"));
    for (int i = 0; i < 30; ++i)
        ASSERT_TRUE(memory.Remember(kValues, std::to_string(i)));
    EXPECT_EQ(memory.Recent(kValues).size(), FilterMemory::kMostRecent);
    EXPECT_EQ(memory.Recent(kValues).front(), "29");
}

TEST(FilterMemory, NamesAreKeptByTheUserInAnyCase) {
    const auto store = makeMemorySettings();
    FilterMemory memory(*store);
    for (const std::string name : {"zip", "Älter", "Bad", "älteste"})
        ASSERT_TRUE(memory.Keep(kValues, name, "text of " + name));
    ASSERT_TRUE(memory.Keep(kValues, " BAD ", "new"));
    EXPECT_THAT(memory.Named(kValues),
                ElementsAre(NamedFilter{"BAD", "new"}, NamedFilter{"zip", "text of zip"},
                            NamedFilter{"Älter", "text of Älter"}, NamedFilter{"älteste", "text of älteste"}));
    EXPECT_EQ(memory.FindName(kValues, " äLTER "), "Älter");
    EXPECT_EQ(memory.FindName(kValues, "Äl"), std::nullopt);
    EXPECT_EQ(memory.FindName(kPatterns, "Älter"), std::nullopt);
    ASSERT_TRUE(memory.Forget(kValues, "ÄLTER"));
    ASSERT_TRUE(memory.Forget(kValues, "never there"));
    EXPECT_EQ(memory.Named(kValues).size(), 3u);

    EXPECT_EQ(memory.Keep(kValues, " \n", "x").error().text, "A filter needs a name.");
    EXPECT_EQ(memory.Keep(kValues, std::string(201, 'n'), "x").error().text,
              "The name of a filter can have at most 200 bytes.");
    EXPECT_EQ(memory.Keep(kValues, "n", "").error().text, "There is no filter to save.");
    EXPECT_EQ(memory.Keep(kValues, "n", std::string(9000, 'x')).error().text,
              "A filter of 9000 bytes is too long to be saved under a name; the limit is 8192. Save it in a file "
              "instead.");
    for (int i = 0; i < 47; ++i)
        ASSERT_TRUE(memory.Keep(kValues, "n" + std::to_string(i), "x"));
    EXPECT_EQ(memory.Keep(kValues, "one more", "x").error().text,
              "There are 50 named filters already. Delete one first.");
    ASSERT_TRUE(memory.Keep(kValues, "N46", "y"));
    EXPECT_EQ(memory.Named(kValues).size(), 50u);
}

TEST(FilterMemory, AFullMemoryLeavesTheSettingsFileReadable) {
    const testing::TempFolder folder;
    const std::string path = folder.file("settings.ini");
    {
        // Each byte of these takes two in the file.
        auto store = openSettingsFile(path);
        ASSERT_TRUE(store);
        FilterMemory memory(**store);
        for (const DistributionKind kind : {kValues, kPatterns}) {
            for (std::size_t i = 0; i < FilterMemory::kMostNamed; ++i) {
                const std::string text = std::to_string(10 + i) + std::string(FilterMemory::kLongestText - 2, '\n');
                ASSERT_TRUE(memory.Keep(kind, std::to_string(i) + std::string(190, '|'), text));
                ASSERT_TRUE(memory.Remember(kind, text));
            }
        }
    }
    auto store = openSettingsFile(path);
    ASSERT_TRUE(store) << store.error().text;
    EXPECT_EQ(FilterMemory(**store).Named(kPatterns).size(), FilterMemory::kMostNamed);
}

TEST(FilterMemory, GarbageInTheSettingsIsRead) {
    const auto store = makeMemorySettings();
    FilterMemory memory(*store);
    ASSERT_TRUE(store->write("FILTERS", "FrequencyRecent", "a|\\x\\p|without end\\"));
    EXPECT_THAT(memory.Recent(kValues), ElementsAre("a", "x|"));
    ASSERT_TRUE(store->write("FILTERS", "FrequencyNamed", "b|1|a|2|odd|"));
    EXPECT_THAT(memory.Named(kValues), ElementsAre(NamedFilter{"a", "2"}, NamedFilter{"b", "1"}));
    ASSERT_TRUE(store->write("FILTERS", "FrequencyNamed", std::string(100000, '|')));
    EXPECT_EQ(memory.Named(kValues).size(), FilterMemory::kMostNamed);
    ASSERT_TRUE(memory.Forget(kValues, ""));
}

} // namespace
} // namespace tavix
