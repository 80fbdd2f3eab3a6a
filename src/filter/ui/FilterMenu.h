#pragma once

#include "base/Messages.h"
#include "filter/FilterMemory.h"

#include <QMenu>

#include <functional>
#include <string>

namespace tavix {

class FilterModel;

/// The filters that were used last and those with a name, to be used again; and names to be given and taken away.
class FilterMenu final : public QMenu {
    Q_OBJECT
  public:
    /// All must outlive the menu.
    FilterMenu(FilterModel& model, SettingsStore& settings, Messages& messages, QWidget* parent);

  Q_SIGNALS:
    /// The model took another filter.
    void Taken();
    /// The filter that is to get a name has a fault, which was told.
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
