#include "grid/OptionalColumns.h"

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;

/// "Value", then "Share" shown at first and "Sum" hidden at first.
class Columns final : public CUGDataSource {
  public:
    [[nodiscard]] int GetColumnCount() const override { return 3; }
    [[nodiscard]] std::int64_t GetRowCount() const override { return 0; }
    [[nodiscard]] GridColumn GetColumn(int column) const override {
        GridColumn heading;
        heading.heading = column == 0 ? "Value" : column == 1 ? "Share" : "Sum";
        heading.isOptional = column > 0;
        heading.isShownAtFirst = column != 2;
        return heading;
    }
    [[nodiscard]] GridCell GetCell(int, std::int64_t) const override { return {}; }
    bool Sort(int, bool) override { return false; }
};

class Memory final : public ColumnMemory {
  public:
    [[nodiscard]] std::optional<int> ReadWidth(const std::string&) const override { return std::nullopt; }
    void KeepWidth(const std::string&, int) override {}
    [[nodiscard]] std::optional<bool> ReadShown(const std::string& column) const override {
        const auto kept = shown.find(column);
        return kept == shown.end() ? std::nullopt : std::optional(kept->second);
    }
    void KeepShown(const std::string& column, bool isShown) override { shown[column] = isShown; }

    std::map<std::string, bool> shown;
};

TEST(OptionalColumns, AreShownAsTheyComeUntilTheUserChooses) {
    const Columns source;
    OptionalColumns columns;
    EXPECT_THAT(OptionalColumns::Optional(source), ElementsAre(1, 2));
    EXPECT_THAT(columns.ShownColumns(source), ElementsAre(0, 1));
    columns.Choose(source.GetColumn(2), true);
    columns.Choose(source.GetColumn(1), false);
    EXPECT_THAT(columns.ShownColumns(source), ElementsAre(0, 2)) << "kept without a memory, too";
}

TEST(OptionalColumns, TheChoiceIsRemembered) {
    const Columns source;
    Memory memory;
    {
        OptionalColumns columns;
        columns.SetMemory(&memory);
        columns.Choose(source.GetColumn(2), true);
    }
    OptionalColumns again;
    EXPECT_THAT(again.ShownColumns(source), ElementsAre(0, 1));
    again.SetMemory(&memory);
    EXPECT_THAT(again.ShownColumns(source), ElementsAre(0, 1, 2));
    // A stored choice does not hide a column that is no longer optional.
    memory.shown["Value"] = false;
    EXPECT_THAT(again.ShownColumns(source), ElementsAre(0, 1, 2));
}

} // namespace
} // namespace tavix
