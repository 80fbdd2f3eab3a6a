#pragma once

#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/tests/TempFolder.h"
#include "report/FieldRecord.h"
#include "support/SampleRepository.h"

#include <gtest/gtest.h>

namespace tavix::testing {

/// A session with the sample repository at the latest run of "Sales".
class SampleViewer : public ::testing::Test {
  protected:
    void SetUp() override {
        m_sample = SampleRepository::build(m_folder.file("sample.tavix"));
        m_viewer = PrViewer::create();
        ASSERT_TRUE(m_viewer->init(m_sample.path));
        ASSERT_TRUE(m_viewer->setCurrentJobSetup(m_sample.salesJob));
    }
    void TearDown() override { m_viewer->close(); }

    [[nodiscard]] FieldRecord field(const std::string& name) const {
        using namespace layout;
        FieldRecord record;
        const ProfileCursorHandle fields = m_viewer->getFieldList(m_sample.tables.at(name.substr(0, name.find('/'))));
        while (fields && fields->next()) {
            if (fields->getColumnInt(FieldId) != m_sample.fields.at(name))
                continue;
            record.id = fields->getColumnInt(FieldId);
            record.name = fields->getColumnValue(FieldName).str();
            record.typeCode = fields->getColumnValue(FieldTypeCode).str();
            for (std::size_t i = 0; i < kMetricCount; ++i)
                record.metrics[i] = fields->getColumnValue(kFieldListMetrics + static_cast<int>(i));
            record.freqCount = fields->getColumnInt(tailColumn(kFieldListMetrics, TailFreqCount));
            record.quantileRule = fields->getColumnValue(tailColumn(kFieldListMetrics, TailQuantileRule)).str();
        }
        return record;
    }

    TempFolder m_folder;
    SampleRepository m_sample;
    PrViewer::Handle m_viewer;
};

} // namespace tavix::testing
