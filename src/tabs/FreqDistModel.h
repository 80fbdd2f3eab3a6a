#pragma once

#include "base/Result.h"
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
#include <vector>

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
    /// The search field above the list.
    struct SearchField {
        bool isEnabled = false;
        std::string text;
        std::string placeholder;

        bool operator==(const SearchField&) const = default;
    };
    /// The line below a list that does not show all entries, or more than the options ask for.
    struct Extent {
        struct Step {
            std::string text;
            std::int64_t limit = 0;

            bool operator==(const Step&) const = default;
        };
        std::string text; ///< "" when all entries are listed as usual
        std::vector<Step> steps;

        bool operator==(const Extent&) const = default;
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
    /// reading leaves the rows as they were if they belong to a filtered list or are the field's under another limit,
    /// and empties any other list. After a failure the rows are as
    /// before, and their error text says why.
    [[nodiscard]] Filling Fill(PrViewer& viewer, PrViewDisplayMessage& sink, const std::function<bool()>& wasStopped);

    [[nodiscard]] bool CanFilter() const;
    [[nodiscard]] bool CanStopFiltering() const { return IsLoaded() && IsFiltered(); }
    [[nodiscard]] bool CanDrillThrough(std::int64_t row) const;
    [[nodiscard]] Controls Enabled(std::int64_t currentRow, std::span<const std::int64_t> selectedRows) const;
    [[nodiscard]] Line FilterLine() const;
    /// What the percentages are shares of; with a filter, how many of all pass it. "" without rows.
    [[nodiscard]] std::string BaseText() const;

    /// What the search field shows, `text` being its text now: that text as long as it means the list's filter, else
    /// what to type for the filter; empty for one that was edited in the dialog and cannot be typed.
    [[nodiscard]] SearchField Search(std::string_view text) const;
    /// The filter of a typed text; nothing when the list has it already. Fails with the message beside the field.
    [[nodiscard]] Result<std::optional<std::string>> FilterByText(std::string_view typed) const;
    /// Whether a pause in typing starts the search. In long lists only Return does.
    [[nodiscard]] bool SearchesWhileTyping() const;

    [[nodiscard]] Extent ListExtent() const;
    /// How many entries the list shows from the next reading on, in place of the setting, until it shows another field.
    void ShowUpTo(std::int64_t limit);

    /// The filter that also keeps or removes the values of these rows; nothing, after a message, when there is none.
    [[nodiscard]] std::optional<std::string> FilterByRows(std::span<const std::int64_t> rows, ValueChoice choice) const;
    /// Stores the filter of a field in the document, and unless it is provisional, among the recent ones.
    void SetFilter(int fieldId, std::string filter, bool isProvisional = false);

  private:
    /// Whether the rows, or their absence, are those of the subject's field.
    [[nodiscard]] bool IsLoaded() const;
    void KeepOrEmptyRows();
    [[nodiscard]] std::int64_t UsualLimit() const;
    [[nodiscard]] std::int64_t Limit() const;

    CTavixDoc& m_document;
    const ReportSubject& m_subject;
    DistributionKind m_kind;
    DistributionRows& m_rows;
    bool m_isTornOff;
    std::optional<int> m_loadedField; ///< the field of the rows, also if they are missing because its filter failed
    std::string m_appliedFilter;      ///< of the last reading
    std::string m_failure;            ///< why the last reading gave no rows; "" when it did
    /// The field, filter and limit of the rows.
    struct Reading {
        int field = -1;
        std::string filter;
        std::int64_t limit = 0;
    };
    std::optional<Reading> m_shown;
    struct ChosenLimit {
        int field = -1;
        std::int64_t limit = 0;
    };
    std::optional<ChosenLimit> m_chosenLimit;
};

} // namespace tavix
