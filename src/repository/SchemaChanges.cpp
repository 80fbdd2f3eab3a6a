#include "repository/SchemaScripts.h"

#include <array>

namespace tavix::repository {

namespace {

// Like every table of a run, those below have no foreign key to it; see FirstSchema.cpp.

// Custom metrics and business rules.
constexpr const char* kToVersion2 = R"sql(
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

// How a table of a database was reached, without user or password; null for other tables.
constexpr const char* kToVersion3 = R"sql(
ALTER TABLE run_table ADD COLUMN connection TEXT;
)sql";

// The files of a table, so that its rows can be read again. quote: the character, empty when quotes had no meaning.
constexpr const char* kToVersion4 = R"sql(
CREATE TABLE run_file (
    run INTEGER NOT NULL,
    table_id INTEGER NOT NULL REFERENCES profiled_table(id),
    position INTEGER NOT NULL,
    path TEXT NOT NULL,
    quote TEXT NOT NULL,
    PRIMARY KEY (run, table_id, position)
) STRICT, WITHOUT ROWID;
)sql";

// The offset index of a file, optional: without it, searches read the whole file. The file's times are nanoseconds.
constexpr const char* kToVersion5 = R"sql(
CREATE TABLE file_place (
    id INTEGER PRIMARY KEY,
    run INTEGER NOT NULL,
    table_id INTEGER NOT NULL REFERENCES profiled_table(id),
    file_size INTEGER NOT NULL,
    file_modified INTEGER NOT NULL,
    file_changed INTEGER NOT NULL,
    seed_1 INTEGER NOT NULL,
    seed_2 INTEGER NOT NULL,
    probe INTEGER NOT NULL,
    offsets BLOB NOT NULL,
    UNIQUE (run, table_id)
) STRICT;

CREATE TABLE value_place (
    id INTEGER PRIMARY KEY,
    run INTEGER NOT NULL,
    field INTEGER NOT NULL,
    first_bucket INTEGER NOT NULL,
    ranges BLOB NOT NULL,
    UNIQUE (run, field, first_bucket)
) STRICT;
)sql";

// How each file of a table was read, where moved files are now, and the user of a database. The new columns are null in
// the rows of older runs. delimiter: the character, empty when lines were not split. moved_file: the file that a run
// read, by its path, size and time, and where it is now; size and time are -1 where the run does not record them.
// run_file is rebuilt because each added column makes SQLite check all views, a third of the time that creating a
// repository takes.
constexpr const char* kToVersion6 = R"sql(
CREATE TABLE run_file_before AS SELECT run, table_id, position, path, quote FROM run_file;
DROP TABLE run_file;
CREATE TABLE run_file (
    run INTEGER NOT NULL,
    table_id INTEGER NOT NULL REFERENCES profiled_table(id),
    position INTEGER NOT NULL,
    path TEXT NOT NULL,
    quote TEXT NOT NULL,
    delimiter TEXT,
    encoding TEXT,
    byte_order_mark INTEGER,
    size INTEGER,
    modified INTEGER,
    PRIMARY KEY (run, table_id, position)
) STRICT, WITHOUT ROWID;
INSERT INTO run_file(run, table_id, position, path, quote) SELECT run, table_id, position, path, quote FROM run_file_before;
DROP TABLE run_file_before;

ALTER TABLE run_table ADD COLUMN connection_user TEXT;

CREATE TABLE moved_file (
    path TEXT NOT NULL,
    size INTEGER NOT NULL,
    modified INTEGER NOT NULL,
    new_path TEXT NOT NULL,
    found INTEGER NOT NULL,
    PRIMARY KEY (path, size, modified)
) STRICT, WITHOUT ROWID;
)sql";

// Checksums of runs, and views of everything in a repository. part: see RunChecksums.cpp; table_id is 0 for the parts
// of the run itself. In all views table_name is the name that users see: that of the query or filter, else the table's
// own.
constexpr const char* kToVersion7 = R"sql(
CREATE TABLE run_checksum (
    run INTEGER NOT NULL,
    table_id INTEGER NOT NULL,
    part TEXT NOT NULL,
    form INTEGER NOT NULL,
    checksum INTEGER NOT NULL,
    PRIMARY KEY (run, table_id, part)
) STRICT, WITHOUT ROWID;

DROP VIEW v_runs;
DROP VIEW v_tables;
DROP VIEW v_percentiles;
DROP VIEW v_outliers;
DROP VIEW v_log;
DROP VIEW v_collections;
DROP VIEW v_rule_rows;

CREATE VIEW v_folders AS
WITH RECURSIVE down(id, parent, name, path, depth) AS (
    SELECT id, parent, name, name, 0 FROM folder WHERE parent IS NULL
    UNION ALL
    SELECT f.id, f.parent, f.name, d.path || '/' || f.name, d.depth + 1
    FROM down d JOIN folder f ON f.parent = d.id WHERE d.depth < 100
)
SELECT id AS folder_id, parent AS parent_id, name AS folder, path FROM down;

CREATE VIEW v_jobs AS
SELECT j.id AS job_id, j.name AS job, j.description,
       strftime('%Y-%m-%dT%H:%M:%fZ', j.created / 1000.0, 'unixepoch') AS created, f.path AS folder_path,
       (SELECT COUNT(*) FROM run r WHERE r.job = j.id) AS runs
FROM job j LEFT JOIN v_folders f ON f.folder_id = j.folder;

CREATE VIEW v_runs AS
SELECT r.id AS run, j.name AS job, r.description,
       strftime('%Y-%m-%dT%H:%M:%fZ', r.started / 1000.0, 'unixepoch') AS started,
       strftime('%Y-%m-%dT%H:%M:%fZ', r.finished / 1000.0, 'unixepoch') AS finished,
       r.tables, r.records, j.id AS job_id
FROM run r JOIN job j ON j.id = r.job;

CREATE VIEW v_tables AS
SELECT rt.run, j.name AS job, t.id AS table_id, d.name AS data_source, t.catalog, t.schema,
       CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END AS table_name,
       t.object_name, t.kind, rt.total_records, rt.processed_records, rt.damaged_records, rt.fields,
       rt.query, rt.filter, rt.file_path, t.name AS source_table
FROM run r JOIN job j ON j.id = r.job JOIN run_table rt ON rt.run = r.id
JOIN profiled_table t ON t.id = rt.table_id JOIN data_source d ON d.id = t.data_source;

CREATE VIEW v_files AS
SELECT rt.run, j.name AS job, rt.table_id,
       CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END AS table_name,
       COALESCE(f.position, 1) AS position, COALESCE(f.path, rt.file_path) AS path,
       COALESCE(f.delimiter, rt.file_delimiter) AS delimiter, f.quote AS quote_character,
       COALESCE(f.encoding, rt.file_encoding) AS encoding,
       COALESCE(f.byte_order_mark, rt.file_byte_order_mark) AS byte_order_mark, rt.file_header AS has_header,
       COALESCE(f.size, rt.file_size) AS file_size,
       strftime('%Y-%m-%dT%H:%M:%fZ', COALESCE(f.modified, rt.file_modified) / 1000.0, 'unixepoch') AS modified
FROM run r JOIN job j ON j.id = r.job JOIN run_table rt ON rt.run = r.id
JOIN profiled_table t ON t.id = rt.table_id
LEFT JOIN run_file f ON f.run = rt.run AND f.table_id = rt.table_id
WHERE rt.file_path IS NOT NULL;

CREATE VIEW v_percentiles AS
SELECT p.run, p.field AS field_id, f.table_id, f.name AS field_name, p.position, p.interval, p.value,
       j.name AS job, CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END AS table_name
FROM percentile p JOIN run r ON r.id = p.run JOIN job j ON j.id = r.job JOIN field f ON f.id = p.field
JOIN profiled_table t ON t.id = f.table_id;

CREATE VIEW v_outliers AS
SELECT o.run, o.field AS field_id, f.table_id, f.name AS field_name, o.side, o.position, o.value, o.count, o.fence,
       j.name AS job, CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END AS table_name
FROM outlier o JOIN run r ON r.id = o.run JOIN job j ON j.id = r.job JOIN field f ON f.id = o.field
JOIN profiled_table t ON t.id = f.table_id;

CREATE VIEW v_log AS
SELECT l.run, strftime('%Y-%m-%dT%H:%M:%fZ', l.logged / 1000.0, 'unixepoch') AS logged, l.level,
       l.table_id, l.text, j.name AS job,
       CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END AS table_name
FROM execution_log l JOIN run r ON r.id = l.run JOIN job j ON j.id = r.job
LEFT JOIN profiled_table t ON t.id = l.table_id;

CREATE VIEW v_rule_rows AS
SELECT l.run, 'B' || b.id AS rule_key, b.name AS rule, l.position, l.record, v.log_columns AS column_names,
       l.row_values, j.name AS job, v.table_id,
       CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END AS table_name
FROM run r JOIN job j ON j.id = r.job JOIN rule_row l ON l.run = r.id
JOIN run_rule v ON v.run = l.run AND v.rule = l.rule JOIN business_rule b ON b.id = l.rule
JOIN profiled_table t ON t.id = v.table_id;

CREATE VIEW v_collections AS
SELECT c.id AS collection_id, c.name AS collection, c.description, m.field AS field_id, f.table_id,
       f.name AS field_name,
       (SELECT j.name FROM run_field rf JOIN run r ON r.id = rf.run JOIN job j ON j.id = r.job
        WHERE rf.field = m.field ORDER BY rf.run DESC LIMIT 1) AS job,
       CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END AS table_name, m.position
FROM collection c JOIN collection_field m ON m.collection = c.id JOIN field f ON f.id = m.field
JOIN profiled_table t ON t.id = f.table_id;

CREATE VIEW v_notes AS
SELECT 'table' AS about, n.id AS note_id, d.name AS data_source, t.id AS table_id,
       CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END AS table_name, NULL AS field_id,
       NULL AS field_name, NULL AS collection, g.name AS category, n.author,
       strftime('%Y-%m-%dT%H:%M:%fZ', n.written / 1000.0, 'unixepoch') AS written, n.text
FROM table_note n JOIN profiled_table t ON t.id = n.owner JOIN data_source d ON d.id = t.data_source
LEFT JOIN note_category g ON g.id = n.category WHERE n.owner_kind = 'T'
UNION ALL
SELECT 'collection', n.id, NULL, NULL, NULL, NULL, NULL, c.name, g.name, n.author,
       strftime('%Y-%m-%dT%H:%M:%fZ', n.written / 1000.0, 'unixepoch'), n.text
FROM table_note n JOIN collection c ON c.id = n.owner
LEFT JOIN note_category g ON g.id = n.category WHERE n.owner_kind = 'C'
UNION ALL
SELECT 'field', n.id, d.name, t.id, CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END, f.id, f.name,
       NULL, g.name, n.author, strftime('%Y-%m-%dT%H:%M:%fZ', n.written / 1000.0, 'unixepoch'), n.text
FROM field_note n JOIN field f ON f.id = n.field JOIN profiled_table t ON t.id = f.table_id
JOIN data_source d ON d.id = t.data_source LEFT JOIN note_category g ON g.id = n.category;

CREATE VIEW v_charts AS
SELECT h.id AS chart_id, h.name AS chart, h.description, h.category AS category_number, h.table_id,
       CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END AS table_name
FROM chart h LEFT JOIN profiled_table t ON t.id = h.table_id;

CREATE VIEW v_chart_properties AS
SELECT h.id AS chart_id, h.name AS chart, p.id AS property_id, p.name AS property, p.position, p.value
FROM chart h JOIN chart_property p ON p.chart = h.id;

CREATE VIEW v_key_analyses AS
SELECT k.run, j.name AS job, t.id AS table_id,
       CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END AS table_name, f.id AS field_id,
       f.name AS field_name, ot.id AS other_table_id,
       CASE WHEN ot.object_name <> '' THEN ot.object_name ELSE ot.name END AS other_table_name,
       o.id AS other_field_id, o.name AS other_field_name, k.match_percent, k.unmatched_rows, k.unmatched_sum
FROM key_analysis k JOIN run r ON r.id = k.run JOIN job j ON j.id = r.job
JOIN field f ON f.id = k.field JOIN profiled_table t ON t.id = f.table_id
JOIN field o ON o.id = k.other_field JOIN profiled_table ot ON ot.id = o.table_id;

CREATE VIEW v_redundancies AS
SELECT x.id AS redundancy_id, x.name AS redundancy, x.description, m.position, f.id AS field_id, f.name AS field_name,
       t.id AS table_id, CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END AS table_name
FROM redundancy x LEFT JOIN redundancy_field m ON m.redundancy = x.id LEFT JOIN field f ON f.id = m.field
LEFT JOIN profiled_table t ON t.id = f.table_id;

CREATE VIEW v_alerts AS
SELECT a.id AS alert_id, j.name AS job, d.name AS data_source, t.id AS table_id,
       CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END AS table_name, f.id AS field_id,
       f.name AS field_name, a.type_code, a.watched_key, COALESCE(f.name, m.name, b.name) AS watched_name,
       a.metric AS metric_number,
       (SELECT p.value FROM alert_property p WHERE p.alert = a.id AND p.name = 'METRIC') AS metric_text,
       (SELECT CAST(p.value AS INTEGER) FROM alert_property p WHERE p.alert = a.id AND p.name = 'COMPARE')
           AS comparison,
       (SELECT CAST(p.value AS REAL) FROM alert_property p WHERE p.alert = a.id AND p.name = 'VALUE1') AS value_1,
       (SELECT CAST(p.value AS REAL) FROM alert_property p WHERE p.alert = a.id AND p.name = 'VALUE2') AS value_2,
       (SELECT p.value FROM alert_property p WHERE p.alert = a.id AND p.name = 'LEVEL') AS level,
       (SELECT CAST(p.value AS INTEGER) FROM alert_property p WHERE p.alert = a.id AND p.name = 'RUNS') AS runs_before,
       a.description
FROM alert a JOIN profiled_table t ON t.id = a.table_id JOIN data_source d ON d.id = t.data_source
LEFT JOIN job j ON j.id = (SELECT CAST(p.value AS INTEGER) FROM alert_property p
                           WHERE p.alert = a.id AND p.name = 'JOB')
LEFT JOIN field f ON f.id = a.field
LEFT JOIN custom_metric m ON a.type_code = 'CM' AND m.id = CAST(substr(a.watched_key, 2) AS INTEGER)
LEFT JOIN business_rule b ON a.type_code = 'BR' AND b.id = CAST(substr(a.watched_key, 2) AS INTEGER);
)sql";

// Histograms of fields; see base/Histogram.h for kind, unit and the borders. counts: a JSON list.
constexpr const char* kToVersion8 = R"sql(
CREATE TABLE histogram (
    run INTEGER NOT NULL,
    field INTEGER NOT NULL,
    kind TEXT NOT NULL CHECK (kind IN ('N', 'D', 'L')),
    unit TEXT NOT NULL CHECK (unit IN ('N', 'S', 'W', 'M')),
    first_bin INTEGER NOT NULL,
    step INTEGER NOT NULL,
    exponent INTEGER NOT NULL,
    counts TEXT NOT NULL,
    PRIMARY KEY (run, field, kind)
) STRICT, WITHOUT ROWID;

CREATE VIEW v_histograms AS
WITH bin AS (
    SELECT h.run, h.field, h.kind, h.unit, h.exponent, c.key AS position,
           (h.first_bin + c.key) * h.step AS low, (h.first_bin + c.key + 1) * h.step AS high, c.value AS count
    FROM histogram h, json_each(h.counts) c
)
SELECT b.run, b.field AS field_id, f.table_id, f.name AS field_name, b.kind, b.position,
       CASE b.unit
       WHEN 'N' THEN CAST(b.low || 'e' || b.exponent AS REAL)
       WHEN 'M' THEN printf('%04d-%02d-01T00:00:00Z', b.low / 12, b.low % 12 + 1)
       ELSE strftime('%Y-%m-%dT%H:%M:%SZ', CASE b.unit WHEN 'W' THEN (b.low * 7 - 3) * 86400 ELSE b.low END, 'unixepoch')
       END AS low,
       CASE b.unit
       WHEN 'N' THEN CAST(b.high || 'e' || b.exponent AS REAL)
       WHEN 'M' THEN printf('%04d-%02d-01T00:00:00Z', b.high / 12, b.high % 12 + 1)
       ELSE strftime('%Y-%m-%dT%H:%M:%SZ', CASE b.unit WHEN 'W' THEN (b.high * 7 - 3) * 86400 ELSE b.high END,
                     'unixepoch')
       END AS high,
       b.count, j.name AS job, CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END AS table_name
FROM bin b JOIN run r ON r.id = b.run JOIN job j ON j.id = r.job JOIN field f ON f.id = b.field
JOIN profiled_table t ON t.id = f.table_id;
)sql";

// The types that the values of fields fit, and findings. finding.field 0: the finding is about the table.
// run_examination has a row for each run that looked for both; expressions: 1 conditions compare the values of fields
// as texts, 2 as numbers or dates where they are such.
constexpr const char* kToVersion9 = R"sql(
CREATE TABLE run_examination (
    run INTEGER PRIMARY KEY,
    expressions INTEGER NOT NULL
) STRICT;

CREATE TABLE type_breakdown (
    run INTEGER NOT NULL,
    field INTEGER NOT NULL,
    value_count INTEGER NOT NULL,
    row_count INTEGER NOT NULL,
    reading TEXT NOT NULL,
    fit_values INTEGER NOT NULL,
    fit_rows INTEGER NOT NULL,
    ambiguity TEXT NOT NULL,
    has_figures INTEGER NOT NULL CHECK (has_figures IN (0, 1)),
    PRIMARY KEY (run, field)
) STRICT, WITHOUT ROWID;

CREATE TABLE type_form (
    run INTEGER NOT NULL,
    field INTEGER NOT NULL,
    position INTEGER NOT NULL,
    form TEXT NOT NULL,
    value_count INTEGER NOT NULL,
    row_count INTEGER NOT NULL,
    example TEXT NOT NULL,
    PRIMARY KEY (run, field, position)
) STRICT, WITHOUT ROWID;

CREATE TABLE finding (
    run INTEGER NOT NULL,
    table_id INTEGER NOT NULL,
    field INTEGER NOT NULL,
    code TEXT NOT NULL,
    likelihood INTEGER NOT NULL CHECK (likelihood IN (1, 2, 3)),
    value_count INTEGER NOT NULL,
    row_count INTEGER NOT NULL,
    detail TEXT NOT NULL,
    condition TEXT NOT NULL,
    PRIMARY KEY (run, table_id, field, code)
) STRICT, WITHOUT ROWID;

CREATE TABLE dismissed_finding (
    table_id INTEGER NOT NULL,
    field INTEGER NOT NULL,
    code TEXT NOT NULL,
    reason TEXT NOT NULL,
    author TEXT NOT NULL,
    dismissed INTEGER NOT NULL,
    PRIMARY KEY (table_id, field, code)
) STRICT, WITHOUT ROWID;

CREATE VIEW v_type_breakdowns AS
SELECT b.run, b.field AS field_id, f.table_id, f.name AS field_name, b.value_count, b.row_count, b.reading,
       b.fit_values, b.fit_rows, b.ambiguity, b.has_figures, j.name AS job,
       CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END AS table_name
FROM type_breakdown b JOIN run r ON r.id = b.run JOIN job j ON j.id = r.job JOIN field f ON f.id = b.field
JOIN profiled_table t ON t.id = f.table_id;

CREATE VIEW v_type_forms AS
SELECT b.run, b.field AS field_id, f.table_id, f.name AS field_name, b.position, b.form, b.value_count, b.row_count,
       b.example, j.name AS job, CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END AS table_name
FROM type_form b JOIN run r ON r.id = b.run JOIN job j ON j.id = r.job JOIN field f ON f.id = b.field
JOIN profiled_table t ON t.id = f.table_id;

CREATE VIEW v_findings AS
SELECT b.run, b.table_id, b.field AS field_id, f.name AS field_name, b.code,
       CASE b.likelihood WHEN 1 THEN 'possible' WHEN 2 THEN 'likely' ELSE 'definite' END AS likelihood,
       b.value_count, b.row_count, b.detail, b.condition, x.reason AS dismissal_reason, x.author AS dismissed_by,
       strftime('%Y-%m-%dT%H:%M:%SZ', x.dismissed / 1000, 'unixepoch') AS dismissed, j.name AS job,
       CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END AS table_name
FROM finding b JOIN run r ON r.id = b.run JOIN job j ON j.id = r.job JOIN profiled_table t ON t.id = b.table_id
LEFT JOIN field f ON f.id = b.field
LEFT JOIN dismissed_finding x ON x.table_id = b.table_id AND x.field = b.field AND x.code = b.code;
)sql";

// Alerts of users, mutes, changes and notes. alert.origin: J defined by its job, U made by a user. alert.position: in
// the job; 0 for a user's. alert_mute.runs: so many runs of the alert's job from first_run on; last_run: the last of
// them where deleted runs would change the number. alert_change.author is empty for a run of the job. Both tables of
// alerts are rebuilt for the reason given for run_file.
constexpr const char* kToVersion10 = R"sql(
DROP VIEW v_alerts;
CREATE TABLE alert_before AS
SELECT a.id, a.table_id, a.field, a.description, a.metric, a.type_code, a.watched_key,
       (SELECT j.id FROM alert_property p JOIN job j ON j.id = CAST(p.value AS INTEGER)
        WHERE p.alert = a.id AND p.name = 'JOB' LIMIT 1) AS job,
       EXISTS (SELECT 1 FROM alert_property p WHERE p.alert = a.id AND p.name = 'RECORDS' AND p.value = '1')
           AS of_records
FROM alert a;
CREATE TABLE alert_property_before AS SELECT alert, position, name, value FROM alert_property;
DROP TABLE alert_property;
DROP TABLE alert;

CREATE TABLE alert (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    table_id INTEGER NOT NULL REFERENCES profiled_table(id),
    field INTEGER REFERENCES field(id),
    description TEXT NOT NULL DEFAULT '',
    metric INTEGER,
    type_code TEXT NOT NULL CHECK (type_code IN ('SM', 'CM', 'BR')),
    watched_key TEXT NOT NULL DEFAULT '',
    job INTEGER REFERENCES job(id),
    of_records INTEGER NOT NULL DEFAULT 0 CHECK (of_records IN (0, 1)),
    position INTEGER NOT NULL DEFAULT 0,
    origin TEXT NOT NULL DEFAULT 'J' CHECK (origin IN ('J', 'U')),
    author TEXT NOT NULL DEFAULT '',
    created INTEGER
) STRICT;
CREATE INDEX alert_by_job ON alert(job);

CREATE TABLE alert_property (
    alert INTEGER NOT NULL REFERENCES alert(id) ON DELETE CASCADE,
    position INTEGER NOT NULL,
    name TEXT NOT NULL,
    value TEXT NOT NULL,
    PRIMARY KEY (alert, position)
) STRICT, WITHOUT ROWID;

INSERT INTO alert(id, table_id, field, description, metric, type_code, watched_key, job, of_records, position, origin,
                  author)
SELECT id, table_id, field, description, metric, type_code, watched_key, job, of_records, id, 'J', ''
FROM alert_before ORDER BY id;
INSERT INTO alert_property(alert, position, name, value)
SELECT alert, position, name, value FROM alert_property_before;
DROP TABLE alert_before;
DROP TABLE alert_property_before;

CREATE TABLE alert_mute (
    alert INTEGER PRIMARY KEY REFERENCES alert(id) ON DELETE CASCADE,
    reason TEXT NOT NULL,
    author TEXT NOT NULL,
    muted INTEGER NOT NULL,
    first_run INTEGER NOT NULL,
    runs INTEGER,
    last_run INTEGER,
    until INTEGER
) STRICT;

CREATE TABLE alert_change (
    id INTEGER PRIMARY KEY,
    alert INTEGER NOT NULL REFERENCES alert(id) ON DELETE CASCADE,
    changed INTEGER NOT NULL,
    author TEXT NOT NULL,
    condition_before TEXT NOT NULL,
    condition_after TEXT NOT NULL
) STRICT;
CREATE INDEX alert_change_by_alert ON alert_change(alert);

CREATE TABLE alert_note (
    id INTEGER PRIMARY KEY,
    alert INTEGER NOT NULL REFERENCES alert(id) ON DELETE CASCADE,
    author TEXT NOT NULL,
    written INTEGER NOT NULL,
    text TEXT NOT NULL
) STRICT;
CREATE INDEX alert_note_by_alert ON alert_note(alert);

CREATE VIEW v_alerts AS
SELECT a.id AS alert_id, j.name AS job, d.name AS data_source, t.id AS table_id,
       CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END AS table_name, f.id AS field_id,
       f.name AS field_name, a.type_code, a.watched_key, COALESCE(f.name, m.name, b.name) AS watched_name,
       a.metric AS metric_number,
       (SELECT p.value FROM alert_property p WHERE p.alert = a.id AND p.name = 'METRIC') AS metric_text,
       (SELECT CAST(p.value AS INTEGER) FROM alert_property p WHERE p.alert = a.id AND p.name = 'COMPARE')
           AS comparison,
       (SELECT CAST(p.value AS REAL) FROM alert_property p WHERE p.alert = a.id AND p.name = 'VALUE1') AS value_1,
       (SELECT CAST(p.value AS REAL) FROM alert_property p WHERE p.alert = a.id AND p.name = 'VALUE2') AS value_2,
       (SELECT p.value FROM alert_property p WHERE p.alert = a.id AND p.name = 'LEVEL') AS level,
       (SELECT CAST(p.value AS INTEGER) FROM alert_property p WHERE p.alert = a.id AND p.name = 'RUNS') AS runs_before,
       a.description,
       COALESCE((SELECT p.value FROM alert_property p WHERE p.alert = a.id AND p.name = 'REFERENCE'), 'mean')
           AS reference,
       a.of_records, CASE a.origin WHEN 'U' THEN 'user' ELSE 'job' END AS origin, a.author,
       strftime('%Y-%m-%dT%H:%M:%fZ', a.created / 1000.0, 'unixepoch') AS created, a.job AS job_id
FROM alert a JOIN profiled_table t ON t.id = a.table_id JOIN data_source d ON d.id = t.data_source
LEFT JOIN job j ON j.id = a.job
LEFT JOIN field f ON f.id = a.field
LEFT JOIN custom_metric m ON a.type_code = 'CM' AND m.id = CAST(substr(a.watched_key, 2) AS INTEGER)
LEFT JOIN business_rule b ON a.type_code = 'BR' AND b.id = CAST(substr(a.watched_key, 2) AS INTEGER);

CREATE VIEW v_alert_figures AS
SELECT r.id AS run, j.name AS job, a.id AS alert_id, a.description AS alert,
       CASE a.type_code
       WHEN 'CM' THEN (SELECT v.value FROM run_custom_metric v
                       WHERE v.metric = CAST(substr(a.watched_key, 2) AS INTEGER) AND v.run = r.id)
       WHEN 'BR' THEN (SELECT v.failed_rows FROM run_rule v
                       WHERE v.rule = CAST(substr(a.watched_key, 2) AS INTEGER) AND v.run = r.id)
       ELSE (SELECT
           CASE a.metric WHEN 0 THEN rf.count WHEN 1 THEN rf.unique_count WHEN 2 THEN rf.null_count
           WHEN 3 THEN rf.non_null_count WHEN 4 THEN rf.blank_count WHEN 5 THEN rf.pattern_count
           WHEN 6 THEN rf.minimum_value WHEN 7 THEN rf.maximum_value WHEN 8 THEN rf.minimum_length
           WHEN 9 THEN rf.maximum_length WHEN 10 THEN rf.mean WHEN 11 THEN rf.median WHEN 12 THEN rf.mode
           WHEN 13 THEN rf.standard_deviation WHEN 14 THEN rf.standard_error WHEN 15 THEN rf.defined_type
           WHEN 16 THEN rf.defined_length WHEN 17 THEN rf.ordinal WHEN 18 THEN rf.primary_key WHEN 19 THEN rf.nullable
           WHEN 20 THEN rf.decimal_precision WHEN 21 THEN rf.actual_type WHEN 22 THEN rf.unique_percent
           WHEN 23 THEN rf.percent_null END
             FROM run_field rf WHERE rf.run = r.id AND rf.field = CASE WHEN a.of_records
             THEN (SELECT x.field FROM run_field x WHERE x.run = r.id AND x.table_id = a.table_id
                   ORDER BY x.position LIMIT 1)
             ELSE a.field END)
       END AS figure,
       CASE a.type_code WHEN 'BR' THEN (SELECT v.checked_rows FROM run_rule v
                       WHERE v.rule = CAST(substr(a.watched_key, 2) AS INTEGER) AND v.run = r.id) END AS checked_rows
FROM alert a JOIN job j ON j.id = a.job JOIN run r ON r.job = a.job;

CREATE VIEW v_alert_mutes AS
SELECT m.alert AS alert_id, a.description AS alert, m.reason, m.author,
       strftime('%Y-%m-%dT%H:%M:%fZ', m.muted / 1000.0, 'unixepoch') AS muted, m.first_run, m.runs,
       strftime('%Y-%m-%dT%H:%M:%fZ', m.until / 1000.0, 'unixepoch') AS until, a.job AS job_id
FROM alert_mute m JOIN alert a ON a.id = m.alert;

CREATE VIEW v_alert_changes AS
SELECT c.alert AS alert_id, a.description AS alert,
       strftime('%Y-%m-%dT%H:%M:%fZ', c.changed / 1000.0, 'unixepoch') AS changed, c.author, c.condition_before,
       c.condition_after
FROM alert_change c JOIN alert a ON a.id = c.alert;

CREATE VIEW v_alert_notes AS
SELECT n.alert AS alert_id, a.description AS alert, n.id AS note_id, n.author,
       strftime('%Y-%m-%dT%H:%M:%fZ', n.written / 1000.0, 'unixepoch') AS written, n.text
FROM alert_note n JOIN alert a ON a.id = n.alert;
)sql";

constexpr std::array kChanges{kToVersion2, kToVersion3, kToVersion4, kToVersion5, kToVersion6,
                              kToVersion7, kToVersion8, kToVersion9, kToVersion10};

} // namespace

const std::span<const char* const> kSchemaChanges = kChanges;

} // namespace tavix::repository
