#pragma once

#include "report/AlertStates.h"

#include <map>
#include <span>

namespace tavix {

struct TreeNode;

/// How many alerts are raised on the tables and fields of the navigator.
class AlertDots {
  public:
    AlertDots() = default;
    explicit AlertDots(std::span<const AlertState> alerts);

    /// Of a table with its fields, custom metrics and rules, or of a field; none for any other node.
    [[nodiscard]] const AlertCounts& Of(const TreeNode& node) const;

  private:
    std::map<int, AlertCounts> m_tables; ///< by table id
    std::map<int, AlertCounts> m_fields; ///< by field id
};

} // namespace tavix
