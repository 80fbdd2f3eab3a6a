#include "tabs/CAlertDisplayHelper.h"

#include "access/Layouts.h"
#include "access/ProfileCursor.h"

#include <algorithm>
#include <utility>

namespace tavix {

namespace {

// `code` is in upper case.
bool equalsInAnyCase(std::string_view text, std::string_view code) {
    return std::equal(text.begin(), text.end(), code.begin(), code.end(), [](char a, char b) {
        return (a >= 'a' && a <= 'z' ? static_cast<char>(a - 'a' + 'A') : a) == b;
    });
}

} // namespace

CAlertDisplayHelper::CAlertDisplayHelper(NamesByKey customMetrics, NamesByKey businessRules)
    : m_customMetrics(std::move(customMetrics)), m_businessRules(std::move(businessRules)) {}

// Case-sensitive, unlike the type word.
std::string CAlertDisplayHelper::InputText(const ProfileCursor& alert) const {
    const std::string type = alert.getColumnValue(layout::AlertTypeCode).str();
    const NamesByKey* names = type == "CM" ? &m_customMetrics : type == "BR" ? &m_businessRules : nullptr;
    if (names) {
        const std::string key = alert.getColumnValue(layout::AlertKey).str();
        if (const auto name = key.empty() ? names->end() : names->find(key); name != names->end())
            return name->second;
    }
    return alert.getColumnValue(layout::AlertInput).str();
}

std::string_view CAlertDisplayHelper::TypeWord(std::string_view typeCode) {
    if (equalsInAnyCase(typeCode, "CM"))
        return "Custom Metric";
    return equalsInAnyCase(typeCode, "BR") ? "Business Rule" : "Standard Metric";
}

} // namespace tavix
