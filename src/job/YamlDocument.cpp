#include "job/YamlDocument.h"

#include "base/NumberText.h"
#include "source/Utf8.h"

#include <fmt/format.h>
#include <yaml-cpp/depthguard.h>
#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/yaml.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <sstream>

namespace tavix::job {

namespace {

constexpr int kDeepest = 32;
constexpr std::size_t kMostValues = 200'000;

FilePosition positionOf(const YAML::Mark& mark) {
    return mark.is_null() ? FilePosition{} : FilePosition{mark.line + 1, mark.column + 1};
}

FilePosition positionOf(std::string_view text, std::size_t offset) {
    const std::string_view before = text.substr(0, offset);
    const auto lineStart = before.rfind('\n');
    return {static_cast<int>(std::count(before.begin(), before.end(), '\n')) + 1,
            static_cast<int>(lineStart == std::string_view::npos ? offset + 1 : offset - lineStart)};
}

template <std::size_t N>
bool isOneOf(const std::string& word, const std::array<std::string_view, N>& words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

nlohmann::json plainScalar(const std::string& word) {
    if (isOneOf<5>(word, {"", "~", "null", "Null", "NULL"}))
        return nullptr;
    if (isOneOf<3>(word, {"true", "True", "TRUE"}))
        return true;
    if (isOneOf<3>(word, {"false", "False", "FALSE"}))
        return false;
    if (const auto integer = parseInteger(word))
        return *integer;
    if (const auto real = parseNumber(word))
        return *real;
    return word;
}

class Converter {
  public:
    explicit Converter(YamlDocument& document) : m_document(document) {}

    nlohmann::json convert(const YAML::Node& node, const std::string& pointer, int depth) {
        if (depth > kDeepest)
            throw DocumentProblem{positionOf(node.Mark()), "the nesting is too deep"};
        if (++m_values > kMostValues)
            throw DocumentProblem{positionOf(node.Mark()),
                                  "the file has too many values; are there aliases of aliases?"};
        // An absent value has no position; use that of its key.
        const auto entry = m_document.entryPositions.find(pointer);
        m_document.valuePositions.emplace(pointer, node.IsNull() && entry != m_document.entryPositions.end()
                                                       ? entry->second
                                                       : positionOf(node.Mark()));
        switch (node.Type()) {
        case YAML::NodeType::Scalar:
            return scalar(node);
        case YAML::NodeType::Sequence:
            return sequence(node, pointer, depth);
        case YAML::NodeType::Map:
            return map(node, pointer, depth);
        case YAML::NodeType::Null:
        case YAML::NodeType::Undefined:
            break;
        }
        return nullptr;
    }

  private:
    static nlohmann::json scalar(const YAML::Node& node) {
        const std::string& tag = node.Tag();
        // An escape can make one, and file names would end there.
        if (node.Scalar().find('\0') != std::string::npos)
            throw DocumentProblem{positionOf(node.Mark()), "a text cannot hold a zero byte"};
        if (tag == "?" || tag.empty())
            return plainScalar(node.Scalar());
        if (tag == "!" || tag == "tag:yaml.org,2002:str")
            return node.Scalar();
        throw DocumentProblem{positionOf(node.Mark()), fmt::format("the tag \"{}\" is not supported", tag)};
    }

    nlohmann::json sequence(const YAML::Node& node, const std::string& pointer, int depth) {
        auto list = nlohmann::json::array();
        for (const YAML::Node& item : node) {
            const std::string place = pointerTo(pointer, std::to_string(list.size()));
            m_document.entryPositions.emplace(place, positionOf(item.Mark()));
            list.push_back(convert(item, place, depth + 1));
        }
        return list;
    }

    nlohmann::json map(const YAML::Node& node, const std::string& pointer, int depth) {
        auto object = nlohmann::json::object();
        for (const auto& entry : node) {
            const FilePosition position = positionOf(entry.first.Mark());
            if (!entry.first.IsScalar())
                throw DocumentProblem{position, "a key must be a word or a text"};
            const std::string& key = entry.first.Scalar();
            if (object.contains(key))
                throw DocumentProblem{position, fmt::format("the key \"{}\" is given twice", key)};
            const std::string place = pointerTo(pointer, key);
            m_document.entryPositions.emplace(place, position);
            object[key] = convert(entry.second, place, depth + 1);
        }
        return object;
    }

    YamlDocument& m_document;
    std::size_t m_values = 0;
};

/// Rejects a second document. YAML::LoadAll() cannot be used for this: it never ends on stray text such as "{a},".
class SingleDocument final : public YAML::EventHandler {
  public:
    /// Where the last scalar begins, including its tag and anchor.
    [[nodiscard]] std::optional<std::size_t> lastScalar() const { return m_lastScalar; }

    void OnDocumentStart(const YAML::Mark& mark) override {
        if (++m_documents > 1)
            throw DocumentProblem{positionOf(mark), "there is more than one document in the file"};
    }
    void OnDocumentEnd() override {}
    void OnNull(const YAML::Mark&, YAML::anchor_t) override {}
    void OnAlias(const YAML::Mark&, YAML::anchor_t) override {}
    void OnScalar(const YAML::Mark& mark, const std::string&, YAML::anchor_t, const std::string&) override {
        m_lastScalar = static_cast<std::size_t>(mark.pos);
    }
    void OnSequenceStart(const YAML::Mark&, const std::string&, YAML::anchor_t, YAML::EmitterStyle::value) override {}
    void OnSequenceEnd() override {}
    void OnMapStart(const YAML::Mark&, const std::string&, YAML::anchor_t, YAML::EmitterStyle::value) override {}
    void OnMapEnd() override {}

  private:
    int m_documents = 0;
    std::optional<std::size_t> m_lastScalar;
};

/// Expressions contain characters that are special in YAML, and its messages do not say so.
std::string_view hintOnQuotes(std::string_view text, const YAML::Exception& error) {
    if (error.msg.find("escape") != std::string::npos)
        return "; a backslash in double quotes is an escape, so use single quotes";
    std::size_t begin = 0;
    for (int line = 0; line < error.mark.line && begin < text.size(); ++line)
        begin = std::min(text.find('\n', begin), text.size() - 1) + 1;
    const bool hasField = text.substr(begin, text.find('\n', begin) - begin).find('`') != std::string_view::npos;
    return hasField ? "; quote the expression, as in where: \"`price` = 1\"" : "";
}

void requireSingleDocument(const std::string& text, SingleDocument& handler) {
    std::istringstream stream(text);
    YAML::Parser parser(stream);
    if (parser.HandleNextDocument(handler))
        parser.HandleNextDocument(handler);
}

/// Where the scalar's text begins, after its tag and anchor, blanks and comments.
std::size_t skipProperties(std::string_view text, std::size_t at) {
    while (at < text.size()) {
        const char c = text[at];
        if (c == '#')
            at = text.find('\n', at);
        else if (c == '!' || c == '&')
            at = text.find_first_of(" \t\r\n", at);
        else if (c == ' ' || c == '\t' || c == '\r' || c == '\n')
            ++at;
        else
            break;
    }
    return std::min(at, text.size());
}

/// The offset after the closing quote of the quoted text at `start`; npos when it is not closed.
std::size_t quotedEnd(std::string_view text, std::size_t start) {
    const char quote = text[start];
    for (std::size_t at = start + 1; at < text.size(); ++at) {
        const bool isEscape = quote == '"' && text[at] == '\\';
        const bool isDoubled = quote == '\'' && text[at] == quote && text.substr(at + 1).starts_with(quote);
        if (isEscape || isDoubled)
            ++at;
        else if (text[at] == quote)
            return at + 1;
    }
    return std::string_view::npos;
}

/// The parser ends a quoted text at the end of the file, so a forgotten quote would swallow the rest. `mark`: where the
/// parser failed.
std::optional<DocumentProblem> findOpenQuote(std::string_view text, std::size_t scalar,
                                             std::optional<YAML::Mark> mark = std::nullopt) {
    const std::size_t start = skipProperties(text, scalar);
    if (start == text.size() || (text[start] != '"' && text[start] != '\''))
        return std::nullopt;
    const std::size_t end = quotedEnd(text, start);
    if (end == std::string_view::npos)
        return DocumentProblem{positionOf(text, start), "the quote that opens here is never closed"};
    const std::string_view quoted = text.substr(start, end - start);
    const int lastLine = positionOf(text, end).line;
    if (mark && quoted.find('\n') != std::string_view::npos && mark->line + 1 == lastLine)
        return DocumentProblem{
            positionOf(text, start),
            fmt::format("the quote that opens here is closed in line {}, where the text continues; is "
                        "a closing quote missing?",
                        lastLine)};
    return std::nullopt;
}

/// For a text that the parser did not reach: finds the first quote from `at` on that begins a text and is never closed.
std::optional<DocumentProblem> findOpenQuoteFrom(std::string_view text, std::size_t at) {
    constexpr std::string_view kBefore = " \t\r\n[{,";
    while (at < text.size()) {
        const bool isBeginning = at == 0 || kBefore.find(text[at - 1]) != std::string_view::npos;
        if (isBeginning && text[at] == '#') {
            at = std::min(text.find('\n', at), text.size());
        } else if (isBeginning && (text[at] == '"' || text[at] == '\'')) {
            if (auto problem = findOpenQuote(text, at))
                return problem;
            at = quotedEnd(text, at);
        } else {
            ++at;
        }
    }
    return std::nullopt;
}

std::optional<DocumentProblem> findOpenQuote(std::string_view text, const SingleDocument& document,
                                             const YAML::Mark& mark) {
    if (!document.lastScalar())
        return findOpenQuoteFrom(text, 0);
    if (auto problem = findOpenQuote(text, *document.lastScalar(), mark))
        return problem;
    return findOpenQuoteFrom(text, *document.lastScalar());
}

} // namespace

std::string pointerTo(const std::string& parent, std::string_view key) {
    std::string pointer = parent + "/";
    for (const char c : key) {
        if (c == '~')
            pointer += "~0";
        else if (c == '/')
            pointer += "~1";
        else
            pointer += c;
    }
    return pointer;
}

std::string placeText(const YamlDocument& document, const std::string& file, const std::string& pointer) {
    const FilePosition position = document.valuePositions.at(pointer);
    return fmt::format("{}:{}:{}: ", file, position.line, position.column);
}

std::variant<YamlDocument, DocumentProblem> parseYaml(const std::string& text) {
    if (const std::size_t good = source::validUtf8Prefix(text); good != text.size())
        return DocumentProblem{positionOf(text, good), "this is not UTF-8 text"};
    if (const std::size_t zero = text.find('\0'); zero != std::string::npos)
        return DocumentProblem{positionOf(text, zero), "this is not text"};
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    // not counted in positions
    const std::string_view body = std::string_view(text).substr(text.starts_with(kByteOrderMark) ? 3 : 0);
    SingleDocument single;
    try {
        requireSingleDocument(text, single);
        if (single.lastScalar())
            if (auto problem = findOpenQuote(body, *single.lastScalar()))
                return *problem;
        YamlDocument document;
        document.value = Converter(document).convert(YAML::Load(text), "", 0);
        return document;
    } catch (const DocumentProblem& problem) {
        return problem;
    } catch (const YAML::DeepRecursion& error) {
        return DocumentProblem{positionOf(error.mark), "the nesting is too deep"};
    } catch (const YAML::Exception& error) {
        if (auto problem = findOpenQuote(body, single, error.mark))
            return *problem;
        return DocumentProblem{positionOf(error.mark), error.msg + std::string(hintOnQuotes(text, error))};
    }
}

} // namespace tavix::job
