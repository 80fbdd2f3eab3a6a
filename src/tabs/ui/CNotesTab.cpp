#include "tabs/ui/CNotesTab.h"

#include "access/PrViewer.h"
#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "base/ui/QuietPalette.h"
#include "base/ui/Theme.h"
#include "doc/CTavixDoc.h"
#include "grid/ui/CUGCtrl.h"
#include "grid/ui/Tints.h"
#include "notes/ui/CNoteCategoriesDlg.h"
#include "notes/ui/CNoteDlg.h"
#include "report/CountText.h"
#include "settings/Settings.h"
#include "tabs/ui/NoNotesPage.h"
#include "tabs/ui/NoteReadingPane.h"

#include <QAction>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace tavix {

namespace {

constexpr int kMargin = 12;
constexpr int kGap = 8;

QString emptySentence(NoteSubject::Kind kind) {
    switch (kind) {
    case NoteSubject::Kind::Table:
        return CNotesTab::tr("This table has no notes yet.");
    case NoteSubject::Kind::Collection:
        return CNotesTab::tr("This collection has no notes yet.");
    case NoteSubject::Kind::Field:
        return CNotesTab::tr("This field has no notes yet.");
    default:
        return CNotesTab::tr("Nothing is selected that could have notes.");
    }
}

QPushButton* toolButton(QAction& action, QWidget* parent) {
    auto* button = new QPushButton(action.text(), parent);
    button->setObjectName(action.objectName() + QStringLiteral("Button"));
    button->setAccessibleName(action.toolTip());
    button->setToolTip(
        action.shortcut().isEmpty()
            ? action.toolTip()
            : QStringLiteral("%1 (%2)").arg(action.toolTip(), action.shortcut().toString(QKeySequence::NativeText)));
    button->setEnabled(action.isEnabled());
    QObject::connect(button, &QPushButton::clicked, &action, &QAction::trigger);
    QObject::connect(&action, &QAction::enabledChanged, button, &QPushButton::setEnabled);
    return button;
}

} // namespace

CNotesTab::CNotesTab(CViewSite& site, const ReportSubject& subject, bool isTornOff, const NotesTabKind& kind,
                     QWidget* parent)
    : CProfTab(site, subject, isTornOff, parent),
      m_subjectOf(kind.subjectOf),
      m_add(new QAction(tr("&Add Note..."), this)),
      m_edit(new QAction(tr("&Edit..."), this)),
      m_delete(new QAction(tr("&Delete..."), this)),
      m_categories(new QAction(tr("Ca&tegories..."), this)),
      m_count(new QLabel(this)) {
    setObjectName(QLatin1String(kind.name));
    MakeActions();
    // The Tab key visits the controls in the order in which they are made: from the top down.
    QWidget* tools = MakeToolRow();
    m_stack = new QStackedWidget(this);
    m_splitter = new QSplitter(Qt::Vertical, this);
    m_grid = new CUGCtrl(this);
    m_grid->addActions({m_edit, m_delete, m_add, m_categories});
    m_grid->setObjectName(QStringLiteral("notes"));
    m_grid->setAccessibleName(tr("Notes"));
    m_grid->SetSource(&m_rows);
    FitLastColumn();
    m_splitter->addWidget(m_grid);
    m_reading = new NoteReadingPane(this);
    m_splitter->addWidget(m_reading);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setHandleWidth(1);
    m_splitter->setStretchFactor(0, 3);
    m_splitter->setStretchFactor(1, 2);
    m_emptyPage = new NoNotesPage(*m_add, this);
    m_stack->addWidget(m_splitter);
    m_stack->addWidget(m_emptyPage);
    m_stack->setCurrentWidget(m_emptyPage);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(tools);
    layout->addWidget(m_stack, 1);

    connect(m_grid, &CUGCtrl::CurrentRowChanged, this, &CNotesTab::ShowNote);
    connect(m_grid, &CUGCtrl::RowActivated, this, &CNotesTab::EditNote);
    connect(m_grid->selectionModel(), &QItemSelectionModel::selectionChanged, this, &CNotesTab::ShowActions);
    ApplyColors();
    ShowActions();
}

// The grid must not fetch rows while they are being destroyed.
CNotesTab::~CNotesTab() {
    m_grid->disconnect(this);
    m_grid->selectionModel()->disconnect(this);
    m_grid->SetSource(nullptr);
}

void CNotesTab::MakeActions() {
    m_add->setObjectName(QStringLiteral("add"));
    m_add->setToolTip(tr("Add a note"));
    m_add->setShortcut(Qt::Key_Insert);
    m_add->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    addAction(m_add);
    m_edit->setObjectName(QStringLiteral("edit"));
    m_edit->setToolTip(tr("Edit the selected note"));
    m_edit->setShortcut(Qt::Key_F2);
    m_delete->setObjectName(QStringLiteral("delete"));
    m_delete->setToolTip(tr("Delete the selected notes"));
    m_delete->setShortcut(Qt::Key_Delete);
    m_categories->setObjectName(QStringLiteral("categories"));
    m_categories->setToolTip(tr("Add, rename and delete categories"));
    for (QAction* action : {m_edit, m_delete})
        action->setShortcutContext(Qt::WidgetShortcut);
    connect(m_add, &QAction::triggered, this, &CNotesTab::AddNote);
    connect(m_edit, &QAction::triggered, this, [this] { EditNote(m_grid->GetCurrentRow()); });
    connect(m_delete, &QAction::triggered, this, &CNotesTab::DeleteNotes);
    connect(m_categories, &QAction::triggered, this, &CNotesTab::EditCategories);
}

QWidget* CNotesTab::MakeToolRow() {
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(kMargin, kGap, kMargin, kGap);
    layout->setSpacing(kGap - 2);
    for (QAction* action : {m_add, m_edit, m_delete})
        layout->addWidget(toolButton(*action, row));
    layout->addSpacing(kGap);
    m_categoriesButton = toolButton(*m_categories, row);
    layout->addWidget(m_categoriesButton);
    layout->addStretch(1);
    layout->addWidget(m_count);
    return row;
}

void CNotesTab::changeEvent(QEvent* event) {
    CProfTab::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        ApplyColors();
}

void CNotesTab::ApplyColors() {
    m_count->setPalette(quietPalette(palette()));
    // The handle draws the line between list and text.
    QPalette line = palette();
    line.setColor(QPalette::Window, tint::line(palette()));
    m_splitter->setPalette(line);
    // Set anew, so that the heading of the list does not inherit the line's colour.
    QPalette own = palette();
    own.setColor(QPalette::Window, palette().color(QPalette::Window));
    for (int i = 0; i < m_splitter->count(); ++i)
        m_splitter->widget(i)->setPalette(own);
}

QWidget* CNotesTab::GetLastTabStop() {
    if (m_stack->currentWidget() != m_emptyPage)
        return m_reading->GetTabStop();
    QWidget* addFirst = m_emptyPage->GetTabStop();
    return addFirst ? addFirst : m_categoriesButton;
}

QWidget* CNotesTab::GetMainControl() {
    return m_stack->currentWidget() == m_emptyPage ? GetLastTabStop() : m_grid;
}

bool CNotesTab::RefillsOn(RefreshHint hint) const {
    return hint == RefreshHint::DocumentReset || hint == RefreshHint::RunLoaded ||
           hint == RefreshHint::OptionsChanged || hint == RefreshHint::NotesChanged;
}

void CNotesTab::Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) {
    // The tab has already shown its own changes.
    if (sender != this)
        CProfTab::Refresh(sender, hint, parameter);
}

void CNotesTab::Fill(bool isSameObject) {
    CTavixDoc& document = Site().GetTavixDoc();
    std::unique_ptr<Messages::Busy> busy = document.GetMessages().busy();
    const QFont dataFont = toQFont(readStatFont(document.GetSettings()), font());
    m_grid->setFont(dataFont);
    m_reading->SetTextFont(dataFont);
    const std::int64_t currentRow = m_grid->GetCurrentRow();
    const int currentNote = isSameObject && currentRow >= 0 ? m_rows.GetNote(currentRow).id : -1;
    PrViewer* viewer = document.GetViewer();
    m_filled = m_subjectOf(Subject());
    if (!isSameObject || !viewer)
        m_rows.Clear();
    const bool filled =
        viewer && m_rows.Fill(*viewer, m_filled, readFlag(document.GetSettings(), Setting::NotesSortOrder));
    m_isUnreadable = viewer && !filled && m_rows.GetRowCount() == 0;
    if (isSameObject)
        m_grid->RowsRefilled();
    else
        m_grid->SourceChanged();
    FitLastColumn();
    ShowRows(m_showsLatest ? m_rows.GetLatestNote() : currentNote,
             isSameObject ? std::max<std::int64_t>(currentRow, 0) : 0);
    m_showsLatest = false;
    busy.reset();
    if (viewer && !filled)
        WarnSoon("Error occurred while retrieving notes:\n\n" + m_rows.GetErrorText());
}

/// The last column, the note, fills the width that the other columns leave.
void CNotesTab::FitLastColumn() {
    m_grid->horizontalHeader()->setSectionResizeMode(m_rows.GetColumnCount() - 1, QHeaderView::Stretch);
}

/// Selects the note, or if there is no such note, the row nearest to `row`.
void CNotesTab::ShowRows(int note, std::int64_t row) {
    const std::int64_t count = m_rows.GetRowCount();
    m_count->setText(count == 0 ? QString() : toQString(countOf(count, "note")));
    m_emptyPage->ShowSentence(m_isUnreadable ? tr("The notes cannot be read.") : emptySentence(m_filled.kind));
    const bool hadFocus = isAncestorOf(focusWidget()) && m_stack->isAncestorOf(focusWidget());
    m_stack->setCurrentWidget(count == 0 ? static_cast<QWidget*>(m_emptyPage) : m_splitter);
    ShowActions();
    if (count > 0) {
        const std::int64_t found = m_rows.FindNote(note);
        m_grid->SelectRow(found >= 0 ? found : std::min(row, count - 1));
    }
    ShowNote(m_grid->GetCurrentRow());
    if (hadFocus && GetMainControl())
        GetMainControl()->setFocus();
}

void CNotesTab::ShowNote(std::int64_t row) {
    if (row < 0 || row >= m_rows.GetRowCount())
        return m_reading->ShowNote({}, {});
    const Note& note = m_rows.GetNote(row);
    QStringList parts;
    if (!note.category.empty())
        parts << toQString(note.category);
    parts << toQString(note.user) << toQString(m_rows.DateText(note));
    m_reading->ShowNote(parts.join(QStringLiteral("  ·  ")), toQString(note.text));
}

void CNotesTab::ShowActions() {
    const bool hasReport = Site().GetTavixDoc().GetViewer() != nullptr && !m_isUnreadable;
    const NoteActions actions = noteActions(hasReport, m_filled, m_grid->GetSelectedRows().size());
    m_add->setEnabled(actions.add);
    m_edit->setEnabled(actions.edit);
    m_delete->setEnabled(actions.remove);
    m_categories->setEnabled(hasReport);
}

bool CNotesTab::CanAddNote() const {
    return noteActions(Site().GetTavixDoc().GetViewer() != nullptr, m_subjectOf(Subject()), 0).add;
}

void CNotesTab::AddNote() {
    if (!CanAddNote())
        return;
    ModalDialog<CNoteDlg> dialog(Site().GetTavixDoc(), m_subjectOf(Subject()), this);
    m_showsLatest = dialog.isAccepted();
    if (m_showsLatest || dialog->HaveCategoriesChanged())
        NotesChanged();
}

void CNotesTab::EditNote(std::int64_t row) {
    if (row < 0 || row >= m_rows.GetRowCount() || !Site().GetTavixDoc().GetViewer())
        return;
    const Note note = m_rows.GetNote(row);
    ModalDialog<CNoteDlg> dialog(Site().GetTavixDoc(), m_filled, note, toQString(m_rows.DateText(note)), this);
    if (dialog.isAccepted() || dialog->HaveCategoriesChanged())
        NotesChanged();
}

void CNotesTab::DeleteNotes() {
    CTavixDoc& document = Site().GetTavixDoc();
    const std::shared_ptr<PrViewer> session = document.GetSession();
    if (!session)
        return;
    std::vector<Note> notes;
    for (const std::int64_t row : m_grid->GetSelectedRows())
        notes.push_back(m_rows.GetNote(row));
    NoteEditor editor(*session, document.GetMessages());
    if (editor.Delete(NoteSubject(m_filled), notes))
        NotesChanged();
}

void CNotesTab::EditCategories() {
    if (CNoteCategoriesDlg::Run(Site().GetTavixDoc(), this))
        NotesChanged();
}

void CNotesTab::NotesChanged() {
    SubjectChanged();
    Site().Broadcast(this, RefreshHint::NotesChanged, 0);
}

} // namespace tavix
