#include "forms/FormCounts.h"

#include <algorithm>
#include <vector>

namespace tavix::forms {

namespace {

/// Integers of at most so many characters fit 64 bits.
constexpr std::size_t kSurely64 = 18;

/// Whether the form of a strict real must be looked at: a decimal comma would read 1.234 as grouped, and 1e5 like a
/// point does.
bool needsForm(std::string_view real, ByteMask bytes) {
    constexpr std::size_t kGroup = 4;   // .234
    constexpr std::size_t kLongest = 8; // -123.234
    return (real.size() > kGroup && real.size() <= kLongest && real[real.size() - kGroup] == '.') ||
           (bytes & byte_kind::kDot) == 0;
}

bool fitsIn64(std::string_view text) {
    if (text.size() <= kSurely64)
        return true;
    const auto number = readNumber(withoutBlanks(text));
    const bool isWhole = number && (number->point.isWhole || number->comma.isWhole);
    return !isWhole || number->integer(number->point.isWhole ? '.' : ',').has_value();
}

/// The form of all values of a kind but reals that needsForm().
ValueForm formOf(ValueKind kind) {
    ValueForm form;
    form.isStrict = kind != ValueKind::Text;
    switch (kind) {
    case ValueKind::Boolean:
        form.family = ValueForm::Family::Boolean;
        break;
    case ValueKind::Date:
        form.family = ValueForm::Family::Date;
        break;
    case ValueKind::Integer:
        form.family = ValueForm::Family::Number;
        form.point = form.comma = {.reads = true, .isWhole = true, .isGrouped = false};
        break;
    case ValueKind::Real:
        form.family = ValueForm::Family::Number;
        form.readings = ValueForm::Readings::First;
        form.point.reads = true;
        break;
    case ValueKind::None:
    case ValueKind::Text:
        break;
    }
    return form;
}

} // namespace

void FormCounts::takeNumber(std::string_view text, ValueKind kind, ByteMask bytes, std::uint64_t count) {
    if (kind == ValueKind::Real && needsForm(text, bytes)) {
        takeForm(ValueForm::of(text, kind), text, count);
        return;
    }
    if (kind == ValueKind::Integer)
        m_shortestInteger = std::min(m_shortestInteger, text.size());
    ValueTally& tally = m_kinds[static_cast<std::size_t>(kind)];
    tally.add(text, count);
    if (kind == ValueKind::Integer && text.size() > kSurely64)
        tally.fits64 = tally.fits64 && integerValue(text).has_value();
    if (m_stated == StatedDates::EpochSeconds)
        takeEpoch(text, count);
}

void FormCounts::takeText(std::string_view text, ByteMask bytes, std::uint64_t count) {
    if (const auto form = ValueForm::written(text, bytes))
        takeForm(*form, text, count);
    else
        m_kinds[static_cast<std::size_t>(ValueKind::Text)].add(text, count);
}

void FormCounts::takeForm(const ValueForm& form, std::string_view text, std::uint64_t count) {
    const std::uint64_t key = form.key();
    if (key != m_lastKey) {
        m_lastTally = &m_written.try_emplace(key, FormTally{form, {}}).first->second.tally;
        m_lastKey = key;
    }
    m_lastTally->add(text, count);
    if (form.family == ValueForm::Family::PaddedDigits)
        m_shortestPadded = std::min(m_shortestPadded, withoutBlanks(text).size());
    if (form.family == ValueForm::Family::Number)
        m_lastTally->fits64 = m_lastTally->fits64 && fitsIn64(text);
    if (m_stated == StatedDates::EpochSeconds)
        takeEpoch(text, count);
}

void FormCounts::takeEpoch(std::string_view text, std::uint64_t count) {
    constexpr Reading kEpoch{.type = FieldType::Date, .isEpoch = true};
    if (kEpoch.fits(text))
        m_epoch.add(text, count);
}

void FormCounts::merge(const FormCounts& other) {
    for (std::size_t kind = 0; kind < kKinds; ++kind)
        m_kinds[kind].merge(other.m_kinds[kind]);
    for (const auto& [key, written] : other.m_written)
        m_written.try_emplace(key, FormTally{written.form, {}}).first->second.tally.merge(written.tally);
    m_epoch.merge(other.m_epoch);
    m_shortestInteger = std::min(m_shortestInteger, other.m_shortestInteger);
    m_shortestPadded = std::min(m_shortestPadded, other.m_shortestPadded);
}

ColumnReading FormCounts::read() const {
    std::vector<FormTally> forms;
    for (std::size_t kind = 0; kind < kKinds; ++kind)
        if (m_kinds[kind].values > 0)
            forms.push_back({formOf(static_cast<ValueKind>(kind)), m_kinds[kind]});
    for (const auto& [key, written] : m_written)
        forms.push_back(written);
    const bool hasCodes = m_shortestPadded != SIZE_MAX && m_shortestPadded <= m_shortestInteger;
    return readColumn(forms, {m_stated, m_epoch, hasCodes});
}

} // namespace tavix::forms
