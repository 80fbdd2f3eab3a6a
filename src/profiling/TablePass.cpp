#include "profiling/TablePass.h"

#include "expression/RowEvaluator.h"
#include "profiling/MetricValue.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>

namespace tavix::profiling {

namespace {

std::vector<bool> columnsOf(std::span<const expression::Program* const> programs, std::size_t columns) {
    std::vector<bool> used(columns);
    for (const expression::Program* program : programs)
        for (const std::size_t column : usedColumns(*program))
            used[column] = true;
    return used;
}

std::vector<bool> whereColumns(const TablePrograms& programs, std::size_t columns) {
    std::vector<const expression::Program*> list;
    if (programs.where)
        list.push_back(&*programs.where);
    return columnsOf(list, columns);
}

std::vector<bool> ruleColumns(const job::TableDescription& table, const TablePrograms& programs, std::size_t columns) {
    std::vector<const expression::Program*> list;
    for (std::size_t i = 0; i < programs.metrics.size(); ++i)
        if (table.metrics[i].figure != job::Figure::Metric)
            list.push_back(&programs.metrics[i]);
    for (const expression::Program& rule : programs.rules)
        list.push_back(&rule);
    return columnsOf(list, columns);
}

/// The value of a custom metric over metrics; null, with the reason in `failure`, when it cannot be evaluated.
KvbDatavar evaluateOver(const std::vector<KvbDatavar>& figures, const expression::Program& program,
                        std::string& failure) {
    std::vector<expression::Value> values;
    values.reserve(figures.size());
    for (const KvbDatavar& figure : figures)
        values.push_back(expression::Value::ofCell(figure));
    expression::RowEvaluator evaluator(program);
    KvbDatavar value = metricValue(evaluator.evaluate(values));
    failure = evaluator.failure();
    return value;
}

/// The columns of the key, then the other inputs of the rule.
std::vector<std::size_t> logColumns(const std::vector<std::size_t>& key, const expression::Program& rule) {
    std::vector<std::size_t> columns = key;
    for (const std::size_t column : usedColumns(rule))
        if (std::find(key.begin(), key.end(), column) == key.end())
            columns.push_back(column);
    return columns;
}

} // namespace

TablePass::TablePass(const job::TableDescription& description, std::span<const std::string> columns,
                     TablePrograms programs)
    : m_description(description),
      m_columns(columns),
      m_programs(std::move(programs)),
      m_values(columns.size()),
      m_whereColumns(whereColumns(m_programs, columns.size())),
      m_ruleColumns(ruleColumns(description, m_programs, columns.size())) {
    if (m_programs.where)
        m_where.emplace(*m_programs.where);
    for (std::size_t i = 0; i < m_programs.metrics.size(); ++i) {
        const job::Figure figure = description.metrics[i].figure;
        m_metricPasses.push_back(
            figure == job::Figure::Metric ? nullptr : std::make_unique<MetricPass>(figure, m_programs.metrics[i]));
        m_hasRowPrograms = m_hasRowPrograms || figure != job::Figure::Metric;
    }
    for (std::size_t i = 0; i < m_programs.rules.size(); ++i)
        m_rulePasses.push_back(std::make_unique<RulePass>(
            m_programs.rules[i], logColumns(m_programs.key, m_programs.rules[i]), description.rules[i].rowLogLimit));
    m_hasRowPrograms = m_hasRowPrograms || !m_rulePasses.empty();
    if (!m_programs.figures.empty())
        m_metrics.resize(columns.size());
}

void TablePass::prepare(const source::RowBlock& block, std::int64_t firstRecord, const expression::GoOn& goOn) {
    if (hasPrograms() && m_allRows.size() < block.rows) {
        m_allRows.resize(block.rows);
        std::iota(m_allRows.begin(), m_allRows.end(), 0U);
    }
    if (m_where)
        select(block, firstRecord, goOn);
    if (m_keepsOffsetIndex)
        takeOffsetIndex(block);
    m_rows += static_cast<std::int64_t>(m_where ? m_selectedRows.size() : block.rows);
    if (m_hasRowPrograms)
        evaluate(block, firstRecord, goOn);
}

void TablePass::countColumn(const source::RowBlock& block, std::size_t column, std::uint32_t part) {
    const std::vector<source::Cell>& cells = block.columns[column];
    ColumnValues& values = m_values[column];
    if (!m_where)
        return values.count(std::span(cells.data(), block.rows), block.offsets, part);
    thread_local std::vector<source::Cell> selected;
    selected.resize(m_selectedRows.size());
    for (std::size_t i = 0; i < selected.size(); ++i)
        selected[i] = cells[m_selectedRows[i]];
    values.count(selected, m_selectedPlaces, part);
}

void TablePass::takeOffsetIndex(const source::RowBlock& block) {
    if (block.offsets.empty()) {
        m_keepsOffsetIndex = false;
        m_offsets.clear();
        for (ColumnValues& values : m_values)
            values.dropOffsetIndex();
        return;
    }
    if (m_offsets.empty()) {
        for (ColumnValues& values : m_values)
            values.keepOffsetIndex();
        m_offsets.push_back(block.offsets.front().offset);
    }
    for (std::size_t i = 1; i < block.offsets.size(); ++i)
        m_offsets.push_back(block.offsets[i].offset);
    if (!m_where)
        return;
    m_selectedPlaces = block.offsets;
    for (source::RowOffset& place : m_selectedPlaces)
        place.row = static_cast<std::size_t>(std::lower_bound(m_selectedRows.begin(), m_selectedRows.end(), place.row) -
                                             m_selectedRows.begin());
}

void TablePass::select(const source::RowBlock& block, std::int64_t firstRecord, const expression::GoOn& goOn) {
    m_selectedRows.clear();
    for (std::size_t first = 0; first < block.rows;) {
        const auto rest =
            std::span<const std::uint32_t>(m_allRows).subspan(first, std::min(BlockColumns::kRows, block.rows - first));
        const auto taken = m_whereColumns.take(block, rest);
        const RowSlice slice{block, rest.first(taken.rows), *taken.block, firstRecord, goOn};
        for (const std::uint32_t row : m_where->passing(slice))
            m_selectedRows.push_back(rest[row]);
        first += taken.rows;
    }
}

void TablePass::evaluate(const source::RowBlock& block, std::int64_t firstRecord, const expression::GoOn& goOn) {
    const auto rows = m_where ? std::span<const std::uint32_t>(m_selectedRows)
                              : std::span<const std::uint32_t>(m_allRows).first(block.rows);
    for (std::size_t first = 0; first < rows.size();) {
        const auto rest = rows.subspan(first, std::min(BlockColumns::kRows, rows.size() - first));
        const auto taken = m_ruleColumns.take(block, rest);
        const RowSlice slice{block, rest.first(taken.rows), *taken.block, firstRecord, goOn};
        for (const auto& metric : m_metricPasses)
            if (metric)
                metric->take(slice);
        for (const auto& rule : m_rulePasses)
            rule->take(slice);
        first += taken.rows;
    }
}

void TablePass::keepMetrics(std::size_t column, const std::array<KvbDatavar, kMetricCount>& metrics) {
    if (!m_metrics.empty())
        m_metrics[column] = metrics;
}

Status TablePass::storeRules(repository::RunWriter& writer, int tableId) {
    if (m_where)
        if (Status status = log(writer, tableId, "The condition of the table", m_where->failures()); !status)
            return status;
    if (Status status = storeMetrics(writer, tableId); !status)
        return status;
    for (std::size_t i = 0; i < m_rulePasses.size(); ++i) {
        RulePass& pass = *m_rulePasses[i];
        const job::RuleDescription& rule = m_description.rules[i];
        repository::BusinessRuleFacts facts;
        facts.name = rule.name;
        facts.condition = rule.condition.text;
        for (const std::size_t column : usedColumns(m_programs.rules[i]))
            facts.inputs.push_back(m_columns[column]);
        facts.checkedRows = pass.checkedRows();
        facts.failedRows = pass.failedRows();
        facts.errorRows = pass.failures().count();
        for (const std::size_t column : pass.logColumns())
            facts.logColumns.push_back(m_columns[column]);
        facts.keyColumns = m_programs.key.size();
        facts.log = pass.takeLog();
        if (Status status = writer.addBusinessRule(tableId, facts); !status)
            return status;
        if (Status status = log(writer, tableId, fmt::format("The rule \"{}\"", rule.name), pass.failures()); !status)
            return status;
    }
    return {};
}

Status TablePass::storeMetrics(repository::RunWriter& writer, int tableId) {
    // The values in the order of the fields of the programs over metrics.
    std::vector<KvbDatavar> figures;
    for (const MetricField& figure : m_programs.figures)
        if (figure.column)
            figures.push_back(m_metrics[*figure.column][index(figure.metric)]);
        else if (figures.empty())
            figures.emplace_back(m_rows);
    for (std::size_t i = 0; i < m_metricPasses.size(); ++i) {
        const job::CustomMetricDescription& metric = m_description.metrics[i];
        repository::CustomMetricFacts facts;
        facts.name = metric.name;
        facts.outputName = metric.outputName;
        facts.isOverMetrics = metric.figure == job::Figure::Metric;
        facts.figure = job::figureWord(metric.figure);
        facts.expression = metric.expression.text;
        facts.inputs = m_programs.inputsOf(i, facts.isOverMetrics, m_columns);
        std::string failure;
        if (const auto& pass = m_metricPasses[i]) {
            facts.value = pass->result();
            facts.usedRows = pass->usedRows();
            facts.errorRows = pass->failures().count();
        } else {
            facts.value = evaluateOver(figures, m_programs.metrics[i], failure);
        }
        if (!m_programs.figures.empty())
            figures.push_back(facts.value);
        if (Status status = writer.addCustomMetric(tableId, facts); !status)
            return status;
        const std::string what = fmt::format("The custom metric \"{}\"", metric.name);
        if (!failure.empty())
            if (Status status = writer.addLog(tableId, repository::LogLevel::Warning,
                                              fmt::format("{} could not be evaluated: {}", what, failure));
                !status)
                return status;
        if (const auto& pass = m_metricPasses[i])
            if (Status status = log(writer, tableId, what, pass->failures()); !status)
                return status;
    }
    return {};
}

Status TablePass::log(repository::RunWriter& writer, int tableId, const std::string& what,
                      const RowFailures& failures) const {
    if (failures.count() == 0)
        return {};
    return writer.addLog(tableId, repository::LogLevel::Warning, fmt::format("{}: {}.", what, failures.text()));
}

} // namespace tavix::profiling
