#include "grid/GridCopy.h"

#include <gtest/gtest.h>

#include <array>

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

TEST(GridCopy, CellsByTabRowsEndedByCarriageReturnAndLineFeed) {
    const std::array<std::int64_t, 2> rows = {2, 0};
    EXPECT_EQ("f2\tv2\r\nf0\tv0\r\n", copyRows(Numbered(), rows, false));
    EXPECT_EQ("Field Name\tGröße\r\nf2\tv2\r\nf0\tv0\r\n", copyRows(Numbered(), rows, true));
    EXPECT_EQ("", copyRows(Numbered(), {}, false));
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
    EXPECT_EQ("Field Name\tGröße (sample)\r\nf2 (sample)\tv2\r\n", copyRows(Remarked(), rows, true));
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

TEST(GridCopy, ACellThatWouldBreakTheTableIsQuoted) {
    const std::array<std::int64_t, 1> row = {0};
    EXPECT_EQ("\"a\tb\"\t\"two\nlines\"\t\"a \"\"b\"\"\r\"\tsays \"x\"\t\"\"\"x\"\"\"\t\r\n",
              copyRows(OneRow({"a\tb", "two\nlines", "a \"b\"\r", "says \"x\"", "\"x\"", ""}), row, false));
}

} // namespace
} // namespace tavix
