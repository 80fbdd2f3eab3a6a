#include "base/tests/TempFolder.h"
#include "repository/HistogramStore.h"
#include "repository/Schema.h"
#include "sql/tests/StoredRows.h"
#include "support/SampleRepository.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace tavix::repository {
namespace {

using tavix::testing::SampleRepository;
using tavix::testing::storedRows;
using tavix::testing::TempFolder;

class HistogramStore : public ::testing::Test {
  protected:
    void SetUp() override {
        auto opened = openRepository(m_sample.path, sql::OpenMode::Write);
        ASSERT_TRUE(opened);
        m_connection = std::move(*opened);
    }

    TempFolder m_folder;
    SampleRepository m_sample = SampleRepository::build(m_folder.file("sample.tavix"));
    std::unique_ptr<sql::Connection> m_connection;
    int m_run = m_sample.salesRuns[2];
    int m_field = m_sample.fields.at("customers/name");
};

TEST_F(HistogramStore, ReadsAsItIsStored) {
    EXPECT_EQ(*readHistogram(*m_connection, m_run, m_field), std::nullopt);
    const Histogram histogram{HistogramKind::Numbers, BinUnit::Number, -3, 5, -2, {7, 0, 9'000'000'000'000}};
    ASSERT_TRUE(storeHistogram(*m_connection, m_run, m_field, histogram));
    EXPECT_EQ(*readHistogram(*m_connection, m_run, m_field), histogram);
    EXPECT_FALSE(storeHistogram(*m_connection, m_run, m_field, histogram)) << "a field twice";
    EXPECT_EQ(storedRows(m_sample.path, fmt::format("SELECT table_name, field_name, kind, position, low, high, count "
                                                    "FROM v_histograms WHERE run = {} AND field_id = {}",
                                                    m_run, m_field)),
              "customers|name|N|0|-0.15|-0.1|7\ncustomers|name|N|1|-0.1|-0.05|0\n"
              "customers|name|N|2|-0.05|0.0|9000000000000\n");
}

TEST_F(HistogramStore, ShowsDatesToOtherPrograms) {
    const auto shown = [&](const Histogram& histogram) {
        EXPECT_TRUE(
            m_connection->execute(fmt::format("DELETE FROM histogram WHERE run = {} AND field = {}", m_run, m_field)));
        EXPECT_TRUE(storeHistogram(*m_connection, m_run, m_field, histogram));
        return storedRows(m_sample.path, fmt::format("SELECT low, high FROM v_histograms WHERE run = {} AND field_id = "
                                                     "{}",
                                                     m_run, m_field));
    };
    EXPECT_EQ(shown({HistogramKind::Dates, BinUnit::Second, -1, 21'600, 0, {1}}),
              "1969-12-31T18:00:00Z|1970-01-01T00:00:00Z\n");
    EXPECT_EQ(shown({HistogramKind::Dates, BinUnit::Week, 1, 1, 0, {1}}),
              "1970-01-05T00:00:00Z|1970-01-12T00:00:00Z\n");
    EXPECT_EQ(shown({HistogramKind::Dates, BinUnit::Month, 7599, 3, 0, {1}}),
              "1899-10-01T00:00:00Z|1900-01-01T00:00:00Z\n");
}

TEST_F(HistogramStore, RefusesWhatIsDamaged) {
    ASSERT_TRUE(storeHistogram(*m_connection, m_run, m_field, {HistogramKind::Numbers, BinUnit::Number, 0, 1, 0, {1}}));
    for (const char* change :
         {"counts = ''", "counts = '[]'", "counts = '[1,-1]'", "counts = '[1.5]'", "counts = '{\"a\":1}'",
          "counts = '[18446744073709551615]'", "counts = '[[[[1]]]]'",
          "counts = '[1' || replace(hex(zeroblob(60)), "
          "'00', ',1') || ',1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1]'",
          "step = 0", "exponent = 5000", "unit = 'W'", "first_bin = -9223372036854775807"}) {
        auto undone = sql::Transaction::begin(*m_connection);
        ASSERT_TRUE(undone && m_connection->execute(fmt::format("UPDATE histogram SET {} WHERE run = {} AND field = {}",
                                                                change, m_run, m_field)))
            << change;
        const auto read = readHistogram(*m_connection, m_run, m_field);
        ASSERT_FALSE(read) << change;
        EXPECT_EQ(read.error().text, "A stored histogram is damaged.");
    }
}

} // namespace
} // namespace tavix::repository
