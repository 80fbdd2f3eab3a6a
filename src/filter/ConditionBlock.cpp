#include "filter/ConditionBlock.h"

#include "base/Characters.h"
#include "base/NumberText.h"
#include "expression/TextOperators.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>

namespace tavix {

namespace {

constexpr std::string_view kBegin = "/*{{BEGIN CONDITIONS\r\n";
constexpr std::string_view kEnd = "}}END CONDITIONS*/\r\n";
constexpr std::string_view kLineEnd = "\r\n";

std::int32_t toNumber(std::string_view text) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(decimalPrefix(text), Limits::min(), Limits::max()));
}

template <typename Code>
Code toCode(std::string_view text) {
    return static_cast<Code>(toNumber(text));
}

bool toFlag(std::string_view text) {
    return toNumber(text) != 0;
}

std::vector<std::string> toValues(std::string_view text) {
    std::vector<std::string> values;
    const auto finish = [&](std::string_view token) {
        const std::size_t characters = countCharacters(token);
        if (characters < 2)
            return;
        const std::size_t begin = offsetOfCharacter(token, 1);
        values.emplace_back(token.substr(begin, offsetOfCharacter(token, characters - 1) - begin));
    };
    bool quoted = false;
    std::size_t start = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '"') {
            quoted = !quoted;
        } else if (text[at] == ',' && !quoted) {
            finish(text.substr(start, at - start));
            start = at + 1;
        }
    }
    finish(text.substr(start));
    return values;
}

struct Line {
    std::string_view key;
    void (*read)(CCondition& condition, std::string_view value);
};

/// In the order of a record.
constexpr std::array<Line, 10> kLines = {{
    {"OPERATION=", [](CCondition& c, std::string_view v) { c.operation = toCode<FilterOperation>(v); }},
    {"CONNECTOR=", [](CCondition& c, std::string_view v) { c.connector = toCode<Connector>(v); }},
    {"CONDITIONTYPE=", [](CCondition& c, std::string_view v) { c.conditionType = toCode<ConditionType>(v); }},
    {"LEFTPAREN=", [](CCondition& c, std::string_view v) { c.leftParen = toFlag(v); }},
    {"RIGHTPAREN=", [](CCondition& c, std::string_view v) { c.rightParen = toFlag(v); }},
    {"CASEINSENS=", [](CCondition& c, std::string_view v) { c.caseInsensitive = toFlag(v); }},
    {"WILDCARD=", [](CCondition& c, std::string_view v) { c.wildcard = toFlag(v); }},
    {"FIELDTYPE=", [](CCondition& c, std::string_view v) { c.fieldType = toCode<FieldTypeCode>(v); }},
    {"FIELDNAME=", [](CCondition& c, std::string_view v) { c.fieldName = v; }},
    {"VALUES=", [](CCondition& c, std::string_view v) { c.values = toValues(v); }},
}};

/// Reads the records of a block.
class RecordReader {
  public:
    explicit RecordReader(std::string_view block) : m_block(block) {}

    /// False at the end of the block and at the first fault, which cannot be told apart.
    bool read(CCondition& condition) {
        for (std::size_t line = 0; line < kLines.size(); ++line) {
            const std::size_t key = findKey(line);
            const std::size_t end = m_block.find(kLineEnd, m_at);
            if (key == std::string_view::npos || end == std::string_view::npos)
                return false;
            // If the key only occurs after this line, this line has no value.
            const std::size_t value = key + kLines[line].key.size();
            kLines[line].read(condition, value < end ? m_block.substr(value, end - value) : std::string_view());
            m_at = end + kLineEnd.size();
        }
        return true;
    }

  private:
    /// The next occurrence of a key. Remembered, because a block with a key only at its end would otherwise be searched
    /// from each of its lines.
    std::size_t findKey(std::size_t line) {
        std::optional<std::size_t>& known = m_keys[line];
        if (!known || *known < m_at)
            known = m_block.find(kLines[line].key, m_at);
        return *known;
    }

    std::string_view m_block;
    std::size_t m_at = 0;
    std::array<std::optional<std::size_t>, kLines.size()> m_keys;
};

FilterAction actionOf(std::string_view lowerText, FilterAction action) {
    const std::size_t keep = lowerText.find("return true");
    const std::size_t remove = lowerText.find("return false");
    if (keep == std::string_view::npos || remove == std::string_view::npos)
        return action;
    return keep < remove ? FilterAction::RemoveFailing : FilterAction::RemovePassing;
}

} // namespace

std::string WriteConditionBlock(const ConditionList& conditions) {
    if (conditions.empty())
        return {};
    std::string text(kBegin);
    for (const CCondition& condition : conditions) {
        fmt::format_to(std::back_inserter(text),
                       "OPERATION={}\r\nCONNECTOR={}\r\nCONDITIONTYPE={}\r\nLEFTPAREN={:d}\r\nRIGHTPAREN={:d}\r\n"
                       "CASEINSENS={:d}\r\nWILDCARD={:d}\r\nFIELDTYPE={}\r\nFIELDNAME={}\r\nVALUES=",
                       static_cast<std::int32_t>(condition.operation), static_cast<std::int32_t>(condition.connector),
                       static_cast<std::int32_t>(condition.conditionType), condition.leftParen, condition.rightParen,
                       condition.caseInsensitive, condition.wildcard, static_cast<std::int32_t>(condition.fieldType),
                       condition.fieldName);
        const char* separator = "";
        for (const std::string& value : condition.values) {
            fmt::format_to(std::back_inserter(text), "{}\"{}\"", separator, value);
            separator = ",";
        }
        text += kLineEnd;
    }
    return text += kEnd;
}

ParsedFilter ParseConditionBlock(std::string_view filterText, FilterAction action) {
    ParsedFilter parsed;
    parsed.action = action;
    parsed.understood = true;
    if (filterText.empty())
        return parsed;
    const std::size_t begin = filterText.find(kBegin);
    if (begin == std::string_view::npos) {
        parsed.understood = false;
        parsed.text = filterText;
        return parsed;
    }
    const std::string_view block = filterText.substr(begin + kBegin.size());
    const std::size_t end = block.find(kEnd);
    if (end == std::string_view::npos)
        return parsed;

    RecordReader records(block.substr(0, end));
    for (CCondition condition; records.read(condition); condition = {})
        parsed.conditions.push_back(std::move(condition));
    parsed.text = expression::lowerText(filterText);
    parsed.action = actionOf(parsed.text, action);
    return parsed;
}

std::string ComposeFilterText(const ConditionList& conditions, FilterAction action) {
    const std::string block = WriteConditionBlock(conditions);
    std::string text = block + BuildExpression(conditions, action);
    constexpr std::string_view kCommentEnd = "*/";
    const bool endsInTime = block.find(kCommentEnd) == block.rfind(kCommentEnd);
    const FilterAction other =
        action == FilterAction::RemoveFailing ? FilterAction::RemovePassing : FilterAction::RemoveFailing;
    const ParsedFilter back = ParseConditionBlock(text, other);
    if (endsInTime && back.conditions == conditions && back.action == action)
        return text;
    return text.substr(block.size());
}

} // namespace tavix
