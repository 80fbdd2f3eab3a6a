#include "drill/CDrillThruDataSrc.h"
#include "grid/CellOrder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>

namespace tavix {
namespace {

using ::testing::ElementsAre;

using Table = std::vector<std::vector<KvbString>>;

DrillRows rowsOf(const Table& table, std::size_t columns) {
    DrillRows rows(std::vector<DrillColumn>(columns, {"c", kvbType::Text}));
    for (const auto& line : table) {
        for (const KvbString& value : line)
            rows.add(value);
        rows.endRow();
    }
    return rows;
}

CDrillThruDataSrc sourceOf(const std::vector<std::string>& texts) {
    Table table;
    for (const std::string& text : texts)
        table.push_back({KvbString(text)});
    CDrillThruDataSrc source;
    source.SetRows(rowsOf(table, 1));
    return source;
}

std::vector<std::string> textsOf(const CDrillThruDataSrc& source, int column = 0) {
    std::vector<std::string> texts;
    for (std::int64_t row = 0; row < source.GetRowCount(); ++row)
        texts.push_back(source.GetCell(column, row).text);
    return texts;
}

TEST(DrillRows, GivesBackWhateverWasPutIn) {
    std::mt19937 random(5);
    // Lengths around the limits of the varint, and one larger than a chunk.
    const std::vector<std::size_t> lengths = {0, 1, 7, 126, 127, 128, 16382, 16383, 16384};
    for (const std::size_t columns : {1U, 3U, 8U, 20U}) {
        Table table(400, std::vector<KvbString>(columns));
        for (auto& line : table) {
            for (KvbString& value : line) {
                if (random() % 5 != 0)
                    value =
                        KvbString(std::string(lengths[random() % lengths.size()], static_cast<char>(random() % 256)));
            }
        }
        table[100][0] = KvbString(std::string(3'000'000, 'x'));
        const DrillRows rows = rowsOf(table, columns);
        ASSERT_EQ(rows.count(), table.size());
        for (std::uint32_t row = 0; row < rows.count(); ++row) {
            for (std::size_t column = 0; column < columns; ++column) {
                const DrillRows::Cell cell = rows.cell(static_cast<int>(column), row);
                ASSERT_EQ(cell.isNull, table[row][column].isNull());
                ASSERT_TRUE(cell.text == table[row][column].view()) << row << ' ' << column;
            }
        }
        std::vector<std::string_view> texts(100);
        rows.texts(static_cast<int>(columns) - 1, 51, texts);
        for (std::size_t i = 0; i < texts.size(); ++i)
            ASSERT_TRUE(texts[i] == table[51 + i].back().view()) << i;
    }
}

TEST(DrillRows, AnOpenRowCanBeDropped) {
    DrillRows rows({{"a", kvbType::Text}, {"b", kvbType::Text}});
    for (int row = 0; row < 10; ++row) {
        rows.add(KvbString("dropped"));
        rows.dropOpenRow();
        rows.add(KvbString(std::to_string(row)));
        rows.add(KvbString("b"));
        rows.endRow();
        rows.dropOpenRow();
    }
    ASSERT_EQ(rows.count(), 10U);
    for (std::uint32_t row = 0; row < 10; ++row)
        EXPECT_EQ(rows.cell(0, row).text, std::to_string(row));
}

TEST(DrillRows, MillionsOfShortCellsTakeLittleMoreThanTheirText) {
    DrillRows rows({{"n", kvbType::Integer}});
    std::size_t text = 0;
    for (int row = 0; row < 300'000; ++row) {
        const std::string digits = std::to_string(100'000 + row);
        text += digits.size();
        rows.add(KvbString(digits));
        rows.endRow();
    }
    rows.finish();
    // Sorting adds four bytes a row.
    EXPECT_LT(static_cast<double>(rows.bytes() + 4 * std::size_t{rows.count()}), 2.5 * static_cast<double>(text));
}

TEST(CDrillThruDataSrc, SortsNumbersByValueAndMixedColumnsInOneOrder) {
    CDrillThruDataSrc source = sourceOf({"10", "9"});
    ASSERT_TRUE(source.Sort(0, false));
    EXPECT_THAT(textsOf(source), ElementsAre("9", "10"));
    source = sourceOf({"abc", "ABC", "abd", "ABB"});
    ASSERT_TRUE(source.Sort(0, false));
    EXPECT_THAT(textsOf(source), ElementsAre("ABB", "ABC", "abc", "abd"));
    source = sourceOf({"1a", "10", "9"});
    ASSERT_TRUE(source.Sort(0, true));
    EXPECT_THAT(textsOf(source), ElementsAre("1a", "10", "9"));
    EXPECT_EQ(source.GetRowKey(0), 0);
}

TEST(CDrillThruDataSrc, ColumnsAreAsWideAsTheirLettersAndNotTheirBytes) {
    const auto widthOf = [](const std::string& text) { return sourceOf({text}).GetColumn(0).width; };
    const std::string latin(20, 'a');
    std::string cyrillic;
    std::string wide;
    std::string marked;
    for (int i = 0; i < 20; ++i) {
        cyrillic += "\u0436";
        marked += "e\u0301";
        wide += i % 2 == 0 ? "\u4E2D" : "";
    }
    EXPECT_EQ(widthOf(cyrillic), widthOf(latin));
    EXPECT_EQ(widthOf(marked), widthOf(latin));
    EXPECT_EQ(widthOf(wide), widthOf(latin)) << "ten signs of twice the width";
}

TEST(CDrillThruDataSrc, WholeRowsMove) {
    CDrillThruDataSrc source;
    source.SetRows(rowsOf({{"b", "1"}, {"a", "2"}, {KvbString(), "3"}}, 2));
    ASSERT_TRUE(source.Sort(0, false));
    EXPECT_THAT(textsOf(source, 1), ElementsAre("3", "2", "1"));
    EXPECT_EQ(source.GetCell(0, 0).state, CellState::Null);
    ASSERT_TRUE(source.Sort(1, false));
    EXPECT_THAT(textsOf(source, 0), ElementsAre("b", "a", ""));
    ASSERT_TRUE(source.Sort(1, true));
    EXPECT_THAT(textsOf(source, 0), ElementsAre("", "a", "b"));
    EXPECT_FALSE(source.Sort(2, false));
    source.SetRows(rowsOf({{"only"}}, 1));
    EXPECT_FALSE(source.Sort(0, false));
}

TEST(CDrillThruDataSrc, ShowsTheRowsThatMatchASearchAndSortsThem) {
    CDrillThruDataSrc source;
    source.SetRows(rowsOf({{"10", "Straße"}, {"9", "lane"}, {"100", KvbString()}, {"x", "LANE 9"}}, 2));
    const auto search = [&source](std::string_view typed, int column) {
        const auto term = ParseQuickSearch(typed);
        EXPECT_TRUE(term && *term) << typed;
        auto rows = searchRows(source.GetRows(), **term, column);
        if (!rows)
            return std::vector<std::string>{rows.error().text};
        source.ShowOnly(std::move(*rows));
        return textsOf(source);
    };
    EXPECT_THAT(search("strasse", kAllColumns), ElementsAre("10")) << "as the window finds it";
    EXPECT_THAT(search("9", kAllColumns), ElementsAre("9", "x"));
    EXPECT_THAT(search("9", 0), ElementsAre("9"));
    EXPECT_THAT(search(">9", 0), ElementsAre("10", "100"));
    EXPECT_THAT(search("null", kAllColumns), ElementsAre("100"));
    EXPECT_THAT(search("!null", kAllColumns), ElementsAre("10", "9", "x")) << "no cell is null";
    EXPECT_THAT(search("<>lane", 1), ElementsAre("10", "100", "x"));
    EXPECT_TRUE(search("~[", 1).front().find("missing") != std::string::npos) << search("~[", 1).front();
    EXPECT_EQ(3, source.GetRowCount()) << "unchanged by a search that fails";
    ASSERT_TRUE(source.Sort(0, true));
    EXPECT_THAT(textsOf(source), ElementsAre("x", "100", "10"));
    EXPECT_EQ(3, source.GetRowKey(0));
    EXPECT_FALSE(source.ShowsAll());
    EXPECT_EQ(CellPlace({0, 1}), findText(source, "lane", {2, 0}, SearchDirection::Forward, true, 1));
    source.ShowOnly(std::nullopt);
    EXPECT_THAT(textsOf(source), ElementsAre("10", "9", "100", "x"));
}

TEST(CDrillThruDataSrc, FindsTextsInEveryCellAndGoesRound) {
    CDrillThruDataSrc source;
    source.SetRows(rowsOf({{"Alpha", "x"}, {"beta", "\u00DCBER alpha"}, {"gamma", KvbString()}}, 2));
    const auto find = [&source](std::string_view text, CellPlace from, SearchDirection direction, bool beyond) {
        const auto found = findText(source, text, from, direction, beyond);
        return found ? std::to_string(found->row) + "," + std::to_string(found->column) : "none";
    };
    using enum SearchDirection;
    EXPECT_EQ(find("ALPHA", {0, 0}, Forward, false), "0,0");
    EXPECT_EQ(find("alpha", {0, 0}, Forward, true), "1,1");
    EXPECT_EQ(find("alpha", {1, 1}, Forward, true), "0,0");
    EXPECT_EQ(find("alpha", {0, 0}, Backward, true), "1,1");
    EXPECT_EQ(find("\u00FCber", {0, 0}, Forward, false), "1,1");
    EXPECT_EQ(find("gamma", {2, 0}, Forward, true), "2,0");
    EXPECT_EQ(find("delta", {0, 0}, Forward, false), "none");
    EXPECT_EQ(find("", {0, 0}, Forward, false), "none");
    ASSERT_TRUE(source.Sort(0, true));
    EXPECT_EQ(find("gamma", {2, 1}, Forward, true), "0,0");
    source.SetRows(rowsOf({{"Hauptstraße", "x"}, {"HAUPTSTRASSE", "\uFB01nis"}}, 2));
    for (const char* street : {"straße", "Strasse", "STRAẞE"}) {
        EXPECT_EQ(find(street, {0, 1}, Forward, false), "1,0") << street;
        EXPECT_EQ(find(street, {1, 1}, Forward, false), "0,0") << street;
    }
    EXPECT_EQ(find("\uFB01", {0, 0}, Forward, false), "1,1");
    EXPECT_EQ(find("fi", {0, 0}, Forward, false), "1,1");
}

} // namespace
} // namespace tavix
