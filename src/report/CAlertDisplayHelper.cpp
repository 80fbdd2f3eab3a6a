#include "report/CAlertDisplayHelper.h"

#include "access/Layouts.h"
#include "access/ProfileCursor.h"
#include "base/AlertRule.h"

#include <utility>

namespace tavix {

CAlertDisplayHelper::CAlertDisplayHelper(NamesByKey customMetrics, NamesByKey businessRules)
    : m_customMetrics(std::move(customMetrics)), m_businessRules(std::move(businessRules)) {}

// Case-sensitive, unlike the type word.
std::string CAlertDisplayHelper::InputText(const ProfileCursor& alert) const {
    const auto subject = findAlertSubject(alert.getColumnValue(layout::AlertTypeCode).view());
    const NamesByKey* names = subject == AlertSubject::CustomMetric   ? &m_customMetrics
                              : subject == AlertSubject::BusinessRule ? &m_businessRules
                                                                      : nullptr;
    if (names) {
        const std::string key = alert.getColumnValue(layout::AlertKey).str();
        if (const auto name = key.empty() ? names->end() : names->find(key); name != names->end())
            return name->second;
    }
    return alert.getColumnValue(layout::AlertInput).str();
}

std::string_view CAlertDisplayHelper::TypeWord(std::string_view typeCode) {
    return alertTypeWord(alertSubjectOf(typeCode));
}

} // namespace tavix
