#include "tabs/SubjectText.h"

#include "base/NumberText.h"
#include "base/TypeWords.h"
#include "report/CountText.h"

namespace tavix {

namespace {

constexpr std::string_view kSeparator = "  ·  ";

class Facts {
  public:
    void add(std::string_view fact) {
        if (fact.empty())
            return;
        if (!m_text.empty())
            m_text += kSeparator;
        m_text += fact;
    }
    [[nodiscard]] const std::string& text() const { return m_text; }

  private:
    std::string m_text;
};

std::string recordsText(const TableIdentity& table) {
    if (table.totalRecords < 0)
        return {};
    std::string text = countOf(table.totalRecords, "record");
    if (table.kind == TableKind::Filter && table.processedRecords >= 0)
        return groupedCount(table.processedRecords) + " of " + text + (table.totalRecords == 1 ? " passes" : " pass");
    if (table.isSample)
        text += ", " + groupedCount(table.processedRecords) + " sampled";
    return text;
}

std::int64_t countOfMetric(const FieldRecord& field, MetricId id) {
    return parseInteger(field.metrics[static_cast<std::size_t>(id)].view()).value_or(-1);
}

} // namespace

std::string titleOf(const ReportSubject& subject) {
    if (subject.selection.fieldId != -1)
        return subject.field ? subject.field->name : subject.selection.fieldName;
    return subject.selection.kind == ReportSelection::Kind::Table ? subject.table.displayName()
                                                                  : subject.selection.name;
}

std::string nameOf(const ReportSelection& selection) {
    std::string name = selection.kind == ReportSelection::Kind::Table ? selection.table.displayName() : selection.name;
    if (selection.fieldId != -1)
        name += " · " + selection.fieldName;
    return name;
}

bool hasInformation(const ReportSubject& subject) {
    if (subject.selection.fieldId != -1)
        return subject.field.has_value();
    return subject.selection.kind == ReportSelection::Kind::Table;
}

std::string valuesThatCompare(const FieldRecord& field, std::string_view among) {
    if (field.fits)
        return fitValues(*field.fits);
    const FieldTypeInfo* const type = findFieldType(field.typeCode);
    if (!type || type->type == FieldType::Text)
        return std::string(among);
    const std::string_view noun = type->isNumeric ? "numbers" : type->type == FieldType::Date ? "dates" : "booleans";
    std::string text = "the ";
    text += noun;
    text += " in ";
    text += among;
    return text;
}

std::string detailOf(const ReportSubject& subject) {
    Facts facts;
    if (subject.selection.fieldId == -1) {
        if (subject.selection.kind == ReportSelection::Kind::Table)
            facts.add(recordsText(subject.table));
        return facts.text();
    }
    if (subject.table.id != -1)
        facts.add(subject.table.displayName());
    if (!subject.field)
        return facts.text();
    facts.add(typeWord(subject.field->typeCode));
    if (const auto& fits = subject.field->fits)
        facts.add(groupedCount(fits->rows) + " of " + groupedCount(fits->of) + " are " + fitNoun(fits->reading));
    facts.add(recordsText(subject.table));
    if (const std::int64_t distinct = countOfMetric(*subject.field, MetricId::UniqueCount); distinct >= 0)
        facts.add(countOf(distinct, "distinct value"));
    if (const std::int64_t nulls = countOfMetric(*subject.field, MetricId::NullCount); nulls > 0)
        facts.add(countOf(nulls, "null"));
    return facts.text();
}

std::string damageOf(const ReportSubject& subject) {
    // The table of a collection's field may be shown in another run.
    if (subject.selection.kind != ReportSelection::Kind::Table || subject.table.damagedRecords <= 0)
        return {};
    return countOf(subject.table.damagedRecords, "damaged row");
}

} // namespace tavix
