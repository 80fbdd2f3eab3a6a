#pragma once

#include "access/PrViewer.h"

#include <optional>
#include <string>
#include <vector>

namespace tavix::cli {

struct JobEntry {
    int id = -1;
    std::string name;
};

struct RunEntry {
    int id = -1;
    double date = 0; ///< a LibraryDate
    std::string description;
};

struct TableEntry {
    int id = -1;
    std::string name; ///< as shown: that of the query or filter, else the table's
    std::string dataSource;
    char kind = 'Y';
    std::int64_t fields = 0;
    std::int64_t totalRecords = 0;
    std::int64_t processedRecords = 0;
    std::int64_t damagedRecords = 0;
    std::string base;      ///< of a filtered table
    bool isSample = false; ///< its figures are those of a sample of its rows, or of its base's
};

struct FieldEntry {
    int id = -1;
    std::string name;
    char typeCode = 0;
    TableEntry table;
};

/// A repository opened for a command that names jobs, runs, tables and fields. Everything throws CommandError: Source
/// when the repository fails, Usage when a name or number is not there.
class Session {
  public:
    /// The file as the option names it; empty for what chosenRepository() finds.
    explicit Session(const std::string& repository);

    [[nodiscard]] PrViewer& viewer() { return *m_viewer; }
    [[nodiscard]] int jobId() const { return m_job.id; }
    [[nodiscard]] const std::string& jobName() const { return m_job.name; }

    /// Makes a job and its latest run current; without a name the only job that there is.
    void selectJob(const std::optional<std::string>& name);
    /// Makes a run of the current job current; without a number the latest stays. Says when the run is damaged.
    void selectRun(std::optional<int> run);

    /// Of the current job, as the repository orders them.
    [[nodiscard]] std::vector<RunEntry> runs();
    /// Of the current run.
    [[nodiscard]] std::vector<TableEntry> tables();
    [[nodiscard]] TableEntry table(const std::string& name);
    /// `address` is TABLE.FIELD, or only FIELD when `tableName` is given.
    [[nodiscard]] FieldEntry field(const std::string& address, const std::optional<std::string>& tableName);

    /// A table's name or TABLE.FIELD without an option before it, or FIELD beside a table: sets `table` or `field`,
    /// which are those of the options. A subject that could be both is refused.
    void addressSubject(const std::string& subject, std::optional<std::string>& table,
                        std::optional<std::string>& field);

    /// The cursor itself; a null one throws the repository's error text.
    [[nodiscard]] ProfileCursorHandle checked(ProfileCursorHandle cursor);
    /// Throws the repository's error text unless `succeeded`.
    void check(bool succeeded);

  private:
    void changeRun(int run);
    [[nodiscard]] std::vector<FieldEntry> fieldsOf(const TableEntry& table);

    PrViewer::Handle m_viewer;
    JobEntry m_job;
};

} // namespace tavix::cli
