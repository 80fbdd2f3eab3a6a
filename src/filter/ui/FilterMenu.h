#pragma once

#include "base/Messages.h"
#include "filter/FilterMemory.h"

#include <QMenu>

#include <functional>
#include <string>

namespace tavix {

class FilterModel;

/// A menu of recent and named filters to apply, with commands to name a filter and to delete a name.
class FilterMenu final : public QMenu {
    Q_OBJECT
  public:
    /// The arguments must outlive the menu.
    FilterMenu(FilterModel& model, SettingsStore& settings, Messages& messages, QWidget* parent);

  Q_SIGNALS:
    /// The model loaded another filter.
    void Taken();
    /// The filter to be named has a fault, which was shown.
    void Refused();

  private:
    void Fill();
    QAction* AddFilter(const std::string& words, const std::string& text);
    void Take(const std::string& text);
    void KeepUnderName();
    [[nodiscard]] bool MayReplace(const std::string& name) const;
    void Forget(const std::string& name);

    FilterModel& m_model;
    FilterMemory m_memory;
    Messages& m_messages;
};

} // namespace tavix
