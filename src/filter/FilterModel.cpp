#include "filter/FilterModel.h"

#include "base/Characters.h"
#include "filter/ConditionBlock.h"
#include "filter/FilterMessages.h"

#include <new>
#include <stdexcept>
#include <utility>
#include <variant>

namespace tavix {

namespace {

// Bytes of a condition that a question quotes.
constexpr std::size_t kMostInQuestion = 400;

void warn(Messages& messages, const filter_messages::Message& message) {
    messages.warn(message.text, message.caption);
}

bool hasLoneLineFeed(std::string_view text) {
    for (std::size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at + 1))
        if (at == 0 || text[at - 1] != '\r')
            return true;
    return false;
}

std::string withLineFeeds(std::string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at)
        if (!text.substr(at).starts_with("\r\n"))
            result += text[at];
    return result;
}

std::string withCarriageReturns(std::string_view text) {
    std::string result;
    for (const char c : withLineFeeds(text)) {
        if (c == '\n')
            result += '\r';
        result += c;
    }
    return result;
}

const filter_messages::Message& messageOf(ConditionFault fault) {
    switch (fault) {
    case ConditionFault::ExtraRightParenthesis:
        return filter_messages::kExtraRight;
    case ConditionFault::ExtraLeftParenthesis:
        return filter_messages::kExtraLeft;
    case ConditionFault::EndsWithConnector:
        break;
    }
    return filter_messages::kEndsWithConnector;
}

} // namespace

FilterModel::FilterModel(Messages& messages, DistributionKind kind, std::string_view filterText)
    : m_messages(messages), m_kind(kind) {
    LoadText(filterText);
}

FilterModel::Controls FilterModel::Enabled() const {
    if (m_editMode)
        return {.comparison = false, .display = false, .action = false, .editing = true};
    Controls controls;
    controls.undo = !m_conditions.empty();
    const CCondition* last = m_conditions.empty() ? nullptr : &m_conditions.back();
    const bool operandNext = !last || last->conditionType == ConditionType::Connector ||
                             (last->conditionType == ConditionType::Parenthesis && last->leftParen);
    controls.addCondition = operandNext;
    controls.leftParenthesis = operandNext;
    controls.connectors = !operandNext;
    controls.rightParenthesis = !operandNext && m_parentheses.left > m_parentheses.right;
    return controls;
}

std::string FilterModel::BoxText() const {
    if (m_editMode)
        return m_editText;
    return m_display == FilterDisplay::PlainText ? BuildPlainText(m_conditions)
                                                 : BuildExpression(m_conditions, m_action);
}

std::string_view FilterModel::BoxHint() const {
    return m_editMode ? "Write an expression, for example `Count` > 10"
                      : "No conditions: every row stays in the report.";
}

std::string_view FilterModel::AddHint() const {
    return Enabled().connectors ? "Choose AND or OR before another condition" : "Add the condition to the filter";
}

FilterEnter FilterModel::PressEnter(bool isInValue, bool isInComparison, bool withControl) const {
    const bool isInCondition = isInValue || (isInComparison && Pending());
    if (!withControl && isInCondition && Enabled().addCondition)
        return FilterEnter::AddCondition;
    return withControl ? FilterEnter::Accept : FilterEnter::PassOn;
}

const CCondition& FilterModel::Condition(int index) const {
    if (index < 0 || static_cast<std::size_t>(index) >= m_conditions.size())
        throw std::invalid_argument("There is no such condition.");
    return m_conditions[static_cast<std::size_t>(index)];
}

FilterFocus FilterModel::AddCondition() {
    if (!Enabled().addCondition)
        return FilterFocus::Stays;
    switch (input.FindMissing()) {
    case ComparisonInput::Missing::Field:
        warn(m_messages, filter_messages::kNoField);
        return FilterFocus::FieldList;
    case ComparisonInput::Missing::Operation:
        warn(m_messages, filter_messages::kNoOperation);
        return FilterFocus::OperationList;
    case ComparisonInput::Missing::Values:
        warn(m_messages, filter_messages::kNoValues);
        return FilterFocus::ValueList;
    case ComparisonInput::Missing::Nothing:
        break;
    }
    m_settled = input.Comparison();
    Append(*m_settled);
    return FilterFocus::Stays;
}

std::optional<CCondition> FilterModel::FilledIn() const {
    if (m_editMode || input.FindMissing() != ComparisonInput::Missing::Nothing)
        return std::nullopt;
    CCondition comparison = input.Comparison();
    // An empty single value is valid, but looks the same as one that was never touched.
    if (comparison.values.size() == 1 && comparison.values.front().empty())
        return std::nullopt;
    return comparison;
}

std::optional<CCondition> FilterModel::Pending() const {
    std::optional<CCondition> comparison = FilledIn();
    return comparison == m_settled ? std::nullopt : comparison;
}

void FilterModel::AskAboutPending() {
    const std::optional<CCondition> pending = Pending();
    if (!pending)
        return;
    m_settled = pending;
    const bool needsConnector = Enabled().connectors;
    std::string question(filter_messages::kNotAdded.text);
    question += shortened(BuildPlainText({*pending}), kMostInQuestion);
    question += needsConnector ? filter_messages::kAddItWithAnd : filter_messages::kAddItNow;
    if (m_messages.ask(question, filter_messages::kNotAdded.caption, Messages::Answer::Yes) == Messages::Answer::No)
        return;
    if (needsConnector)
        AddConnector(Connector::And);
    Append(*pending);
}

void FilterModel::Append(CCondition condition) {
    m_parentheses.left += condition.leftParen ? 1 : 0;
    m_parentheses.right += condition.rightParen ? 1 : 0;
    m_conditions.push_back(std::move(condition));
}

void FilterModel::AddLeftParenthesis() {
    if (Enabled().leftParenthesis)
        Append(MakeParenthesis(true));
}

void FilterModel::AddRightParenthesis() {
    if (Enabled().rightParenthesis)
        Append(MakeParenthesis(false));
}

void FilterModel::AddConnector(Connector connector) {
    if (Enabled().connectors)
        Append(MakeConnector(connector));
}

void FilterModel::Undo() {
    if (!Enabled().undo)
        return;
    m_parentheses.left -= m_conditions.back().leftParen ? 1 : 0;
    m_parentheses.right -= m_conditions.back().rightParen ? 1 : 0;
    m_conditions.pop_back();
}

void FilterModel::Clear() {
    if (!Enabled().undo)
        return;
    m_conditions.clear();
    m_parentheses = {};
}

void FilterModel::ChooseAction(FilterAction action) {
    if (Enabled().action)
        m_action = action;
}

void FilterModel::ChooseDisplay(FilterDisplay display) {
    if (Enabled().display)
        m_display = display;
}

bool FilterModel::SetEditMode(bool on) {
    if (on == m_editMode)
        return true;
    if (!on && m_edited && !MayLoseEdits())
        return false;
    m_display = FilterDisplay::ExpressionCode;
    m_editText = on ? BuildExpression(m_conditions, m_action) : std::string();
    m_editMode = on;
    m_edited = false;
    m_hasUnsavedEdits = false;
    return true;
}

void FilterModel::EditBox(std::string text) {
    if (!m_editMode || withLineFeeds(text) == withLineFeeds(m_editText))
        return;
    // A lone line feed may be part of a quoted value, and the box cannot distinguish the two line ends.
    if (!hasLoneLineFeed(m_editText))
        text = withCarriageReturns(text);
    m_editText = std::move(text);
    m_edited = true;
    m_hasUnsavedEdits = true;
}

bool FilterModel::MayLoseEdits() {
    return m_messages.ask(filter_messages::kLeaveEditMode.text, filter_messages::kLeaveEditMode.caption) ==
           Messages::Answer::Yes;
}

bool FilterModel::Refuse(const FilterFileProblem& problem) {
    m_messages.warn(problem.text, problem.caption);
    return false;
}

bool FilterModel::Load(const std::string& path) {
    try {
        const LoadedFilter loaded = loadFilter(path);
        if (const auto* problem = std::get_if<FilterFileProblem>(&loaded))
            return Refuse(*problem);
        if (m_hasUnsavedEdits && !MayLoseEdits())
            return false;
        LoadText(std::get<std::string>(loaded));
        return true;
    } catch (const std::bad_alloc&) {
        warn(m_messages, filter_messages::kNoMemory);
        return false;
    }
}

bool FilterModel::Save(const std::string& path) {
    if (const auto problem = saveFilter(path, ComposeText()))
        return Refuse(*problem);
    m_hasUnsavedEdits = false;
    return true;
}

void FilterModel::LoadText(std::string_view filterText) {
    ParsedFilter parsed = ParseConditionBlock(filterText, m_action);
    m_conditions = std::move(parsed.conditions);
    m_parentheses = CountParentheses(m_conditions);
    m_action = parsed.action;
    m_filterText = std::move(parsed.text);
    m_editMode = !parsed.understood;
    m_edited = m_editMode;
    m_hasUnsavedEdits = false;
    m_editText = m_editMode ? m_filterText : std::string();
    m_display = m_editMode ? FilterDisplay::ExpressionCode : FilterDisplay::PlainText;
    if (m_editMode)
        return;
    input.ResetValue();
    m_settled = FilledIn();
}

std::string FilterModel::ComposeText() const {
    if (m_editMode)
        return m_editText;
    return WriteConditionBlock(m_conditions) + BuildExpression(m_conditions, m_action);
}

bool FilterModel::Accept() {
    AskAboutPending();
    if (const auto fault = FindFault(m_conditions); fault && !m_editMode) {
        warn(m_messages, messageOf(*fault));
        return false;
    }
    m_filterText = ComposeText();
    return true;
}

} // namespace tavix
