#include "repository/SchemaScripts.h"

namespace tavix::repository {

// Tables of a run have no foreign key to it, so that deleting a run is one small change; its rows are then deleted in
// bounded steps. deleted_run lists the runs that still have rows.
const char* const kFirstSchema = R"sql(
CREATE TABLE folder (
    id INTEGER PRIMARY KEY,
    parent INTEGER REFERENCES folder(id),
    name TEXT NOT NULL
) STRICT;

CREATE TABLE job (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    folder INTEGER REFERENCES folder(id) ON DELETE SET NULL,
    name TEXT NOT NULL UNIQUE,
    description TEXT NOT NULL DEFAULT '',
    created INTEGER NOT NULL
) STRICT;

CREATE TABLE run (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    job INTEGER NOT NULL REFERENCES job(id),
    started INTEGER NOT NULL,
    finished INTEGER NOT NULL,
    description TEXT NOT NULL DEFAULT '',
    tables INTEGER NOT NULL DEFAULT 0,
    records INTEGER NOT NULL DEFAULT 0
) STRICT;
CREATE INDEX run_by_job ON run(job);

CREATE TABLE deleted_run (id INTEGER PRIMARY KEY) STRICT;

CREATE TABLE data_source (
    id INTEGER PRIMARY KEY,
    name TEXT NOT NULL,
    kind INTEGER NOT NULL,
    UNIQUE (name, kind)
) STRICT;

CREATE TABLE profiled_table (
    id INTEGER PRIMARY KEY,
    data_source INTEGER NOT NULL REFERENCES data_source(id),
    catalog TEXT NOT NULL,
    schema TEXT NOT NULL,
    name TEXT NOT NULL,
    object_name TEXT NOT NULL,
    kind TEXT NOT NULL CHECK (kind IN ('Y', 'S', 'D')),
    UNIQUE (data_source, name, object_name, schema, catalog, kind)
) STRICT;

CREATE TABLE field (
    id INTEGER PRIMARY KEY,
    table_id INTEGER NOT NULL REFERENCES profiled_table(id),
    name TEXT NOT NULL,
    UNIQUE (table_id, name)
) STRICT;

CREATE TABLE run_table (
    run INTEGER NOT NULL,
    position INTEGER NOT NULL,
    table_id INTEGER NOT NULL REFERENCES profiled_table(id),
    total_records INTEGER NOT NULL,
    processed_records INTEGER NOT NULL,
    damaged_records INTEGER NOT NULL,
    fields INTEGER NOT NULL DEFAULT 0,
    query TEXT NOT NULL,
    filter TEXT NOT NULL,
    alternate_filter TEXT NOT NULL,
    file_path TEXT,
    file_delimiter TEXT,
    file_header INTEGER,
    file_encoding TEXT,
    file_byte_order_mark INTEGER,
    file_size INTEGER,
    file_modified INTEGER,
    PRIMARY KEY (run, position),
    UNIQUE (run, table_id)
) STRICT, WITHOUT ROWID;

-- A row keeps together what the list of a table's fields shows, and rows of one list lie side by side.
CREATE TABLE run_field (
    run INTEGER NOT NULL,
    table_id INTEGER NOT NULL REFERENCES profiled_table(id),
    position INTEGER NOT NULL,
    field INTEGER NOT NULL REFERENCES field(id),
    type_code TEXT NOT NULL,
    count INTEGER,
    unique_count INTEGER,
    null_count INTEGER,
    non_null_count INTEGER,
    blank_count INTEGER,
    pattern_count INTEGER,
    minimum_value ANY,
    maximum_value ANY,
    minimum_length INTEGER,
    maximum_length INTEGER,
    mean REAL,
    median ANY,
    mode ANY,
    standard_deviation REAL,
    standard_error REAL,
    defined_type TEXT,
    defined_length ANY,
    ordinal INTEGER,
    primary_key ANY,
    nullable ANY,
    decimal_precision ANY,
    actual_type TEXT,
    unique_percent REAL,
    percent_null REAL,
    quantile_rule TEXT NOT NULL,
    value_rows INTEGER NOT NULL,
    value_sum INTEGER NOT NULL,
    pattern_rows INTEGER NOT NULL,
    pattern_sum INTEGER NOT NULL,
    PRIMARY KEY (run, table_id, position)
) STRICT, WITHOUT ROWID;
CREATE UNIQUE INDEX run_field_by_field ON run_field(field, run);

CREATE TABLE percentile (
    run INTEGER NOT NULL,
    field INTEGER NOT NULL,
    position INTEGER NOT NULL,
    interval TEXT NOT NULL,
    value TEXT,
    PRIMARY KEY (run, field, position)
) STRICT, WITHOUT ROWID;

CREATE TABLE outlier (
    run INTEGER NOT NULL,
    field INTEGER NOT NULL,
    side TEXT NOT NULL CHECK (side IN ('L', 'H')),
    position INTEGER NOT NULL,
    value TEXT,
    count INTEGER NOT NULL,
    fence INTEGER NOT NULL,
    PRIMARY KEY (run, field, side, position)
) STRICT, WITHOUT ROWID;

-- kind: V values, P patterns, K values without a match in the field other_field.
CREATE TABLE distribution_block (
    id INTEGER PRIMARY KEY,
    run INTEGER NOT NULL,
    field INTEGER NOT NULL,
    kind TEXT NOT NULL CHECK (kind IN ('V', 'P', 'K')),
    other_field INTEGER NOT NULL DEFAULT 0,
    block INTEGER NOT NULL,
    first_row INTEGER NOT NULL,
    rows INTEGER NOT NULL,
    sum INTEGER NOT NULL,
    bytes_present BLOB NOT NULL,
    payload BLOB NOT NULL,
    UNIQUE (run, field, kind, other_field, block)
) STRICT;

CREATE TABLE value_hash (
    id INTEGER PRIMARY KEY,
    run INTEGER NOT NULL,
    field INTEGER NOT NULL,
    chunk INTEGER NOT NULL,
    hashes BLOB NOT NULL,
    UNIQUE (run, field, chunk)
) STRICT;

CREATE TABLE execution_log (
    run INTEGER NOT NULL,
    position INTEGER NOT NULL,
    table_id INTEGER REFERENCES profiled_table(id),
    logged INTEGER NOT NULL,
    level INTEGER NOT NULL,
    text TEXT NOT NULL,
    PRIMARY KEY (run, position)
) STRICT, WITHOUT ROWID;

CREATE TABLE collection (
    id INTEGER PRIMARY KEY,
    name TEXT NOT NULL UNIQUE,
    description TEXT NOT NULL DEFAULT '',
    created INTEGER NOT NULL
) STRICT;

CREATE TABLE collection_field (
    collection INTEGER NOT NULL REFERENCES collection(id) ON DELETE CASCADE,
    position INTEGER NOT NULL,
    field INTEGER NOT NULL REFERENCES field(id),
    PRIMARY KEY (collection, position),
    UNIQUE (field, collection)
) STRICT, WITHOUT ROWID;

CREATE TABLE note_category (
    id INTEGER PRIMARY KEY,
    name TEXT NOT NULL UNIQUE
) STRICT;

-- owner_kind: T table, C collection.
CREATE TABLE table_note (
    id INTEGER PRIMARY KEY,
    owner_kind TEXT NOT NULL CHECK (owner_kind IN ('T', 'C')),
    owner INTEGER NOT NULL,
    category INTEGER REFERENCES note_category(id) ON DELETE SET NULL,
    author TEXT NOT NULL,
    written INTEGER NOT NULL,
    text TEXT NOT NULL
) STRICT;
CREATE INDEX table_note_by_owner ON table_note(owner, owner_kind);

CREATE TABLE field_note (
    id INTEGER PRIMARY KEY,
    field INTEGER NOT NULL REFERENCES field(id),
    category INTEGER REFERENCES note_category(id) ON DELETE SET NULL,
    author TEXT NOT NULL,
    written INTEGER NOT NULL,
    text TEXT NOT NULL
) STRICT;
CREATE INDEX field_note_by_field ON field_note(field);

-- A chart belongs to a table or to a category, which is a number of the caller's.
CREATE TABLE chart (
    id INTEGER PRIMARY KEY,
    table_id INTEGER REFERENCES profiled_table(id),
    category INTEGER,
    name TEXT NOT NULL,
    description TEXT NOT NULL DEFAULT '',
    CHECK ((table_id IS NULL) <> (category IS NULL))
) STRICT;
CREATE INDEX chart_by_table ON chart(table_id);
CREATE INDEX chart_by_category ON chart(category);

CREATE TABLE chart_property (
    id INTEGER PRIMARY KEY,
    chart INTEGER NOT NULL REFERENCES chart(id) ON DELETE CASCADE,
    name TEXT NOT NULL,
    position INTEGER NOT NULL,
    value TEXT NOT NULL
) STRICT;
CREATE INDEX chart_property_by_chart ON chart_property(chart);

CREATE TABLE key_analysis (
    run INTEGER NOT NULL,
    field INTEGER NOT NULL REFERENCES field(id),
    other_field INTEGER NOT NULL REFERENCES field(id),
    match_percent REAL,
    unmatched_rows INTEGER NOT NULL,
    unmatched_sum INTEGER NOT NULL,
    PRIMARY KEY (run, field, other_field)
) STRICT, WITHOUT ROWID;

CREATE TABLE redundancy (
    id INTEGER PRIMARY KEY,
    name TEXT NOT NULL UNIQUE,
    description TEXT NOT NULL DEFAULT ''
) STRICT;

CREATE TABLE redundancy_field (
    redundancy INTEGER NOT NULL REFERENCES redundancy(id) ON DELETE CASCADE,
    position INTEGER NOT NULL,
    field INTEGER NOT NULL REFERENCES field(id),
    PRIMARY KEY (redundancy, position),
    UNIQUE (field, redundancy)
) STRICT, WITHOUT ROWID;

-- type_code: SM standard metric, CM custom metric, BR business rule.
CREATE TABLE alert (
    id INTEGER PRIMARY KEY,
    table_id INTEGER NOT NULL REFERENCES profiled_table(id),
    field INTEGER REFERENCES field(id),
    description TEXT NOT NULL DEFAULT '',
    metric INTEGER,
    type_code TEXT NOT NULL CHECK (type_code IN ('SM', 'CM', 'BR')),
    watched_key TEXT NOT NULL DEFAULT ''
) STRICT;

CREATE TABLE alert_property (
    alert INTEGER NOT NULL REFERENCES alert(id) ON DELETE CASCADE,
    position INTEGER NOT NULL,
    name TEXT NOT NULL,
    value TEXT NOT NULL,
    PRIMARY KEY (alert, position)
) STRICT, WITHOUT ROWID;

CREATE TABLE task (
    id INTEGER PRIMARY KEY,
    job INTEGER NOT NULL REFERENCES job(id),
    kind INTEGER NOT NULL,
    field INTEGER REFERENCES field(id),
    definition TEXT NOT NULL
) STRICT;
CREATE INDEX task_by_job ON task(job);

CREATE VIEW v_runs AS
SELECT r.id AS run, j.name AS job, r.description,
       strftime('%Y-%m-%dT%H:%M:%fZ', r.started / 1000.0, 'unixepoch') AS started,
       strftime('%Y-%m-%dT%H:%M:%fZ', r.finished / 1000.0, 'unixepoch') AS finished,
       r.tables, r.records
FROM run r JOIN job j ON j.id = r.job;

CREATE VIEW v_tables AS
SELECT rt.run, j.name AS job, t.id AS table_id, d.name AS data_source, t.catalog, t.schema, t.name AS table_name,
       t.object_name, t.kind, rt.total_records, rt.processed_records, rt.damaged_records, rt.fields,
       rt.query, rt.filter, rt.file_path
FROM run r JOIN job j ON j.id = r.job JOIN run_table rt ON rt.run = r.id
JOIN profiled_table t ON t.id = rt.table_id JOIN data_source d ON d.id = t.data_source;

CREATE VIEW v_fields AS
SELECT rf.run, j.name AS job, rf.table_id, d.name AS data_source, t.catalog, t.schema,
       CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END AS table_name,
       rf.field AS field_id, f.name AS field_name, rf.type_code,
       rf.count, rf.unique_count, rf.null_count, rf.non_null_count, rf.blank_count, rf.pattern_count,
       rf.minimum_value, rf.maximum_value, rf.minimum_length, rf.maximum_length, rf.mean, rf.median, rf.mode,
       rf.standard_deviation, rf.standard_error, rf.defined_type, rf.defined_length, rf.ordinal, rf.primary_key,
       rf.nullable, rf.decimal_precision, rf.actual_type, rf.unique_percent, rf.percent_null,
       rf.quantile_rule, rf.value_rows, rf.value_sum, rf.pattern_rows, rf.pattern_sum
FROM run r JOIN job j ON j.id = r.job JOIN run_field rf ON rf.run = r.id JOIN field f ON f.id = rf.field
JOIN profiled_table t ON t.id = rf.table_id JOIN data_source d ON d.id = t.data_source;

CREATE VIEW v_percentiles AS
SELECT p.run, p.field AS field_id, f.table_id, f.name AS field_name, p.position, p.interval, p.value
FROM percentile p JOIN run r ON r.id = p.run JOIN field f ON f.id = p.field;

CREATE VIEW v_outliers AS
SELECT o.run, o.field AS field_id, f.table_id, f.name AS field_name, o.side, o.position, o.value, o.count, o.fence
FROM outlier o JOIN run r ON r.id = o.run JOIN field f ON f.id = o.field;

CREATE VIEW v_log AS
SELECT l.run, strftime('%Y-%m-%dT%H:%M:%fZ', l.logged / 1000.0, 'unixepoch') AS logged, l.level,
       l.table_id, l.text
FROM execution_log l JOIN run r ON r.id = l.run;

CREATE VIEW v_collections AS
SELECT c.id AS collection_id, c.name AS collection, c.description, m.field AS field_id, f.table_id,
       f.name AS field_name
FROM collection c JOIN collection_field m ON m.collection = c.id JOIN field f ON f.id = m.field;
)sql";

} // namespace tavix::repository
