#include "tabs/ui/CTabStdMet.h"

#include "access/PrViewer.h"
#include "base/ui/ChoiceMenu.h"
#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "doc/CTavixDoc.h"
#include "doc/CollectionMembers.h"
#include "doc/CountText.h"
#include "doc/Settings.h"
#include "grid/ui/CUGCtrl.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace tavix {

namespace {

const CollectionsByField kNoCollections;

std::string recordsText(const TableIdentity& table) {
    std::string text = countOf(table.totalRecords, "record");
    if (table.processedRecords >= 0 && table.processedRecords != table.totalRecords)
        text += ", " + groupedCount(table.processedRecords) + (table.kind == 'D' ? " filtered" : " sampled");
    return text;
}

bool showsSameRows(const ReportSelection& a, const ReportSelection& b) {
    return a.kind == b.kind && a.id == b.id && a.table == b.table;
}

} // namespace

CTabStdMet::CTabStdMet(CViewSite& site, QWidget* parent)
    : QWidget(parent),
      m_site(site),
      m_title(new QLabel(this)),
      m_detail(new QLabel(this)),
      m_stack(new QStackedWidget(this)),
      m_grid(new CUGCtrl(this)),
      m_note(new QLabel(this)),
      m_collectionMenu(new QMenu(QStringLiteral("&Add to Collection"), this)) {
    setObjectName(QStringLiteral("standardMetrics"));
    QFont titleFont = font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.25);
    titleFont.setWeight(QFont::DemiBold);
    m_title->setFont(titleFont);
    for (QLabel* label : {m_title, m_detail, m_note}) {
        // Names come from the data.
        label->setTextFormat(Qt::PlainText);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    }
    m_note->setAlignment(Qt::AlignCenter);
    m_note->setWordWrap(true);
    m_grid->setAccessibleName(QStringLiteral("Standard metrics"));
    m_grid->addAction(m_collectionMenu->menuAction());
    connect(m_collectionMenu, &QMenu::aboutToShow, this, &CTabStdMet::FillCollectionMenu);
    m_stack->addWidget(m_grid);
    m_stack->addWidget(m_note);

    auto* header = new QHBoxLayout;
    header->setContentsMargins(12, 9, 12, 9);
    header->setSpacing(12);
    header->addWidget(m_title);
    header->addWidget(m_detail, 1, Qt::AlignBottom);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(header);
    layout->addWidget(m_stack, 1);
}

// The grid must not ask for rows while they are torn down.
CTabStdMet::~CTabStdMet() {
    m_grid->SetSource(nullptr);
}

void CTabStdMet::Refresh(CRefreshItem*, RefreshHint hint, int) {
    switch (hint) {
    case RefreshHint::CollectionsRefreshed:
    case RefreshHint::DocumentReset:
    case RefreshHint::RunLoaded:
    case RefreshHint::OptionsChanged:
        Fill();
        break;
    default:
        break;
    }
}

QWidget* CTabStdMet::GetLastTabStop() {
    return m_stack->currentWidget() == m_grid ? m_grid : nullptr;
}

void CTabStdMet::ShowSelection() {
    if (!showsSameRows(m_shown, m_site.GetSelection())) {
        Fill();
        return;
    }
    m_shown = m_site.GetSelection();
    SelectField();
}

void CTabStdMet::Fill() {
    CTavixDoc& document = m_site.GetTavixDoc();
    const std::unique_ptr<Messages::Busy> busy = document.GetMessages().busy();
    // Rows that are read anew keep the one that the user was at.
    const std::int64_t currentRow = m_grid->GetCurrentRow();
    const bool sameRows = currentRow >= 0 && showsSameRows(m_shown, m_site.GetSelection());
    const int currentField = sameRows ? m_rows.GetFieldId(currentRow) : -1;
    KeepWidths();
    m_grid->setFont(toQFont(readStatFont(document.GetSettings()), font()));
    m_grid->SetSource(nullptr);
    m_shown = m_site.GetSelection();
    m_rows.Clear();
    PrViewer* viewer = document.GetViewer();
    const bool filled = viewer && m_rows.Fill(*viewer, m_shown, document.GetMetrics(),
                                              m_shown.kind == ReportSelection::Kind::Table
                                                  ? document.GetCollectionsOfTable(m_shown.table.id)
                                                  : kNoCollections);
    m_grid->SetSource(&m_rows);
    std::vector<int> widths = m_grid->GetColumnWidths();
    for (std::size_t i = 0; i < widths.size(); ++i) {
        const auto kept = m_widths.find(m_rows.GetColumn(static_cast<int>(i)).heading);
        if (kept != m_widths.end())
            widths[i] = kept->second;
    }
    m_grid->SetColumnWidths(widths);

    std::string note;
    if (viewer && !filled)
        note = "The metrics cannot be read:\n\n" + m_rows.GetErrorText();
    else if (m_rows.GetRowCount() == 0)
        note = m_shown.kind == ReportSelection::Kind::Collection ? "No field of this report is in this collection."
                                                                 : "This table has no fields.";
    m_note->setText(toQString(note));
    m_stack->setCurrentWidget(note.empty() ? static_cast<QWidget*>(m_grid) : m_note);
    ShowHeader();
    SelectField();
    if (const std::int64_t row = m_rows.FindField(currentField); row >= 0)
        m_grid->SelectRow(row);
}

void CTabStdMet::ShowHeader() {
    std::string detail;
    if (m_shown.kind == ReportSelection::Kind::Table) {
        m_title->setText(toQString(m_shown.table.displayName()));
        detail = recordsText(m_shown.table) + "  ·  ";
    } else {
        m_title->setText(toQString(m_shown.name));
    }
    detail += countOf(m_rows.GetRowCount(), "field");
    m_detail->setText(toQString(detail));
    QPalette dim = palette();
    dim.setColor(QPalette::WindowText, quietText(palette()));
    m_detail->setPalette(dim);
}

void CTabStdMet::SelectField() {
    if (const std::int64_t row = m_rows.FindField(m_shown.fieldId); row >= 0)
        m_grid->SelectRow(row);
}

void CTabStdMet::KeepWidths() {
    const std::vector<int> widths = m_grid->GetColumnWidths();
    for (std::size_t i = 0; i < widths.size(); ++i) {
        const GridColumn column = m_rows.GetColumn(static_cast<int>(i));
        if (column.width != widths[i])
            m_widths[column.heading] = widths[i];
        else
            m_widths.erase(column.heading);
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
    CTavixDoc& document = m_site.GetTavixDoc();
    fillChoiceMenu(*m_collectionMenu, collectionChoices(document), QStringLiteral("There are no collections"),
                   [&document, fields](int collection) { addFieldsToCollection(document, collection, fields); });
}

} // namespace tavix
