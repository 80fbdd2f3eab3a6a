#include "base/GenException.h"
#include "base/NumberText.h"
#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "doc/CTavixDoc.h"
#include "support/RunScript.h"
#include "support/SampleAlerts.h"
#include "support/SampleRepository.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// Records the document's calls to frame and task list, one line each.
class Recorder final : public DocumentFrame, public TaskListKeeper {
  public:
    std::vector<std::string> lines;
    bool loading = false;
    bool creates = true;
    bool restores = true;
    bool throwsWhileLoading = false;

    std::vector<std::string> take() { return std::exchange(lines, {}); }

    void SetLoading(bool now) override { loading = now; }
    void Broadcast(RefreshHint hint) override {
        lines.push_back("hint " + std::to_string(static_cast<int>(hint)) + (loading ? " loading" : ""));
    }
    bool Create() override {
        lines.push_back("create");
        return creates;
    }
    void Save() override { lines.push_back("save"); }
    bool Restore() override {
        lines.push_back("restore");
        return restores;
    }
    void Load(ProfileCursor& tasks) override {
        lines.push_back("load");
        if (throwsWhileLoading)
            throw GenException("cut off");
        while (tasks.next()) {
        }
    }
};

class TavixDocTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(writeFirstStartDefaults(*m_settings));
        m_messages.onEvent = [this](const std::string& what) {
            if (what.starts_with("warn"))
                m_around.lines.push_back(what.substr(0, what.find('\n')));
        };
    }
    void open() {
        ASSERT_TRUE(m_doc.OpenReport(m_sample.path, m_sample.salesJob));
        m_around.lines.clear();
    }
    void damage(const std::string& script) const { testing::runScript(m_sample.path, script); }
    static std::string libraryText(const KvbString& connection, const std::function<bool(PrViewer&)>& failing) {
        const PrViewer::Handle viewer = PrViewer::create();
        EXPECT_FALSE(viewer->init(connection) && failing(*viewer));
        return viewer->getErrorString().str();
    }
    void expectNoReport() const {
        EXPECT_FALSE(m_doc.HasReport());
        EXPECT_EQ(m_doc.GetTitle(), "Untitled");
        EXPECT_EQ(m_doc.GetCurrentJob(), -1);
        EXPECT_EQ(m_doc.GetViewer(), nullptr);
        EXPECT_THAT(m_doc.GetMetrics(), IsEmpty());
    }

    testing::TempFolder m_folder;
    testing::SampleRepository m_sample = testing::SampleRepository::build(m_folder.file("sample.tavix"));
    std::unique_ptr<SettingsStore> m_settings = makeMemorySettings();
    testing::ScriptedMessages m_messages;
    Recorder m_around;
    CTavixDoc m_doc{m_around, *m_settings, m_messages};
};

TEST_F(TavixDocTest, SaysWhichRunIsDamagedAndShowsItAllTheSame) {
    damage("UPDATE run_field SET null_count = 999 WHERE run = " + std::to_string(m_sample.salesRuns[1]));
    open();
    m_messages.expectWarn("Run " + std::to_string(m_sample.salesRuns[1]) +
                          " is damaged (metrics of fields). Run \"tavix check\" for details.");
    EXPECT_TRUE(m_doc.SetCurrentJob(m_sample.salesRuns[1]));
    EXPECT_EQ(m_messages.pending(), 0U);
    EXPECT_EQ(m_doc.GetCurrentJob(), m_sample.salesRuns[1]);
}

TEST_F(TavixDocTest, OpensTheLatestRunOfAReport) {
    ASSERT_TRUE(m_settings->write("TAVIX", "Metric3", "U"));
    ASSERT_TRUE(m_settings->write("TAVIX", "Metric5", "S-1"));
    ASSERT_TRUE(m_doc.OpenReport(m_sample.path, m_sample.salesJob));
    EXPECT_EQ(m_doc.GetTitle(), "Sales");
    EXPECT_EQ(m_doc.GetCurrentJob(), m_sample.salesRuns.back());
    EXPECT_EQ(m_doc.GetRunCount(), 3);
    ASSERT_EQ(m_doc.GetMetrics().size(), 24u);
    EXPECT_EQ(m_doc.GetMetrics()[3], (MetricDisplay{"Non-null Count", false, 0}));
    const std::vector<int> shown = shownMetrics(m_doc.GetMetrics());
    EXPECT_EQ(shown.size(), 23u);
    EXPECT_EQ(shown.front(), 5);
    EXPECT_EQ(m_messages.busyCount(), 1);

    m_doc.Clear();
    expectNoReport();
    EXPECT_THAT(m_around.lines, IsEmpty()) << "the frame tells about a new report, not the document";
}

TEST_F(TavixDocTest, OpensAFurtherSessionForAnotherRun) {
    open();
    const auto other = m_doc.OpenRun(m_sample.salesRuns[0]);
    ASSERT_TRUE(other);
    EXPECT_EQ((*other)->getCurrentJob(), m_sample.salesRuns[0]);
    EXPECT_EQ(m_doc.GetViewer()->getCurrentJob(), m_sample.salesRuns[2]);
    const auto unknown = m_doc.OpenRun(12345);
    ASSERT_FALSE(unknown);
    EXPECT_NE(unknown.error().text, "");
    m_doc.Clear();
    EXPECT_EQ((*other)->getJobCount(), 3) << "open until it is released";
}

TEST_F(TavixDocTest, ShowsTheFoldersOfAReport) {
    damage("INSERT INTO folder(id, parent, name) VALUES (1, NULL, 'Shop'), (2, 1, 'Europe');"
           "UPDATE job SET folder = 2 WHERE name = 'Sales'");
    open();
    EXPECT_EQ(m_doc.GetFolderPath(), "Shop/Europe");
    ASSERT_TRUE(m_doc.OpenReport(m_sample.path, m_sample.inventoryJob));
    EXPECT_EQ(m_doc.GetTitle(), "Inventory");
    EXPECT_EQ(m_doc.GetFolderPath(), "");
}

TEST_F(TavixDocTest, EachStepOfOpeningHasItsWordsAndAFailureLeavesNoReport) {
    open();
    const auto refused = [&](const std::string& path, int job, std::string_view leadIn, auto failing) {
        m_messages.expectWarn(std::string(leadIn) + "\n\n" + libraryText(path, failing));
        EXPECT_FALSE(m_doc.OpenReport(path, job));
        expectNoReport();
    };
    constexpr std::string_view kConnect = "Error occurred while connecting to the repository:";
    const auto never = [](PrViewer&) { return false; };
    refused(m_folder.file("missing"), 1, kConnect, never);
    refused(m_folder.path().string(), 1, kConnect, never);
    std::ofstream(m_folder.file("notes.txt")) << std::string(5000, 'x');
    refused(m_folder.file("notes.txt"), 1, kConnect, never);

    int folder = -1;
    KvbString text;
    refused(m_sample.path, 999, "Error occurred while retrieving the profiling report:", [&](PrViewer& viewer) {
        return viewer.reportGetReportInfo(999, folder, text);
    });

    damage("INSERT INTO job(id, name, created) VALUES (77, 'Never run', 0)");
    refused(m_sample.path, 77, "Error occurred while opening the profiling report:", [](PrViewer& viewer) {
        return viewer.setCurrentJobSetup(77);
    });
}

TEST_F(TavixDocTest, ARunChangeTellsEverybodyInOrder) {
    m_doc.SetTaskListKeeper(&m_around);
    open();
    ReportFilterState filter;
    filter.texts[0] = "city = 'Oslo'";
    filter.first = 3;
    m_doc.SetFilterState(filter);

    EXPECT_TRUE(m_doc.SetCurrentJob(m_sample.salesRuns[2]));
    EXPECT_THAT(m_around.take(), IsEmpty()) << "it is current already";
    EXPECT_EQ(m_doc.GetFilterState(), filter);

    EXPECT_TRUE(m_doc.SetCurrentJob(m_sample.salesRuns[0]));
    EXPECT_EQ(m_doc.GetCurrentJob(), m_sample.salesRuns[0]);
    EXPECT_EQ(m_doc.GetFilterState(), ReportFilterState{});
    EXPECT_THAT(m_around.take(), ElementsAre("save", "create", "load", "hint 4 loading", "restore"));

    m_around.restores = false;
    EXPECT_TRUE(m_doc.SetCurrentJob(m_sample.salesRuns[1]));
    EXPECT_THAT(m_around.take(), ElementsAre("save", "create", "load", "hint 4 loading", "restore", "hint 6"));
    EXPECT_FALSE(m_doc.PostLoadCheck());
    m_around.restores = true;
    EXPECT_TRUE(m_doc.PostLoadCheck());
}

TEST_F(TavixDocTest, ARunThatCannotBeLoadedChangesNothing) {
    open();
    ReportFilterState filter;
    filter.second = 7;
    m_doc.SetFilterState(filter);
    m_messages.expectWarn(
        "Error occurred while loading the report run:\n\n" + libraryText(m_sample.path, [&](PrViewer& viewer) {
            return viewer.setCurrentJobSetup(m_sample.salesJob) && viewer.setCurrentJob(m_sample.inventoryRun);
        }));
    EXPECT_FALSE(m_doc.SetCurrentJob(m_sample.inventoryRun));
    EXPECT_EQ(m_doc.GetCurrentJob(), m_sample.salesRuns.back());
    EXPECT_EQ(m_doc.GetFilterState(), filter);
    EXPECT_EQ(m_around.take().size(), 1u) << "the message alone";
}

TEST_F(TavixDocTest, ATaskListThatFailsDoesNotHoldUpTheRun) {
    m_doc.SetTaskListKeeper(&m_around);
    open();
    m_around.creates = false;
    m_messages.expectWarn("Unable to create task list");
    EXPECT_TRUE(m_doc.SetCurrentJob(m_sample.salesRuns[0]));
    EXPECT_THAT(m_around.take(),
                ElementsAre("save", "create", "warn Unable to create task list", "hint 4 loading", "restore"));

    m_around.creates = true;
    m_around.throwsWhileLoading = true;
    m_messages.expectWarn("Error occurred while retrieving task list:\n\ncut off");
    EXPECT_TRUE(m_doc.SetCurrentJob(m_sample.salesRuns[1]));

    damage("ALTER TABLE task RENAME TO gone");
    m_messages.expectWarn(
        "Error occurred while retrieving task list:\n\n" +
        libraryText(m_sample.path, [&](PrViewer& viewer) { return viewer.getTaskList(m_sample.salesJob) != nullptr; }));
    EXPECT_TRUE(m_doc.SetCurrentJob(m_sample.salesRuns[2]));
}

class DeletionTest : public TavixDocTest {
  protected:
    void SetUp() override {
        TavixDocTest::SetUp();
        m_doc.SetTaskListKeeper(&m_around);
        open();
    }
    void remove(int bound, int runAfter) {
        m_doc.DeleteHistory([=](HistoryDeletion& deletion) {
            deletion = {bound, runAfter};
            return true;
        });
    }
};

TEST_F(DeletionTest, OlderRunsGoAndTheCurrentOneStays) {
    m_doc.DeleteHistory([](HistoryDeletion&) { return false; });
    m_doc.DeleteHistory([](HistoryDeletion&) { return true; });
    EXPECT_THAT(m_around.take(), IsEmpty()) << "nothing was chosen";
    EXPECT_EQ(m_doc.GetRuns()->size(), 3u);

    remove(m_sample.salesRuns[0], m_sample.salesRuns[2]);
    EXPECT_THAT(m_around.take(), ElementsAre("hint 7", "save", "hint 10"));
    EXPECT_EQ(m_doc.GetRunCount(), 2);
    EXPECT_EQ(m_doc.GetCurrentJob(), m_sample.salesRuns[2]);
    EXPECT_EQ(m_doc.GetRuns()->back().description, "February");
}

TEST_F(DeletionTest, TheRunToShowTakesThePlaceOfADeletedOne) {
    ASSERT_TRUE(m_doc.SetCurrentJob(m_sample.salesRuns[1]));
    m_around.lines.clear();
    remove(m_sample.salesRuns[1], m_sample.salesRuns[2]);
    EXPECT_EQ(m_doc.GetCurrentJob(), m_sample.salesRuns[2]);
    EXPECT_EQ(m_doc.GetRunCount(), 1);
    EXPECT_THAT(m_around.take(), ElementsAre("hint 7", "save", "create", "load", "hint 4 loading", "restore"));
}

TEST_F(DeletionTest, FailuresHaveTheirWords) {
    const auto setUp = [&](PrViewer& viewer) { return viewer.setCurrentJobSetup(m_sample.salesJob); };
    const int newest = m_sample.salesRuns[2];
    m_messages.expectWarn("Error occurred while deleting history:\n\n" +
                          libraryText(m_sample.path, [&](PrViewer& viewer) {
                              return setUp(viewer) && viewer.deleteJobs(-1, newest, -1);
                          }));
    remove(newest, newest);
    EXPECT_THAT(m_around.take(), ElementsAre("hint 7", "save", "warn Error occurred while deleting history:"));
    EXPECT_EQ(m_doc.GetRuns()->size(), 3u);
    EXPECT_EQ(m_doc.GetCurrentJob(), newest);

    ASSERT_TRUE(m_doc.SetCurrentJob(m_sample.salesRuns[0]));
    m_around.lines.clear();
    m_messages.expectWarn("Error occurred while loading the report run:\n\n" +
                          libraryText(m_sample.path, [&](PrViewer& viewer) {
                              return setUp(viewer) && viewer.setCurrentJob(m_sample.inventoryRun);
                          }));
    remove(m_sample.salesRuns[0], m_sample.inventoryRun);
    EXPECT_THAT(m_around.take(),
                ElementsAre("hint 7", "save", "hint 6", "warn Error occurred while loading the report run:"));
}

TEST_F(TavixDocTest, OptionsWriteTheMetricsAndTellOnce) {
    open();
    auto metrics = m_doc.GetMetrics();
    metrics[0] = {metrics[0].description, false, 7};
    m_doc.ApplyOptions(metrics);
    EXPECT_EQ(m_settings->read("TAVIX", "Metric0"), "U7");
    EXPECT_EQ(m_settings->read("TAVIX", "Metric23"), "S1");
    EXPECT_EQ(m_doc.GetMetrics(), metrics);
    m_messages.expectWarn("The settings cannot be kept.");
    m_doc.ApplyOptions(metrics, Error{"The settings cannot be kept."});
    EXPECT_THAT(m_around.take(), ElementsAre("hint 5", "warn The settings cannot be kept.", "hint 5"));
}

TEST_F(TavixDocTest, RunsAreListedAndTheirFailureHasItsWords) {
    open();
    const auto runs = m_doc.GetRuns();
    ASSERT_TRUE(runs && runs->size() == 3);
    EXPECT_EQ(runs->front().id, m_sample.salesRuns.back());
    EXPECT_EQ((*runs)[1].description, "February");
    EXPECT_DOUBLE_EQ((*runs)[1].date, toLibraryDate(testing::SampleRepository::runTime(1)));
    damage("ALTER TABLE run RENAME TO gone");
    m_messages.expectWarn("Error occurred while retrieving report history");
    EXPECT_FALSE(m_doc.GetRuns());
}

TEST_F(TavixDocTest, CollectionsOfATableAreKeptUntilTheyChange) {
    open();
    const int table = m_sample.tables.at("customers");
    const int field = m_sample.fields.at("customers/id");
    EXPECT_THAT(m_doc.GetCollectionsOfField(table, field), ElementsAre("Customer keys"));
    EXPECT_THAT(m_doc.GetCollectionsOfField(table, 99999), IsEmpty());
    EXPECT_THAT(m_doc.GetCollectionsOfField(99999, field), IsEmpty());

    damage("UPDATE collection SET name = 'Renamed' WHERE name = 'Customer keys'");
    EXPECT_THAT(m_doc.GetCollectionsOfField(table, field), ElementsAre("Customer keys")) << "no second query";
    m_doc.CollectionsRefreshed();
    EXPECT_THAT(m_around.take(), ElementsAre("hint 1"));
    EXPECT_THAT(m_doc.GetCollectionsOfField(table, field), ElementsAre("Renamed"));
    damage("UPDATE collection SET name = 'Renamed again' WHERE name = 'Renamed'");
    ASSERT_TRUE(m_doc.SetCurrentJob(m_sample.salesRuns[0]));
    EXPECT_THAT(m_doc.GetCollectionsOfField(table, field), ElementsAre("Renamed again")) << "another run, a new query";
}

TEST_F(TavixDocTest, AlertsAreJudgedOnceForARunUntilTheyMayHaveChanged) {
    EXPECT_THAT(m_doc.GetAlerts(), IsEmpty()) << "no report";
    open();
    const auto alertAbove = [&](double limit) {
        testing::addAlert(m_sample, "customers/name", MetricId::NullCount, {.value1 = limit});
    };
    const auto figures = [&] {
        std::vector<std::string> lines;
        for (const AlertState& alert : m_doc.GetAlerts())
            lines.push_back(std::string(alertShownWord(alert.shown())) + " " + formatReal(alert.figure.value_or(-1)));
        return lines;
    };
    alertAbove(228);
    EXPECT_THAT(figures(), ElementsAre("quiet 228"));
    alertAbove(229);
    EXPECT_THAT(figures(), ElementsAre("quiet 228")) << "no second query";
    m_doc.Notice(RefreshHint::OptionsChanged);
    EXPECT_THAT(figures(), ElementsAre("quiet 228"));
    m_doc.Notice(RefreshHint::AlertsChanged);
    EXPECT_THAT(figures(), ElementsAre("quiet 228", "quiet 228"));
    EXPECT_EQ("no alert raised", m_doc.GetAlertsText());
    ASSERT_TRUE(m_doc.SetCurrentJob(m_sample.salesRuns[0]));
    EXPECT_THAT(figures(), ElementsAre("raised 230", "raised 230"));
    EXPECT_EQ("2 warnings", m_doc.GetAlertsText());

    damage("ALTER TABLE alert RENAME TO gone");
    m_doc.Notice(RefreshHint::HistoryDeleted);
    EXPECT_THAT(m_doc.GetAlerts(), IsEmpty());
    EXPECT_THAT(m_doc.GetAlertsError(), HasSubstr("alert"));
    EXPECT_EQ("alerts cannot be read", m_doc.GetAlertsText()) << "not: none is raised";
    m_doc.Clear();
    EXPECT_EQ("", m_doc.GetAlertsError());
    EXPECT_EQ("", m_doc.GetAlertsText());
}

} // namespace
} // namespace tavix
