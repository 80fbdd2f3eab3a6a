#include "access/PrViewDisplayMessage.h"
#include "access/PrViewer.h"
#include "filter/FilterMemory.h"
#include "report/FieldRecords.h"
#include "settings/Settings.h"
#include "support/LongList.h"
#include "support/RowsText.h"
#include "tabs/DistributionRows.h"
#include "tabs/FreqDistModel.h"
#include "tabs/tests/SampleDocument.h"

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;
using Controls = FreqDistModel::Controls;
using Filling = FreqDistModel::Filling;
using Line = FreqDistModel::Line;
using Lines = std::vector<std::string>;

/// With `stops`, stops the reading at the first report of progress.
class Stopper final : public PrViewDisplayMessage {
  public:
    bool progress(std::string_view, std::int64_t, std::int64_t) override {
        wasAsked = true;
        return !stops;
    }
    bool stops = false;
    bool wasAsked = false;
};

/// Both tabs of a field of the sample, without their windows.
class FreqDistModels : public testing::SampleDocument {
  protected:
    struct Tab {
        Tab(CTavixDoc& document, const ReportSubject& subject, DistributionKind kind, bool isTornOff = false)
            : rows(makeDistributionRows(kind)), model(document, subject, kind, *rows, isTornOff) {}
        Controls enabled(std::vector<std::int64_t> selected) const {
            return model.Enabled(selected.empty() ? -1 : selected.front(), selected);
        }
        std::unique_ptr<DistributionRows> rows;
        FreqDistModel model;
    };

    void select(int table, int field) {
        m_subject = {};
        m_subject.selection.kind = ReportSelection::Kind::Table;
        m_subject.selection.table.id = table;
        m_subject.selection.fieldId = field;
        FieldRecords records;
        if (auto found = records.Find(*m_document.GetViewer(), m_subject.selection))
            m_subject.field = **found;
    }
    void select(const char* field) {
        select(m_sample.tables.at("customers"), m_sample.fields.at(std::string("customers/") + field));
    }
    Filling fill(Tab& tab) {
        return tab.model.Fill(*m_document.GetViewer(), m_sink, [this] { return m_sink.stops; });
    }
    void setFilter(const std::string& filter) {
        m_document.GetFieldFilters().Set(m_subject.field->id, DistributionKind::Frequency, filter);
    }

    ReportSubject m_subject;
    Stopper m_sink;
    Tab m_values{m_document, m_subject, DistributionKind::Frequency};
};

TEST_F(FreqDistModels, SelectionDecidesWhatIsEnabled) {
    ASSERT_TRUE(m_settings->write("TAVIX", "MaxFreqVals", "2"));
    constexpr std::string_view kKeep = "Filter to T&his Value";
    constexpr std::string_view kExclude = "&Exclude This Value";
    select("name");
    EXPECT_EQ((Controls{true, false, false, false, false, kKeep, kExclude}), m_values.enabled({0})) << "not read yet";
    ASSERT_EQ(Filling::Done, fill(m_values));
    EXPECT_EQ((Controls{true, false, false, true, false, kKeep, kExclude}), m_values.enabled({}));
    EXPECT_EQ((Controls{true, true, true, true, false, kKeep, kExclude}), m_values.enabled({0}));
    EXPECT_EQ((Controls{true, false, true, true, false, "Filter to T&hese Values", "&Exclude These Values"}),
              m_values.enabled({0, 1}));
    ASSERT_TRUE(m_values.rows->IsOther(2));
    EXPECT_EQ((Controls{true, false, false, true, false, kKeep, kExclude}), m_values.enabled({2}));
    EXPECT_FALSE(m_values.enabled({0, 2}).byValue) << "\"Other\" is among them";
    EXPECT_FALSE(m_values.model.CanDrillThrough(3)) << "there is no such row";

    setFilter("`Count` > 0");
    EXPECT_TRUE(m_values.enabled({0}).stopFiltering);
    ASSERT_TRUE(m_settings->write("Settings", "ConnectionType", "CTDD"));
    EXPECT_FALSE(m_values.enabled({0}).drillThrough) << "where sources cannot be read";
    m_document.Clear();
    EXPECT_EQ((Controls{true, false, false, false, false, kKeep, kExclude}), m_values.enabled({0}));
}

TEST_F(FreqDistModels, PatternsHaveTheirOwnWordsAndTornOffTabsNoMenu) {
    Tab patterns(m_document, m_subject, DistributionKind::Pattern, true);
    select("since");
    ASSERT_EQ(Filling::Done, fill(patterns));
    EXPECT_EQ((Controls{false, true, true, true, false, "Filter to T&his Pattern", "&Exclude This Pattern"}),
              patterns.enabled({0}));
    EXPECT_EQ("Filter to T&hese Patterns", patterns.enabled({0, 1}).keepText);
    EXPECT_EQ("&Exclude These Patterns", patterns.enabled({0, 1}).excludeText);
    EXPECT_EQ("Pattern Frequency Distribution", distributionListName(DistributionKind::Pattern));

    // A field without patterns shows one row that is not a pattern.
    Tab attached(m_document, m_subject, DistributionKind::Pattern);
    select("remark");
    ASSERT_EQ(Filling::Done, fill(attached));
    ASSERT_THAT(linesOf(*attached.rows), ElementsAre("(Not calculated)?|||"));
    EXPECT_EQ((Controls{false, false, false, false, false, "Filter to T&his Pattern", "&Exclude This Pattern"}),
              attached.enabled({0}));
    m_subject.field.reset();
    EXPECT_EQ("This run does not have the field.", attached.model.GetObstacle());
    EXPECT_FALSE(attached.model.CanFilter());
}

TEST_F(FreqDistModels, ValuesOfRowsBecomeAFilterOfTheirField) {
    select("name");
    ASSERT_EQ(Filling::Done, fill(m_values));
    const std::vector<std::int64_t> rows = {1, 2}; // Grace and null
    const auto filter = m_values.model.FilterByRows(rows, ValueChoice::Keep);
    ASSERT_TRUE(filter);
    EXPECT_FALSE(m_values.model.IsFiltered()) << "composed, not set";
    m_values.model.SetFilter(m_subject.field->id, *filter);
    EXPECT_TRUE(m_values.model.IsOutdated(m_subject.field->id));
    EXPECT_FALSE(m_values.model.IsOutdated(m_subject.field->id + 1)) << "another field's filter";
    ASSERT_EQ(Filling::Done, fill(m_values));
    EXPECT_FALSE(m_values.model.IsOutdated(m_subject.field->id));
    EXPECT_EQ(Lines({"Grace|>302|>56.98[0.57]", "(null value)~|>228|>43.02[0.43]"}), linesOf(*m_values.rows));
    EXPECT_EQ("Only rows with: Value equal to \"Grace\" OR Value is null", m_values.model.FilterLine().text);
    EXPECT_FALSE(m_values.model.FilterLine().isAlarming);
    EXPECT_EQ("", m_document.GetFieldFilters().Get(m_subject.field->id, DistributionKind::Pattern));

    setFilter("`Count` > 0");
    m_messages.expectWarn("The filter was written as an expression, so values cannot be added to it. Edit the "
                          "expression, or stop filtering first.");
    EXPECT_FALSE(m_values.model.FilterByRows(std::vector<std::int64_t>{0}, ValueChoice::Exclude));
}

TEST_F(FreqDistModels, AFilterThatFailsKeepsTheRowsAndCanBeCorrected) {
    select("name");
    EXPECT_EQ(Line{}, m_values.model.FilterLine());
    ASSERT_EQ(Filling::Done, fill(m_values));
    const Lines before = linesOf(*m_values.rows);
    setFilter("`Count` > ");
    EXPECT_EQ(Filling::Failed, fill(m_values));
    EXPECT_EQ(before, linesOf(*m_values.rows));
    EXPECT_EQ((Line{true, true, "Not filtered. " + m_document.GetViewer()->getErrorString().str()}),
              m_values.model.FilterLine());
    EXPECT_TRUE(m_values.model.CanFilter());
    EXPECT_TRUE(m_values.model.CanStopFiltering());

    setFilter("9223372036854775800 + `Count` > 5");
    ASSERT_EQ(Filling::Done, fill(m_values));
    const Line warning = m_values.model.FilterLine();
    EXPECT_TRUE(warning.isAlarming);
    EXPECT_THAT(warning.text, StartsWith("The filter could not be evaluated for 5"));
    EXPECT_THAT(warning.text, ::testing::EndsWith("  Only rows with: 9223372036854775800 + `Count` > 5"));

    // Without a filter, a repository that fails leaves nothing to filter.
    setFilter("");
    m_document.GetViewer()->close();
    EXPECT_EQ(Filling::Failed, fill(m_values));
    EXPECT_FALSE(m_values.model.CanFilter());
}

TEST_F(FreqDistModels, AStoppedReadingKeepsFilteredRowsOnly) {
    const auto list = testing::LongList::build(m_folder.file("long.tavix"));
    ASSERT_TRUE(m_document.OpenReport(list.path, list.job));
    select(list.table, list.field);
    setFilter("`Count` > 9998");
    ASSERT_EQ(Filling::Done, fill(m_values));
    const Lines before = linesOf(*m_values.rows);
    ASSERT_EQ(2U, before.size());

    m_sink.stops = true;
    setFilter("instr(`Value`, 'x') == 0");
    EXPECT_EQ(Filling::Stopped, fill(m_values));
    EXPECT_TRUE(m_sink.wasAsked);
    EXPECT_EQ(before, linesOf(*m_values.rows));
    EXPECT_EQ((Line{true, true, "Not filtered. The reading was stopped; the previous rows are shown."}),
              m_values.model.FilterLine());
    EXPECT_TRUE(m_values.model.CanStopFiltering());

    // Rows that passed a filter would be mistaken for the whole list.
    setFilter("");
    ASSERT_TRUE(m_settings->write("TAVIX", "MaxFreqVals", "9000"));
    EXPECT_EQ(Filling::Stopped, fill(m_values));
    EXPECT_EQ(Lines(), linesOf(*m_values.rows));
    EXPECT_EQ("The reading was stopped before its end.", m_values.rows->GetEmptyText());
    EXPECT_TRUE(m_values.model.CanFilter());
}

TEST_F(FreqDistModels, TheSearchFieldAndTheDialogEditOneFilter) {
    using Search = FreqDistModel::SearchField;
    const std::string hint = "Search: text, =x, >n, ~regexp, null";
    select("name");
    EXPECT_FALSE(m_values.model.Search("").isEnabled);
    EXPECT_EQ("", m_values.model.BaseText());
    ASSERT_EQ(Filling::Done, fill(m_values));
    EXPECT_EQ((Search{true, "", hint}), m_values.model.Search(""));
    EXPECT_EQ("Shares of 1,000 records", m_values.model.BaseText());
    EXPECT_TRUE(m_values.model.SearchesWhileTyping());

    const auto filter = m_values.model.FilterByText("RA");
    ASSERT_TRUE(filter && *filter);
    m_values.model.SetFilter(m_subject.field->id, **filter, true);
    EXPECT_EQ(0U, FilterMemory(*m_settings).Recent(DistributionKind::Frequency).size()) << "while the user types";
    ASSERT_EQ(Filling::Done, fill(m_values));
    EXPECT_EQ(Lines({"Grace|>302|>100.00[1.00]"}), linesOf(*m_values.rows));
    EXPECT_EQ("302 of 1,000 records pass", m_values.model.BaseText());
    EXPECT_EQ("Only rows with: Value contains \"RA\" (case insensitive)", m_values.model.FilterLine().text);
    EXPECT_EQ((Search{true, "RA", hint}), m_values.model.Search("x")) << "of a filter set elsewhere";
    EXPECT_EQ((Search{true, " RA ", hint}), m_values.model.Search(" RA ")) << "as it was typed";
    EXPECT_EQ(std::nullopt, *m_values.model.FilterByText("RA")) << "the list has it";
    EXPECT_EQ("Enter a value after >", m_values.model.FilterByText(">").error().text);

    setFilter("`Count` > 300");
    EXPECT_EQ((Search{true, "", "(edited in the dialog)"}), m_values.model.Search("RA"));
    EXPECT_EQ("", m_values.model.FilterByText("")->value_or("?"));
    setFilter("");
    EXPECT_EQ((Search{true, "", hint}), m_values.model.Search("RA"));

    Tab patterns(m_document, m_subject, DistributionKind::Pattern);
    select("since");
    ASSERT_EQ(Filling::Done, fill(patterns));
    EXPECT_EQ("Shares of 999 non-null values", patterns.model.BaseText());
    patterns.model.SetFilter(m_subject.field->id, **patterns.model.FilterByText("a"));
    ASSERT_EQ(Filling::Done, fill(patterns));
    EXPECT_EQ("0 of 999 non-null values pass", patterns.model.BaseText());
}

std::string extentOf(const FreqDistModel& model) {
    const FreqDistModel::Extent extent = model.ListExtent();
    std::string text = extent.text;
    for (const auto& step : extent.steps)
        text += fmt::format(" · {} [{}]", step.text, step.limit);
    return text;
}

TEST_F(FreqDistModels, TheLimitIsChangedForThisListUntilTheNextField) {
    const auto list = testing::LongList::build(m_folder.file("long.tavix"));
    ASSERT_TRUE(m_document.OpenReport(list.path, list.job));
    select(list.table, list.field);
    EXPECT_EQ("", extentOf(m_values.model));
    ASSERT_EQ(Filling::Done, fill(m_values));
    EXPECT_EQ("showing 100 of 10,000 values · show 1,000 [1000] · all [10000]", extentOf(m_values.model));
    m_values.model.ShowUpTo(1000);
    ASSERT_EQ(Filling::Done, fill(m_values));
    EXPECT_EQ(1001, m_values.rows->GetRowCount());
    EXPECT_EQ("showing 1,000 of 10,000 values · all [10000] · show 100 [100]", extentOf(m_values.model));
    EXPECT_EQ("", readText(*m_settings, Setting::MaxFreqVals)) << "the option stays as it is";

    // Stopped, the list is as before.
    const Lines before = linesOf(*m_values.rows);
    m_sink.stops = true;
    m_values.model.ShowUpTo(10000);
    EXPECT_EQ(Filling::Stopped, fill(m_values));
    EXPECT_EQ(before, linesOf(*m_values.rows));
    EXPECT_EQ("The reading was stopped  ·  showing 1,000 of 10,000 values · all [10000] · show 100 [100]",
              extentOf(m_values.model));
    m_sink.stops = false;
    m_values.model.ShowUpTo(10000);
    ASSERT_EQ(Filling::Done, fill(m_values));
    EXPECT_EQ(10000, m_values.rows->GetRowCount());
    EXPECT_EQ("showing all 10,000 values · show 100 [100]", extentOf(m_values.model));

    ASSERT_TRUE(m_document.OpenReport(m_sample.path, m_sample.salesJob));
    select("city");
    ASSERT_EQ(Filling::Done, fill(m_values));
    EXPECT_EQ("showing 100 of 151 values · all [151]", extentOf(m_values.model));
    setFilter("`Count` > 149");
    ASSERT_EQ(Filling::Done, fill(m_values));
    EXPECT_EQ("", extentOf(m_values.model)) << "all are shown";
}

} // namespace
} // namespace tavix
