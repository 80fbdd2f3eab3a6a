#pragma once

#include "grid/CUGDataSource.h"

#include <QAbstractTableModel>

namespace tavix {

/// Any grid data source as a Qt model. Cells are fetched when they are asked for and not kept.
class GridModel final : public QAbstractTableModel {
    Q_OBJECT
  public:
    using QAbstractTableModel::QAbstractTableModel;

    /// Not owned; must outlive the model or be taken back with null.
    void setSource(CUGDataSource* source);
    [[nodiscard]] CUGDataSource* source() const { return m_source; }
    /// The source's rows or columns are others now.
    void sourceChanged();
    /// The source's rows have another order now; persistent indexes must not be held across it.
    void orderChanged();
    /// One fetch for everything a painter needs.
    [[nodiscard]] GridCell cell(const QModelIndex& index) const;

    /// The remark below a heading, see headerData.
    static constexpr int kMarkRole = Qt::UserRole;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    CUGDataSource* m_source = nullptr;
};

[[nodiscard]] Qt::Alignment toQtAlignment(CellAlignment alignment);

} // namespace tavix
