#include "access/PrViewerImpl.h"
#include "access/RuleRowCursor.h"
#include "repository/RuleStore.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavix {

namespace {

/// The repository version that added custom metrics and rules.
constexpr std::int64_t kFirstVersion = 2;

// ?1 is the run, ?2 a table or -1.
constexpr std::string_view kMetricsOfTable =
    "FROM run_table rt JOIN run_custom_metric v ON v.run = rt.run AND v.table_id = rt.table_id "
    "JOIN custom_metric cm ON cm.id = v.metric WHERE rt.run = ?1 AND ?2 IN (-1, rt.table_id) "
    "ORDER BY rt.position, v.position";
constexpr std::string_view kRulesOfTable =
    "FROM run_table rt JOIN run_rule v ON v.run = rt.run AND v.table_id = rt.table_id "
    "JOIN business_rule b ON b.id = v.rule WHERE rt.run = ?1 AND ?2 IN (-1, rt.table_id) "
    "ORDER BY rt.position, v.position";

constexpr KeyedKind kMetricKeys{'M', "custom metric", "SELECT 1 FROM custom_metric WHERE id = ?1"};
constexpr KeyedKind kRuleKeys{'B', "business rule", "SELECT 1 FROM business_rule WHERE id = ?1"};

/// The number in a key such as "M12"; -1, which is never an id, if it is not a key of this letter.
std::int64_t idOfKey(const KvbString& key, char letter) {
    const std::string_view text = key.view();
    if (text.size() < 2 || text.size() > 10 || text.front() != letter || text[1] == '0' ||
        text.find_first_not_of("0123456789", 1) != std::string_view::npos)
        return -1;
    return KvbDatavar(std::string(text.substr(1))).toInt64();
}

} // namespace

Result<bool> PrViewer::Impl::knowsRules() const {
    auto version = connection().schemaVersion();
    if (!version)
        return version.error();
    return *version >= kFirstVersion;
}

ProfileCursorHandle PrViewer::Impl::openRules(const Status& ready, const Query& query,
                                              std::initializer_list<std::int64_t> parameters) {
    if (!ready)
        return failCursor(ready.error());
    const auto known = knowsRules();
    if (!known)
        return failCursor(known.error());
    auto statement = *known ? bound(query.sql, parameters) : bound("SELECT 1 WHERE 0", {});
    if (!statement)
        return failCursor(statement.error());
    return open(query, std::move(*statement));
}

ProfileCursorHandle PrViewer::Impl::openKeyed(const Status& ready, const Query& query, const KeyedKind& kind,
                                              const KvbString& key, std::int64_t scope) {
    if (!ready)
        return failCursor(ready.error());
    const auto known = knowsRules();
    if (!known)
        return failCursor(known.error());
    const std::string unknown = fmt::format("There is no {} with the key \"{}\".", kind.what, key.view());
    const std::int64_t id = *known ? idOfKey(key, kind.letter) : -1;
    if (id < 0)
        return failCursor({unknown});
    if (auto found = integer(kind.find, {id}, unknown); !found)
        return failCursor(found.error());
    return open({}, query, {id, scope});
}

Status PrViewer::Impl::requireTableOrAll(int table) const {
    return table == -1 ? requireRun() : requireTable(table);
}

ProfileCursorHandle PrViewer::getCustomMetrics(int tableId) {
    static const Query kQuery("getCustomMetrics", kMetricsOfTable);
    return m_impl->openRules(m_impl->requireTableOrAll(tableId), kQuery, {m_impl->run, tableId});
}

ProfileCursorHandle PrViewer::getCustomMetricInputFields(const KvbString& key) {
    static const Query kQuery("getCustomMetricInputFields", "FROM custom_metric_input i JOIN field f ON f.id = i.field "
                                                            "WHERE i.run = ?2 AND i.metric = ?1 ORDER BY i.position");
    return m_impl->openKeyed(m_impl->requireRun(), kQuery, kMetricKeys, key, m_impl->run);
}

ProfileCursorHandle PrViewer::getCustomMetricHistory(const KvbString& key) {
    static const Query kQuery("getCustomMetricHistory", "FROM run_custom_metric v JOIN run r ON r.id = v.run "
                                                        "WHERE v.metric = ?1 AND r.job = ?2 ORDER BY r.id");
    return m_impl->openKeyed(m_impl->requireJob(), kQuery, kMetricKeys, key, m_impl->job);
}

ProfileCursorHandle PrViewer::getBusinessRules(int tableId) {
    static const Query kQuery("getBusinessRules", kRulesOfTable);
    return m_impl->openRules(m_impl->requireTableOrAll(tableId), kQuery, {m_impl->run, tableId});
}

ProfileCursorHandle PrViewer::getBusinessRuleHistory(const KvbString& key) {
    static const Query kQuery("getBusinessRuleHistory", "FROM run_rule v JOIN run r ON r.id = v.run "
                                                        "WHERE v.rule = ?1 AND r.job = ?2 ORDER BY r.id");
    return m_impl->openKeyed(m_impl->requireJob(), kQuery, kRuleKeys, key, m_impl->job);
}

ProfileCursorHandle PrViewer::getBusinessRuleRowLog(int ruleId, int first, bool withInputs) {
    if (auto ready = m_impl->requireRun(); !ready)
        return m_impl->failCursor(ready.error());
    const auto known = m_impl->knowsRules();
    if (!known)
        return m_impl->failCursor(known.error());
    if (!*known)
        return m_impl->failCursor(noSuch("rule", ruleId));
    auto columns = m_impl->boundRow("SELECT log_columns, key_columns FROM run_rule WHERE run = ?1 AND rule = ?2",
                                    {m_impl->run, ruleId}, {"This run has no rule with that number."});
    if (!columns)
        return m_impl->failCursor(columns.error());
    auto fields = repository::readTextList(columns->text(0));
    if (!fields)
        return m_impl->failCursor(fields.error());
    if (const auto keys = static_cast<std::size_t>(std::max<std::int64_t>(0, columns->integer(1)));
        !withInputs && keys < fields->size())
        fields->resize(keys);
    auto rows = m_impl->bound(
        "SELECT l.record, l.rule, l.position, l.row_values FROM rule_row l WHERE l.run = ?1 AND l.rule = ?2 AND "
        "l.position >= ?3 ORDER BY l.position",
        {m_impl->run, ruleId, first});
    if (!rows)
        return m_impl->failCursor(rows.error());
    auto cursor = RuleRowCursor::open(m_impl->session, std::move(*rows), std::move(fields).value());
    if (!cursor)
        return m_impl->failCursor(cursor.error());
    return ProfileCursorHandle(cursor->release());
}

} // namespace tavix
