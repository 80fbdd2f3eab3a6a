#pragma once

#include <map>
#include <string>
#include <string_view>

namespace tavix {

class ProfileCursor;

/// The words of an alert list for a row of getAlerts. Custom metrics and business rules are known by their keys; what
/// is not among them is named by the alert itself.
class CAlertDisplayHelper {
  public:
    using NamesByKey = std::map<std::string, std::string>;

    explicit CAlertDisplayHelper(NamesByKey customMetrics = {}, NamesByKey businessRules = {});

    /// What the alert watches.
    [[nodiscard]] std::string InputText(const ProfileCursor& alert) const;
    /// "Custom Metric" and "Business Rule" for the codes CM and BR in any case, else "Standard Metric".
    [[nodiscard]] static std::string_view TypeWord(std::string_view typeCode);

  private:
    NamesByKey m_customMetrics;
    NamesByKey m_businessRules;
};

} // namespace tavix
