#pragma once

#include "grid/ListRows.h"
#include "report/FieldRecord.h"

#include <array>
#include <optional>

namespace tavix {

class PrViewer;
class ProfileCursor;

/// The lowest and the highest values of one field side by side: the n-th lowest and the n-th highest share a row, and
/// the shorter side ends in empty cells. Values beyond a fence carry an icon.
class OutlierRows final : public ListRows {
  public:
    OutlierRows();

    /// False when the repository fails: the rows are then unchanged, and GetErrorText() is the message.
    bool Fill(PrViewer& viewer, const FieldRecord& field);
    void Clear() override;
    /// How many of the field's values are listed, and where the fences are.
    [[nodiscard]] ListBase GetBase() const override;

    /// The cell's value, which may be null; nothing for an empty cell and for a placeholder.
    [[nodiscard]] std::optional<KvbString> GetValue(int column, std::int64_t row) const;

  private:
    struct Outlier {
        KvbString value;
        int fence = 0;
    };
    using Pair = std::array<std::optional<Outlier>, 2>; ///< low, high

    [[nodiscard]] static std::vector<Pair> ReadPairs(ProfileCursor& rows);
    [[nodiscard]] GridCell CellOf(int column, std::size_t record) const override;

    std::vector<Pair> m_pairs;
    ListBase m_base;
};

} // namespace tavix
