#pragma once

#include "access/PrViewer.h"
#include "access/tests/CursorText.h"
#include "base/tests/TempFolder.h"
#include "support/SampleRepository.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tavix::testing {

class FixedClock final : public Clock {
  public:
    [[nodiscard]] UtcTime now() const override { return SampleRepository::runTime(5); }
};

class PrViewerTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(m_viewer->init("sqlite:" + m_sample.path)) << error();
        ASSERT_TRUE(m_viewer->setCurrentJobSetup(m_sample.salesJob)) << error();
    }

    std::string error() const { return m_viewer->getErrorString().str(); }
    int table(const char* name) const { return m_sample.tables.at(name); }
    int field(const char* name) const { return m_sample.fields.at(name); }

    /// The rows of a cursor; fails the test without one.
    std::vector<std::string> read(ProfileCursorHandle cursor) const {
        if (!cursor) {
            ADD_FAILURE() << error();
            return {};
        }
        return rowsOf(*cursor);
    }

    /// Expects a failure with this text.
    void expectFailure(bool failed, const std::string& text) const {
        EXPECT_TRUE(failed);
        EXPECT_EQ(error(), text);
    }

    std::vector<int> ids(ProfileCursorHandle cursor) const {
        std::vector<int> found;
        while (cursor && cursor->next())
            found.push_back(cursor->getColumnInt(0));
        return found;
    }

    TempFolder m_folder;
    SampleRepository m_sample = SampleRepository::build(m_folder.file("sample.tavix"));
    FixedClock m_clock;
    PrViewer::Handle m_viewer = PrViewer::create(&m_clock);
};

} // namespace tavix::testing
