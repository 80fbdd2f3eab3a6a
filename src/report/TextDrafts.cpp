// Rules for the form of texts: their patterns and lengths.
#include "base/Characters.h"
#include "base/NumberText.h"
#include "report/CountText.h"
#include "report/ExpressionText.h"
#include "report/RuleDrafts.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace tavix {

namespace {

constexpr std::size_t kMostForms = 3;
constexpr std::size_t kMostPieces = 16;
constexpr std::size_t kLongestPattern = 80; ///< bytes

/// Equal signs of a pattern, one after the other.
struct Piece {
    std::string sign; ///< A, a, 9 or another character
    int least = 1;
    int most = 1;

    [[nodiscard]] bool isClass() const { return sign == "A" || sign == "a" || sign == "9"; }
};

/// Patterns whose pieces differ in their numbers of characters alone.
struct Form {
    std::vector<Piece> pieces;
    std::int64_t rows = 0;
    std::size_t patterns = 0;
};

std::vector<Piece> piecesOf(std::string_view pattern) {
    std::vector<Piece> pieces;
    for (std::size_t at = 0; at < pattern.size();) {
        const std::size_t start = at;
        nextCharacter(pattern, at);
        std::string sign(pattern.substr(start, at - start));
        if (!pieces.empty() && pieces.back().sign == sign) {
            ++pieces.back().least;
            ++pieces.back().most;
        } else {
            pieces.push_back({std::move(sign), 1, 1});
        }
    }
    return pieces;
}

bool areAlike(const std::vector<Piece>& a, const std::vector<Piece>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const Piece& one, const Piece& other) {
        // Two hyphens are another form than one; two letters are not.
        return one.sign == other.sign && (one.isClass() || one.least == other.least);
    });
}

bool canBeWritten(std::string_view pattern) {
    return pattern.size() <= kLongestPattern &&
           std::none_of(pattern.begin(), pattern.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; });
}

/// Digits or signs, not words alone.
bool hasStructure(const Form& form) {
    return form.pieces.size() <= kMostPieces &&
           std::any_of(form.pieces.begin(), form.pieces.end(),
                       [](const Piece& piece) { return piece.sign == "9" || (!piece.isClass() && piece.sign != " "); });
}

std::vector<Form> exactForms(const std::vector<CountedText>& patterns) {
    std::vector<Form> forms;
    for (std::size_t i = 0; i < patterns.size() && i < kMostForms; ++i)
        if (canBeWritten(patterns[i].text))
            forms.push_back({piecesOf(patterns[i].text), patterns[i].count, 1});
    return forms;
}

std::vector<Form> looseForms(const std::vector<CountedText>& patterns) {
    std::vector<Form> forms;
    for (const CountedText& pattern : patterns) {
        if (!canBeWritten(pattern.text))
            continue;
        const std::vector<Piece> pieces = piecesOf(pattern.text);
        const auto form =
            std::find_if(forms.begin(), forms.end(), [&](const Form& one) { return areAlike(one.pieces, pieces); });
        if (form == forms.end()) {
            forms.push_back({pieces, pattern.count, 1});
            continue;
        }
        form->rows += pattern.count;
        ++form->patterns;
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            form->pieces[i].least = std::min(form->pieces[i].least, pieces[i].least);
            form->pieces[i].most = std::max(form->pieces[i].most, pieces[i].most);
        }
    }
    std::stable_sort(forms.begin(), forms.end(), [](const Form& a, const Form& b) { return a.rows > b.rows; });
    std::erase_if(forms, [](const Form& form) { return !hasStructure(form); });
    forms.resize(std::min(forms.size(), kMostForms));
    return forms;
}

/// The first forms that reach the share together; none if all of them do not.
std::vector<Form> enough(std::vector<Form> forms, std::int64_t rows, double leastPercent) {
    std::int64_t sum = 0;
    for (std::size_t i = 0; i < forms.size(); ++i) {
        sum += forms[i].rows;
        if (100 * static_cast<double>(sum) >= leastPercent * static_cast<double>(rows)) {
            forms.resize(i + 1);
            return forms;
        }
    }
    return {};
}

std::string classText(const std::string& sign, bool isAscii) {
    if (sign == "A")
        return isAscii ? "[A-Z]" : "[\\p{Lu}\\p{Lt}]";
    if (sign == "a")
        return isAscii ? "[a-z]" : "[\\p{Ll}\\p{Lm}\\p{Lo}]";
    return isAscii ? "[0-9]" : "\\p{Nd}";
}

std::string regularOf(const Form& form, bool isAscii) {
    std::string made;
    for (const Piece& piece : form.pieces) {
        made += piece.isClass() ? classText(piece.sign, isAscii) : regularText(piece.sign);
        if (piece.most > piece.least)
            made += fmt::format("{{{},{}}}", piece.least, piece.most);
        else if (piece.least > 1)
            made += fmt::format("{{{}}}", piece.least);
    }
    return made;
}

std::string conditionOf(const FieldEvidence& field, const std::vector<Form>& forms, bool isAscii) {
    std::string regular;
    for (const Form& form : forms)
        regular += (regular.empty() ? "" : "|") + regularOf(form, isAscii);
    return withMissing(field, fmt::format("matches({}, {})", kOperand, literalText(regular)));
}

/// Whether all runs had the same greatest length.
bool isLengthStable(const FieldEvidence& field) {
    const std::vector<double>& lengths = field.longestHistory;
    return std::all_of(lengths.begin(), lengths.end(), [&](double length) { return length == lengths.back(); });
}

} // namespace

void draftPattern(const FieldEvidence& field, double leastPercent, std::vector<RuleDraft>& drafts) {
    if (!field.isType(FieldType::Text) || field.holdsNumbers() || !field.hasAllPatterns ||
        field.filled() < kFewestRows || hasDraft(drafts, {SuggestionKind::Constant, SuggestionKind::Domain}))
        return;
    std::vector<Form> forms = enough(exactForms(field.patterns), field.filled(), leastPercent);
    if (forms.empty())
        forms = enough(looseForms(field.patterns), field.filled(), leastPercent);
    if (forms.empty())
        return;
    std::int64_t rows = 0;
    std::size_t patterns = 0;
    for (const Form& form : forms) {
        rows += form.rows;
        patterns += form.patterns;
    }
    RuleDraft draft;
    draft.kind = SuggestionKind::Pattern;
    draft.predicate = patterns == 1 ? "has its pattern" : "has one of its patterns";
    draft.conditions = {conditionOf(field, forms, true), conditionOf(field, forms, false)};
    draft.expected = field.filled() - rows;
    const double percent = 100 * static_cast<double>(rows) / static_cast<double>(field.filled());
    const std::string what =
        patterns == 1 ? "the pattern " + field.patterns.front().text
                      : fmt::format("one of {} patterns, most often {}", patterns, field.patterns.front().text);
    draft.reason = draft.expected == 0 ? fmt::format("all of {} have {}", countOf(rows, "value"), what)
                                       : fmt::format("{} of {} ({}) have {}", groupedCount(rows),
                                                     countOf(field.filled(), "value"), shareText(percent), what);
    draft.confidence = confidenceOf(field, draft.expected == 0 && patterns <= kMostForms);
    draft.mostPercent = 100 - leastPercent;
    drafts.push_back(std::move(draft));
}

void draftLength(const FieldEvidence& field, const LengthTail& tail, std::vector<RuleDraft>& drafts) {
    constexpr double kLongEnough = 10;
    constexpr double kSpike = 3;
    constexpr std::int64_t kManyValues = 5;
    const auto least = field.number(MetricId::MinimumLength);
    const auto most = field.number(MetricId::MaximumLength);
    if (!least || !most || field.filled() < kFewestRows ||
        hasDraft(drafts, {SuggestionKind::Constant, SuggestionKind::Domain, SuggestionKind::Pattern}))
        return;
    RuleDraft draft;
    draft.confidence = confidenceOf(field, true);
    const std::string length = formatReal(*most);
    const bool isCode = field.isType(FieldType::Text) || (field.isType(FieldType::Integer) && *most >= 5 &&
                                                          field.looksLikeKey() && !field.isGrowingIdentifier());
    if (*least == *most && field.blanks == 0 && isCode && isLengthStable(field)) {
        draft.kind = SuggestionKind::Length;
        draft.predicate = fmt::format("has {} characters", length);
        draft.conditions = {withMissing(field, fmt::format("length({}) = {}", kOperand, length))};
        draft.reason = fmt::format("every one of {} has {} characters{}", countOf(field.filled(), "value"), length,
                                   overRuns(field));
        drafts.push_back(std::move(draft));
        return;
    }
    if (!field.isType(FieldType::Text) || *most < kLongEnough)
        return;
    const auto declared = field.number(MetricId::DefinedLength);
    const bool isFull = declared && *declared == *most;
    const double before = static_cast<double>(tail.valuesBefore) / static_cast<double>(LengthTail::kBefore);
    if (tail.valuesAtEnd < kManyValues || static_cast<double>(tail.valuesAtEnd) < kSpike * std::max(before, 1.0))
        return;
    draft.kind = SuggestionKind::NoCutOff;
    draft.predicate = "is not cut off";
    draft.conditions = {withMissing(field, fmt::format("length({}) < {}", kOperand, length))};
    draft.reason =
        fmt::format("{} have exactly the greatest length {}{}, {} on average each of the {} lengths below it",
                    countOf(tail.valuesAtEnd, "value"), length, isFull ? " that the source declares" : "",
                    formatReadable(before), LengthTail::kBefore);
    draft.remark = "Compare the longest values with the source: they may be complete.";
    draft.confidence = isFull ? SuggestionConfidence::High : SuggestionConfidence::Medium;
    draft.mostPercent = 100;
    drafts.push_back(std::move(draft));
}

} // namespace tavix
