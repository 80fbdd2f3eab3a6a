#include "tabs/ui/PlainListTab.h"

#include "tabs/ChartRows.h"
#include "tabs/PkFkRows.h"

#include <utility>

namespace tavix {

namespace {

bool fillKeyAnalyses(PkFkRows& rows, PrViewer& viewer, const ReportSubject& subject) {
    return rows.Fill(viewer, subject.selection.fieldId);
}

bool fillCharts(ChartRows& rows, PrViewer& viewer, const ReportSubject& subject) {
    return rows.Fill(viewer, subject.table.id);
}

template <typename Rows, bool (*kFill)(Rows&, PrViewer&, const ReportSubject&)>
PlainList::Filled make() {
    auto rows = std::make_unique<Rows>();
    Rows& kept = *rows;
    return {std::move(rows),
            [&kept](PrViewer& viewer, const ReportSubject& subject) { return kFill(kept, viewer, subject); }};
}

std::string withoutField(const ReportSubject& subject) {
    return subject.selection.fieldId != -1 ? "" : "No field is selected.";
}

std::string withoutVisualizations(const ReportSubject& subject) {
    return obstacleOfCollection(subject, "visualizations");
}

} // namespace

const PlainList kKeyAnalysisList = {"Primary Key/Foreign Key Analyses", &withoutField,
                                    &make<PkFkRows, &fillKeyAnalyses>};
const PlainList kVisualizationList = {"Visualizations", &withoutVisualizations, &make<ChartRows, &fillCharts>};

PlainListTabBase::PlainListTabBase(const PlainList& list, CViewSite& site, const ReportSubject& subject, bool isTornOff,
                                   QWidget* parent)
    : CListTab(list.name, site, subject, isTornOff, parent), m_obstacle(list.obstacle) {
    PlainList::Filled made = list.make();
    ShowRows(std::move(made.rows));
    m_fill = std::move(made.fill);
}

} // namespace tavix
