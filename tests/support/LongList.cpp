#include "support/LongList.h"

#include "repository/RunWriter.h"
#include "repository/Schema.h"
#include "support/Need.h"

#include <stdexcept>

namespace tavix::testing {

namespace {

constexpr int kValues = 10'000;

} // namespace

LongList LongList::build(const std::string& path) {
    SampleField::Values values;
    for (int number = 1; number <= kValues; ++number)
        values.emplace_back(std::to_string(number), static_cast<std::uint64_t>(kValues + 1 - number));
    return build(path, 'I', values);
}

LongList LongList::build(const std::string& path, char typeCode, const SampleField::Values& values) {
    using namespace repository;
    LongList made;
    made.path = path;
    const SystemClock clock;
    RunDescription description{"Long", "", "", clock.now(), &clock};
    auto writer = need(RunWriter::begin(path, description));
    TableFacts table;
    table.dataSource = "Warehouse";
    table.sourceKind = SourceKind::Odbc;
    table.name = "long";
    for (const auto& [value, count] : values)
        table.totalRecords += static_cast<std::int64_t>(count);
    table.processedRecords = table.totalRecords;
    made.table = need(writer->addTable(table));
    SampleField field("value", 1, typeCode, values);
    need(writer->addField(made.table, field.facts()));
    need(writer->commit(clock.now()));
    made.job = writer->jobId();
    auto connection = need(openRepository(path, sql::OpenMode::Read));
    auto select = need(connection->prepare("SELECT id FROM field WHERE table_id = ?1"));
    if (select.bind(1, made.table).step() != sql::Step::Row)
        throw std::runtime_error("no field");
    made.field = static_cast<int>(select.integer(0));
    return made;
}

} // namespace tavix::testing
