#include "report/RuleSuggestions.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/DateTicks.h"
#include "base/NumberText.h"
#include "report/CheckedCursor.h"
#include "report/CountText.h"
#include "report/ExpressionText.h"
#include "report/FieldEvidence.h"
#include "report/KnownRules.h"
#include "report/References.h"
#include "report/ReportTables.h"
#include "report/RuleDrafts.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace tavix {

namespace {

constexpr std::size_t kLongestNamePart = 200; ///< bytes of a field in the name of a rule

/// The condition over this operand, which reads as `number` where it is compared with numbers.
std::string onOperand(const std::string& condition, const std::string& operand, const std::string& number) {
    std::string made;
    for (const char c : condition) {
        if (c == kOperand)
            made += operand;
        else if (c == kNumber)
            made += number;
        else
            made += c;
    }
    return made;
}

/// The condition as a job tests the rows. A column is compared with numbers as it is, unless its values have a reading.
std::string onField(const FieldEvidence& field, const std::string& condition) {
    const std::string column = fieldText(field.field.name);
    return onOperand(condition, column,
                     field.reading ? fmt::format("tonumber({}, {})", column, literalText(field.reading->text()))
                                   : column);
}

/// As a filter tests the values, which are texts.
std::string onValues(const FieldEvidence& field, const std::string& condition) {
    return onOperand(condition, "`Value`",
                     field.reading ? fmt::format("tonumber(`Value`, {})", literalText(field.reading->text()))
                                   : std::string("tonumber(`Value`)"));
}

/// The different days of a field of dates, each written in one way and without a time; empty for any other.
std::vector<std::int64_t> daysOf(PrViewer& viewer, const FieldEvidence& field) {
    constexpr std::int64_t kMostDays = 100'000;
    std::vector<std::int64_t> days;
    if (!field.holdsDates() || field.blanks > 0 || field.misfitRows > 0 || field.distinct > kMostDays)
        return days;
    const ProfileCursorHandle rows = checked(viewer, viewer.getFreqDist(field.field.id, ""));
    while (rows->next()) {
        const auto ticks = field.ticksIn(textAt(*rows, layout::FreqValue));
        if (ticks && *ticks % kTicksPerDay != 0)
            return {};
        if (ticks)
            days.push_back(dayOf(*ticks));
    }
    std::sort(days.begin(), days.end());
    const bool isWrittenInTwoWays = std::adjacent_find(days.begin(), days.end()) != days.end();
    return isWrittenInTwoWays ? std::vector<std::int64_t>() : days;
}

class Suggester {
  public:
    Suggester(PrViewer& viewer, int job, const SuggestionOptions& options)
        : m_viewer(viewer), m_options(options), m_known(viewer, job) {}

    std::vector<RuleSuggestion> run() {
        const std::vector<TableIdentity> tables = readTables(m_viewer);
        std::vector<Table> read;
        read.reserve(tables.size());
        for (const TableIdentity& table : tables)
            read.push_back({&table, readFields(m_viewer, table.id)});
        if (isWanted(SuggestionKind::Reference))
            findAllReferences(tables, read);
        for (const Table& table : read)
            if (isChosen(table.identity->id) && !areRowsOfAnother(*table.identity))
                addTable(table);
        return std::move(m_made);
    }

  private:
    struct Table {
        const TableIdentity* identity;
        std::vector<FieldRecord> fields;
    };

    [[nodiscard]] bool isChosen(int table) const { return m_options.tableId == -1 || m_options.tableId == table; }
    /// The rules of its base cover a filtered table; one is examined only when it is chosen.
    [[nodiscard]] bool areRowsOfAnother(const TableIdentity& table) const {
        return table.kind == TableKind::Filter && m_options.tableId == -1;
    }
    [[nodiscard]] bool isChosenField(int field) const { return m_options.fieldId == -1 || m_options.fieldId == field; }
    [[nodiscard]] bool isWanted(SuggestionKind kind) const {
        return m_options.kinds.empty() ||
               std::find(m_options.kinds.begin(), m_options.kinds.end(), kind) != m_options.kinds.end();
    }
    void pulse() const {
        if (m_options.pulse)
            m_options.pulse();
    }

    void findAllReferences(const std::vector<TableIdentity>& identities, const std::vector<Table>& tables) {
        std::vector<std::size_t> wanted;
        for (const Table& table : tables) {
            const TableIdentity& identity = *table.identity;
            const bool isFiltered = identity.kind == TableKind::Filter;
            const TableIdentity* const baseTable = isFiltered ? findBaseTable(identities, identity) : nullptr;
            const int base = baseTable ? baseTable->id : identity.id;
            for (const FieldRecord& field : table.fields) {
                if (isChosen(identity.id) && isChosenField(field.id) && !isFiltered)
                    wanted.push_back(m_referenceFields.size());
                m_referenceFields.push_back({identity.id, base, isFiltered, identity.displayName(), field});
            }
        }
        for (auto& [from, reference] : findReferences(m_viewer, m_referenceFields, wanted, m_options.pulse))
            m_references.emplace_back(m_referenceFields[from].field.id, std::move(reference));
    }

    void addTable(const Table& table) {
        const TableEvidence evidence = readTableEvidence(m_viewer, table.identity->id);
        for (const FieldRecord& field : table.fields) {
            if (!isChosenField(field.id))
                continue;
            pulse();
            addField(*table.identity,
                     readFieldEvidence(m_viewer, field, evidence, table.identity->isSample, m_options.longestDomain));
        }
    }

    void addField(const TableIdentity& table, const FieldEvidence& field) {
        if (!field.type || field.rows < kFewestRows)
            return;
        std::vector<RuleDraft> drafts;
        draftFilled(field, drafts);
        draftUnique(field, drafts);
        draftReference(field, drafts);
        if (!hasListedReference(drafts))
            draftDomain(field, m_options.longestDomain, drafts);
        draftPattern(field, m_options.leastPatternPercent, drafts);
        draftRange(field, drafts);
        LengthTail tail;
        if (field.isType(FieldType::Text) &&
            !hasDraft(drafts, {SuggestionKind::Constant, SuggestionKind::Domain, SuggestionKind::Pattern}))
            tail = readLengthTail(m_viewer, field.field.id,
                                  static_cast<std::int64_t>(field.number(MetricId::MaximumLength).value_or(0)));
        draftLength(field, tail, drafts);
        draftCoverage(field, daysOf(m_viewer, field), drafts);
        std::stable_sort(drafts.begin(), drafts.end(),
                         [](const RuleDraft& a, const RuleDraft& b) { return a.kind < b.kind; });
        for (const RuleDraft& draft : drafts)
            if (isWanted(draft.kind))
                finish(table, field, draft);
    }

    static bool hasListedReference(const std::vector<RuleDraft>& drafts) {
        return std::any_of(drafts.begin(), drafts.end(), [](const RuleDraft& draft) {
            return draft.kind == SuggestionKind::Reference && draft.element == SuggestedElement::Rule;
        });
    }

    void draftReference(const FieldEvidence& field, std::vector<RuleDraft>& drafts) {
        const auto found = std::find_if(m_references.begin(), m_references.end(),
                                        [&](const auto& one) { return one.first == field.field.id; });
        if (found == m_references.end())
            return;
        const Reference& reference = found->second;
        const ReferenceField& to = m_referenceFields[reference.to];
        const std::string address = to.tableName + "." + to.field.name;
        RuleDraft draft;
        draft.kind = SuggestionKind::Reference;
        draft.predicate = "is in " + address;
        const std::int64_t without = static_cast<std::int64_t>(reference.without.size());
        draft.reason =
            reference.rowsWithout == 0
                ? fmt::format("all of {} are in {}", countOf(reference.values, "value"), address)
                : fmt::format("{} of {} are in {}; {}{} in {} not", groupedCount(reference.values - without),
                              countOf(reference.values, "value"), address, reference.hasAllWithout ? "" : "more than ",
                              groupedCount(without), countOf(reference.rowsWithout, "row"));
        draft.violations = reference.rowsWithout;
        draft.confidence = confidenceOf(field, reference.rowsWithout == 0);
        std::vector<std::string> keys = keysOf(to);
        if (keys.empty()) {
            draft.element = SuggestedElement::Remark;
            draft.remark =
                "A job cannot look into another table; it can list values, here " +
                groupedCount(parseInteger(to.field.metrics[index(MetricId::UniqueCount)].view()).value_or(0)) + ".";
            if (reference.rowsWithout > 0 && reference.hasAllWithout)
                draft.conditions = {
                    withMissing(field, fmt::format("not ({} in ({}))", kOperand, listOf(reference.without)))};
        } else {
            draft.conditions = {withMissing(field, fmt::format("{} in ({})", kOperand, listOf(std::move(keys))))};
            draft.violations.reset();
            draft.remark = "The values of " + address + " at the time of the run.";
        }
        drafts.push_back(std::move(draft));
    }

    /// Empty if there are more than a domain may have.
    std::vector<std::string> keysOf(const ReferenceField& to) {
        const auto size = parseInteger(to.field.metrics[index(MetricId::UniqueCount)].view()).value_or(0);
        std::vector<std::string> keys;
        if (static_cast<std::size_t>(size) > m_options.longestDomain)
            return keys;
        const ProfileCursorHandle rows = checked(m_viewer, m_viewer.getFreqDist(to.field.id, ""));
        while (rows->next()) {
            std::string text = textAt(*rows, layout::FreqValue);
            if (text.find('\0') != std::string::npos || text.find_first_of({kOperand, kNumber}) != std::string::npos)
                return {};
            keys.push_back(std::move(text));
        }
        return keys;
    }

    static std::string listOf(std::vector<std::string> values) {
        std::sort(values.begin(), values.end());
        std::string list;
        for (const std::string& value : values)
            list += (list.empty() ? "" : ", ") + literalText(value);
        return list;
    }

    /// The rows that do not meet it.
    std::int64_t violationsOf(const FieldEvidence& field, const std::string& condition) {
        return field.rows - rowsThatMeet(m_viewer, field.field.id, onValues(field, condition));
    }

    void finish(const TableIdentity& table, const FieldEvidence& field, const RuleDraft& draft) {
        RuleSuggestion made;
        made.tableId = table.id;
        made.fieldId = field.field.id;
        made.table = table.displayName();
        made.field = field.field.name;
        made.kind = draft.kind;
        made.element = draft.element;
        made.alert = draft.alert;
        made.reason = draft.reason;
        made.remark = draft.remark;
        made.confidence = draft.confidence;
        made.violationNoun = draft.violationNoun;
        made.condition = draft.expression;
        std::string chosen = draft.conditions.empty() ? std::string() : draft.conditions.front();
        if (draft.violations) {
            made.violations = *draft.violations;
        } else {
            for (const std::string& condition : draft.conditions) {
                chosen = condition;
                made.violations = violationsOf(field, condition);
                if (made.violations <= draft.expected)
                    break;
            }
        }
        const double percent = 100 * static_cast<double>(made.violations) / static_cast<double>(field.rows);
        if (percent > draft.mostPercent)
            return;
        if (made.element == SuggestedElement::Rule)
            made.condition = onField(field, chosen);
        if (!chosen.empty())
            made.violatingValues = fmt::format("if {} then return false else return true", onValues(field, chosen));
        if (m_known.say(made))
            return;
        made.name = m_known.takeName(table.id, draft.element == SuggestedElement::MetricAlert
                                                   ? draft.predicate + " " + nameOf(field.field.name)
                                                   : nameOf(field.field.name) + " " + draft.predicate);
        m_made.push_back(std::move(made));
    }

    static std::string nameOf(const std::string& field) {
        if (field.size() <= kLongestNamePart)
            return field;
        std::size_t end = kLongestNamePart;
        while (end > 0 && (static_cast<unsigned char>(field[end]) & 0xC0U) == 0x80U)
            --end;
        return field.substr(0, end) + "…";
    }

    PrViewer& m_viewer;
    const SuggestionOptions& m_options;
    KnownRules m_known;
    std::vector<ReferenceField> m_referenceFields;
    std::vector<std::pair<int, Reference>> m_references; ///< by the id of the referring field
    std::vector<RuleSuggestion> m_made;
};

} // namespace

std::vector<RuleSuggestion> suggestRules(PrViewer& viewer, int job, const SuggestionOptions& options) {
    return Suggester(viewer, job, options).run();
}

} // namespace tavix
