#include "nav/AlertDots.h"

#include "nav/TreeContents.h"

namespace tavix {

AlertDots::AlertDots(std::span<const AlertState> alerts) {
    for (const AlertState& alert : alerts) {
        m_tables[alert.tableId].add(alert);
        // An alert on the number of records is stored with a field, but does not concern it.
        if (alert.subject == AlertSubject::StandardMetric && !alert.isOfRecords)
            m_fields[alert.fieldId].add(alert);
    }
}

const AlertCounts& AlertDots::Of(const TreeNode& node) const {
    static const AlertCounts kNone;
    if (node.kind != TreeNodeKind::Table && node.kind != TreeNodeKind::Field)
        return kNone;
    const std::map<int, AlertCounts>& counts = node.kind == TreeNodeKind::Table ? m_tables : m_fields;
    const auto found = counts.find(node.id);
    return found == counts.end() ? kNone : found->second;
}

} // namespace tavix
