#include "grid/CellOrder.h"
#include "grid/CellSort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace tavix {
namespace {

std::vector<std::uint32_t> sortedPlainly(const std::vector<std::string>& texts, bool descending) {
    std::vector<std::uint32_t> order(texts.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(), [&texts, descending](std::uint32_t a, std::uint32_t b) {
        const CellOrderKey left(texts[a]);
        const CellOrderKey right(texts[b]);
        return descending ? right < left : left < right;
    });
    return order;
}

void expectTheOrder(const std::vector<std::string>& texts, const std::string& what) {
    const auto textsFrom = [&texts](std::uint32_t first, std::span<std::string_view> wanted) {
        std::copy_n(texts.begin() + first, wanted.size(), wanted.begin());
    };
    for (const bool descending : {false, true})
        EXPECT_EQ(sortedByText(static_cast<std::uint32_t>(texts.size()), textsFrom, descending),
                  sortedPlainly(texts, descending))
            << what << (descending ? ", descending" : "");
}

std::vector<std::string> drawn(std::size_t count, std::mt19937& random, const std::vector<std::string>& parts,
                               std::size_t most) {
    std::vector<std::string> texts(count);
    for (std::string& text : texts) {
        for (std::size_t i = random() % (most + 1); i > 0; --i)
            text += parts[random() % parts.size()];
    }
    return texts;
}

TEST(CellSort, IsTheOrderOfTheKeys) {
    std::mt19937 random(11);
    const std::vector<std::string> numberParts = {"0", "1", "7", "9", "-", "+", ".", "e", "00"};
    const std::vector<std::string> letters = {"a",      "A",      "b",  "B",      "z", "\u00FC",
                                              "\u00DC", "\u00DF", "ss", "\u212A", "k"};
    const std::vector<std::string> longParts = {"customer-", "Customer-", "12345678", "x", std::string(1, '\0')};
    const std::vector<std::string> mixed = {"1", "a", "A", ".", "2", "\xFF", " ", "inf", "nan"};
    for (const std::size_t count : {0U, 1U, 2U, 40U, 3000U}) {
        expectTheOrder(drawn(count, random, numberParts, 6), "numbers");
        expectTheOrder(drawn(count, random, letters, 4), "letters");
        expectTheOrder(drawn(count, random, longParts, 9), "long common beginnings");
        expectTheOrder(drawn(count, random, mixed, 5), "mixed");
    }
}

TEST(CellSort, NumbersAtTheEdgeOfWhatIsExact) {
    expectTheOrder({"1.5", "-1.25", "1", "0.001", "12", "1.50", "-2"}, "decimals of like size");
    expectTheOrder({"0.00000000000001", "123456789012345", "99999999999999.9", "3"}, "decimals of unlike size");
    std::vector<std::string> texts = {"999999999999999",
                                      "1000000000000000",
                                      "9007199254740993",
                                      "9007199254740992",
                                      "0.1",
                                      "0.10",
                                      ".1",
                                      "1e-1",
                                      "-0",
                                      "0",
                                      "0.0",
                                      "-0.0",
                                      "+0",
                                      "1.",
                                      "1",
                                      "123456789012.345",
                                      "12345678901234.5",
                                      "1e400",
                                      "-1e400",
                                      "0.000000000000001",
                                      "0.00000000000001",
                                      "-5",
                                      "-5.25",
                                      "1..2",
                                      "1.2.3",
                                      "--1",
                                      "-",
                                      ""};
    std::mt19937 random(3);
    for (int round = 0; round < 20; ++round) {
        std::shuffle(texts.begin(), texts.end(), random);
        expectTheOrder(texts, "edges");
    }
}

TEST(CellSort, LongTextsThatDifferInTheirLastLetterOnly) {
    const std::string common(100'000, 'q');
    std::vector<std::string> texts;
    for (const char last : std::string("hHaAzZbBcCdDeEfFgGiIjJkKlLmMnNoOpPrRsS"))
        texts.push_back(common + last);
    texts.push_back(common);
    texts.push_back(common);
    expectTheOrder(texts, "long");
}

} // namespace
} // namespace tavix
