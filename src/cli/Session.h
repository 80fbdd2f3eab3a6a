#pragma once

#include "access/PrViewer.h"
#include "report/ReportSelection.h"
#include "report/RunInfo.h"

#include <optional>
#include <string>
#include <vector>

namespace tavix::cli {

/// A field that the user has named.
struct ChosenField {
    int id = -1;
    std::string name;
    std::string typeCode;
    TableIdentity table;
};

/// A repository opened by a command, with its jobs, runs, tables and fields by name. A name or number that does not
/// exist throws CommandError with ExitCode::Usage; a failure of the repository throws CommandError with
/// ExitCode::Source or GenException, which ends the program with the same code.
class Session {
  public:
    /// `repository` is the argument of --repository; see chosenRepository() for an empty one.
    explicit Session(const std::string& repository);

    [[nodiscard]] PrViewer& viewer() { return *m_viewer; }
    [[nodiscard]] int jobId() const { return m_jobId; }
    [[nodiscard]] const std::string& jobName() const { return m_jobName; }

    /// Makes a job and its latest run current. Without a name the repository must have exactly one job.
    void selectJob(const std::optional<std::string>& name);
    /// Makes a run of the current job current; without a number the latest stays current. Warns when the run is
    /// damaged.
    void selectRun(std::optional<int> run);

    /// Of the current job, as the repository orders them.
    [[nodiscard]] std::vector<RunInfo> runs();
    /// Of the current run.
    [[nodiscard]] std::vector<TableIdentity> tables();
    [[nodiscard]] TableIdentity table(const std::string& name);
    /// `address` is TABLE.FIELD, or only FIELD when `tableName` is given.
    [[nodiscard]] ChosenField field(const std::string& address, const std::optional<std::string>& tableName);

    /// Interprets a positional argument: the name of a table, TABLE.FIELD, or FIELD when `table` is set. Sets `table`
    /// or `field`, the values of the options. A subject that could be both a table and a field throws.
    void addressSubject(const std::string& subject, std::optional<std::string>& table,
                        std::optional<std::string>& field);

    /// Passes the cursor through; throws the repository's error text for a null one.
    [[nodiscard]] ProfileCursorHandle checked(ProfileCursorHandle cursor);
    /// Throws the repository's error text unless `succeeded`.
    void check(bool succeeded);

  private:
    void changeRun(int run);

    PrViewer::Handle m_viewer;
    int m_jobId = -1;
    std::string m_jobName;
};

} // namespace tavix::cli
