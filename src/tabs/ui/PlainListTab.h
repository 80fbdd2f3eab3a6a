#pragma once

#include "tabs/ui/CListTab.h"

#include <functional>
#include <memory>
#include <string>

namespace tavix {

/// A list whose rows come from the repository and need nothing else. Each such tab is one row of this kind.
struct PlainList {
    struct Filled {
        std::unique_ptr<ListRows> rows;
        std::function<bool(PrViewer&, const ReportSubject&)> fill; ///< fills the rows, see CListTab::FillRows
    };

    const char* name;
    /// See CListTab::GetObstacle.
    std::string (*obstacle)(const ReportSubject&);
    Filled (*make)();
};

/// The stored key analyses of a field.
extern const PlainList kKeyAnalysisList;
/// The visualizations that are stored with a table.
extern const PlainList kVisualizationList;

class PlainListTabBase : public CListTab {
    Q_OBJECT
  protected:
    PlainListTabBase(const PlainList& list, CViewSite& site, const ReportSubject& subject, bool isTornOff,
                     QWidget* parent);

    [[nodiscard]] std::string GetObstacle() const override { return m_obstacle(Subject()); }
    bool FillRows(PrViewer& viewer) override { return m_fill(viewer, Subject()); }

  private:
    decltype(PlainList::obstacle) m_obstacle;
    decltype(PlainList::Filled::fill) m_fill;
};

template <const PlainList& kList>
class PlainListTab final : public PlainListTabBase {
  public:
    PlainListTab(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent = nullptr)
        : PlainListTabBase(kList, site, subject, isTornOff, parent) {}
};

using CTabPKFK = PlainListTab<kKeyAnalysisList>;
using CTabTblVis = PlainListTab<kVisualizationList>;

} // namespace tavix
