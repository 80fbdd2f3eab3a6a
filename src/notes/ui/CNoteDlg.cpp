#include "notes/ui/CNoteDlg.h"

#include "base/NoteText.h"
#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "doc/CTavixDoc.h"
#include "grid/ui/Tints.h"
#include "notes/ui/CNoteCategoriesDlg.h"
#include "report/CountText.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>

namespace tavix {

namespace {

/// From this length on the dialog shows the number of characters.
constexpr std::size_t kShownLength = kLongestNote * 4 / 5;

} // namespace

CNoteDlg::CNoteDlg(CTavixDoc& document, NoteSubject subject, QWidget* parent)
    : CNoteDlg(document, std::move(subject), {}, -1, {}, parent) {}

CNoteDlg::CNoteDlg(CTavixDoc& document, NoteSubject subject, const Note& note, const QString& dateText, QWidget* parent)
    : CNoteDlg(document, std::move(subject), {note.categoryId, note.text}, note.id,
               tr("Written by %1, %2").arg(toQString(note.user), dateText), parent) {}

CNoteDlg::CNoteDlg(CTavixDoc& document, NoteSubject subject, NoteDraft kept, int noteId, const QString& detail,
                   QWidget* parent)
    : QDialog(parent),
      m_document(document),
      m_subject(std::move(subject)),
      m_session(document.GetSession()),
      m_editor(*m_session, document.GetMessages()),
      m_kept(std::move(kept)),
      m_noteId(noteId),
      m_category(new QComboBox(this)),
      m_text(new QPlainTextEdit(this)),
      m_length(new QLabel(this)) {
    setWindowTitle(noteId == -1 ? tr("Add Note") : tr("Edit Note"));
    auto* title = new QLabel(toQString(m_subject.title), this);
    QFont titleFont = font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.2);
    titleFont.setWeight(QFont::DemiBold);
    title->setFont(titleFont);
    auto* written = new QLabel(detail, this);
    for (QLabel* label : {title, written}) {
        // Names come from the data.
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
    }
    QPalette quiet = palette();
    quiet.setColor(QPalette::WindowText, quietText(palette()));
    written->setPalette(quiet);
    written->setVisible(!detail.isEmpty());
    m_length->setPalette(quiet);

    m_text->setObjectName(QStringLiteral("text"));
    m_text->setAccessibleName(tr("Text of the note"));
    m_text->setTabChangesFocus(true);
    m_text->setPlainText(toQString(m_kept.text));
    m_text->moveCursor(QTextCursor::End);
    auto* textLabel = new QLabel(tr("&Note:"), this);
    textLabel->setBuddy(m_text);
    m_category->setObjectName(QStringLiteral("category"));
    m_category->setAccessibleName(tr("Category of the note"));
    m_category->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_category->setMinimumContentsLength(16);
    m_category->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    auto* categoryLabel = new QLabel(tr("Cate&gory:"), this);
    categoryLabel->setBuddy(m_category);
    auto* categories = new QPushButton(tr("Ca&tegories..."), this);
    categories->setObjectName(QStringLiteral("categories"));
    categories->setAutoDefault(false);
    categories->setAccessibleName(tr("Add, rename and delete categories"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(noteId == -1 ? tr("&Add Note") : tr("&Save Note"));
    buttons->button(QDialogButtonBox::Ok)->setToolTip(tr("Ctrl+Enter"));

    auto* categoryRow = new QHBoxLayout;
    categoryRow->addWidget(categoryLabel);
    categoryRow->addWidget(m_category, 1);
    categoryRow->addWidget(categories);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(m_length, 1);
    bottom->addWidget(buttons);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title);
    layout->addWidget(written);
    layout->addSpacing(4);
    layout->addWidget(textLabel);
    layout->addWidget(m_text, 1);
    layout->addSpacing(2);
    layout->addLayout(categoryRow);
    layout->addSpacing(4);
    layout->addLayout(bottom);

    connect(buttons, &QDialogButtonBox::accepted, this, &CNoteDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CNoteDlg::reject);
    connect(categories, &QPushButton::clicked, this, &CNoteDlg::EditCategories);
    connect(m_text, &QPlainTextEdit::textChanged, this, &CNoteDlg::ShowLength);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter})
        connect(new QShortcut(QKeySequence(Qt::CTRL | key), this), &QShortcut::activated, this, &CNoteDlg::accept);
    FillCategories(m_kept.categoryId);
    ShowLength();
    m_text->setFocus();
    resize(560, 380);
}

void CNoteDlg::FillCategories(int chosen) {
    NoteCategories categories(*m_session, m_document.GetMessages());
    m_category->clear();
    m_category->addItem(tr("(none)"), -1);
    // The note keeps its category even when the list cannot be read.
    if (!categories.Read() && chosen != -1)
        m_category->addItem(tr("(unchanged)"), chosen);
    for (const NoteCategory& category : categories.List())
        m_category->addItem(toQString(category.name), category.id);
    m_category->setCurrentIndex(std::max(m_category->findData(chosen), 0));
    // Deleting a category has removed it from the stored note as well.
    if (m_category->findData(m_kept.categoryId) < 0)
        m_kept.categoryId = -1;
}

void CNoteDlg::EditCategories() {
    const int chosen = Draft().categoryId;
    if (CNoteCategoriesDlg::Run(m_document, this)) {
        m_categoriesChanged = true;
        FillCategories(chosen);
    }
    m_category->setFocus();
}

void CNoteDlg::ShowLength() {
    // In code points: characters beyond the basic plane have two UTF-16 units.
    const auto length = static_cast<std::size_t>(m_text->toPlainText().toUcs4().size());
    QPalette colors = m_length->palette();
    colors.setColor(QPalette::WindowText, length > kLongestNote ? tint::alert(palette()) : quietText(palette()));
    m_length->setPalette(colors);
    m_length->setText(length < kShownLength ? QString()
                                            : toQString(groupedCount(static_cast<std::int64_t>(length)) + " of " +
                                                        countOf(static_cast<std::int64_t>(kLongestNote), "character")));
}

NoteDraft CNoteDlg::Draft() const {
    return {m_category->currentData().toInt(), toUtf8(m_text->toPlainText())};
}

void CNoteDlg::accept() {
    const bool stored = m_noteId == -1 ? m_editor.Add(m_subject, Draft()) : m_editor.Edit(m_subject, m_noteId, Draft());
    if (stored)
        QDialog::accept();
    else
        m_text->setFocus();
}

void CNoteDlg::reject() {
    if (m_editor.MayDiscard(Draft(), m_kept))
        QDialog::reject();
}

} // namespace tavix
