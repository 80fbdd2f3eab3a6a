#pragma once

#include "base/tests/TempFolder.h"
#include "base/ui/QtText.h"
#include "host/TavixHost.h"
#include "host/TavixQtWindow.h"
#include "support/SampleRepository.h"

#include <QLabel>
#include <QStackedWidget>
#include <QTableView>
#include <QTreeView>

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Veldra::Solenne::Tavix {

// Records the text of every message, expected or not.
class RecordedMessages final : public tavix::Messages {
  public:
    void warn(std::string_view text, std::string_view) override { texts.emplace_back(text); }
    Answer ask(std::string_view text, std::string_view, Answer preset) override {
        texts.emplace_back(text);
        return preset;
    }
    std::unique_ptr<Busy> busy() override { return std::make_unique<Busy>(); }
    std::vector<std::string> texts;
};

class PathConnection final : public TavixConnection {
  public:
    explicit PathConnection(std::string path) : m_path(std::move(path)) {}
    std::string GetName() const override { return "Sample"; }
    std::string GetKind() const override { return "SQLite"; }
    std::string GetConnectionString() const override { return m_path; }

  private:
    std::string m_path;
};

/// A host with a window and a sample repository. A message that the test does not take fails it.
class HostOverSample : public ::testing::Test {
  protected:
    HostOverSample()
        : m_sample(tavix::testing::SampleRepository::build(m_folder.file("sample.tavix"))),
          m_connection(m_sample.path),
          m_host(m_messages, tavix::makeMemorySettings()) {
        m_view = TavixQtWindow::Build(m_host, nullptr);
        m_view->resize(1200, 700);
        m_view->show();
    }
    ~HostOverSample() override {
        m_host.Dispose();
        EXPECT_THAT(m_messages.texts, ::testing::IsEmpty());
    }

    bool load() { return m_host.LoadReportForJob("text", m_sample.salesJob, &m_connection); }
    [[nodiscard]] QTreeView& tree(int page) {
        return *m_view->findChild<QTreeView*>(QStringLiteral("page%1").arg(page));
    }
    [[nodiscard]] bool isShown(const char* name) {
        const auto* widget = m_view->findChild<QWidget*>(QLatin1String(name));
        return widget && widget->isVisible();
    }
    /// The list of the tab of that name.
    [[nodiscard]] QTableView& grid(const char* tab = "standardMetrics") {
        return *m_view->findChild<QWidget*>(QLatin1String(tab))->findChild<QTableView*>();
    }
    /// The contents of the report pane.
    [[nodiscard]] QWidget* report() {
        return m_view->findChild<QStackedWidget*>(QStringLiteral("reportPane"))->currentWidget();
    }
    [[nodiscard]] std::string title() {
        const QWidget* shown = report();
        return tavix::toUtf8(shown->findChild<QLabel*>(QStringLiteral("viewTitle"))->text());
    }
    [[nodiscard]] std::string selected(int page) { return tavix::toUtf8(tree(page).currentIndex().data().toString()); }

    tavix::testing::TempFolder m_folder;
    tavix::testing::SampleRepository m_sample;
    PathConnection m_connection;
    RecordedMessages m_messages;
    TavixHost m_host;
    QWidget* m_view = nullptr;
};

/// The message of a key press.
inline NativeMessage key(std::uintptr_t number, std::uint32_t modifiers = NativeModifier::None) {
    NativeMessage message;
    message.Message = NativeMessageId::KeyDown;
    message.WParam = number;
    message.Modifiers = modifiers;
    return message;
}

} // namespace Veldra::Solenne::Tavix
