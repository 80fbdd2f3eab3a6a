#include "repository/SchemaVersion2.h"

namespace tavix::repository {

namespace {

// As below every run, the tables by run carry no foreign key to it.
constexpr const char* kScript = R"sql(
CREATE TABLE custom_metric (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    table_id INTEGER NOT NULL REFERENCES profiled_table(id),
    name TEXT NOT NULL,
    UNIQUE (table_id, name)
) STRICT;

-- kind: computed from the table's rows or from its other metrics. figure: how, count sum average min max metric.
CREATE TABLE run_custom_metric (
    run INTEGER NOT NULL,
    table_id INTEGER NOT NULL REFERENCES profiled_table(id),
    position INTEGER NOT NULL,
    metric INTEGER NOT NULL REFERENCES custom_metric(id),
    output_name TEXT NOT NULL,
    kind TEXT NOT NULL CHECK (kind IN ('rows', 'metrics')),
    figure TEXT NOT NULL,
    expression TEXT NOT NULL,
    value ANY,
    used_rows INTEGER,
    error_rows INTEGER NOT NULL DEFAULT 0,
    PRIMARY KEY (run, table_id, position)
) STRICT, WITHOUT ROWID;
CREATE INDEX run_custom_metric_by_metric ON run_custom_metric(metric, run);

-- standard_metric: the number of the field's metric that is read; null when its rows are.
CREATE TABLE custom_metric_input (
    run INTEGER NOT NULL,
    metric INTEGER NOT NULL REFERENCES custom_metric(id),
    position INTEGER NOT NULL,
    field INTEGER NOT NULL REFERENCES field(id),
    standard_metric INTEGER,
    PRIMARY KEY (run, metric, position)
) STRICT, WITHOUT ROWID;

CREATE TABLE business_rule (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    table_id INTEGER NOT NULL REFERENCES profiled_table(id),
    name TEXT NOT NULL,
    UNIQUE (table_id, name)
) STRICT;

-- log_columns: a JSON list of names, the first key_columns of them the table's key.
CREATE TABLE run_rule (
    run INTEGER NOT NULL,
    table_id INTEGER NOT NULL REFERENCES profiled_table(id),
    position INTEGER NOT NULL,
    rule INTEGER NOT NULL REFERENCES business_rule(id),
    condition TEXT NOT NULL,
    checked_rows INTEGER NOT NULL,
    failed_rows INTEGER NOT NULL,
    error_rows INTEGER NOT NULL,
    logged_rows INTEGER NOT NULL,
    log_columns TEXT NOT NULL,
    key_columns INTEGER NOT NULL,
    PRIMARY KEY (run, table_id, position)
) STRICT, WITHOUT ROWID;
CREATE INDEX run_rule_by_rule ON run_rule(rule, run);

CREATE TABLE rule_input (
    run INTEGER NOT NULL,
    rule INTEGER NOT NULL REFERENCES business_rule(id),
    position INTEGER NOT NULL,
    field INTEGER NOT NULL REFERENCES field(id),
    PRIMARY KEY (run, rule, position)
) STRICT, WITHOUT ROWID;

-- record: the row's number in its source, from 1. row_values: a JSON list of texts and nulls beside log_columns.
CREATE TABLE rule_row (
    run INTEGER NOT NULL,
    rule INTEGER NOT NULL REFERENCES business_rule(id),
    position INTEGER NOT NULL,
    record INTEGER NOT NULL,
    row_values TEXT NOT NULL,
    PRIMARY KEY (run, rule, position)
) STRICT, WITHOUT ROWID;

CREATE VIEW v_custom_metrics AS
SELECT v.run, j.name AS job, v.table_id, CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END AS table_name,
       'M' || m.id AS metric_key, m.name AS metric, v.output_name, v.kind, v.figure, v.expression, v.value,
       v.used_rows, v.error_rows
FROM run r JOIN job j ON j.id = r.job JOIN run_custom_metric v ON v.run = r.id
JOIN custom_metric m ON m.id = v.metric JOIN profiled_table t ON t.id = v.table_id;

CREATE VIEW v_business_rules AS
SELECT v.run, j.name AS job, v.table_id, CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END AS table_name,
       'B' || b.id AS rule_key, b.name AS rule, v.condition, v.checked_rows, v.failed_rows,
       CASE WHEN v.checked_rows > 0 THEN 100.0 * v.failed_rows / v.checked_rows END AS failed_percent,
       v.error_rows, v.logged_rows
FROM run r JOIN job j ON j.id = r.job JOIN run_rule v ON v.run = r.id
JOIN business_rule b ON b.id = v.rule JOIN profiled_table t ON t.id = v.table_id;

CREATE VIEW v_rule_rows AS
SELECT l.run, 'B' || b.id AS rule_key, b.name AS rule, l.position, l.record, v.log_columns AS columns,
       l.row_values AS "values"
FROM run r JOIN rule_row l ON l.run = r.id JOIN run_rule v ON v.run = l.run AND v.rule = l.rule
JOIN business_rule b ON b.id = l.rule;
)sql";

} // namespace

const char* const kSchemaVersion2 = kScript;

} // namespace tavix::repository
