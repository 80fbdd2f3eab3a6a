#include "forms/ColumnReading.h"

#include <algorithm>
#include <map>

namespace tavix::forms {

namespace {

using Family = ValueForm::Family;
using Readings = ValueForm::Readings;
using Forms = std::span<const FormTally>;

/// A minority of at most one in so many rows of evidence is a mistake, not a doubt.
constexpr std::uint64_t kEvidencePerMistake = 20;

constexpr Reading kEpoch{.type = FieldType::Date, .isEpoch = true};

/// Rows by the reading that they are evidence for.
struct Evidence {
    std::uint64_t first = 0;
    std::uint64_t second = 0;
    std::uint64_t different = 0; ///< read by both, each in its own way

    void add(Readings readings, std::uint64_t rows) {
        if (readings == Readings::First)
            first += rows;
        else if (readings == Readings::Second)
            second += rows;
        else if (readings == Readings::Different)
            different += rows;
    }
    [[nodiscard]] bool isNeeded() const { return first + second + different > 0; }
    [[nodiscard]] bool isDecided() const {
        return first + second > 0 && std::min(first, second) <= (first + second) / kEvidencePerMistake;
    }
};

/// The forms of a column taken together.
class ColumnEvidence {
  public:
    explicit ColumnEvidence(Forms forms) {
        for (const auto& [form, tally] : forms) {
            m_rows[form.family] += tally.rows;
            m_areStrict = m_areStrict && form.isStrict && !form.hasBlanks;
            if (form.family == Family::Number)
                m_marks.add(form.readings, tally.rows);
            else if (form.family == Family::Date)
                m_orders.add(form.readings, tally.rows);
        }
    }

    [[nodiscard]] Family mostFrequent(bool hasCodes) const {
        Family most = hasCodes ? Family::Date : Family::Number;
        for (const Family other : {Family::Date, Family::Boolean})
            if (rowsOf(other) > rowsOf(most))
                most = other;
        return most;
    }
    [[nodiscard]] std::uint64_t rowsOf(Family family) const { return m_rows.contains(family) ? m_rows.at(family) : 0; }

    [[nodiscard]] DecimalMark mark() const {
        // Where all values are strict numbers, they are what they are.
        if (!m_marks.isNeeded() || (m_areStrict && m_rows.size() == 1))
            return DecimalMark::Point;
        if (!m_marks.isDecided())
            return DecimalMark::Open;
        return m_marks.first > m_marks.second ? DecimalMark::Point : DecimalMark::Comma;
    }
    /// None where no order is needed, and where there is a doubt.
    [[nodiscard]] DateOrder order(StatedDates stated) const {
        if (!m_orders.isNeeded())
            return DateOrder::None;
        if (stated == StatedDates::DayFirst || stated == StatedDates::MonthFirst)
            return stated == StatedDates::DayFirst ? DateOrder::DayFirst : DateOrder::MonthFirst;
        if (!m_orders.isDecided())
            return DateOrder::None;
        return m_orders.first > m_orders.second ? DateOrder::DayFirst : DateOrder::MonthFirst;
    }
    [[nodiscard]] bool needsOrder() const { return m_orders.isNeeded(); }

  private:
    std::map<Family, std::uint64_t> m_rows;
    Evidence m_marks;
    Evidence m_orders;
    bool m_areStrict = true;
};

/// Sets the unit that most numbers with a unit have. Sets none and returns the doubt if two units are equally frequent.
std::string chooseUnit(Reading& reading, Forms forms) {
    std::map<UnitCode, std::uint64_t> rows;
    std::uint64_t bareRows = 0;
    for (const auto& [form, tally] : forms)
        if (form.family == Family::Number && (reading.decimal == DecimalMark::Open || form.isReadBy(reading.decimal)))
            (form.unit == kNoUnit ? bareRows : rows[form.unit]) += tally.rows;
    std::uint64_t most = 0;
    for (const auto& [unit, count] : rows)
        most = std::max(most, count);
    std::string candidates;
    int count = 0;
    for (const auto& [unit, unitRows] : rows)
        if (unitRows == most) {
            candidates += (candidates.empty() ? "unit " : " or ") + unitText(unit);
            reading.unit = ++count == 1 ? unit : kNoUnit;
        }
    if (count > 1)
        return candidates;
    if (reading.unit != kPercent || most > bareRows)
        return {};
    reading.unit = kNoUnit; // 5 and 5 % are different numbers
    return most == bareRows ? "with or without %" : "";
}

FieldType typeOfNumbers(Reading reading, Forms forms) {
    reading.type = FieldType::Real;
    const bool areWhole = std::all_of(forms.begin(), forms.end(), [&](const FormTally& one) {
        return !reading.fits(one.form) || one.form.isWhole(reading.decimal);
    });
    return areWhole ? FieldType::Integer : FieldType::Real;
}

Reading readNumbers(DecimalMark mark, Forms forms, std::string& ambiguity) {
    Reading reading;
    reading.decimal = mark;
    if (mark == DecimalMark::Open)
        ambiguity = "decimal point or decimal comma";
    const std::string units = chooseUnit(reading, forms);
    ambiguity += (ambiguity.empty() || units.empty() ? "" : "; ") + units;
    reading.type = typeOfNumbers(reading, forms);
    return reading;
}

std::vector<FormCount> namedForms(Forms forms, DecimalMark mark, DateOrder order) {
    std::map<std::string, ValueTally> byName;
    for (const auto& [form, tally] : forms)
        byName[form.text(mark, order)].merge(tally);
    std::vector<FormCount> counts;
    counts.reserve(byName.size());
    for (const auto& [name, tally] : byName)
        counts.push_back({name, tally.values, tally.rows, tally.example});
    std::stable_sort(counts.begin(), counts.end(),
                     [](const FormCount& a, const FormCount& b) { return a.rows > b.rows; });
    return counts;
}

/// Keeps the reading if half of the rows fit it, or would but for an ambiguity.
void setReading(ColumnReading& column, const Reading& reading, Forms forms) {
    for (const auto& [form, tally] : forms)
        if (reading.fits(form)) {
            column.fitValues += tally.values;
            column.fitRows += tally.rows;
            column.fits64 = column.fits64 && tally.fits64;
        }
    if (column.fitRows * 2 >= column.rows || !column.ambiguity.empty())
        column.reading = reading;
    else
        column.fitValues = column.fitRows = 0;
}

} // namespace

void ValueTally::setExample(std::string_view text, std::uint64_t count) {
    most = count;
    example = text;
    m_exampleStart = startOf(text);
}

void ValueTally::merge(const ValueTally& other) {
    values += other.values;
    rows += other.rows;
    fits64 = fits64 && other.fits64;
    if (other.most > most || (other.most == most && other.example < example))
        setExample(other.example, other.most);
}

ColumnReading readColumn(std::span<const FormTally> forms, const ColumnTraits& traits) {
    ColumnReading column;
    for (const auto& [form, tally] : forms) {
        column.values += tally.values;
        column.rows += tally.rows;
    }
    const ColumnEvidence evidence(forms);
    const DecimalMark mark = evidence.mark();
    const DateOrder order = evidence.order(traits.stated);
    column.forms = namedForms(forms, mark, order);
    if (traits.epoch.rows > 0 && traits.epoch.rows * 2 >= column.rows) {
        column.reading = kEpoch;
        column.fitValues = traits.epoch.values;
        column.fitRows = traits.epoch.rows;
        return column;
    }
    const Family family = evidence.mostFrequent(traits.hasCodes);
    if (column.rows == 0 || evidence.rowsOf(family) * 2 < column.rows)
        return column;
    Reading reading;
    if (family == Family::Number) {
        reading = readNumbers(mark, forms, column.ambiguity);
    } else {
        reading.type = family == Family::Date ? FieldType::Date : FieldType::Boolean;
        if (family == Family::Date)
            reading.order = order;
        if (family == Family::Date && order == DateOrder::None && evidence.needsOrder())
            column.ambiguity = "day-first or month-first";
    }
    setReading(column, reading, forms);
    return column;
}

} // namespace tavix::forms
