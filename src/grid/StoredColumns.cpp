#include "grid/StoredColumns.h"

#include "base/Ascii.h"
#include "base/NumberText.h"
#include "settings/Settings.h"

namespace tavix {

namespace {

constexpr int kNarrowest = 20;
constexpr int kWidest = 4000;

} // namespace

// Characters other than letters and digits are escaped by their number: every key is valid in the settings file, and no
// two columns share one.
std::string StoredColumns::KeyOf(const std::string& column) const {
    std::string key = m_grid + ".";
    for (const char c : column) {
        if (isAsciiLetter(c) || isAsciiDigit(c))
            key += c;
        else
            key += "_" + formatInteger(static_cast<unsigned char>(c)) + "_";
    }
    return key;
}

std::optional<int> StoredColumns::ReadWidth(const std::string& column) const {
    const auto width = parseInteger(readMember(m_store, SettingFamily::ColumnWidth, KeyOf(column)));
    if (!width || *width < kNarrowest || *width > kWidest)
        return std::nullopt;
    return static_cast<int>(*width);
}

// Failing to store a choice does not deserve a message.
void StoredColumns::KeepWidth(const std::string& column, int width) {
    if (ReadWidth(column) != width)
        (void)writeMember(m_store, SettingFamily::ColumnWidth, KeyOf(column), formatInteger(width));
}

std::optional<bool> StoredColumns::ReadShown(const std::string& column) const {
    const std::string shown = readMember(m_store, SettingFamily::ColumnShown, KeyOf(column));
    return shown == "1" || shown == "0" ? std::optional(shown == "1") : std::nullopt;
}

void StoredColumns::KeepShown(const std::string& column, bool shown) {
    (void)writeMember(m_store, SettingFamily::ColumnShown, KeyOf(column), shown ? "1" : "0");
}

} // namespace tavix
