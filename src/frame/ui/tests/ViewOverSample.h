#pragma once

#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "base/ui/QtText.h"
#include "doc/CTavixApp.h"
#include "frame/ui/CTavixView.h"
#include "grid/ui/CUGCtrl.h"
#include "nav/ui/CTables.h"
#include "support/SampleRepository.h"
#include "tabs/ui/CProfTab.h"
#include "tabs/ui/CProfTabCtrl.h"
#include "tabs/ui/TearOff.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QPointer>
#include <QTabBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace tavix::testing {

/// The whole view on the screen, with a sample repository and no report open.
class ViewOverSample : public ::testing::Test {
  protected:
    ViewOverSample() { makeView(); }

    void makeView(int patienceMilliseconds = CViewSite::kPatienceMilliseconds) {
        m_view = std::make_unique<CTavixView>(m_app, m_messages, nullptr, patienceMilliseconds);
        m_view->resize(1200, 600);
        m_view->show();
    }
    bool load() { return m_view->LoadReportForJob("text", m_sample.salesJob, m_sample.path); }
    bool selectTable(const char* name) {
        const bool isCustomers = std::string_view(name) == "customers" || std::string_view(name) == "german customers";
        const char* schema = isCustomers ? "public" : std::string_view(name) == "suppliers" ? "dbo" : "";
        return m_view->SelectTable("Warehouse", "ODBC", isCustomers ? "crm" : "", schema, name);
    }
    bool selectField(const std::string& table, const std::string& field) {
        return selectTable(table.c_str()) && m_view->SelectField(m_sample.fields.at(table + "/" + field));
    }
    /// In the order of the page: 0 "Amounts", 1 "Customer keys".
    void selectCollection(int row) {
        navigator().ShowPage(NavigatorPage::Collections);
        auto& tree = *m_view->findChild<QTreeView*>(QStringLiteral("page1"));
        tree.setCurrentIndex(tree.model()->index(row, 0));
    }
    bool setRun(int number) {
        return m_view->GetTavixDoc().SetCurrentJob(m_sample.salesRuns.at(static_cast<std::size_t>(number)));
    }

    [[nodiscard]] CTables& navigator() { return *m_view->findChild<CTables*>(); }
    /// The contents of the report pane; throws unless it is a view with tabs.
    [[nodiscard]] CReportView& report() { return dynamic_cast<CReportView&>(m_view->GetReportPane()); }
    [[nodiscard]] bool isEmptyViewShown() { return m_view->GetItemCode() == -1; }
    static QTabBar& strip(QWidget& view) { return *view.findChild<QTabBar*>(QStringLiteral("tabStrip")); }
    [[nodiscard]] QTabBar& strip() { return strip(report()); }
    static std::string header(QWidget& view) {
        return toUtf8(view.findChild<QLabel*>(QStringLiteral("viewTitle"))->text() +
                      view.findChild<QLabel*>(QStringLiteral("viewDetail"))->text());
    }
    static QToolButton& button(QWidget& view, const char* name) {
        return *view.findChild<QToolButton*>(QLatin1String(name));
    }
    [[nodiscard]] CProfTab& tab() { return report().GetTab(report().GetCurrentTab()); }
    static CUGCtrl& grid(QWidget& tab) { return *tab.findChild<CUGCtrl*>(); }
    /// One of several lists of a tab, by its accessible name.
    static CUGCtrl& list(QWidget& tab, const char* name) {
        for (CUGCtrl* each : tab.findChildren<CUGCtrl*>()) {
            if (each->accessibleName() == QLatin1String(name))
                return *each;
        }
        throw std::runtime_error(std::string("no list ") + name);
    }
    static std::string cell(QWidget& tab, int row, int column) {
        return toUtf8(grid(tab).model()->index(row, column).data().toString());
    }
    static int rows(QWidget& tab) { return grid(tab).model()->rowCount(); }

    /// The windows of detached views, in the order in which they were opened.
    [[nodiscard]] std::vector<CTearOff*> tearOffs() const {
        std::vector<CTearOff*> windows;
        for (CTearOff* window : m_view->findChildren<CTearOff*>()) {
            if (window->isVisible())
                windows.push_back(window);
        }
        return windows;
    }
    CTearOff& detach() {
        button(report(), "detachButton").click();
        return *tearOffs().back();
    }
    bool execute(CommandId command) { return m_view->GetTavixMain().Execute(static_cast<int>(command)); }
    [[nodiscard]] CommandState stateOf(CommandId command) const {
        return m_view->GetTavixMain().Update(static_cast<int>(command));
    }
    /// Calls `act` with the modal dialog that opens next, and cancels the dialog if it is still open then. Counts the
    /// calls in `acted`.
    static void inNextDialog(const std::function<void(QDialog&)>& act, int* acted = nullptr) {
        QTimer::singleShot(0, qApp, [act, acted] {
            const QPointer<QDialog> dialog(qobject_cast<QDialog*>(QApplication::activeModalWidget()));
            ASSERT_TRUE(dialog);
            if (acted)
                ++*acted;
            act(*dialog);
            if (dialog && dialog->isVisible())
                dialog->reject();
        });
    }
    void activate(QWidget& window) {
        QApplication::setActiveWindow(&window);
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    TempFolder m_folder;
    SampleRepository m_sample = SampleRepository::build(m_folder.file("sample.tavix"));
    ScriptedMessages m_messages;
    CTavixApp m_app{makeMemorySettings()};
    std::unique_ptr<CTavixView> m_view;
};

} // namespace tavix::testing
