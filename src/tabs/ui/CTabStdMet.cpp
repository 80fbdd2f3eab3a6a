#include "tabs/ui/CTabStdMet.h"

#include "access/PrViewer.h"
#include "base/ui/ChoiceMenu.h"
#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "doc/CTavixDoc.h"
#include "doc/CollectionMembers.h"
#include "grid/ui/CUGCtrl.h"
#include "settings/Settings.h"

#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace tavix {

namespace {

const CollectionsByField kNoCollections;
const std::string kReadFailed = "Error occurred while retrieving the standard metrics:\n\n";

} // namespace

CTabStdMet::CTabStdMet(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent)
    : CProfTab(site, subject, isTornOff, parent),
      m_stack(new QStackedWidget(this)),
      m_grid(new CUGCtrl(this)),
      m_note(new QLabel(this)),
      m_collectionMenu(new QMenu(QStringLiteral("&Add to Collection"), this)) {
    setObjectName(QStringLiteral("standardMetrics"));
    m_note->setTextFormat(Qt::PlainText);
    m_note->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_note->setAlignment(Qt::AlignCenter);
    m_note->setWordWrap(true);
    m_grid->setAccessibleName(QStringLiteral("Standard metrics"));
    m_grid->SetSource(&m_rows);
    m_grid->addAction(m_collectionMenu->menuAction());
    connect(m_collectionMenu, &QMenu::aboutToShow, this, &CTabStdMet::FillCollectionMenu);
    connect(m_grid, &CUGCtrl::RowActivated, this, [this](qint64 row) {
        // A torn-off window keeps its object; the frame opens the field.
        if (IsTornOff())
            Site().OpenField(Subject().selection, m_rows.GetFieldId(row));
        else
            Site().SelectField(m_rows.GetFieldId(row));
    });
    m_stack->addWidget(m_grid);
    m_stack->addWidget(m_note);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_stack);
}

// The grid must not fetch rows while they are being destroyed.
CTabStdMet::~CTabStdMet() {
    m_grid->SetSource(nullptr);
}

QWidget* CTabStdMet::GetLastTabStop() {
    return m_stack->currentWidget() == m_grid ? m_grid : nullptr;
}

bool CTabStdMet::RefillsOn(RefreshHint hint) const {
    switch (hint) {
    case RefreshHint::CollectionsRefreshed:
    case RefreshHint::DocumentReset:
    case RefreshHint::RunLoaded:
    case RefreshHint::OptionsChanged:
        return true;
    default:
        return false;
    }
}

void CTabStdMet::Fill(bool isSameObject) {
    CTavixDoc& document = Site().GetTavixDoc();
    const std::unique_ptr<Messages::Busy> busy = document.GetMessages().busy();
    // Reading the rows again keeps the current field.
    const std::int64_t currentRow = m_grid->GetCurrentRow();
    const int currentField = isSameObject && currentRow >= 0 ? m_rows.GetFieldId(currentRow) : -1;
    const ReportSelection& selection = Subject().selection;
    const bool isCollection = selection.kind == ReportSelection::Kind::Collection;
    PrViewer* viewer = document.GetViewer();
    StdMetRows rows;
    const bool filled =
        viewer && rows.Fill(*viewer, selection, document.GetMetrics(),
                            isCollection ? kNoCollections : document.GetCollectionsOfTable(selection.table.id));
    const bool failed = viewer && !filled;
    if (failed)
        WarnSoon(kReadFailed + rows.GetErrorText());
    if (failed && isSameObject && m_rows.GetRowCount() > 0)
        return;
    m_grid->setFont(toQFont(readStatFont(document.GetSettings()), font()));
    m_rows = std::move(rows);
    if (isSameObject)
        m_grid->RowsRefilled();
    else
        m_grid->SourceChanged();

    std::string note;
    if (failed)
        note = kReadFailed + m_rows.GetErrorText();
    else if (m_rows.GetRowCount() == 0)
        note = isCollection ? "No field of this report is in this collection." : "This table has no fields.";
    m_note->setText(toQString(note));
    m_stack->setCurrentWidget(note.empty() ? static_cast<QWidget*>(m_grid) : m_note);
    SelectMetric(currentField, -1);
}

void CTabStdMet::SelectMetric(int fieldId, int metricId) {
    const std::int64_t row = m_rows.FindField(fieldId);
    if (row < 0)
        return;
    m_grid->SelectRow(row);
    for (int column = 0; column < m_rows.GetColumnCount(); ++column) {
        if (metricId != -1 && m_rows.GetColumn(column).parameter == metricId)
            m_grid->ShowColumn(column);
    }
}

std::vector<int> CTabStdMet::SelectedFields() const {
    std::vector<int> fields;
    for (const std::int64_t row : m_grid->GetSelectedRows())
        fields.push_back(m_rows.GetFieldId(row));
    return fields;
}

void CTabStdMet::FillCollectionMenu() {
    const std::vector<int> fields = SelectedFields();
    if (fields.empty())
        return fillChoiceMenu(*m_collectionMenu, {}, QStringLiteral("No field is selected"), {});
    CTavixDoc& document = Site().GetTavixDoc();
    fillChoiceMenu(*m_collectionMenu, collectionChoices(document), QStringLiteral("There are no collections"),
                   [&document, fields](int collection) { addFieldsToCollection(document, collection, fields); });
}

} // namespace tavix
