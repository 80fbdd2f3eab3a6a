#pragma once

#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "doc/tests/TestSite.h"
#include "support/SampleRepository.h"

#include <gtest/gtest.h>

#include <memory>

namespace tavix::testing {

/// A document that shows "Sales" of the sample repository, without a window.
class SampleDocument : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(m_document.OpenReport(m_sample.path, m_sample.salesJob)); }

    TempFolder m_folder;
    SampleRepository m_sample = SampleRepository::build(m_folder.file("sample.tavix"));
    std::unique_ptr<SettingsStore> m_settings = makeMemorySettings();
    ScriptedMessages m_messages;
    TestSite m_site{*m_settings, m_messages};
    CTavixDoc& m_document = m_site.document;
};

} // namespace tavix::testing
