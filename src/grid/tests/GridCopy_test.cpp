#include "grid/GridCopy.h"

#include <gtest/gtest.h>

#include <array>
#include <numeric>
#include <vector>

namespace tavix {
namespace {

class Numbered : public CUGDataSource {
  public:
    int GetColumnCount() const override { return 2; }
    std::int64_t GetRowCount() const override { return 3; }
    GridColumn GetColumn(int column) const override {
        GridColumn heading;
        heading.heading = column == 0 ? "Field Name" : "Größe";
        return heading;
    }
    GridCell GetCell(int column, std::int64_t row) const override {
        GridCell cell;
        cell.text = (column == 0 ? "f" : "v") + std::to_string(row);
        return cell;
    }
    bool Sort(int, bool) override { return false; }
};

std::string copyAll(const CUGDataSource& source, std::span<const std::int64_t> rows, bool withHeadings) {
    std::vector<int> columns(static_cast<std::size_t>(source.GetColumnCount()));
    std::iota(columns.begin(), columns.end(), 0);
    return copyRows(source, rows, columns, withHeadings);
}

TEST(GridCopy, CellsByTabRowsEndedByCarriageReturnAndLineFeed) {
    const std::array<std::int64_t, 2> rows = {2, 0};
    EXPECT_EQ("f2\tv2\r\nf0\tv0\r\n", copyAll(Numbered(), rows, false));
    EXPECT_EQ("Field Name\tGröße\r\nf2\tv2\r\nf0\tv0\r\n", copyAll(Numbered(), rows, true));
    EXPECT_EQ("", copyAll(Numbered(), {}, false));
    const std::array<int, 1> second = {1};
    EXPECT_EQ("Größe\r\nv2\r\nv0\r\n", copyRows(Numbered(), rows, second, true)) << "without a hidden column";
}

class Remarked final : public Numbered {
  public:
    GridColumn GetColumn(int column) const override {
        GridColumn heading = Numbered::GetColumn(column);
        heading.mark = column == 1 ? "(sample)" : "";
        return heading;
    }
    GridCell GetCell(int column, std::int64_t row) const override {
        GridCell cell = Numbered::GetCell(column, row);
        cell.mark = column == 0 ? "(sample)" : "";
        return cell;
    }
};

TEST(GridCopy, RemarksAreCopiedWithWhatTheyAreSaidOf) {
    const std::array<std::int64_t, 1> rows = {2};
    EXPECT_EQ("Field Name\tGröße (sample)\r\nf2 (sample)\tv2\r\n", copyAll(Remarked(), rows, true));
}

/// One row whose cells hold these texts.
class OneRow final : public CUGDataSource {
  public:
    explicit OneRow(std::vector<std::string> texts) : m_texts(std::move(texts)) {}
    [[nodiscard]] int GetColumnCount() const override { return static_cast<int>(m_texts.size()); }
    [[nodiscard]] std::int64_t GetRowCount() const override { return 1; }
    [[nodiscard]] GridColumn GetColumn(int) const override { return {}; }
    [[nodiscard]] GridCell GetCell(int column, std::int64_t) const override {
        GridCell cell;
        cell.text = m_texts[static_cast<std::size_t>(column)];
        return cell;
    }
    bool Sort(int, bool) override { return false; }

  private:
    std::vector<std::string> m_texts;
};

/// Paints something shorter than the text.
class Shortened final : public Numbered {
  public:
    GridCell GetCell(int column, std::int64_t row) const override {
        GridCell cell = Numbered::GetCell(column, row);
        cell.shown = "short";
        return cell;
    }
};

TEST(GridCopy, TheFullTextIsCopiedInPlaceOfThePaintedOne) {
    const std::array<std::int64_t, 1> rows = {2};
    EXPECT_EQ("f2\tv2\r\n", copyAll(Shortened(), rows, false));
}

TEST(GridCopy, ACellThatWouldBreakTheTableIsQuoted) {
    const std::array<std::int64_t, 1> row = {0};
    EXPECT_EQ("\"a\tb\"\t\"two\nlines\"\t\"a \"\"b\"\"\r\"\tsays \"x\"\t\"\"\"x\"\"\"\t\r\n",
              copyAll(OneRow({"a\tb", "two\nlines", "a \"b\"\r", "says \"x\"", "\"x\"", ""}), row, false));
}

} // namespace
} // namespace tavix
