#pragma once

#include "report/RunOverview.h"
#include "tabs/RuleRows.h"

#include <array>
#include <cstdint>
#include <locale>
#include <map>
#include <string>
#include <vector>

namespace tavix {

/// Where a figure of the overview leads.
struct OverviewDoor {
    enum class Place {
        None,
        Table,
        Field,
        Metric,       ///< `item` is the metric's id, `field` its field
        CustomMetric, ///< `item` is its id
        Rule,         ///< `item` is its id
        Alerts,       ///< of the table
    };
    Place place = Place::None;
    int table = -1;
    int field = -1;
    int item = -1;

    bool operator==(const OverviewDoor&) const = default;
};

/// A large figure of the overview.
struct OverviewCard {
    std::string caption;
    std::string figure;
    std::string change;  ///< since the run before; "" when there is nothing to say
    std::string ofRun;   ///< "of 1,234 in the run" where the overview shows one of several data sources
    std::string toolTip; ///< what the door opens
    bool isAlarming = false;
    OverviewDoor door;
};

/// One list of the overview: a row leads to an object.
class OverviewList final : public CellRows {
  public:
    struct Line {
        std::vector<GridCell> cells;
        OverviewDoor door;
        std::string toolTip = {}; ///< of the first column
    };

    OverviewList(std::string_view title, std::vector<GridColumn> columns)
        : CellRows(std::move(columns)), m_title(title) {}

    void Show(std::vector<Line> lines, std::string_view emptyText);
    using CellRows::SetColumns;
    /// The title with the number of rows: "Fields with nulls (12)".
    [[nodiscard]] std::string GetTitle() const;
    [[nodiscard]] const std::string& GetName() const { return m_title; }
    [[nodiscard]] const OverviewDoor& GetDoor(std::int64_t row) const { return m_doors.at(Record(row)); }
    [[nodiscard]] std::string GetToolTip(int column, std::int64_t row) const override;

  private:
    std::string m_title;
    std::vector<OverviewDoor> m_doors;   ///< by record
    std::vector<std::string> m_toolTips; ///< by record
};

/// The overview of a run, or of one of its data sources, as it is shown.
class RunOverviewModel {
  public:
    static constexpr int kAllSources = -1;
    enum List { Tables, Alerts, Findings, Nulls, News, ListCount };

    /// Formats dates for this locale.
    explicit RunOverviewModel(const std::locale& locale = userLocale());
    RunOverviewModel(const RunOverviewModel&) = delete;
    RunOverviewModel& operator=(const RunOverviewModel&) = delete;

    /// `reportTitle` names the run as a whole. A source that the run does not have means all.
    void Fill(RunOverview overview, const std::string& reportTitle, int source);
    /// Shows another data source of the same run.
    void ShowSource(int source);

    [[nodiscard]] const std::string& GetTitle() const { return m_title; }
    [[nodiscard]] const std::string& GetDetail() const { return m_detail; }
    [[nodiscard]] const std::vector<OverviewCard>& GetCards() const { return m_cards; }
    [[nodiscard]] OverviewList& GetList(int index) { return m_lists.at(static_cast<std::size_t>(index)); }

  private:
    using TablesById = std::map<int, const RunOverview::Table*>;

    [[nodiscard]] bool Shows(const RunOverview::Table& table) const;
    [[nodiscard]] bool ShowsTable(int table) const;
    [[nodiscard]] const RunOverview::Table* FindTable(int table) const;
    [[nodiscard]] std::string NameOf(int table) const;
    void MakeTitle();
    void MakeCards();
    void AddCounts();
    void AddTroubles();
    void AddFindings();
    void FillTables();
    void FillAlerts();
    void FillFindings();
    void FillNulls();
    void FillNews();

    std::locale m_locale;
    RunOverview m_overview;
    TablesById m_tables;       ///< of the run
    TablesById m_tablesBefore; ///< of the run before
    std::string m_reportTitle;
    int m_source = kAllSources;
    std::string m_title;
    std::string m_detail;
    std::vector<OverviewCard> m_cards;
    std::array<OverviewList, ListCount> m_lists;
};

/// "0.4 s", "12 s", "3 min 20 s", "2 h 5 min".
[[nodiscard]] std::string durationText(double seconds);

} // namespace tavix
