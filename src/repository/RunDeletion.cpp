#include "repository/RunDeletion.h"

#include "repository/AlertMutes.h"

#include <array>
#include <limits>

namespace tavix::repository {

namespace {

/// Limits one step: the wait of other writers and the size of the log file.
constexpr int kRowsPerStep = 2000;
constexpr int kBlocksPerStep = 256;
constexpr int kPagesPerStep = 2048;

struct SweptTable {
    const char* sql; ///< deletes at most ?2 rows of run ?1
    int rowsPerStep;
};

// Tables without a row id have the run first in their primary key.
constexpr std::array kSweptTables{
    SweptTable{"DELETE FROM distribution_block WHERE id IN (SELECT id FROM distribution_block WHERE run = ?1 LIMIT ?2)",
               kBlocksPerStep},
    SweptTable{"DELETE FROM value_hash WHERE id IN (SELECT id FROM value_hash WHERE run = ?1 LIMIT ?2)",
               kBlocksPerStep / 16},
    SweptTable{"DELETE FROM value_place WHERE id IN (SELECT id FROM value_place WHERE run = ?1 LIMIT ?2)",
               kBlocksPerStep},
    SweptTable{"DELETE FROM file_place WHERE id IN (SELECT id FROM file_place WHERE run = ?1 LIMIT ?2)",
               kBlocksPerStep},
    SweptTable{"DELETE FROM percentile WHERE run = ?1 AND (field, position) IN "
               "(SELECT field, position FROM percentile WHERE run = ?1 LIMIT ?2)",
               kRowsPerStep},
    SweptTable{"DELETE FROM outlier WHERE run = ?1 AND (field, side, position) IN "
               "(SELECT field, side, position FROM outlier WHERE run = ?1 LIMIT ?2)",
               kRowsPerStep},
    SweptTable{"DELETE FROM histogram WHERE run = ?1 AND (field, kind) IN "
               "(SELECT field, kind FROM histogram WHERE run = ?1 LIMIT ?2)",
               kRowsPerStep},
    SweptTable{"DELETE FROM type_breakdown WHERE run = ?1 AND field IN "
               "(SELECT field FROM type_breakdown WHERE run = ?1 LIMIT ?2)",
               kRowsPerStep},
    SweptTable{"DELETE FROM type_form WHERE run = ?1 AND (field, position) IN "
               "(SELECT field, position FROM type_form WHERE run = ?1 LIMIT ?2)",
               kRowsPerStep},
    SweptTable{"DELETE FROM finding WHERE run = ?1 AND (table_id, field, code) IN "
               "(SELECT table_id, field, code FROM finding WHERE run = ?1 LIMIT ?2)",
               kRowsPerStep},
    SweptTable{"DELETE FROM run_examination WHERE run = ?1 AND ?2 > 0", 1},
    SweptTable{"DELETE FROM key_analysis WHERE run = ?1 AND (field, other_field) IN "
               "(SELECT field, other_field FROM key_analysis WHERE run = ?1 LIMIT ?2)",
               kRowsPerStep},
    SweptTable{"DELETE FROM execution_log WHERE run = ?1 AND position IN "
               "(SELECT position FROM execution_log WHERE run = ?1 LIMIT ?2)",
               kRowsPerStep},
    SweptTable{"DELETE FROM rule_row WHERE run = ?1 AND (rule, position) IN "
               "(SELECT rule, position FROM rule_row WHERE run = ?1 LIMIT ?2)",
               kRowsPerStep},
    SweptTable{"DELETE FROM rule_input WHERE run = ?1 AND (rule, position) IN "
               "(SELECT rule, position FROM rule_input WHERE run = ?1 LIMIT ?2)",
               kRowsPerStep},
    SweptTable{"DELETE FROM run_rule WHERE run = ?1 AND (table_id, position) IN "
               "(SELECT table_id, position FROM run_rule WHERE run = ?1 LIMIT ?2)",
               kRowsPerStep},
    SweptTable{"DELETE FROM custom_metric_input WHERE run = ?1 AND (metric, position) IN "
               "(SELECT metric, position FROM custom_metric_input WHERE run = ?1 LIMIT ?2)",
               kRowsPerStep},
    SweptTable{"DELETE FROM run_custom_metric WHERE run = ?1 AND (table_id, position) IN "
               "(SELECT table_id, position FROM run_custom_metric WHERE run = ?1 LIMIT ?2)",
               kRowsPerStep},
    SweptTable{"DELETE FROM run_checksum WHERE run = ?1 AND (table_id, part) IN "
               "(SELECT table_id, part FROM run_checksum WHERE run = ?1 LIMIT ?2)",
               kRowsPerStep},
    SweptTable{"DELETE FROM run_file WHERE run = ?1 AND (table_id, position) IN "
               "(SELECT table_id, position FROM run_file WHERE run = ?1 LIMIT ?2)",
               kRowsPerStep},
    SweptTable{"DELETE FROM run_field WHERE run = ?1 AND (table_id, position) IN "
               "(SELECT table_id, position FROM run_field WHERE run = ?1 LIMIT ?2)",
               kRowsPerStep},
    SweptTable{"DELETE FROM run_table WHERE run = ?1 AND position IN "
               "(SELECT position FROM run_table WHERE run = ?1 LIMIT ?2)",
               kRowsPerStep},
};

/// Runs one step; true if nothing was left to delete.
Result<bool> sweepOnce(sql::Connection& connection, const SweptTable& table, std::int64_t run) {
    auto statement = connection.prepare(table.sql);
    if (!statement)
        return statement.error();
    if (auto done = statement->bind(1, run).bind(2, table.rowsPerStep).run(); !done)
        return done.error();
    return connection.changes() < table.rowsPerStep;
}

Status sweepRun(sql::Connection& connection, std::int64_t run) {
    for (const SweptTable& table : kSweptTables) {
        for (bool empty = false; !empty;) {
            auto swept = sweepOnce(connection, table, run);
            if (!swept)
                return swept.error();
            empty = *swept;
            if (auto freed = connection.freeSpace(kPagesPerStep); !freed)
                return freed.error();
        }
    }
    auto forget = connection.prepare("DELETE FROM deleted_run WHERE id = ?1");
    if (!forget)
        return forget.error();
    return forget->bind(1, run).run();
}

Status hideRuns(sql::Connection& connection, int job, std::int64_t first, std::int64_t last) {
    auto transaction = sql::Transaction::begin(connection);
    if (!transaction)
        return transaction.error();
    auto count = connection.prepare("SELECT COUNT(*), COUNT(*) FILTER (WHERE id BETWEEN ?2 AND ?3) FROM run "
                                    "WHERE job = ?1");
    if (!count)
        return count.error();
    if (count->bind(1, job).bind(2, first).bind(3, last).step() != sql::Step::Row)
        return Error{connection.errorText()};
    std::int64_t all = count->integer(0);
    std::int64_t chosen = count->integer(1);
    count->reset();
    if (chosen == 0)
        return Error{"There is no run to delete in this range."};
    if (chosen == all)
        return Error{"At least one run of a report must stay."};
    if (Status kept = keepMutesOfOtherRuns(connection, job, first, last); !kept)
        return kept;
    for (const char* sql : {"INSERT INTO deleted_run(id) SELECT id FROM run WHERE job = ?1 AND id BETWEEN ?2 AND ?3",
                            "DELETE FROM run WHERE job = ?1 AND id BETWEEN ?2 AND ?3"}) {
        auto statement = connection.prepare(sql);
        if (!statement)
            return statement.error();
        if (auto done = statement->bind(1, job).bind(2, first).bind(3, last).run(); !done)
            return done;
    }
    return transaction->commit();
}

} // namespace

Status deleteRuns(sql::Connection& connection, int job, int first, int last) {
    std::int64_t low = first == -1 ? std::numeric_limits<std::int64_t>::min() : first;
    std::int64_t high = last == -1 ? std::numeric_limits<std::int64_t>::max() : last;
    if (auto hidden = hideRuns(connection, job, low, high); !hidden)
        return hidden;
    // The runs are deleted already; the next writer deletes rows that remain, for instance after a full disk.
    (void)sweepDeletedRuns(connection);
    connection.checkpoint();
    return {};
}

Status sweepDeletedRuns(sql::Connection& connection) {
    for (;;) {
        auto next = connection.queryInteger("SELECT COALESCE(MIN(id), 0) FROM deleted_run");
        if (!next)
            return next.error();
        if (*next == 0)
            break;
        if (auto swept = sweepRun(connection, *next); !swept)
            return swept;
    }
    for (bool more = true; more;) {
        auto freed = connection.freeSpace(kPagesPerStep);
        if (!freed)
            return freed.error();
        more = *freed;
    }
    return {};
}

} // namespace tavix::repository
