#include "repository/RepositoryCheck.h"

#include "repository/DistributionStore.h"
#include "repository/Existence.h"
#include "repository/HistogramStore.h"
#include "repository/PackedHashes.h"
#include "repository/RunChecksums.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace tavix::repository {

namespace {

/// Findings for the file that are listed; more would not help.
constexpr int kMostProblems = 20;

struct NamedId {
    int id = 0;
    std::string name;
};

/// The rows of a query of names and numbers.
Result<std::vector<NamedId>> readNames(sql::Connection& connection, std::string_view sql,
                                       std::initializer_list<int> parameters) {
    auto select = connection.prepare(sql);
    if (!select)
        return select.error();
    int number = 0;
    for (int parameter : parameters)
        select->bind(++number, parameter);
    std::vector<NamedId> found;
    sql::Step step = select->step();
    for (; step == sql::Step::Row; step = select->step())
        found.push_back({static_cast<int>(select->integer(0)), std::string(select->text(1))});
    if (step == sql::Step::Failed)
        return Error{connection.errorText()};
    return found;
}

class RunCheck {
  public:
    RunCheck(sql::Connection& connection, const NamedId& run, const std::function<void(const CheckFinding&)>& report)
        : m_connection(connection), m_run(run), m_report(report) {}

    Status check() {
        // Otherwise a concurrent deletion would remove rows during the check.
        auto snapshot = sql::Snapshot::begin(m_connection);
        if (!snapshot)
            return snapshot.error();
        auto exists = readNumber(m_connection, "SELECT COUNT(*) FROM run WHERE id = ?1", {m_run.id});
        if (!exists || *exists == 0)
            return exists ? Status{} : Status{exists.error()};
        auto parts = checkedParts(m_connection, m_run.id);
        auto tables = readNames(m_connection,
                                "SELECT t.id, CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END FROM "
                                "run_table rt JOIN profiled_table t ON t.id = rt.table_id WHERE rt.run = ?1 "
                                "ORDER BY rt.position",
                                {m_run.id});
        if (!parts || !tables) {
            begin("");
            addProblem(parts ? tables.error().text : parts.error().text);
            end();
            return {};
        }
        begin("");
        checkParts(*parts, 0);
        end();
        for (const NamedId& table : *tables) {
            begin(table.name);
            checkParts(*parts, table.id);
            checkBlocks(table.id);
            end();
        }
        return {};
    }

  private:
    void begin(const std::string& table) {
        m_table = table;
        m_isUnknown = false;
        m_problems = 0;
    }

    void addProblem(std::string text) {
        ++m_problems;
        m_report({m_run.id, m_run.name, m_table, Soundness::Damaged, std::move(text)});
    }

    void end() {
        if (m_problems == 0)
            m_report({m_run.id, m_run.name, m_table, m_isUnknown ? Soundness::Unknown : Soundness::Sound, ""});
    }

    void checkParts(const std::vector<RunPartKey>& parts, int table) {
        m_isUnknown = parts.empty();
        for (const RunPartKey& key : parts) {
            if (key.table != table)
                continue;
            auto state = isPartSound(m_connection, m_run.id, key);
            if (!state)
                addProblem(state.error().text);
            else if (!*state)
                addProblem(fmt::format("{}: not what was stored", runPartName(key.part)));
        }
    }

    void checkBlocks(int table) {
        auto fields = readNames(m_connection,
                                "SELECT rf.field, f.name FROM run_field rf JOIN field f ON f.id = rf.field WHERE "
                                "rf.run = ?1 AND rf.table_id = ?2 ORDER BY rf.position",
                                {m_run.id, table});
        if (!fields)
            return addProblem(fields.error().text);
        for (const NamedId& field : *fields) {
            checkDistribution(field, DistributionKind::Values,
                              "SELECT value_rows FROM run_field WHERE run = ?1 AND field = ?2");
            checkDistribution(field, DistributionKind::Patterns,
                              "SELECT pattern_rows FROM run_field WHERE run = ?1 AND field = ?2");
            checkHashes(field);
            if (auto histogram = readHistogram(m_connection, m_run.id, field.id); !histogram)
                addProblem(fmt::format("field \"{}\": {}", field.name, histogram.error().text));
        }
    }

    void checkDistribution(const NamedId& field, DistributionKind kind, std::string_view rowsQuery) {
        auto rows = readNumber(m_connection, rowsQuery, {m_run.id, field.id});
        if (!rows)
            return addProblem(rows.error().text);
        DistributionReader reader(m_connection, {m_run.id, field.id, kind}, *rows);
        for (;;) {
            auto more = reader.next();
            if (!more)
                return addProblem(fmt::format("field \"{}\": {}", field.name, more.error().text));
            if (!*more)
                return;
        }
    }

    void checkHashes(const NamedId& field) {
        auto select =
            m_connection.prepare("SELECT hashes FROM value_hash WHERE run = ?1 AND field = ?2 ORDER BY chunk");
        if (!select)
            return addProblem(select.error().text);
        select->bind(1, m_run.id).bind(2, field.id);
        sql::Step step = select->step();
        for (; step == sql::Step::Row; step = select->step())
            if (auto hashes = unpackHashes(select->blob(0)); !hashes)
                return addProblem(fmt::format("field \"{}\": {}", field.name, hashes.error().text));
        if (step == sql::Step::Failed)
            addProblem(fmt::format("field \"{}\": {}", field.name, m_connection.errorText()));
    }

    sql::Connection& m_connection;
    const NamedId& m_run;
    const std::function<void(const CheckFinding&)>& m_report;
    std::string m_table;
    bool m_isUnknown = false;
    int m_problems = 0;
};

} // namespace

Status checkRepository(sql::Connection& connection, const std::function<void(const CheckFinding&)>& report) {
    auto damage = connection.findDamage(kMostProblems);
    if (!damage)
        return damage.error();
    for (const std::string& problem : *damage)
        report({0, "", "", Soundness::Damaged, problem});
    if (damage->empty())
        report({0, "", "", Soundness::Sound, ""});
    auto runs = readNames(
        connection, "SELECT r.id, COALESCE(j.name, '') FROM run r LEFT JOIN job j ON j.id = r.job ORDER BY r.id", {});
    if (!runs)
        return runs.error();
    for (const NamedId& run : *runs)
        if (auto done = RunCheck(connection, run, report).check(); !done)
            return done;
    return {};
}

} // namespace tavix::repository
