#pragma once

#include "filter/ValueFilter.h"
#include "report/DistributionKind.h"
#include "report/ReportSubject.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tavix {

class CTavixDoc;
class DistributionRows;
class PrViewDisplayMessage;
class PrViewer;

/// The name of the list of a distribution.
[[nodiscard]] std::string_view distributionListName(DistributionKind kind);
/// Its rows, empty.
[[nodiscard]] std::unique_ptr<DistributionRows> makeDistributionRows(DistributionKind kind);

/// A tab of a field's distribution without its window: reads the rows, applies the filter that the document keeps for
/// the field, and decides which commands are enabled and what the menu entries and the line above the list say.
class FreqDistModel {
  public:
    /// The enabled commands, and the texts of the menu entries that filter by the selected rows.
    struct Controls {
        bool menu = false;         ///< the context menu as a whole
        bool drillThrough = false; ///< into the current row
        bool byValue = false;      ///< filter to the selected values, or exclude them
        bool filter = false;
        bool stopFiltering = false;
        std::string_view keepText;
        std::string_view excludeText;

        bool operator==(const Controls&) const = default;
    };
    /// The line above the list.
    struct Line {
        bool isShown = false;
        bool isAlarming = false;
        std::string text;

        bool operator==(const Line&) const = default;
    };
    enum class Filling { Done, Stopped, Failed };

    /// All references must outlive the model. The subject may change between two calls.
    FreqDistModel(CTavixDoc& document, const ReportSubject& subject, DistributionKind kind, DistributionRows& rows,
                  bool isTornOff);

    [[nodiscard]] DistributionKind Kind() const { return m_kind; }
    /// The filter of the subject's field; "" without one.
    [[nodiscard]] const std::string& GetFilter() const;
    [[nodiscard]] bool IsFiltered() const { return !GetFilter().empty(); }
    /// Whether the rows are those of this field under another filter.
    [[nodiscard]] bool IsOutdated(int fieldId) const;

    /// Why there is nothing to read; "" when there is a field.
    [[nodiscard]] std::string GetObstacle() const;
    /// Reads the rows of the subject's field, which it must have; `wasStopped` is asked after a failure. A stopped
    /// reading leaves the rows of a filtered list as they were, and empties any other. After a failure the rows are as
    /// before, and their error text says why.
    [[nodiscard]] Filling Fill(PrViewer& viewer, PrViewDisplayMessage& sink, const std::function<bool()>& wasStopped);

    [[nodiscard]] bool CanFilter() const;
    [[nodiscard]] bool CanStopFiltering() const { return IsLoaded() && IsFiltered(); }
    [[nodiscard]] bool CanDrillThrough(std::int64_t row) const;
    [[nodiscard]] Controls Enabled(std::int64_t currentRow, std::span<const std::int64_t> selectedRows) const;
    [[nodiscard]] Line FilterLine() const;

    /// The filter that also keeps or removes the values of these rows; nothing, after a message, when there is none.
    [[nodiscard]] std::optional<std::string> FilterByRows(std::span<const std::int64_t> rows, ValueChoice choice) const;
    /// Stores the filter of a field in the document and among the recent ones.
    void SetFilter(int fieldId, std::string filter);

  private:
    /// Whether the rows, or their absence, are those of the subject's field.
    [[nodiscard]] bool IsLoaded() const;
    void KeepOrEmptyRows();

    CTavixDoc& m_document;
    const ReportSubject& m_subject;
    DistributionKind m_kind;
    DistributionRows& m_rows;
    bool m_isTornOff;
    std::optional<int> m_loadedField; ///< the field of the rows, also if they are missing because its filter failed
    std::string m_appliedFilter;      ///< of the last reading
    std::string m_failure;            ///< why the last reading gave no rows; "" when it did
};

} // namespace tavix
