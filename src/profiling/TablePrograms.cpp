#include "profiling/TablePrograms.h"

#include "base/DateTicks.h"
#include "job/JobChecks.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavix::profiling {

namespace {

using expression::Field;
using expression::Program;
using expression::Type;
using expression::Wanted;

/// Whether values of this type can be summed up; a text counts as a number.
bool isSummable(Type type) {
    return type != Type::Boolean && type != Type::Date;
}

Type typeOf(MetricValue value) {
    switch (value) {
    case MetricValue::RealNumber:
    case MetricValue::Percent:
        return Type::Real;
    case MetricValue::FieldValue:
    case MetricValue::Word:
        return Type::Text;
    case MetricValue::WholeNumber:
        break;
    }
    return Type::Integer;
}

/// The type of a custom metric's value, for metrics that refer to it.
Type typeOf(job::Figure figure, const Program& program) {
    if (figure == job::Figure::Count)
        return Type::Integer;
    return figure == job::Figure::Sum || figure == job::Figure::Average ? Type::Real : program.type();
}

std::vector<MetricField> metricFields(std::span<const std::string> columns) {
    std::vector<MetricField> figures{{"Records", Type::Integer, {}, MetricId::Count}};
    for (std::size_t c = 0; c < columns.size(); ++c)
        for (const MetricInfo& info : metricCatalogue())
            figures.push_back({fmt::format("{}:{}", columns[c], info.name), typeOf(info.value), c, info.id});
    return figures;
}

std::vector<Field> fieldsOf(std::span<const MetricField> figures) {
    std::vector<Field> fields;
    for (const MetricField& figure : figures)
        fields.push_back({figure.name, figure.type});
    return fields;
}

Result<Program> compileOne(const job::ExpressionText& text, const std::string& what, std::span<const Field> fields,
                           Wanted wanted, std::int64_t now, std::vector<ProgramRemark>& remarks) {
    expression::Compiled compiled = expression::compile(text.text, fields, wanted, now, expression::Columns::Typed);
    if (compiled.remark)
        remarks.push_back({text.place, fmt::format("{}: {}", what, expression::describe(*compiled.remark))});
    if (compiled.ok())
        return std::move(*compiled.program);
    return Error{fmt::format("{}{}: {}", text.place, what, expression::describe(compiled.error))};
}

/// Compiles the expressions of a table.
class Compiler {
  public:
    Compiler(const job::TableDescription& table, std::span<const std::string> columns, UtcTime now)
        : m_table(table), m_columns(columns), m_now(ticksOf(now)) {
        for (const std::string& name : columns)
            m_fields.push_back({name, Type::Text});
    }

    Result<TablePrograms> compile() {
        if (m_table.isFiltered()) {
            auto where = compileOne(m_table.where, fmt::format("the condition of the table \"{}\"", m_table.name),
                                    m_fields, Wanted::Condition, m_now, m_programs.remarks);
            if (!where)
                return where.error();
            m_programs.where = std::move(where).value();
        }
        if (Status status = findKey(); !status)
            return status.error();
        if (Status status = findDates(); !status)
            return status.error();
        for (const job::CustomMetricDescription& metric : m_table.metrics)
            if (Status status = add(metric); !status)
                return status.error();
        for (const job::RuleDescription& rule : m_table.rules) {
            auto program = compileOne(rule.condition, fmt::format("the rule \"{}\"", rule.name), m_fields,
                                      Wanted::Condition, m_now, m_programs.remarks);
            if (!program)
                return program.error();
            m_programs.rules.push_back(std::move(program).value());
        }
        return std::move(m_programs);
    }

  private:
    Status findKey() {
        for (std::size_t i = 0; i < m_table.key.size(); ++i) {
            const std::string& name = m_table.key[i];
            const auto column = std::find(m_columns.begin(), m_columns.end(), name);
            if (column == m_columns.end())
                return Error{fmt::format("{}The key of the table \"{}\": there is no field \"{}\"{}.",
                                         job::placeAt(m_table.keyPlaces, i), m_table.name, name,
                                         suggestion(name, m_columns))};
            m_programs.key.push_back(static_cast<std::size_t>(column - m_columns.begin()));
        }
        return {};
    }

    [[nodiscard]] Status findDates() const {
        for (const job::FieldDates& dates : m_table.fieldDates)
            if (std::find(m_columns.begin(), m_columns.end(), dates.field) == m_columns.end())
                return Error{fmt::format("{}The dates of the table \"{}\": there is no field \"{}\"{}.", dates.place,
                                         m_table.name, dates.field, suggestion(dates.field, m_columns))};
        return {};
    }

    Status add(const job::CustomMetricDescription& metric) {
        const std::string what = fmt::format("the custom metric \"{}\"", metric.name);
        const bool isOverMetrics = metric.figure == job::Figure::Metric;
        if (isOverMetrics && m_programs.figures.empty())
            beginMetricFields();
        auto program = compileOne(metric.expression, what, isOverMetrics ? m_metricFields : m_fields,
                                  metric.figure == job::Figure::Count ? Wanted::Condition : Wanted::Value, m_now,
                                  m_programs.remarks);
        if (!program)
            return program.error();
        if ((metric.figure == job::Figure::Sum || metric.figure == job::Figure::Average) &&
            !isSummable(program->type()))
            return Error{fmt::format(
                "{}{}: a number is needed here, but this is of type {}{}", metric.expression.place, what,
                expression::typeName(program->type()),
                program->type() == Type::Boolean ? "; \"count\" gives the number of rows for which it is true" : "")};
        m_programs.metrics.push_back(std::move(program).value());
        if (!m_programs.figures.empty())
            addMetricField(m_programs.metrics.size() - 1);
        return {};
    }

    /// Only for tables that have metrics over metrics.
    void beginMetricFields() {
        m_programs.figures = metricFields(m_columns);
        m_metricFields = fieldsOf(m_programs.figures);
        for (std::size_t i = 0; i < m_programs.metrics.size(); ++i)
            addMetricField(i);
    }
    void addMetricField(std::size_t metric) {
        const job::CustomMetricDescription& description = m_table.metrics[metric];
        const Type type = typeOf(description.figure, m_programs.metrics[metric]);
        m_programs.figures.push_back({description.name, type, {}, MetricId::Count});
        m_metricFields.push_back({description.name, type});
    }

    const job::TableDescription& m_table;
    std::span<const std::string> m_columns;
    std::int64_t m_now;
    std::vector<Field> m_fields;
    std::vector<Field> m_metricFields;
    TablePrograms m_programs;
};

} // namespace

std::vector<std::size_t> usedColumns(const Program& program) {
    std::vector<std::size_t> used;
    for (std::size_t field = 0; field < program.fields().size(); ++field)
        if (program.uses(field))
            used.push_back(field);
    return used;
}

std::vector<repository::MetricInput> TablePrograms::inputsOf(std::size_t metric, bool isOverMetrics,
                                                             std::span<const std::string> columns) const {
    std::vector<repository::MetricInput> inputs;
    for (const std::size_t used : usedColumns(metrics[metric])) {
        if (!isOverMetrics)
            inputs.push_back({columns[used], {}});
        else if (figures[used].column)
            inputs.push_back({columns[*figures[used].column], figures[used].metric});
    }
    return inputs;
}

Result<TablePrograms> compileTable(const job::TableDescription& table, std::span<const std::string> columns,
                                   UtcTime now) {
    return Compiler(table, columns, now).compile();
}

} // namespace tavix::profiling
