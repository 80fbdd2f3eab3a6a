#include "tabs/StdMetRows.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"
#include "base/NumberText.h"
#include "grid/CellOrder.h"
#include "report/CountText.h"
#include "report/FitReadings.h"
#include "settings/MetricDisplay.h"
#include "tabs/FieldPictures.h"
#include "tabs/MetricText.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavix {

namespace {

constexpr int kTextWidth = 130;
constexpr int kIconWidth = 25;
constexpr int kPictureWidth = 86;
constexpr int kTrendWidth = 140;
constexpr int kLastRuns = 12;

// The source of a collection's field. The catalog is shown only together with a schema.
std::string sourceText(const ProfileCursor& cursor) {
    using namespace layout;
    std::string source = textAt(cursor, SourceDsn);
    const std::string schema = textAt(cursor, SourceSchema);
    const std::string catalog = textAt(cursor, SourceCatalog);
    if (!schema.empty()) {
        if (!catalog.empty())
            source += "." + catalog;
        source += "." + schema;
    }
    const std::string object = textAt(cursor, SourceObject);
    return source + "." + (object.empty() ? textAt(cursor, SourceTable) : object);
}

GridColumn column(std::string heading, int width, CellAlignment alignment = CellAlignment::Left) {
    GridColumn result;
    result.heading = std::move(heading);
    result.width = width;
    result.alignment = alignment;
    return result;
}

GridCell iconCell(int count, CellIcon icon) {
    GridCell cell;
    cell.alignment = CellAlignment::Center;
    if (count > 0)
        cell.icon = icon;
    // Sorts cells with an icon after those without.
    cell.order = count > 0 ? "1" : "0";
    return cell;
}

} // namespace

void StdMetRows::Clear() {
    m_columns.clear();
    m_rows.clear();
    m_shown.clear();
    m_error.clear();
    m_history = {};
    m_trendColumn = -1;
}

bool StdMetRows::Fill(PrViewer& viewer, const ReportSelection& selection, std::span<const MetricDisplay> metrics,
                      const CollectionsByField& collections, int trendMetric) {
    Clear();
    m_trendMetric = trendMetric;
    const bool isTable = selection.kind == ReportSelection::Kind::Table;
    m_isCollection = selection.kind == ReportSelection::Kind::Collection;
    if (!isTable && !m_isCollection)
        return true;
    MakeColumns(metrics, isTable && selection.table.isSample);
    if (isTable && !m_shown.empty())
        ReadHistory(viewer, selection.table.id);
    if (!m_shown.empty())
        MakePictureColumns();
    bool done = false;
    try {
        done = ReadFields(viewer, selection, collections);
        if (!done)
            m_error = viewer.getErrorString().str();
    } catch (const GenException& exception) {
        m_error = exception.getText().str();
    }
    if (!done)
        m_rows.clear();
    return done;
}

void StdMetRows::MakeColumns(std::span<const MetricDisplay> metrics, bool isSample) {
    m_columns.push_back(column("Field Name", kTextWidth));
    m_columns.back().locked = true;
    m_columns.push_back(column(m_isCollection ? "Source" : "Collections", kTextWidth));
    m_shown = shownMetrics(metrics);
    for (const int id : m_shown) {
        m_columns.push_back(column(metrics[static_cast<std::size_t>(id)].description, kTextWidth, metricAlignment(id)));
        m_columns.back().parameter = id;
        if (const MetricInfo* info = findMetric(id))
            m_columns.back().key = info->column;
        m_columns.back().mark = sampleMark(id, isSample);
        if (!m_columns.back().mark.empty()) {
            m_columns.back().toolTip = "Computed from the sampled records only; the other records may differ";
        }
    }
    m_columns.push_back(column("P", kIconWidth, CellAlignment::Center));
    m_columns.back().toolTip = "Primary key/foreign key analyses";
    m_columns.push_back(column("R", kIconWidth, CellAlignment::Center));
    m_columns.back().toolTip = "Redundant data analyses";
}

// When the runs before cannot be read, the metrics are shown without lines.
void StdMetRows::ReadHistory(PrViewer& viewer, int tableId) {
    if (!findMetric(m_trendMetric))
        return;
    try {
        m_history = readMetricHistory(viewer, tableId, m_trendMetric, kLastRuns);
    } catch (const GenException&) {
        m_history = {};
    }
}

void StdMetRows::MakePictureColumns() {
    m_columns.push_back(column("Filled", kPictureWidth));
    m_columns.back().isOptional = m_columns.back().pinned = true;
    m_columns.back().toolTip = "Rows that are null, have nothing but white space, or are filled";
    // A line needs two runs.
    if (m_history.runs.size() < 2)
        return;
    m_trendColumn = GetColumnCount();
    m_columns.push_back(column("Last Runs", kTrendWidth));
    m_columns.back().isOptional = m_columns.back().pinned = true;
    m_columns.back().mark = findMetric(m_trendMetric)->name;
    m_columns.back().key = "last runs";
    m_columns.back().toolTip =
        m_columns.back().mark + " in the last " + countOf(kLastRuns, "run") + ", and its change since the run before";
}

bool StdMetRows::ReadFields(PrViewer& viewer, const ReportSelection& selection, const CollectionsByField& collections) {
    const ProfileCursorHandle fields =
        m_isCollection ? viewer.getGlobalCollFieldListPKR(selection.id) : viewer.getFieldListPKR(selection.table.id);
    if (!fields)
        return false;
    FitReadings fits(viewer);
    const int tableColumn = layout::tailColumn(
        m_isCollection ? layout::kCollectionFieldListPkrMetrics : layout::kFieldListPkrMetrics, layout::TailTableId);
    while (fields->next()) {
        const int table = m_isCollection ? fields->getColumnInt(tableColumn) : selection.table.id;
        m_rows.push_back(ReadRow(*fields, collections, fits.Of(table, fields->getColumnInt(layout::FieldId))));
    }
    return true;
}

StdMetRows::Row StdMetRows::ReadRow(const ProfileCursor& cursor, const CollectionsByField& collections,
                                    std::optional<FitFigures> fits) const {
    using namespace layout;
    const int metrics = m_isCollection ? kCollectionFieldListPkrMetrics : kFieldListPkrMetrics;
    Row row;
    row.fieldId = cursor.getColumnInt(FieldId);
    row.fieldName = textAt(cursor, FieldName);
    row.fits = std::move(fits);
    const std::string typeCode = row.fits ? std::string(fitTypeCode(*row.fits)) : textAt(cursor, FieldTypeCode);
    row.cells.reserve(m_columns.size());

    const auto membership = collections.find(row.fieldId);
    const bool isMember = !m_isCollection && membership != collections.end() && !membership->second.empty();
    GridCell name;
    name.text = row.fieldName;
    name.icon = isMember ? CellIcon::FieldInLookup : CellIcon::Field;
    row.cells.push_back(std::move(name));
    GridCell origin;
    if (m_isCollection)
        origin.text = sourceText(cursor);
    else if (isMember)
        origin.text = fmt::format("{}", fmt::join(membership->second, ", "));
    row.cells.push_back(std::move(origin));

    for (const int id : m_shown) {
        GridCell cell = metricCell(id, typeCode, cursor.getColumnValue(metrics + id));
        if (cell.state == CellState::Ordinary)
            cell.mark = figureMark(id, false, row.fits);
        if (!m_isCollection)
            cell.alert = markOf(m_alerts.OfMetric(row.fieldName, id));
        row.cells.push_back(std::move(cell));
    }
    const int keyAnalyses = m_isCollection ? int{CollectionPkrKeyAnalyses} : int{PkrKeyAnalyses};
    const int redundancies = m_isCollection ? int{CollectionPkrRedundancies} : int{PkrRedundancies};
    row.cells.push_back(iconCell(cursor.getColumnInt(keyAnalyses), CellIcon::KeyAnalysis));
    row.cells.push_back(iconCell(cursor.getColumnInt(redundancies), CellIcon::Redundancy));
    if (!m_shown.empty()) {
        const auto figure = [&cursor, metrics](MetricId id) {
            return cursor.getColumnInt64(metrics + static_cast<int>(index(id)));
        };
        row.cells.push_back(
            filledCell(figure(MetricId::Count), figure(MetricId::NullCount), figure(MetricId::BlankCount)));
    }
    if (m_trendColumn >= 0)
        row.cells.push_back(trendCell(m_trendMetric, m_history.Of(row.fieldId)));
    if (m_trendColumn >= 0 && row.cells.back().state == CellState::Ordinary)
        row.cells.back().mark = figureMark(m_trendMetric, false, row.fits);
    return row;
}

int StdMetRows::GetFieldId(std::int64_t row) const {
    return m_rows.at(static_cast<std::size_t>(row)).fieldId;
}

const std::string& StdMetRows::GetFieldName(std::int64_t row) const {
    return m_rows.at(static_cast<std::size_t>(row)).fieldName;
}

std::int64_t StdMetRows::FindField(int fieldId) const {
    const auto found =
        std::find_if(m_rows.begin(), m_rows.end(), [fieldId](const Row& row) { return row.fieldId == fieldId; });
    return found == m_rows.end() ? -1 : found - m_rows.begin();
}

int StdMetRows::GetWatchable(int column) const {
    if (m_isCollection || column < 0 || column >= GetColumnCount())
        return -1;
    const int metric = GetColumn(column).parameter;
    const MetricInfo* const info = findMetric(metric);
    return info && info->isFigure() ? metric : -1;
}

const std::vector<AlertState>& StdMetRows::GetAlerts(int column, std::int64_t row) const {
    static const std::vector<AlertState> kNone;
    return m_isCollection ? kNone : m_alerts.OfMetric(GetFieldName(row), GetColumn(column).parameter);
}

GridColumn StdMetRows::GetColumn(int column) const {
    return m_columns.at(static_cast<std::size_t>(column));
}

GridCell StdMetRows::GetCell(int column, std::int64_t row) const {
    return m_rows.at(static_cast<std::size_t>(row)).cells.at(static_cast<std::size_t>(column));
}

std::string StdMetRows::GetToolTip(int column, std::int64_t row) const {
    const Row& field = m_rows.at(static_cast<std::size_t>(row));
    const int metric = IsTrend(column) ? m_trendMetric : GetColumn(column).parameter;
    const std::string parts[] = {fitToolTip(metric, field.fits),
                                 IsTrend(column)
                                     ? trendToolTip(m_trendMetric, m_history, m_history.Of(field.fieldId), m_locale)
                                     : alertLines(GetAlerts(column, row), m_locale)};
    const bool areBoth = !parts[0].empty() && !parts[1].empty();
    return parts[0] + (areBoth ? "\n" : "") + parts[1];
}

bool StdMetRows::Sort(int column, bool descending) {
    if (column < 0 || column >= GetColumnCount())
        return false;
    const auto at = static_cast<std::size_t>(column);
    const auto cellOf = [at](const Row& row) -> const GridCell& { return row.cells[at]; };
    sortRowsByCell(m_rows, cellOf, descending);
    return true;
}

} // namespace tavix
