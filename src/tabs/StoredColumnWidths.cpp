#include "tabs/StoredColumnWidths.h"

#include "base/NumberText.h"

namespace tavix {

namespace {

constexpr std::string_view kSection = "COLUMNS";
constexpr int kNarrowest = 20;
constexpr int kWidest = 4000;

} // namespace

// Characters other than letters and digits are escaped by their number: every key is valid in the settings file, and no
// two columns share one.
std::string StoredColumnWidths::KeyOf(const std::string& column) const {
    std::string key = m_grid + ".";
    for (const char c : column) {
        const bool isPlain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
        if (isPlain)
            key += c;
        else
            key += "_" + formatInteger(static_cast<unsigned char>(c)) + "_";
    }
    return key;
}

std::optional<int> StoredColumnWidths::Read(const std::string& column) const {
    const auto width = parseInteger(m_store.read(kSection, KeyOf(column)));
    if (!width || *width < kNarrowest || *width > kWidest)
        return std::nullopt;
    return static_cast<int>(*width);
}

// Failing to store a width does not deserve a message.
void StoredColumnWidths::Keep(const std::string& column, int width) {
    if (Read(column) != width)
        (void)m_store.write(kSection, KeyOf(column), formatInteger(width));
}

} // namespace tavix
