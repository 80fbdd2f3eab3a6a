#include "support/SampleRepository.h"

#include "repository/Analyses.h"
#include "repository/Charts.h"
#include "repository/Notes.h"
#include "repository/RunWriter.h"
#include "repository/Schema.h"
#include "support/Need.h"
#include "support/SampleField.h"

#include <fmt/format.h>

#include <stdexcept>

namespace tavix::testing {

namespace {

using namespace repository;
using Values = SampleField::Values;

/// The first run looked for no types and findings, as if an older version had made it.
constexpr std::uint64_t kFirstExaminedRun = 1;

class FixedClock final : public Clock {
  public:
    explicit FixedClock(UtcTime time) : m_time(time) {}
    [[nodiscard]] UtcTime now() const override { return m_time; }

  private:
    UtcTime m_time;
};

/// `count` distinct values "<prefix>1", ... in descending frequency.
Values numbered(const std::string& prefix, int count) {
    Values values;
    for (int number = 1; number <= count; ++number)
        values.emplace_back(fmt::format("{}{}", prefix, number), count + 1 - number);
    return values;
}

/// Writes the tables of one run and stores their ids.
class SampleRun {
  public:
    SampleRun(SampleRepository& sample, RunWriter& writer, int number)
        : m_sample(sample), m_writer(writer), m_number(static_cast<std::uint64_t>(number)) {}

    void addCustomers();
    void addSuppliers();
    void addOrders();
    void addBigOrders();
    void addGermanCustomers();
    void addLateOrders();
    void addAirports();
    void addParts();

  private:
    void begin(const TableFacts& table);
    void add(const std::string& field, char typeCode, const Values& values);
    void add(SampleField& field);

    SampleRepository& m_sample;
    RunWriter& m_writer;
    std::uint64_t m_number;
    int m_table = -1;
    int m_ordinal = 0;
    std::string m_tableName;
};

void SampleRun::begin(const TableFacts& table) {
    m_tableName = table.objectName.empty() ? table.name : table.objectName;
    m_table = need(m_writer.addTable(table));
    m_sample.tables[m_tableName] = m_table;
    m_ordinal = 0;
}

void SampleRun::add(const std::string& field, char typeCode, const Values& values) {
    SampleField facts(field, ++m_ordinal, typeCode, values);
    add(facts);
}

void SampleRun::add(SampleField& field) {
    need(m_writer.addField(m_table, field.facts()));
    m_sample.fields[m_tableName + "/" + field.facts().name] = -1;
}

TableFacts warehouseTable(const std::string& name) {
    TableFacts table;
    table.dataSource = "Warehouse";
    table.sourceKind = SourceKind::Odbc;
    table.name = name;
    table.totalRecords = 1000;
    table.processedRecords = 1000;
    return table;
}

void SampleRun::addCustomers() {
    TableFacts table = warehouseTable("customers");
    table.catalog = "crm";
    table.schema = "public";
    begin(table);
    Values ids;
    for (int id = 1; id <= 1000; ++id)
        ids.emplace_back(fmt::format("{}", id), 1);
    add("id", 'I', ids);
    add("name", 'S', {{"Ada", 400}, {"Grace", 300 + m_number}, {"", 50}, {"   ", 20}, {KvbString(), 230 - m_number}});

    SampleField balance("balance", ++m_ordinal, 'R',
                        {{"12.3456789", 500 + m_number}, {"-3.5", 300}, {"1e+20", 1}, {"0.1", 199 - m_number}});
    balance.facts().metrics[index(MetricId::Mean)] = 12.3456789;
    balance.facts().metrics[index(MetricId::Median)] = 1.5;
    balance.facts().metrics[index(MetricId::StandardDeviation)] = 1234567.125;
    balance.facts().metrics[index(MetricId::StandardError)] = 0.5;
    balance.facts().metrics[index(MetricId::Mode)] = 12.3456789;
    balance.facts().quantileRule = "linear";
    balance.facts().percentiles = {
        {"5%", "-3.5"}, {"25%", "-3.5"}, {"50%", "1.5"}, {"75%", "12.3456789"}, {"95%", KvbString()}};
    for (int position = 0; position < 3; ++position)
        balance.facts().outliers.push_back({OutlierSide::Low, position, fmt::format("{}", position - 900), 1,
                                            position == 0 ? Fence::Outer30 : Fence::Inside});
    for (int position = 0; position < 5; ++position)
        balance.facts().outliers.push_back({OutlierSide::High, position, fmt::format("{}", 9000 - position), 2,
                                            position < 2 ? Fence::Outer15 : Fence::Inside});
    balance.facts().histogram = {HistogramKind::Numbers, BinUnit::Number, -2, 5, 2, {3, 900, 0, 4}};
    add(balance);

    add("since", 'D', {{"2024-01-31", 600}, {"2025-12-24", 399}, {KvbString(), 1}});
    add("active", 'B', {{"true", 700}, {"false", 300}});
    add("remark", 0, {{KvbString(), 1000}});
    Values cities = numbered("City ", 150);
    cities.emplace_back(KvbString(), 7);
    add("city", 'S', cities);
}

void SampleRun::addSuppliers() {
    TableFacts table = warehouseTable("suppliers");
    table.schema = "dbo";
    table.totalRecords = table.processedRecords = 6;
    begin(table);
    add("id", 'I', {{"1", 1}, {"2", 1}, {"3", 1}, {"5001", 2}, {"5002", 1}});
    add("city", 'S', {{"City 1", 3}, {"Köln", 2}, {"\xF0\x9F\x98\x80", 1}});
}

void SampleRun::addOrders() {
    TableFacts table = warehouseTable("orders");
    table.processedRecords = 100;
    begin(table);
    add("order", 'I', numbered("", 100));
    SampleField note("note", ++m_ordinal, 'S',
                     {{"=1+1", 40}, {"<b>bold</b>", 30}, {"tab\there", 20}, {"line\r\nend", 10}});
    if (m_number >= kFirstExaminedRun) {
        note.facts().breakdown = {.values = 4, .rows = 100, .forms = {{"text", 4, 100, "=1+1"}}};
        note.facts().findings = {{.code = "control-characters",
                                  .likelihood = 3,
                                  .values = 2,
                                  .rows = 30,
                                  .detail = "2 values in 30 rows, such as line end",
                                  .condition = "has_control_chars(`Value`)"}};
    }
    add(note);
    if (m_number >= kFirstExaminedRun)
        need(m_writer.addFinding(m_table, "", {.code = "few-rows", .detail = "100 rows"}));
}

void SampleRun::addBigOrders() {
    TableFacts table = warehouseTable("");
    table.objectName = "big orders";
    table.kind = TableKind::Query;
    table.query = "\r\nSELECT *\r\n\r\nFROM orders\nWHERE amount > 100\r\n";
    table.totalRecords = 50;
    table.processedRecords = 50;
    begin(table);
    add("amount", 'R', {{"100.5", 25}, {"200", 25}});
}

void SampleRun::addGermanCustomers() {
    TableFacts table = warehouseTable("customers");
    table.catalog = "crm";
    table.schema = "public";
    table.objectName = "german customers";
    table.kind = TableKind::Filter;
    table.filter = "country = 'DE'";
    table.processedRecords = 120;
    begin(table);
    add("id", 'I', {{"7", 60}, {"8", 60}});
}

void SampleRun::addLateOrders() {
    TableFacts table = warehouseTable("");
    table.objectName = "late orders";
    table.kind = TableKind::Filter;
    table.query = "SELECT * FROM orders";
    table.alternateFilter = "days late > 3";
    table.totalRecords = 100;
    table.processedRecords = 9;
    begin(table);
    add("days", 'I', {{"4", 5}, {"5", 4}});
}

void SampleRun::addAirports() {
    TableFacts table;
    table.dataSource = "/data/files";
    table.name = "airports";
    table.isTextFile = true;
    table.textFile.path = "/data/files/airports.csv";
    table.textFile.size = 4321;
    table.textFile.modified = SampleRepository::runTime(0);
    table.totalRecords = table.processedRecords = 5;
    table.damagedRecords = 2;
    begin(table);
    add("code", 'S', {{"LAS", 2}, {"JFK", 1}, {"007", 1}, {KvbString(), 1}});
    add("latitude", 'R', {{"36.08", 2}, {"40.64", 1}, {KvbString(), 2}});
    need(m_writer.addLog(m_table, LogLevel::Warning, "Line 3: 1 cell instead of 2."));
    need(m_writer.addLog(m_table, LogLevel::Error, "Line 5: a bad byte was replaced."));
}

void SampleRun::addParts() {
    TableFacts table;
    table.dataSource = "/data/files";
    table.name = "parts";
    table.isTextFile = true;
    table.textFile.path = "/data/files/parts.tsv";
    table.textFile.delimiter = '\t';
    table.textFile.hasHeader = false;
    table.totalRecords = table.processedRecords = 2;
    begin(table);
    add("Column 1", 'S', {{"bolt", 1}, {"nut", 1}});
}

void writeSales(SampleRepository& sample, int number) {
    FixedClock clock(SampleRepository::runTime(number));
    constexpr const char* kDescriptions[] = {"January", "February", ""};
    RunDescription description{"Sales", "Customers and their orders", kDescriptions[number], clock.now(), &clock};
    description.isExamined = static_cast<std::uint64_t>(number) >= kFirstExaminedRun;
    auto writer = need(RunWriter::begin(sample.path, description));
    SampleRun run(sample, *writer, number);
    need(writer->addLog(0, LogLevel::Info, "The run began."));
    run.addCustomers();
    run.addSuppliers();
    run.addOrders();
    run.addBigOrders();
    run.addGermanCustomers();
    if (number > 0)
        run.addLateOrders();
    run.addAirports();
    need(writer->addCollection({"Customer keys",
                                "Whatever names a customer",
                                {{"customers", "id"}, {"suppliers", "id"}, {"german customers", "id"}}}));
    need(writer->addCollection({"Amounts", "", {{"customers", "balance"}, {"big orders", "amount"}}}));
    need(writer->commit(clock.now() + std::chrono::seconds(90)));
    sample.salesJob = writer->jobId();
    sample.salesRuns.push_back(writer->runId());
}

void writeInventory(SampleRepository& sample) {
    FixedClock clock(SampleRepository::runTime(1));
    RunDescription description{"Inventory", "", "", clock.now(), &clock};
    auto writer = need(RunWriter::begin(sample.path, description));
    SampleRun(sample, *writer, 0).addParts();
    need(writer->commit(clock.now() + std::chrono::seconds(1)));
    sample.inventoryJob = writer->jobId();
    sample.inventoryRun = writer->runId();
}

int idOf(sql::Connection& connection, const std::string& sql, const std::string& name) {
    auto select = need(connection.prepare(sql));
    if (select.bind(1, name).step() != sql::Step::Row)
        throw std::runtime_error("no " + name);
    return static_cast<int>(select.integer(0));
}

void writeNotesAndAnalyses(SampleRepository& sample) {
    auto connection = need(openRepository(sample.path, sql::OpenMode::Write));
    auto transaction = need(sql::Transaction::begin(*connection));
    for (auto& [name, id] : sample.fields) {
        auto slash = name.find('/');
        id = idOf(*connection,
                  fmt::format("SELECT id FROM field WHERE table_id = {} AND name = ?1",
                              sample.tables.at(name.substr(0, slash))),
                  name.substr(slash + 1));
    }
    for (const char* name : {"Amounts", "Customer keys"})
        sample.collections[name] = idOf(*connection, "SELECT id FROM collection WHERE name = ?1", name);
    for (const char* name : {"Question", "Decision"}) {
        need(addNoteCategory(*connection, name));
        sample.noteCategories[name] = idOf(*connection, "SELECT id FROM note_category WHERE name = ?1", name);
    }
    int customers = sample.tables.at("customers");
    int question = sample.noteCategories.at("Question");
    UtcTime time = SampleRepository::runTime(2);
    std::chrono::hours hour(1);
    need(addTableNote(*connection, NoteOwner::Table, customers, question, "ada", "Why so many nulls?", time));
    need(addTableNote(*connection, NoteOwner::Table, customers, -1, "grace", "Known.\nFixed in March.", time + hour));
    need(addTableNote(*connection, NoteOwner::Collection, sample.collections.at("Amounts"), -1, "ada", "All in euros.",
                      time));
    need(addFieldNote(*connection, sample.fields.at("customers/balance"), question, "ada", "Signs are right.", time));

    sample.chart = need(putTableChart(*connection, -1, customers, "Nulls", "Null counts of all fields"));
    need(addChartProperty(*connection, sample.chart, "TYPE", 0, "Bar"));
    need(addChartProperty(*connection, sample.chart, "DATATYPE", 0, "0"));

    sample.redundancy = need(addRedundancy(*connection, "Same people", "Customers that are suppliers"));
    need(addRedundancyField(*connection, sample.redundancy, sample.fields.at("customers/id")));
    need(addRedundancyField(*connection, sample.redundancy, sample.fields.at("suppliers/id")));

    const std::vector<ValueCount> unmatched{{"5001", 2, false}, {"5002", 1, false}};
    need(storeKeyAnalysis(*connection, {sample.salesRuns.back(), sample.fields.at("suppliers/id"),
                                        sample.fields.at("customers/id"), 60.0, unmatched}));
    need(transaction.commit());
}

} // namespace

UtcTime SampleRepository::runTime(int number) {
    using namespace std::chrono;
    sys_days day = year(2026) / month(static_cast<unsigned>(number + 1)) / 15;
    return UtcTime(day) + hours(10);
}

SampleRepository SampleRepository::build(const std::string& path) {
    SampleRepository sample;
    sample.path = path;
    for (int number = 0; number < 3; ++number)
        writeSales(sample, number);
    writeInventory(sample);
    writeNotesAndAnalyses(sample);
    return sample;
}

} // namespace tavix::testing
