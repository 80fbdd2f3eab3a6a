#include "profiling/DistributionQueue.h"
#include "profiling/tests/StoredRuns.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace tavix::profiling {
namespace {

class QueueOfDistributions : public testing::StoredRuns {
  protected:
    void SetUp() override {
        auto writer = repository::RunWriter::begin(m_repository, {"Job", "", "", {}});
        ASSERT_TRUE(writer) << writer.error().text;
        m_writer = std::move(*writer);
        repository::TableFacts table;
        table.name = "t";
        m_table = *m_writer->addTable(table);
    }

    /// A field whose only value is its name.
    FieldProfile figures(const std::string& name) {
        FieldProfile field;
        field.packed = std::make_unique<PackedResult>(m_store);
        field.facts.name = name;
        field.facts.ordinal = ++m_fields;
        field.facts.packed = field.packed.get();
        EXPECT_TRUE(field.packed->values.add(m_store, {name, 1, false}));
        EXPECT_TRUE(field.packed->values.finish(m_store));
        return field;
    }

    SpillFile m_file{m_folder.path().string()};
    ByteStore m_store{m_file, 1 << 20};
    bool m_goesOn = true;
    StopSignal m_stop{[this] { return m_goesOn; }};
    std::unique_ptr<repository::RunWriter> m_writer;
    int m_table = -1;
    int m_fields = 0;
};

TEST_F(QueueOfDistributions, StoresOnceWhatAnyThreadBrings) {
    constexpr std::size_t kThreads = 4;
    constexpr std::size_t kFieldsOfEach = 50;
    std::vector<std::string> names;
    std::vector<FieldProfile> fields;
    for (std::size_t i = 0; i < kThreads * kFieldsOfEach; ++i) {
        names.push_back("f" + std::to_string(i));
        fields.push_back(figures(names.back()));
    }
    ASSERT_TRUE(m_writer->nameFields(m_table, names));
    DistributionQueue queue(*m_writer, m_stop);
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&, thread] {
            for (std::size_t i = kFieldsOfEach; i-- > 0;) {
                queue.put(m_table, fields[i * kThreads + thread]);
                EXPECT_TRUE(queue.store());
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    for (FieldProfile& field : fields)
        ASSERT_TRUE(m_writer->addField(m_table, field.facts));
    ASSERT_TRUE(m_writer->commit({}));
    EXPECT_EQ(stored("SELECT count(*), count(DISTINCT field), min(rows), max(rows) FROM distribution_block"),
              "200|200|1|1\n");
    EXPECT_EQ(stored("SELECT count(*) FROM field a JOIN field b ON a.id < b.id AND substr(a.name, 2) + 0 > "
                     "substr(b.name, 2) + 0"),
              "0\n")
        << "ids follow the names as they were given, not as their values came";
    EXPECT_EQ(stored("SELECT sum(value_rows), sum(value_sum) FROM v_fields"), "200|200\n");
}

TEST_F(QueueOfDistributions, StopsAtAFailureAndKeepsIt) {
    FieldProfile lost = figures("lost");
    FieldProfile after = figures("after");
    DistributionQueue queue(*m_writer, m_stop);
    queue.put(m_table + 1, lost);
    queue.put(m_table, after);
    EXPECT_FALSE(queue.store());
    ASSERT_TRUE(queue.failure());
    EXPECT_EQ(queue.failure()->text, "There is no table 2 in this run.");
    EXPECT_FALSE(queue.store()) << "nothing is stored after a failure";
    EXPECT_FALSE(m_writer->commit({}));
}

TEST_F(QueueOfDistributions, EndsWhenItIsToStop) {
    FieldProfile field = figures("f");
    DistributionQueue queue(*m_writer, m_stop);
    m_goesOn = false;
    queue.put(m_table, field);
    EXPECT_FALSE(queue.store());
    EXPECT_FALSE(m_writer->commit({}));
    m_writer.reset();
    EXPECT_EQ(stored("SELECT count(*) FROM distribution_block"), "0\n");
}

} // namespace
} // namespace tavix::profiling
