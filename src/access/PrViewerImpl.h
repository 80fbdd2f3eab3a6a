#pragma once

#include "access/DistributionCursor.h"
#include "access/DrillSource.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "access/SourceRows.h"
#include "access/StatementCursor.h"
#include "base/Clock.h"
#include "base/Result.h"

#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>

/// The state and helpers shared by the files that implement PrViewer.
namespace tavix {

/// The SQL of an operation: the columns of its layout, then `rest` (FROM and what follows).
struct Query {
    Query(std::string_view operation, std::string_view rest);

    const layout::Layout& layout;
    std::string sql;
};

/// A kind of object with keys, a letter and a number such as "M12".
struct KeyedKind {
    char letter;
    std::string_view what;
    std::string_view find; ///< a query with a row if the number exists
};

inline constexpr std::string_view kRunWasDeleted = "The run was deleted. Choose another one.";

struct PrViewer::Impl {
    std::string path;
    std::shared_ptr<ViewerSession> session;
    int job = -1;
    int run = -1;
    KvbString runWarning;
    PrViewDisplayMessage* displayMessage = nullptr; ///< null for none
    /// An open transaction over several changes; the session then uses the connection that writes.
    std::shared_ptr<ViewerSession> sessionBefore; ///< null without one
    std::optional<sql::Transaction> changes;
    bool haveChangesFailed = false;
    KvbString error;
    std::map<std::string, std::string> moves; ///< files that the user located in this session: new path by old path
    std::optional<MissingFile> missingSource; ///< of the last drill-down
    SystemClock systemClock;
    const Clock* clock = nullptr;
    source::AskCredentials askCredentials = [](const std::string& name, const std::string& refusal) {
        return refusal.empty() ? source::credentialsFromEnvironment(name) : std::nullopt;
    };

    /// Stores the text for getErrorString().
    bool fail(const Error& failure);
    ProfileCursorHandle failCursor(const Error& failure);
    /// Stores the text of a failure; returns whether it was a success.
    bool conclude(const Status& outcome) { return outcome.ok() || fail(outcome.error()); }
    ProfileCursorHandle unavailable(std::string_view what);

    /// Open cursors fail from now on. No job and no run is current.
    void endSession();
    /// A cursor in the middle of its rows keeps its connection at the state in which it began. After a change the
    /// viewer itself continues with a new connection, so that it sees the change.
    void refreshSession();

    /// Sets the warning of the current run.
    void checkRun();

    // Preconditions of operations; the error names the one that fails.
    [[nodiscard]] Status requireSession() const;
    [[nodiscard]] Status requireJob() const;
    /// Also that the current run still exists.
    [[nodiscard]] Status requireRun() const;
    [[nodiscard]] Status requireRunOfJob(int wanted) const;
    [[nodiscard]] Status requireTable(int table) const;      ///< in the current run
    [[nodiscard]] Status requireTableOrAll(int table) const; ///< -1 is all of the current run
    [[nodiscard]] Status requireExisting(std::string_view sql, int id, std::string_view what) const;

    [[nodiscard]] sql::Connection& connection() const { return *session->connection; }
    /// The cursor of a query with integer parameters; null when `ready` or the query fails.
    ProfileCursorHandle open(const Status& ready, const Query& query, std::initializer_list<std::int64_t> parameters);
    ProfileCursorHandle open(const Query& query, sql::Statement statement);
    /// For custom metrics and rules: an empty result in a repository older than these.
    [[nodiscard]] Result<bool> knowsRules() const;
    ProfileCursorHandle openRules(const Status& ready, const Query& query,
                                  std::initializer_list<std::int64_t> parameters);
    /// For types and findings: an empty result in a repository older than these.
    ProfileCursorHandle openExamined(const Status& ready, const Query& query,
                                     std::initializer_list<std::int64_t> parameters);
    /// For mutes, changes and notes of alerts: an empty result in a repository older than these.
    ProfileCursorHandle openUserAlerts(const Status& ready, const Query& query,
                                       std::initializer_list<std::int64_t> parameters);
    /// For the object of a key; ?1 is its number and ?2 `scope`. An unknown key is a failure.
    ProfileCursorHandle openKeyed(const Status& ready, const Query& query, const KeyedKind& kind, const KvbString& key,
                                  std::int64_t scope);
    /// The statement with its integer parameters bound.
    [[nodiscard]] Result<sql::Statement> bound(std::string_view sql,
                                               std::initializer_list<std::int64_t> parameters) const;
    /// The same on its first row; `missing` is the error if there is none.
    [[nodiscard]] Result<sql::Statement> boundRow(std::string_view sql, std::initializer_list<std::int64_t> parameters,
                                                  const Error& missing) const;
    /// The first value of the first row; `missing` is the error if there is none.
    [[nodiscard]] Result<std::int64_t> integer(std::string_view sql, std::initializer_list<std::int64_t> parameters,
                                               std::string_view missing) const;

    /// The current run if it has the field, else the latest run of any report that has it.
    [[nodiscard]] Result<int> runOfField(int field) const;
    /// When the run began, in units of base/DateTicks.h.
    [[nodiscard]] Result<std::int64_t> startOf(int ofRun) const;
    /// A number stored for the field in that run; `sql` takes the run and the field.
    [[nodiscard]] Result<std::int64_t> fieldNumber(std::string_view sql, int field) const;
    /// As the result of an operation: -1 on failure.
    std::int64_t giveNumber(const Result<std::int64_t>& number);
    ProfileCursorHandle openDistribution(std::string_view operation, const repository::DistributionKey& key,
                                         const Result<std::int64_t>& rows,
                                         std::unique_ptr<DistributionFilter> filter = nullptr,
                                         PrViewDisplayMessage* sink = nullptr);
    /// `filter` is a filter text; empty for all rows.
    ProfileCursorHandle openFieldDistribution(std::string_view operation, int field, repository::DistributionKind kind,
                                              std::string_view rowsSql, const KvbString& filter,
                                              PrViewDisplayMessage* sink);

    // Drill-down. `ofRun` is a run that has the field.
    /// The row of the field's table in that run.
    [[nodiscard]] Result<sql::Statement> tableOfField(int ofRun, int field) const;
    /// Reads the list of files and how they were quoted, if the repository stores it.
    Status readFiles(int ofRun, int table, DrillTable::TextFile& file) const;
    /// The meaning of columns in the conditions of a run.
    [[nodiscard]] Result<expression::Columns> columnsInConditions(int ofRun) const;
    [[nodiscard]] Result<DrillTable> drillTable(int ofRun, int field) const;
    [[nodiscard]] Result<WantedRows> wantedRows(int ofRun, int field, const KvbString& value, bool isPattern) const;
    /// The rows whose value meets a condition over `Value`, as the code of a filter.
    [[nodiscard]] Result<WantedRows> wantedByCondition(int ofRun, const KvbString& condition) const;
    [[nodiscard]] Result<SourceRows> sourceRows(int ofRun, int field, const WantedRows& wanted,
                                                PrViewDisplayMessage* sink);
    /// Null on failure.
    [[nodiscard]] PrViewerDrillCursorHandle openRows(int field, PrViewDisplayMessage* sink,
                                                     const std::function<Result<WantedRows>(int ofRun)>& wantedOf);
    /// Sets the current paths of the files.
    Status placeFiles(DrillTable::TextFile& source) const;
    /// The first of them that is not at its current path.
    [[nodiscard]] std::optional<MissingFile> missingFile(const DrillTable::TextFile& source) const;
    /// Of the repository.
    [[nodiscard]] std::string filePath() const;

    /// Returns the session to its own connection; uncommitted changes are lost.
    void endChanges();
    /// Opens the repository for writing, unless a transaction is open, and runs `work` in one transaction.
    bool change(const std::function<Status(sql::Connection&)>& work);
    /// The same for work that returns the id of what it created or changed; sets `id` if all of it succeeds.
    bool change(int& id, const std::function<Result<int>(sql::Connection&)>& work);
};

/// "There is no <what> with the number <id>."
[[nodiscard]] Error noSuch(std::string_view what, std::int64_t id);
[[nodiscard]] int clampToInt(std::int64_t value);

} // namespace tavix
