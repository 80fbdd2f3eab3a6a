#pragma once

#include "base/Messages.h"
#include "base/tests/TempFolder.h"
#include "base/ui/QtText.h"
#include "host/TavixHost.h"
#include "shell/ShellState.h"
#include "shell/ShellWindow.h"
#include "support/SampleRepository.h"

#include <gtest/gtest.h>

namespace tavix::shell {

class RecordedMessages final : public Messages {
  public:
    void warn(std::string_view text, std::string_view) override { texts.emplace_back(text); }
    Answer ask(std::string_view, std::string_view, Answer preset) override { return preset; }
    std::unique_ptr<Busy> busy() override { return std::make_unique<Busy>(); }
    std::vector<std::string> texts;
};

/// The shell's window on the screen, with a sample repository and nothing open.
class ShellOverSample : public ::testing::Test {
  protected:
    ShellOverSample()
        : m_sample(tavix::testing::SampleRepository::build(m_folder.file("sample.tavix"))),
          m_host(m_messages, makeMemorySettings()),
          m_window(m_host, m_messages) {
        m_window.show();
    }

    [[nodiscard]] std::string title() const { return toUtf8(m_window.windowTitle()); }
    bool open(const std::string& path) { return m_window.openRepository(toQString(path)); }

    tavix::testing::TempFolder m_folder;
    tavix::testing::SampleRepository m_sample;
    RecordedMessages m_messages;
    Veldra::Solenne::Tavix::TavixHost m_host;
    ShellWindow m_window;
};

} // namespace tavix::shell
