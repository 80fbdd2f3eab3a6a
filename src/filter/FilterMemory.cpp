#include "filter/FilterMemory.h"

#include "expression/TextOperators.h"
#include "settings/Settings.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace tavix {

namespace {

constexpr char kEscape = '\\';
constexpr char kSeparator = '|';

// A settings value is one line whose outer blanks and quotes may get lost, so a list of texts is written as text|text|,
// with escapes for characters that the line or the list cannot hold.

struct EscapeCode {
    char character;
    char code;
};
constexpr EscapeCode kEscapes[] = {{'\r', 'r'}, {'\n', 'n'}, {'\0', '0'}, {kSeparator, 'p'}, {kEscape, kEscape}};

std::string encode(const std::vector<std::string>& texts) {
    std::string line;
    for (const std::string& text : texts) {
        for (const char c : text) {
            const auto* escape = std::find_if(std::begin(kEscapes), std::end(kEscapes),
                                              [&](const EscapeCode& e) { return e.character == c; });
            if (escape == std::end(kEscapes))
                line += c;
            else
                line.append({kEscape, escape->code});
        }
        line += kSeparator;
    }
    return line;
}

/// At most `most` texts. Text after the last separator is ignored.
std::vector<std::string> decode(std::string_view line, std::size_t most) {
    std::vector<std::string> texts;
    std::string text;
    for (std::size_t at = 0; at < line.size() && texts.size() < most; ++at) {
        if (line[at] == kSeparator) {
            texts.push_back(std::move(text));
            text.clear();
        } else if (line[at] == kEscape && at + 1 < line.size()) {
            ++at;
            const auto* escape = std::find_if(std::begin(kEscapes), std::end(kEscapes),
                                              [&](const EscapeCode& e) { return e.code == line[at]; });
            text += escape == std::end(kEscapes) ? line[at] : escape->character;
        } else {
            text += line[at];
        }
    }
    return texts;
}

/// A name as it is kept: on one line, without outer blanks.
std::string tidyName(std::string_view name) {
    std::string tidy(name);
    std::replace_if(
        tidy.begin(), tidy.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    tidy.erase(tidy.find_last_not_of(' ') + 1);
    tidy.erase(0, tidy.find_first_not_of(' '));
    return tidy;
}

} // namespace

std::vector<std::string> FilterMemory::Recent(DistributionKind kind) const {
    return decode(readMember(m_settings, SettingFamily::RecentFilters, KindWord(kind)), kMostRecent);
}

Status FilterMemory::Remember(DistributionKind kind, std::string_view text) {
    if (text.empty() || text.size() > kLongestText)
        return {};
    std::vector<std::string> texts = Recent(kind);
    const auto known = std::find(texts.begin(), texts.end(), text);
    if (known != texts.end() && known == texts.begin())
        return {};
    if (known != texts.end())
        texts.erase(known);
    texts.insert(texts.begin(), std::string(text));
    texts.resize(std::min(texts.size(), kMostRecent));
    return writeMember(m_settings, SettingFamily::RecentFilters, KindWord(kind), encode(texts));
}

namespace {

using Entry = std::vector<NamedFilter>::iterator;

/// The position of a name in the sorted list, or the one that it would have.
Entry placeOf(std::vector<NamedFilter>& filters, const std::string& lowerName) {
    return std::lower_bound(filters.begin(), filters.end(), lowerName, [](const NamedFilter& f, const std::string& n) {
        return expression::lowerText(f.name) < n;
    });
}

bool isNamed(const std::vector<NamedFilter>& filters, const Entry& place, const std::string& lowerName) {
    return place != filters.end() && expression::lowerText(place->name) == lowerName;
}

std::string encodeNamed(const std::vector<NamedFilter>& filters) {
    std::vector<std::string> texts;
    for (const NamedFilter& filter : filters) {
        texts.push_back(filter.name);
        texts.push_back(filter.text);
    }
    return encode(texts);
}

} // namespace

std::vector<NamedFilter> FilterMemory::Named(DistributionKind kind) const {
    std::vector<std::string> texts =
        decode(readMember(m_settings, SettingFamily::NamedFilters, KindWord(kind)), 2 * kMostNamed);
    std::vector<NamedFilter> filters;
    for (std::size_t i = 0; i + 1 < texts.size(); i += 2)
        filters.push_back({std::move(texts[i]), std::move(texts[i + 1])});
    // The file may have been edited.
    std::stable_sort(filters.begin(), filters.end(), [](const NamedFilter& a, const NamedFilter& b) {
        return expression::lowerText(a.name) < expression::lowerText(b.name);
    });
    return filters;
}

std::optional<std::string> FilterMemory::FindName(DistributionKind kind, std::string_view name) const {
    std::vector<NamedFilter> filters = Named(kind);
    const std::string lower = expression::lowerText(tidyName(name));
    const Entry place = placeOf(filters, lower);
    return isNamed(filters, place, lower) ? std::optional(place->name) : std::nullopt;
}

Status FilterMemory::Keep(DistributionKind kind, std::string_view name, std::string_view text) {
    const std::string tidy = tidyName(name);
    if (tidy.empty())
        return Error{"A filter needs a name."};
    if (tidy.size() > kLongestName)
        return Error{fmt::format("The name of a filter can have at most {} bytes.", kLongestName)};
    if (text.empty())
        return Error{"There is no filter to save."};
    if (text.size() > kLongestText)
        return Error{
            fmt::format("A filter of {} bytes is too long to be saved under a name; the limit is {}. Save it in "
                        "a file instead.",
                        text.size(), kLongestText)};
    std::vector<NamedFilter> filters = Named(kind);
    const std::string lower = expression::lowerText(tidy);
    const Entry place = placeOf(filters, lower);
    if (isNamed(filters, place, lower))
        *place = {tidy, std::string(text)};
    else if (filters.size() >= kMostNamed)
        return Error{fmt::format("There are {} named filters already. Delete one first.", filters.size())};
    else
        filters.insert(place, {tidy, std::string(text)});
    return writeMember(m_settings, SettingFamily::NamedFilters, KindWord(kind), encodeNamed(filters));
}

Status FilterMemory::Forget(DistributionKind kind, std::string_view name) {
    std::vector<NamedFilter> filters = Named(kind);
    const std::string lower = expression::lowerText(tidyName(name));
    const Entry place = placeOf(filters, lower);
    if (!isNamed(filters, place, lower))
        return {};
    filters.erase(place);
    return writeMember(m_settings, SettingFamily::NamedFilters, KindWord(kind), encodeNamed(filters));
}

} // namespace tavix
