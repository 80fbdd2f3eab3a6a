#include "alert/AlertPrintout.h"
#include "base/Characters.h"

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;

/// Every character is one wide; bold ones are two.
double widthOf(std::string_view text, PrintWeight weight) {
    return static_cast<double>(countCharacters(text)) * (weight == PrintWeight::Bold ? 2 : 1);
}

std::vector<std::string> broken(std::string_view text, double width) {
    return brokenIntoLines(text, width, [](std::string_view part) { return widthOf(part, PrintWeight::Plain); });
}

AlertState rangeAlert() {
    AlertState alert;
    alert.dataSource = "Sales";
    alert.catalog = "north";
    alert.tableName = alert.table = "orders";
    alert.typeCode = "BR";
    alert.subject = AlertSubject::BusinessRule;
    alert.input = "Paid before shipped";
    alert.description = "Too many unpaid";
    AlertRule rule{.comparison = AlertComparison::Outside, .ofFailedPercent = true, .value1 = 0.1, .value2 = 5};
    rule.level = AlertLevel::Error;
    alert.rule = rule;
    alert.sentence = alertSentence(alert.subject, rule, {}, alert.input);
    alert.figure = 7.5;
    alert.verdict = {AlertVerdict::State::Raised, {}};
    alert.raisedRuns = 1;
    return alert;
}

/// The pages as they are read: texts of a line from the left, separated by a blank; positions are in lines.
std::vector<std::string> read(const std::vector<PrintedPage>& pages) {
    std::vector<std::string> lines;
    for (const PrintedPage& page : pages) {
        std::vector<PrintedText> texts = page.texts;
        std::stable_sort(texts.begin(), texts.end(), [](const PrintedText& a, const PrintedText& b) {
            return std::pair(a.y, a.x) < std::pair(b.y, b.x);
        });
        double y = -1;
        for (const PrintedText& text : texts) {
            if (text.y == y)
                lines.back() += " " + text.text;
            else
                lines.push_back(text.text);
            y = text.y;
        }
    }
    return lines;
}

std::vector<PrintedPage> layOut(std::size_t alerts, double width, double height, const AlertState& alert) {
    return layOutAlerts(std::vector<const AlertState*>(alerts, &alert), {"Tavix Alerts Report", "Current filter: None"},
                        {widthOf, 1, width, height}, std::locale::classic());
}

TEST(AlertPrintout, LabelsTheLinesOfEachAlert) {
    EXPECT_THAT(read(layOut(1, 200, 60, rangeAlert())),
                ElementsAre("Tavix Alerts Report", "Current filter: None", "Description: Too many unpaid",
                            "Type: Business Rule", "Input: Paid before shipped",
                            "Data Source/Catalog/Schema/Table: Sales.north.orders",
                            "Alert: Percentage of failed rows for business rule Paid before shipped is outside the "
                            "range 0.1 to 5",
                            "State: raised (error), this run", "Figure: 7.50 % (outside 0.1 % to 5 %)", "Page 1"));
    EXPECT_THAT(read(layOut(0, 200, 60, rangeAlert())),
                ElementsAre("Tavix Alerts Report", "Current filter: None", "Page 1"));
}

TEST(AlertPrintout, KeepsAnAlertOnOnePageAndNumbersThePages) {
    // Seven lines an alert: a page of 22 lines has room for two of them, with the gap between them.
    const std::vector<PrintedPage> pages = layOut(5, 200, 22, rangeAlert());
    ASSERT_EQ(3U, pages.size());
    const auto count = [](const PrintedPage& page, const std::string& text) {
        return std::count_if(page.texts.begin(), page.texts.end(),
                             [&](const PrintedText& each) { return each.text == text; });
    };
    EXPECT_EQ(2, count(pages[0], "Description:"));
    EXPECT_EQ(2, count(pages[0], "Figure:"));
    EXPECT_EQ(2, count(pages[1], "Description:"));
    EXPECT_EQ(1, count(pages[2], "Figure:"));
    EXPECT_EQ(1, count(pages[2], "Tavix Alerts Report"));
    EXPECT_EQ(1, count(pages[2], "Page 3"));
    for (const PrintedPage& page : pages) {
        for (const PrintedText& text : page.texts) {
            EXPECT_GE(text.x, 0);
            EXPECT_LE(text.y + 1, 22) << text.text;
            EXPECT_LE(text.x + widthOf(text.text, text.weight), 200) << text.text;
        }
    }
}

TEST(AlertPrintout, PartsWhatIsLongerThanAPage) {
    AlertState alert = rangeAlert();
    for (int word = 0; word < 100; ++word)
        alert.description += " and more";
    const std::vector<std::string> lines = read(layOut(1, 80, 12, alert));
    EXPECT_EQ("Page 1", lines[9]);
    EXPECT_EQ("Figure: 7.50 % (outside 0.1 % to 5 %)", lines[lines.size() - 2]);
    std::size_t words = 0;
    for (const std::string& line : lines) {
        for (std::size_t at = line.find("more"); at != std::string::npos; at = line.find("more", at + 1))
            ++words;
    }
    EXPECT_EQ(100U, words);
}

TEST(AlertPrintout, BreaksLinesBetweenWordsAndWithinLongOnes) {
    EXPECT_THAT(broken("one two three", 7), ElementsAre("one two", "three"));
    EXPECT_THAT(broken("one  two\nthree", 20), ElementsAre("one two", "three"));
    EXPECT_THAT(broken("a Gr\u00f6\u00dfenordnung b", 5), ElementsAre("a", "Gr\u00f6\u00dfe", "nordn", "ung b"));
    EXPECT_THAT(broken("ab", 0.5), ElementsAre("a", "b"));
    EXPECT_THAT(broken("", 5), ElementsAre(""));
}

} // namespace
} // namespace tavix
