// From a value to the rows of a database that needs a login.
#include "access/Layouts.h"
#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "base/ui/QtText.h"
#include "doc/CTavixApp.h"
#include "drill/ui/CDrillThru.h"
#include "frame/ui/CTavixView.h"
#include "grid/ui/CUGCtrl.h"
#include "job/JobDescription.h"
#include "profiling/JobRunner.h"
#include "support/PostgresServer.h"
#include "tabs/ui/CFieldView.h"
#include "tabs/ui/CProfTab.h"
#include "tabs/ui/CTableView.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>

namespace tavix {
namespace {

using testing::PostgresServer;

class SourceLoginWalk : public ::testing::Test {
  protected:
    void SetUp() override {
        testing::useOdbcFiles(m_folder, m_folder.file("none.db"), m_server.port());
        m_server.execute("CREATE TABLE people(id INTEGER PRIMARY KEY, city TEXT);"
                         "INSERT INTO people VALUES(1, 'Rome'), (2, 'Bonn'), (3, 'Rome')");
        std::ofstream(m_folder.file("job.yaml"))
            << "job: People\nsources:\n  - {name: pg, odbc: \"DSN=pg\"}\ntables:\n  - {source: pg, table: people}\n";
        const auto job = job::readJobFile(m_folder.file("job.yaml"));
        if (!job.ok())
            throw std::runtime_error(job.error().text);
        profiling::RunOptions options;
        options.askCredentials = [](const std::string&, const std::string&) {
            return std::optional(source::Credentials{PostgresServer::kUser, PostgresServer::kPassword});
        };
        const auto outcome = profiling::runJob(*job, m_folder.file("people.tavix"), options);
        if (!outcome.ok())
            throw std::runtime_error(outcome.error().text);
        m_job = outcome->jobId;
        m_view.resize(1000, 600);
        m_view.show();
        load();
        ASSERT_TRUE(QTest::qWaitFor([this] { return m_view.findChild<CTableView*>() != nullptr; }));
    }
    void load() { ASSERT_TRUE(m_view.LoadReportForJob("", m_job, m_folder.file("people.tavix"))); }

    /// Drills through to "Rome" and answers the login dialogs with `passwords`, null for Cancel.
    CDrillThru* drill(std::vector<const char*> passwords) {
        EXPECT_TRUE(QTest::qWaitFor([this] { return m_view.GetSelection().table.id != -1; }));
        const ProfileCursorHandle fields =
            m_view.GetTavixDoc().GetViewer()->getFieldList(m_view.GetSelection().table.id);
        while (fields->next()) {
            if (fields->getColumnValue(layout::FieldName).view() == "city") {
                EXPECT_TRUE(m_view.SelectField(fields->getColumnInt(layout::FieldId)));
            }
        }
        auto& view = dynamic_cast<CReportView&>(m_view.GetReportPane());
        view.SelectTab(CFieldView::Frequency);
        auto& grid = *view.GetTab(CFieldView::Frequency).findChild<CUGCtrl*>();
        EXPECT_EQ("Rome", toUtf8(grid.model()->index(0, 0).data().toString()));
        grid.SelectRow(0);
        std::size_t answered = 0;
        std::function<void()> answer = [&] {
            QWidget* dialog = QApplication::activeModalWidget();
            if (dialog && dialog->objectName() == QLatin1String("sourceLogin")) {
                ASSERT_LT(answered, passwords.size()) << "asked once too often";
                EXPECT_NE("", toUtf8(dialog->findChild<QLabel*>(QStringLiteral("refusal"))->text()));
                const char* const password = passwords[answered++];
                dialog->findChild<QLineEdit*>(QStringLiteral("user"))->setText(QLatin1String(PostgresServer::kUser));
                dialog->findChild<QLineEdit*>(QStringLiteral("password"))->setText(QLatin1String(password));
                QTest::keyClick(dialog, password ? Qt::Key_Return : Qt::Key_Escape);
            }
        };
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, answer);
        poll.start(5);
        QTest::keyClick(&grid, Qt::Key_Return);
        EXPECT_EQ(passwords.size(), answered);
        auto windows = m_view.findChildren<CDrillThru*>();
        return windows.isEmpty() ? nullptr : windows.back();
    }

    testing::TempFolder m_folder;
    PostgresServer m_server;
    testing::ScriptedMessages m_messages;
    CTavixApp m_app{makeMemorySettings()};
    CTavixView m_view{m_app, m_messages};
    int m_job = -1;
};

TEST_F(SourceLoginWalk, AsksOnceForAReportAndCancelLeavesTheDrill) {
    m_messages.expectWarn("Drill through information is unavailable for this item.\n\nNo user and password were given "
                          "for the data source \u201Cpg\u201D.",
                          "Error");
    EXPECT_EQ(nullptr, drill({nullptr}));
    EXPECT_EQ(0U, m_messages.pending());

    // A wrong password is asked for again.
    CDrillThru* rows = drill({"wrong", PostgresServer::kPassword});
    ASSERT_NE(nullptr, rows);
    EXPECT_EQ(2, rows->findChild<CUGCtrl*>()->model()->rowCount());
    delete rows;
    rows = drill({});
    ASSERT_NE(nullptr, rows) << "the answer was not kept";
    delete rows;
    // The login is forgotten when the report is closed.
    load();
    m_messages.expectWarn("Drill through information is unavailable for this item.\n\nNo user and password were given "
                          "for the data source \u201Cpg\u201D.",
                          "Error");
    EXPECT_EQ(nullptr, drill({nullptr}));
}

} // namespace
} // namespace tavix
