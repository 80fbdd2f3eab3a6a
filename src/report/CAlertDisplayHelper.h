#pragma once

#include <map>
#include <string>
#include <string_view>

namespace tavix {

class ProfileCursor;

/// The texts of an alert list for a row of getAlerts. Names of custom metrics and business rules are looked up by key;
/// for an unknown key the alert's own text is used.
class CAlertDisplayHelper {
  public:
    using NamesByKey = std::map<std::string, std::string>;

    explicit CAlertDisplayHelper(NamesByKey customMetrics = {}, NamesByKey businessRules = {});

    /// The name of the watched field, metric or rule.
    [[nodiscard]] std::string InputText(const ProfileCursor& alert) const;
    /// "Custom Metric" and "Business Rule" for the codes CM and BR in any case, else "Standard Metric".
    [[nodiscard]] static std::string_view TypeWord(std::string_view typeCode);

  private:
    NamesByKey m_customMetrics;
    NamesByKey m_businessRules;
};

} // namespace tavix
