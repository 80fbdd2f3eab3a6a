#include "grid/CellOrder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace tavix {
namespace {

std::vector<std::string> sorted(std::vector<std::string> texts) {
    std::stable_sort(texts.begin(), texts.end(),
                     [](const auto& a, const auto& b) { return CellOrderKey(a) < CellOrderKey(b); });
    return texts;
}

TEST(CellOrder, NumbersComeByValueBeforeTexts) {
    EXPECT_THAT(sorted({"10", "9", "1a", "-3", "2.5", "1e3", ""}),
                testing::ElementsAre("-3", "2.5", "9", "10", "1e3", "", "1a"));
}

TEST(CellOrder, TextsWithoutCaseThenWithCase) {
    EXPECT_THAT(sorted({"b", "a", "B", "A", "Übung", "übung", "zoo"}),
                testing::ElementsAre("A", "a", "B", "b", "zoo", "Übung", "übung"));
}

TEST(CellOrder, IsOneOrderWhateverTheStart) {
    std::vector<std::string> texts = {"9", "10", "10a", "1a", "(Unknown)", "NaN", "inf", "007", "7", "7.0", " 7", "é"};
    const std::vector<std::string> once = sorted(texts);
    std::mt19937 random(7);
    for (int round = 0; round < 50; ++round) {
        std::shuffle(texts.begin(), texts.end(), random);
        EXPECT_EQ(once, sorted(texts));
    }
}

} // namespace
} // namespace tavix
