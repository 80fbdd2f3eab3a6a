#pragma once

#include "doc/CRefreshItem.h"
#include "doc/CommandTarget.h"

class QWidget;

namespace tavix {

/// The contents of the report pane.
class CReportPane : public CRefreshItem, public CommandTarget {
  public:
    /// The last control that takes the keyboard; null without one.
    [[nodiscard]] virtual QWidget* GetLastTabStop() = 0;
};

} // namespace tavix
