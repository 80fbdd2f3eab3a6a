#include "filter/ExpressionCheck.h"

#include "access/FilterCode.h"
#include "filter/OneLine.h"

#include <utility>

namespace tavix {

namespace {

/// Characters. A message may quote a long text.
constexpr std::size_t kLongestNotice = 400;

std::string sentence(std::string text) {
    if (!text.empty() && text.front() >= 'a' && text.front() <= 'z')
        text.front() = static_cast<char>(text.front() - 'a' + 'A');
    return text;
}

} // namespace

ExpressionCheck CheckFilterText(std::string_view filterText) {
    if (filterText.empty())
        return {};
    ExpressionCheck check;
    check.linesBefore = codeOf(filterText).linesBefore;
    expression::Compiled compiled = compileFilter(filterText);
    if (compiled.ok())
        check.remark = std::move(compiled.remark);
    else
        check.error = std::move(compiled.error);
    return check;
}

ExpressionNotice NoticeOn(std::string_view filterText) {
    ExpressionCheck check = CheckFilterText(filterText);
    ExpressionNotice notice;
    if (!check.error && !check.remark) {
        notice.text = filterText.empty() ? "An empty expression removes the filter." : "No errors.";
        return notice;
    }
    const bool isError = check.error.has_value();
    notice.kind = isError ? ExpressionNotice::Kind::Error : ExpressionNotice::Kind::Warning;
    notice.fault = isError ? std::move(check.error) : std::move(check.remark);
    notice.fault->line += check.linesBefore;
    const std::string words = OneLine(expression::describe(*notice.fault));
    notice.text = sentence(Shortened(isError ? words : "Warning: " + words, kLongestNotice));
    return notice;
}

} // namespace tavix
