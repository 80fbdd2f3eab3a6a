#pragma once

#include "base/AlertProperties.h"
#include "base/Clock.h"
#include "base/Result.h"
#include "sql/Connection.h"

#include <string>
#include <string_view>
#include <vector>

/// Alerts as they are stored, for repository/AlertStore. Each operation works within the caller's transaction.
namespace tavix::repository {

/// An alert to store: its row and its properties.
struct AlertRow {
    AlertDefinition definition;
    int field = -1;     ///< that is stored: of records, the table's first one; -1: none
    std::string key;    ///< of the custom metric or rule
    std::string metric; ///< the name of the standard metric, or of the custom metric's value
    std::string input;  ///< the name of the field, custom metric or rule
    AlertProperties properties;

    [[nodiscard]] bool isStandard() const { return definition.subject == AlertSubject::StandardMetric; }
    [[nodiscard]] bool isOfRecords() const { return isStandard() && definition.field == -1; }
    /// The text that users see.
    [[nodiscard]] std::string description() const;
    /// A rule of this alert in words, with its level, for the list of changes.
    [[nodiscard]] std::string condition(const AlertRule& rule) const;
};

/// Finds what the alert watches; fails if it is not there.
[[nodiscard]] Result<AlertRow> makeRow(sql::Connection& connection, int job, const AlertDefinition& definition);

/// An alert that is stored already.
struct StoredAlert {
    int id = -1;
    int job = -1;
    int position = 0;
    AlertDefinition definition; ///< its description as stored, which is the condition unless somebody wrote one
    int field = -1;
    AlertProperties properties;
};

/// The alerts that `where` chooses among `alert a`, in the order of their job; ?1 is `parameter`.
[[nodiscard]] Result<std::vector<StoredAlert>> readAlerts(sql::Connection& connection, std::string_view where,
                                                          int parameter);

/// Who made an alert: `user` null for one that the job defines.
struct AlertOrigin {
    int job = -1;
    const std::string* user = nullptr;
    UtcTime created{};
};

/// Returns its id.
[[nodiscard]] Result<int> insertAlert(sql::Connection& connection, const AlertRow& row, int position,
                                      const AlertOrigin& origin);
/// Keeps its job and who made it; writes only what differs.
[[nodiscard]] Status updateAlert(sql::Connection& connection, const StoredAlert& before, const AlertRow& row,
                                 int position);
/// With its mute, changes and notes.
[[nodiscard]] Status removeAlert(sql::Connection& connection, int alert);
/// Nothing unless the texts differ. `author` is empty for a run of the job.
[[nodiscard]] Status noteChange(sql::Connection& connection, int alert, std::string_view before, std::string_view after,
                                std::string_view author, UtcTime changed);

} // namespace tavix::repository
