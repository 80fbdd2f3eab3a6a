#pragma once

#include "grid/CUGDataSource.h"

#include <QAbstractTableModel>

namespace tavix {

/// Adapts a grid data source to a Qt model. Cells are fetched on demand and not cached.
class GridModel final : public QAbstractTableModel {
    Q_OBJECT
  public:
    using QAbstractTableModel::QAbstractTableModel;

    /// Not owned; must outlive the model or be taken back with null.
    void setSource(CUGDataSource* source);
    [[nodiscard]] CUGDataSource* source() const { return m_source; }
    /// Call after the source's rows or columns were replaced.
    void sourceChanged();
    /// Call after the source's rows were sorted; persistent indexes do not survive it.
    void orderChanged();
    /// The whole cell in one fetch, for painting.
    [[nodiscard]] GridCell cell(const QModelIndex& index) const;

    /// What the source says about the cell beyond its text.
    [[nodiscard]] std::string toolTip(const QModelIndex& index) const;

    /// Role of a column's mark in headerData.
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
