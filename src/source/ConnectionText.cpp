#include "source/ConnectionText.h"

#include "base/Ascii.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace tavix::source {

namespace {

constexpr std::size_t kLongest = 10'000;
/// A value with one of these is written in braces.
constexpr std::string_view kSpecial = "[]{}(),;?*=!@";
constexpr std::array<std::string_view, 6> kSecretWords = {"pwd", "password", "passwd", "passphrase", "secret", "token"};
constexpr std::array<std::string_view, 4> kUserKeys = {"uid", "user", "username", "user name"};

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

bool namesSecret(std::string_view text) {
    const std::string folded = asciiLower(text);
    return std::any_of(kSecretWords.begin(), kSecretWords.end(),
                       [&](std::string_view word) { return folded.find(word) != std::string::npos; });
}

/// Also for a value that contains settings of its own, such as "{host=x password=y}".
bool isSecret(std::string_view key, std::string_view value) {
    return namesSecret(key) || (value.find('=') != std::string_view::npos && namesSecret(value));
}

std::string quoted(std::string_view value) {
    const bool isPlain =
        value.find_first_of(kSpecial) == std::string_view::npos && (value.empty() || trimmed(value) == value);
    if (isPlain)
        return std::string(value);
    std::string out = "{";
    for (const char c : value) {
        out += c;
        if (c == '}')
            out += c;
    }
    return out + "}";
}

void append(std::string& text, std::string_view key, std::string_view value) {
    if (!text.empty())
        text += ';';
    text.append(key).append("=").append(quoted(value));
}

/// Reads the value at the beginning of `rest` and removes it with the semicolon after it; nothing if its brace is not
/// closed.
std::optional<std::string> takeValue(std::string_view& rest) {
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t\r\n"), rest.size()));
    std::string value;
    if (!rest.starts_with('{')) {
        const auto end = std::min(rest.find(';'), rest.size());
        value = trimmed(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
        return value;
    }
    std::size_t at = 1;
    for (;; ++at) {
        if (at >= rest.size())
            return std::nullopt;
        if (rest[at] == '}' && (at + 1 == rest.size() || rest[at + 1] != '}'))
            break;
        value += rest[at];
        if (rest[at] == '}')
            ++at;
    }
    rest.remove_prefix(at + 1);
    const auto next = rest.find_first_not_of(" \t\r\n");
    if (next != std::string_view::npos && rest[next] != ';')
        return std::nullopt;
    rest.remove_prefix(next == std::string_view::npos ? rest.size() : next + 1);
    return value;
}

} // namespace

Result<ConnectionText> ConnectionText::parse(std::string_view text) {
    ConnectionText connection;
    std::string_view rest = trimmed(text);
    if (rest.empty() || rest.size() > kLongest || rest.find('\0') != std::string_view::npos)
        return Error{"This is neither the name of a data source nor a connection string."};
    if (rest.find('=') == std::string_view::npos) {
        if (rest.find_first_of(kSpecial) != std::string_view::npos)
            return Error{fmt::format("\"{}\" is neither the name of a data source nor a connection string.", rest)};
        connection.set("DSN", rest);
        return connection;
    }
    while (!rest.empty()) {
        const auto equals = rest.find('=');
        const std::string_view key = trimmed(rest.substr(0, std::min(equals, rest.size())));
        if (equals == std::string_view::npos || key.empty() || key.find_first_of(kSpecial) != std::string_view::npos)
            return Error{"The connection string is not understood: it has to be a list of KEY=VALUE separated by "
                         "semicolons."};
        rest.remove_prefix(equals + 1);
        const auto value = takeValue(rest);
        if (!value)
            return Error{fmt::format("The connection string is not understood: the value of \"{}\" begins with a brace "
                                     "that is not closed in front of the next semicolon.",
                                     key)};
        connection.setIfAbsent(key, *value); // drivers use the first of repeated settings
        rest.remove_prefix(std::min(rest.find_first_not_of("; \t\r\n"), rest.size()));
    }
    return connection;
}

const std::string* ConnectionText::find(std::string_view key) const {
    for (const Setting& setting : m_settings)
        if (asciiLower(setting.key) == asciiLower(key))
            return &setting.value;
    return nullptr;
}

void ConnectionText::set(std::string_view key, std::string_view value) {
    for (Setting& setting : m_settings)
        if (asciiLower(setting.key) == asciiLower(key)) {
            setting.value = value;
            return;
        }
    m_settings.push_back({std::string(key), std::string(value)});
}

void ConnectionText::setIfAbsent(std::string_view key, std::string_view value) {
    if (!find(key))
        set(key, value);
}

bool ConnectionText::holdsPassword() const {
    return std::any_of(m_settings.begin(), m_settings.end(),
                       [](const Setting& setting) { return isSecret(setting.key, setting.value); });
}

std::string ConnectionText::text() const {
    std::string text;
    for (const Setting& setting : m_settings)
        append(text, setting.key, setting.value);
    return text;
}

std::string ConnectionText::publicText() const {
    std::string text;
    for (const Setting& setting : m_settings)
        if (!isSecret(setting.key, setting.value) &&
            std::find(kUserKeys.begin(), kUserKeys.end(), asciiLower(setting.key)) == kUserKeys.end())
            append(text, setting.key, setting.value);
    return text;
}

std::string ConnectionText::user() const {
    const auto found = std::find_if(m_settings.begin(), m_settings.end(), [](const Setting& setting) {
        return std::find(kUserKeys.begin(), kUserKeys.end(), asciiLower(setting.key)) != kUserKeys.end();
    });
    return found == m_settings.end() ? std::string() : found->value;
}

} // namespace tavix::source
