#include "job/AlertEntries.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace tavix::job {
namespace {

TEST(AlertEntry, IsReadAsTypedLikeThatOfAJobFile) {
    TableDescription table;
    table.name = "t";
    table.rules = {{"R", {}}};
    const auto problem = [&](const std::string& text) {
        const auto typed = readAlertEntry(text, table);
        return typed ? std::string("none") : typed.error().text;
    };
    EXPECT_EQ(problem("rule: R, max: 1"), "none");
    EXPECT_EQ(readAlertEntry("field: [a, b], metric: Mean, min: 1", table)->size(), 2U);
    EXPECT_EQ(problem("rule: S, max: 1"),
              "In the alert, at character 7: table \"t\" has no rule \"S\" (did you mean \"R\"?).");
    EXPECT_EQ(problem("{rule: S, max: 1}"),
              "In the alert, at character 8: table \"t\" has no rule \"S\" (did you mean \"R\"?).");
    EXPECT_EQ(problem("rule: R, maxx: 1"),
              "In the alert, at character 10: unknown key \"maxx\" (did you mean \"max\"?).");
    EXPECT_EQ(problem("rule: R, max: 1, level: bad"),
              "In the alert, at character 25: \"level\": expected warning or error; warning unless stated.");
    EXPECT_EQ(problem("rule: R"), "In the alert, at character 1: expected an alert: a map with one of metric, custom "
                                  "metric, rule and one of max, min, range, not, not in, change.");
    // Whatever a user types is an alert or a message.
    const std::string good = "{field: [a, b], metric: Mean, change: \"20 %\", runs: 3, against: median, level: error}";
    std::mt19937 random(7);
    for (int i = 0; i < 2000; ++i) {
        std::string text = good;
        for (std::size_t n = random() % 4 + 1; n > 0 && !text.empty(); --n) {
            const std::size_t at = random() % text.size();
            if (random() % 2 == 0)
                text[at] = static_cast<char>(random());
            else
                text.erase(at, random() % 9);
        }
        const auto typed = readAlertEntry(text, table);
        EXPECT_TRUE(typed ? !typed->empty() : !typed.error().text.empty()) << text;
    }
}

} // namespace
} // namespace tavix::job
