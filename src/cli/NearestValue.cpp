#include "cli/NearestValue.h"

#include "access/Layouts.h"
#include "base/Ascii.h"
#include "base/NearestWord.h"
#include "cli/Session.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace tavix::cli {

namespace {

constexpr std::size_t kMostCompared = 100'000;

/// In lower case, without blanks at either end.
std::string plain(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const auto first = std::min(text.find_first_not_of(kBlanks), text.size());
    text = text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
    return asciiLower(text);
}

} // namespace

std::string nearestValue(Session& session, const ChosenField& field, const std::string& text, bool isPattern) {
    PrViewer& viewer = session.viewer();
    const ProfileCursorHandle values = session.checked(isPattern ? viewer.getPatternDist(field.id, KvbString(""))
                                                                 : viewer.getFreqDist(field.id, KvbString("")));
    int column = layout::FreqValue;
    if (isPattern)
        column = layout::PatternText;
    const std::string wanted = plain(text);
    std::vector<std::string> known;
    while (known.size() < kMostCompared && values->next()) {
        if (values->isColumnNull(column))
            continue;
        std::string value = values->getColumnValue(column).str();
        // Case is significant in patterns.
        if (!isPattern && plain(value) == wanted)
            return value;
        known.push_back(std::move(value));
    }
    return nearestWord(text, known);
}

} // namespace tavix::cli
