#include "tabs/ui/CNotesTab.h"

#include "access/PrViewer.h"
#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "doc/CTavixDoc.h"
#include "grid/ui/CUGCtrl.h"
#include "grid/ui/Tints.h"
#include "notes/ui/CNoteCategoriesDlg.h"
#include "notes/ui/CNoteDlg.h"
#include "report/CountText.h"
#include "settings/Settings.h"

#include <QAction>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QStackedWidget>
#include <QTextDocument>
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

CNotesTab::CNotesTab(CViewSite& site, const ReportSubject& subject, bool isTornOff, SubjectOf subjectOf,
                     QWidget* parent)
    : CProfTab(site, subject, isTornOff, parent),
      m_subjectOf(subjectOf),
      m_add(new QAction(tr("&Add Note..."), this)),
      m_edit(new QAction(tr("&Edit..."), this)),
      m_delete(new QAction(tr("&Delete..."), this)),
      m_categories(new QAction(tr("Ca&tegories..."), this)),
      m_count(new QLabel(this)) {
    MakeActions();
    // What is made first is reached first with the keyboard: from the top down.
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
    m_splitter->addWidget(MakeReadingPane());
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setHandleWidth(1);
    m_splitter->setStretchFactor(0, 3);
    m_splitter->setStretchFactor(1, 2);
    m_emptyPage = MakeEmptyPage();
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

// The grid must not ask for rows while they are torn down.
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
    layout->addWidget(toolButton(*m_categories, row));
    layout->addStretch(1);
    layout->addWidget(m_count);
    return row;
}

QWidget* CNotesTab::MakeReadingPane() {
    auto* pane = new QWidget(this);
    pane->setAutoFillBackground(true);
    pane->setBackgroundRole(QPalette::Base);
    m_heading = new QLabel(pane);
    m_text = new QPlainTextEdit(pane);
    m_heading->setTextFormat(Qt::PlainText);
    m_heading->setWordWrap(true);
    m_text->setObjectName(QStringLiteral("noteText"));
    m_text->setAccessibleName(tr("Text of the selected note"));
    m_text->setReadOnly(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_text->setTabChangesFocus(true);
    m_text->setFrameShape(QFrame::NoFrame);
    m_text->document()->setDocumentMargin(0);
    auto* layout = new QVBoxLayout(pane);
    layout->setContentsMargins(kMargin, kMargin - 2, kMargin, kGap);
    layout->setSpacing(kGap - 2);
    layout->addWidget(m_heading);
    layout->addWidget(m_text, 1);
    return pane;
}

QWidget* CNotesTab::MakeEmptyPage() {
    auto* page = new QWidget(this);
    page->setAutoFillBackground(true);
    page->setBackgroundRole(QPalette::Base);
    m_empty = new QLabel(page);
    // The button above has the letter.
    m_addFirst = new QPushButton(tr("Add Note..."), page);
    m_empty->setObjectName(QStringLiteral("emptySentence"));
    m_empty->setTextFormat(Qt::PlainText);
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setWordWrap(true);
    m_addFirst->setObjectName(QStringLiteral("addFirst"));
    m_addFirst->setAccessibleName(m_add->toolTip());
    connect(m_addFirst, &QPushButton::clicked, m_add, &QAction::trigger);
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(2 * kMargin, 2 * kMargin, 2 * kMargin, 2 * kMargin);
    layout->setSpacing(kMargin);
    layout->addStretch(2);
    layout->addWidget(m_empty);
    layout->addWidget(m_addFirst, 0, Qt::AlignHCenter);
    layout->addStretch(3);
    return page;
}

void CNotesTab::changeEvent(QEvent* event) {
    CProfTab::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        ApplyColors();
}

void CNotesTab::ApplyColors() {
    const QColor quiet = quietText(palette());
    for (QLabel* label : {m_count, m_heading, m_empty}) {
        QPalette colors = palette();
        colors.setColor(QPalette::WindowText, quiet);
        colors.setColor(QPalette::Text, quiet);
        label->setPalette(colors);
    }
    // The handle is the line between list and text.
    QPalette line = palette();
    line.setColor(QPalette::Window, tint::line(palette()));
    m_splitter->setPalette(line);
    for (int i = 0; i < m_splitter->count(); ++i)
        m_splitter->widget(i)->setPalette(palette());
    m_heading->setPalette(m_count->palette());
}

QWidget* CNotesTab::GetLastTabStop() {
    if (m_stack->currentWidget() != m_emptyPage)
        return m_text;
    return m_addFirst->isVisibleTo(this) ? static_cast<QWidget*>(m_addFirst)
                                         : findChild<QPushButton*>(QStringLiteral("categoriesButton"));
}

QWidget* CNotesTab::GetMainControl() {
    return m_stack->currentWidget() == m_emptyPage ? GetLastTabStop() : m_grid;
}

bool CNotesTab::RefillsOn(RefreshHint hint) const {
    return hint == RefreshHint::DocumentReset || hint == RefreshHint::RunLoaded ||
           hint == RefreshHint::OptionsChanged || hint == RefreshHint::NotesChanged;
}

void CNotesTab::Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) {
    // What the tab itself has changed it shows already.
    if (sender != this)
        CProfTab::Refresh(sender, hint, parameter);
}

void CNotesTab::Fill(bool isSameObject) {
    CTavixDoc& document = Site().GetTavixDoc();
    std::unique_ptr<Messages::Busy> busy = document.GetMessages().busy();
    for (QWidget* widget : {static_cast<QWidget*>(m_grid), static_cast<QWidget*>(m_text)})
        widget->setFont(toQFont(readStatFont(document.GetSettings()), font()));
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

/// Others keep the widths that the user gave them; the notes take what is left.
void CNotesTab::FitLastColumn() {
    m_grid->horizontalHeader()->setSectionResizeMode(m_rows.GetColumnCount() - 1, QHeaderView::Stretch);
}

/// The note that should be selected, and the row beside which the user was if there is no such note.
void CNotesTab::ShowRows(int note, std::int64_t row) {
    const std::int64_t count = m_rows.GetRowCount();
    m_count->setText(count == 0 ? QString() : toQString(countOf(count, "note")));
    m_empty->setText(m_isUnreadable ? tr("The notes cannot be read.") : emptySentence(m_filled.kind));
    const bool hadFocus = isAncestorOf(focusWidget()) && m_stack->isAncestorOf(focusWidget());
    m_stack->setCurrentWidget(count == 0 ? m_emptyPage : m_splitter);
    ShowActions();
    m_addFirst->setVisible(m_add->isEnabled());
    if (count > 0) {
        const std::int64_t found = m_rows.FindNote(note);
        m_grid->SelectRow(found >= 0 ? found : std::min(row, count - 1));
    }
    ShowNote(m_grid->GetCurrentRow());
    if (hadFocus && GetMainControl())
        GetMainControl()->setFocus();
}

void CNotesTab::ShowNote(std::int64_t row) {
    if (row < 0 || row >= m_rows.GetRowCount()) {
        m_heading->clear();
        m_text->clear();
        return;
    }
    const Note& note = m_rows.GetNote(row);
    QStringList parts;
    if (!note.category.empty())
        parts << toQString(note.category);
    parts << toQString(note.user) << toQString(m_rows.DateText(note));
    m_heading->setText(parts.join(QStringLiteral("  ·  ")));
    m_text->setPlainText(toQString(note.text));
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
