#include "report/FieldBreakdown.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/Ascii.h"
#include "base/Characters.h"
#include "base/GenException.h"
#include "base/TypeWords.h"
#include "forms/Reading.h"
#include "report/CheckedCursor.h"
#include "report/CountText.h"

#include <algorithm>
#include <array>

namespace tavix {

namespace {

constexpr std::string_view kTextForm = "text";
constexpr std::size_t kShownBytes = 40;

std::string fitsCall(std::string_view reading) {
    return "fits(`Value`, " + quotedText(reading) + ")";
}

/// A value in a sentence: short, and on one line.
std::string shownInText(const KvbString& value) {
    std::string text = shortened(value.view(), kShownBytes);
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return text;
}

std::string_view firstWord(std::string_view words) {
    return words.substr(0, words.find(' '));
}

/// The most frequent value that is more than text.
const FieldBreakdown::Form* firstTyped(const FieldBreakdown& breakdown) {
    const auto found = std::find_if(breakdown.forms.begin(), breakdown.forms.end(),
                                    [](const FieldBreakdown::Form& form) { return form.form != kTextForm; });
    return found == breakdown.forms.end() ? nullptr : &*found;
}

std::string share(std::int64_t rows, const FieldBreakdown& breakdown) {
    return groupedCount(rows) + " of " + groupedCount(breakdown.rows);
}

std::string misfitText(const FieldBreakdown& breakdown, const std::vector<CountedValue>& misfits) {
    std::string text = breakdown.misfitValues() == 1 ? "; does not fit: " : "; do not fit: ";
    const std::size_t named = std::min(misfits.size(), kMisfitsInText);
    for (std::size_t i = 0; i < named; ++i)
        text += (i > 0 ? ", " : "") + shownInText(misfits[i].value) + " (" + groupedCount(misfits[i].rows) + ")";
    if (const std::int64_t more = breakdown.misfitValues() - static_cast<std::int64_t>(named); more > 0)
        text += (named > 0 ? " and " : "") + groupedCount(more) + (named > 0 ? " more" : "");
    return text;
}

enum class Kind { Unknown, Text, Number, Date, Boolean };

/// The kind of a declared type, by the word that it begins with.
Kind declaredKind(std::string_view type) {
    struct Word {
        std::string_view word;
        Kind kind;
    };
    static constexpr std::array<Word, 26> kWords{
        {{"char", Kind::Text},       {"varchar", Kind::Text},    {"nchar", Kind::Text},     {"nvarchar", Kind::Text},
         {"varchar2", Kind::Text},   {"nvarchar2", Kind::Text},  {"text", Kind::Text},      {"character", Kind::Text},
         {"bpchar", Kind::Text},     {"clob", Kind::Text},       {"string", Kind::Text},    {"int", Kind::Number},
         {"integer", Kind::Number},  {"bigint", Kind::Number},   {"int2", Kind::Number},    {"int4", Kind::Number},
         {"int8", Kind::Number},     {"smallint", Kind::Number}, {"numeric", Kind::Number}, {"decimal", Kind::Number},
         {"real", Kind::Number},     {"double", Kind::Number},   {"float", Kind::Number},   {"date", Kind::Date},
         {"boolean", Kind::Boolean}, {"bool", Kind::Boolean}}};
    const std::string_view word = type.substr(0, type.find_first_of(" ("));
    for (const Word& known : kWords)
        if (equalsIgnoringAsciiCase(word, known.word))
            return known.kind;
    constexpr std::array<std::string_view, 2> kDates{"timestamp", "datetime"};
    return std::any_of(
               kDates.begin(), kDates.end(),
               [type](std::string_view date) { return equalsIgnoringAsciiCase(type.substr(0, date.size()), date); })
               ? Kind::Date
               : Kind::Unknown;
}

/// The type of the values as it is shown, "" without values: the reading, else the actual type.
std::string valueType(const FieldRecord& field, const FieldBreakdown& breakdown) {
    return breakdown.reading.empty() ? std::string(typeWord(field.typeCode)) : breakdown.reading;
}

Kind kindOf(std::string_view valueType) {
    const std::string_view word = firstWord(valueType);
    if (word == typeWord(FieldType::Integer) || word == typeWord(FieldType::Real))
        return Kind::Number;
    if (word == typeWord(FieldType::Date))
        return Kind::Date;
    if (word == typeWord(FieldType::Boolean))
        return Kind::Boolean;
    return word == typeWord(FieldType::Text) ? Kind::Text : Kind::Unknown;
}

} // namespace

Result<FieldBreakdown> readFieldBreakdown(PrViewer& viewer, int fieldId) try {
    using namespace layout;
    FieldBreakdown breakdown;
    const ProfileCursorHandle row = checked(viewer, viewer.getTypeBreakdown(fieldId));
    if (!row->next()) {
        breakdown.isExamined = viewer.isExamined();
        return breakdown;
    }
    breakdown.isExamined = true;
    breakdown.values = row->getColumnInt64(BreakdownValues);
    breakdown.rows = row->getColumnInt64(BreakdownRows);
    breakdown.reading = textAt(*row, BreakdownReading);
    breakdown.fitValues = row->getColumnInt64(BreakdownFitValues);
    breakdown.fitRows = row->getColumnInt64(BreakdownFitRows);
    breakdown.ambiguity = textAt(*row, BreakdownAmbiguity);
    breakdown.hasFigures = row->getColumnInt(BreakdownHasFigures) != 0;
    const ProfileCursorHandle written = checked(viewer, viewer.getTypeForms(fieldId));
    const auto reading = forms::Reading::parse(breakdown.reading);
    while (written->next()) {
        const KvbString example = written->getColumnValue(FormExample);
        breakdown.forms.push_back({textAt(*written, FormWord), written->getColumnInt64(FormValues),
                                   written->getColumnInt64(FormRows), example,
                                   reading && reading->fits(example.view())});
    }
    return breakdown;
} catch (const GenException& failure) {
    return Error{failure.getText().str()};
}

Result<std::vector<CountedValue>> readMisfits(PrViewer& viewer, int fieldId, const FieldBreakdown& breakdown,
                                              std::size_t most) try {
    std::vector<CountedValue> misfits;
    const auto values = static_cast<std::uint64_t>(breakdown.misfitValues());
    if (values == 0)
        return misfits;
    const ProfileCursorHandle rows =
        checked(viewer, viewer.getFreqDist(fieldId, KvbString(misfitCondition(breakdown.reading))));
    // Once all are found, the rest of the distribution need not be read.
    while (misfits.size() < most && misfits.size() < values && rows->next())
        misfits.push_back({rows->getColumnValue(layout::FreqValue), rows->getColumnInt64(layout::FreqCount)});
    return misfits;
} catch (const GenException& failure) {
    return Error{failure.getText().str()};
}

std::string misfitCondition(std::string_view reading) {
    return "not isblank(`Value`) and not " + fitsCall(reading);
}

// The language knows which values fit, but not how they are written.
std::string formCondition(const FieldBreakdown& breakdown, std::size_t form) {
    const FieldBreakdown::Form& wanted = breakdown.forms.at(form);
    if (breakdown.reading.empty() || wanted.values != (wanted.fits ? breakdown.fitValues : breakdown.misfitValues()))
        return {};
    return wanted.fits ? fitsCall(breakdown.reading) : misfitCondition(breakdown.reading);
}

std::string breakdownText(const FieldBreakdown& breakdown, const std::vector<CountedValue>& misfits) {
    if (!breakdown.isExamined)
        return std::string(kNotExamined);
    if (breakdown.rows == 0)
        return "no values";
    if (!breakdown.reading.empty()) {
        std::string text = breakdown.reading + " " + share(breakdown.fitRows, breakdown);
        return breakdown.hasMisfits() ? text + misfitText(breakdown, misfits) : text;
    }
    std::string text;
    for (const FieldBreakdown::Form& form : breakdown.forms)
        text += (text.empty() ? "" : ", ") + form.form + " " + share(form.rows, breakdown);
    return text;
}

std::string ambiguityText(const FieldBreakdown& breakdown) {
    const FieldBreakdown::Form* const form = firstTyped(breakdown);
    if (breakdown.ambiguity.empty() || !form)
        return {};
    std::string text = shownInText(form->example) + " can be read " + breakdown.ambiguity;
    if (firstWord(form->form) == typeWord(FieldType::Date))
        text += "; state it in the job: dates: " + std::string(firstWord(breakdown.ambiguity));
    return text;
}

std::string declaredText(const FieldRecord& field, const FieldBreakdown& breakdown) {
    const KvbString& type = field.metrics[index(MetricId::DefinedType)];
    const std::string values = valueType(field, breakdown);
    if (!breakdown.isExamined || type.isEmpty() || values.empty())
        return {};
    std::string text = "declared " + type.str();
    if (const KvbString& length = field.metrics[index(MetricId::DefinedLength)];
        !length.isEmpty() && text.find('(') == std::string::npos && declaredKind(type.view()) == Kind::Text)
        text += "(" + length.str() + ")";
    return text + "; values: " + values;
}

bool disagreesWithDeclared(const FieldRecord& field, const FieldBreakdown& breakdown) {
    const Kind declared = declaredKind(field.metrics[index(MetricId::DefinedType)].view());
    const Kind values = kindOf(valueType(field, breakdown));
    return breakdown.isExamined && declared != Kind::Unknown && values != Kind::Unknown && declared != values;
}

} // namespace tavix
