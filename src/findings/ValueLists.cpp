#include "findings/ValueLists.h"

#include <algorithm>

namespace tavix::findings {

std::string literalOf(std::string_view text) {
    // A text cannot end in a backslash.
    std::size_t backslashes = 0;
    while (text.ends_with('\\')) {
        text.remove_suffix(1);
        ++backslashes;
    }
    std::string literal = "'";
    for (const char c : text) {
        if (c == '\'')
            literal += '\\';
        literal += c;
    }
    literal += '\'';
    if (backslashes == 0)
        return literal;
    std::string joined = "concat(" + literal;
    for (; backslashes > 0; --backslashes)
        joined += ", char(92)";
    return joined + ")";
}

std::string listCondition(std::string_view subject, std::vector<std::string_view> texts) {
    std::sort(texts.begin(), texts.end());
    texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
    if (texts.empty() || texts.size() > kMostListed)
        return {};
    std::string condition(subject);
    if (texts.size() == 1)
        return condition + " == " + literalOf(texts.front());
    condition += " in (";
    for (const std::string_view text : texts) {
        if (condition.back() != '(')
            condition += ", ";
        condition += literalOf(text);
    }
    return condition + ")";
}

void TextList::add(std::string_view text, std::uint64_t count) {
    if (m_isFull)
        return;
    if (text.size() > m_longest) {
        m_hasLeftOut = true;
        return;
    }
    if (m_entries.size() == m_most) {
        m_isFull = true;
        m_entries = {};
        m_texts = {};
        return;
    }
    m_entries.push_back({m_texts.size(), static_cast<std::uint32_t>(text.size()), count});
    m_texts += text;
}

std::string TextList::condition() const {
    if (m_isFull || m_hasLeftOut)
        return {};
    std::vector<std::string_view> texts;
    for (std::size_t i = 0; i < size(); ++i)
        texts.push_back(at(i).text);
    return listCondition("`Value`", std::move(texts));
}

} // namespace tavix::findings
