#include "access/PrViewerImpl.h"

#include "base/KvbDatavar.h"
#include "repository/RunChecksums.h"
#include "repository/Schema.h"

#include <fmt/format.h>

#include <utility>

namespace tavix {

Query::Query(std::string_view operation, std::string_view rest) : layout(layout::of(operation)), sql("SELECT ") {
    for (const layout::Column& column : layout.columns) {
        if (column.index != 0)
            sql += ", ";
        sql += column.sql;
    }
    sql += ' ';
    sql += rest;
}

bool PrViewer::Impl::fail(const Error& failure) {
    error = failure.text;
    return false;
}

ProfileCursorHandle PrViewer::Impl::failCursor(const Error& failure) {
    fail(failure);
    return nullptr;
}

ProfileCursorHandle PrViewer::Impl::unavailable(std::string_view what) {
    return failCursor({fmt::format("{} not available in this version.", what)});
}

void PrViewer::Impl::endChanges() {
    changes.reset();
    session = std::move(sessionBefore);
    sessionBefore.reset();
}

void PrViewer::Impl::endSession() {
    if (sessionBefore)
        endChanges();
    if (session)
        *session->closed = true;
    session.reset();
    job = -1;
    run = -1;
    runWarning = {};
}

void PrViewer::Impl::refreshSession() {
    if (session.use_count() == 1)
        return;
    auto opened = repository::openRepository(path, sql::OpenMode::Read);
    if (!opened)
        return;
    auto fresh = std::make_shared<ViewerSession>();
    fresh->connection = std::move(*opened);
    fresh->closed = session->closed;
    fresh->sink = displayMessage;
    session = std::move(fresh);
}

void PrViewer::Impl::checkRun() {
    // If it cannot be checked, whatever reads the run reports why.
    const auto damage = repository::describeDamage(connection(), run);
    runWarning = damage && !damage->empty() ? KvbString(*damage) : KvbString();
}

Status PrViewer::Impl::requireSession() const {
    if (!session)
        return Error{"No repository is open."};
    return {};
}

Status PrViewer::Impl::requireJob() const {
    if (auto ready = requireSession(); !ready)
        return ready;
    if (job == -1)
        return Error{"No report is open."};
    return {};
}

Status PrViewer::Impl::requireRun() const {
    if (auto ready = requireJob(); !ready)
        return ready;
    auto found = integer("SELECT 1 FROM run WHERE id = ?1", {run}, kRunWasDeleted);
    return found ? Status{} : Status{found.error()};
}

Status PrViewer::Impl::requireRunOfJob(int wanted) const {
    if (auto ready = requireJob(); !ready)
        return ready;
    auto found = integer("SELECT 1 FROM run WHERE job = ?1 AND id = ?2", {job, wanted},
                         fmt::format("The report has no run with the number {}.", wanted));
    return found ? Status{} : Status{found.error()};
}

Status PrViewer::Impl::requireTable(int table) const {
    if (auto ready = requireRun(); !ready)
        return ready;
    auto found = integer("SELECT 1 FROM run_table WHERE run = ?1 AND table_id = ?2", {run, table}, "");
    if (found)
        return {};
    return found.error().text.empty() ? Error{fmt::format("There is no table with the number {} in this run.", table)}
                                      : found.error();
}

Status PrViewer::Impl::requireExisting(std::string_view sql, int id, std::string_view what) const {
    if (auto ready = requireSession(); !ready)
        return ready;
    auto found = integer(sql, {id}, "");
    if (found)
        return {};
    return found.error().text.empty() ? noSuch(what, id) : found.error();
}

ProfileCursorHandle PrViewer::Impl::open(const Status& ready, const Query& query,
                                         std::initializer_list<std::int64_t> parameters) {
    if (!ready)
        return failCursor(ready.error());
    auto statement = bound(query.sql, parameters);
    if (!statement)
        return failCursor(statement.error());
    return open(query, std::move(*statement));
}

ProfileCursorHandle PrViewer::Impl::open(const Query& query, sql::Statement statement) {
    auto cursor = StatementCursor::open(session, std::move(statement), query.layout);
    if (!cursor)
        return failCursor(cursor.error());
    return ProfileCursorHandle(cursor->release());
}

Result<sql::Statement> PrViewer::Impl::bound(std::string_view sql,
                                             std::initializer_list<std::int64_t> parameters) const {
    auto statement = connection().prepare(sql);
    if (!statement)
        return statement;
    int number = 0;
    for (std::int64_t parameter : parameters)
        statement->bind(++number, parameter);
    return statement;
}

Result<sql::Statement> PrViewer::Impl::boundRow(std::string_view sql, std::initializer_list<std::int64_t> parameters,
                                                const Error& missing) const {
    auto statement = bound(sql, parameters);
    if (statement)
        if (Status found = statement->stepToRow(missing); !found)
            return found.error();
    return statement;
}

Result<std::int64_t> PrViewer::Impl::integer(std::string_view sql, std::initializer_list<std::int64_t> parameters,
                                             std::string_view missing) const {
    auto statement = boundRow(sql, parameters, {std::string(missing)});
    if (!statement)
        return statement.error();
    return statement->integer(0);
}

bool PrViewer::Impl::change(const std::function<Status(sql::Connection&)>& work) {
    if (auto ready = requireSession(); !ready)
        return fail(ready.error());
    if (changes) {
        Status done = work(connection());
        haveChangesFailed = haveChangesFailed || !done;
        return conclude(done);
    }
    auto writer = repository::openRepository(path, sql::OpenMode::Write);
    if (!writer)
        return fail(writer.error());
    auto transaction = sql::Transaction::begin(**writer);
    if (!transaction)
        return fail(transaction.error());
    if (auto done = work(**writer); !done)
        return fail(done.error());
    if (auto committed = transaction->commit(); !committed)
        return fail(committed.error());
    refreshSession();
    return true;
}

bool PrViewer::Impl::change(int& id, const std::function<Result<int>(sql::Connection&)>& work) {
    int made = id;
    const bool done = change([&](sql::Connection& connection) -> Status {
        auto result = work(connection);
        if (!result)
            return result.error();
        made = *result;
        return {};
    });
    if (done)
        id = made;
    return done;
}

Error noSuch(std::string_view what, std::int64_t id) {
    return Error{fmt::format("There is no {} with the number {}.", what, id)};
}

int clampToInt(std::int64_t value) {
    return KvbDatavar(value).toInt();
}

} // namespace tavix
