#include "filter/ui/ExpressionBox.h"

#include "base/ui/QtText.h"
#include "filter/Completion.h"
#include "filter/ui/RawText.h"
#include "grid/ui/Tints.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStringListModel>
#include <QTextBlock>

#include <algorithm>

namespace tavix {

namespace {

/// The UTF-16 units of `line` before its character number `column`, counted from 1.
int unitsBefore(const QString& line, int column) {
    int at = 0;
    for (int i = 1; i < column && at < line.size(); ++i)
        at += line[at].isHighSurrogate() && at + 1 < line.size() ? 2 : 1;
    return at;
}

} // namespace

ExpressionBox::ExpressionBox(QWidget* parent)
    : QPlainTextEdit(parent), m_completer(new QCompleter(this)), m_names(new QStringListModel(this)) {
    setTabChangesFocus(true);
    setReadOnly(true);
    m_completer->setModel(m_names);
    m_completer->setWidget(this);
    m_completer->setCaseSensitivity(Qt::CaseInsensitive);
    m_completer->setModelSorting(QCompleter::CaseInsensitivelySortedModel);
    m_completer->popup()->setObjectName(QStringLiteral("completions"));
    m_completer->popup()->setAccessibleName(tr("Functions that begin with these letters"));
    connect(m_completer, qOverload<const QString&>(&QCompleter::activated), this, &ExpressionBox::Insert);
}

void ExpressionBox::SetFunctions(const QStringList& names) {
    QStringList sorted = names;
    sorted.sort(Qt::CaseInsensitive);
    m_names->setStringList(sorted);
}

void ExpressionBox::ShowText(const QString& text, bool isCode, bool isEditable) {
    setFont(isCode ? QFontDatabase::systemFont(QFontDatabase::FixedFont) : parentWidget()->font());
    const bool wasEditable = !isReadOnly();
    setReadOnly(!isEditable);
    if (!isEditable)
        setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    QString lines = text;
    lines.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    if (lines != Text()) {
        const QSignalBlocker quiet(this);
        setPlainText(lines);
        // Show the end, where the latest condition is.
        if (!isEditable)
            verticalScrollBar()->setValue(verticalScrollBar()->maximum());
    }
    if (isEditable && !wasEditable)
        moveCursor(QTextCursor::End);
}

QString ExpressionBox::Text() const {
    return rawText(*document());
}

QTextCursor ExpressionBox::CursorAt(const expression::ExpressionError& error) const {
    const QTextBlock block = document()->findBlockByNumber(std::max(error.line - 1, 0));
    QTextCursor cursor(document());
    if (!block.isValid())
        cursor.movePosition(QTextCursor::End);
    else
        cursor.setPosition(block.position() + unitsBefore(block.text(), error.column));
    return cursor;
}

void ExpressionBox::MarkError(const expression::ExpressionError& error) {
    QTextEdit::ExtraSelection mark;
    mark.cursor = CursorAt(error);
    // To the end of the word, at least one character; the last character at the end of the text.
    const QTextBlock block = mark.cursor.block();
    const QString line = block.text();
    int end = mark.cursor.positionInBlock();
    while (end < line.size() && (line[end].isLetterOrNumber() || line[end] == u'_'))
        ++end;
    if (end == mark.cursor.positionInBlock() && end < line.size())
        ++end;
    if (end == mark.cursor.positionInBlock())
        mark.cursor.movePosition(QTextCursor::PreviousCharacter);
    mark.cursor.setPosition(block.position() + end, QTextCursor::KeepAnchor);
    mark.format.setUnderlineStyle(QTextCharFormat::WaveUnderline);
    mark.format.setUnderlineColor(tint::alert(palette()));
    setExtraSelections({mark});
}

void ExpressionBox::ClearMark() {
    setExtraSelections({});
}

void ExpressionBox::GoTo(const expression::ExpressionError& error) {
    setTextCursor(CursorAt(error));
    ensureCursorVisible();
    setFocus();
}

void ExpressionBox::keyPressEvent(QKeyEvent* event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (m_completer->popup()->isVisible() &&
        (isEnter || event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab || event->key() == Qt::Key_Escape)) {
        event->ignore(); // for the completer
        return;
    }
    if (event->key() == Qt::Key_Space && event->modifiers() == Qt::ControlModifier) {
        Offer(true);
        return;
    }
    if (isEnter && event->modifiers() == Qt::ShiftModifier) {
        // Insert an ordinary line end; the box would insert a line separator for this key.
        QKeyEvent plain(QEvent::KeyPress, event->key(), Qt::NoModifier, QStringLiteral("\r"));
        QPlainTextEdit::keyPressEvent(&plain);
        return;
    }
    QPlainTextEdit::keyPressEvent(event);
    if (!event->text().isEmpty())
        Offer(false);
}

// While names are offered, the key accepts one.
bool ExpressionBox::focusNextPrevChild(bool next) {
    return !m_completer->popup()->isVisible() && QPlainTextEdit::focusNextPrevChild(next);
}

void ExpressionBox::Offer(bool wasAskedFor) {
    QAbstractItemView* popup = m_completer->popup();
    const std::string written = toUtf8(Text().left(textCursor().position()));
    const QString prefix = toQString(NameBeingWritten(written));
    m_completer->setCompletionPrefix(prefix);
    const auto count = static_cast<std::size_t>(m_completer->completionCount());
    const std::string first = toUtf8(m_completer->currentCompletion());
    if (isReadOnly() || !OffersNames(toUtf8(prefix), wasAskedFor, count, first)) {
        popup->hide();
        return;
    }
    popup->setCurrentIndex(m_completer->completionModel()->index(0, 0));
    QRect place = cursorRect();
    place.setWidth(popup->sizeHintForColumn(0) + popup->verticalScrollBar()->sizeHint().width() + 8);
    m_completer->complete(place);
}

void ExpressionBox::Insert(const QString& name) {
    QTextCursor cursor = textCursor();
    cursor.movePosition(QTextCursor::Left, QTextCursor::KeepAnchor,
                        static_cast<int>(m_completer->completionPrefix().size()));
    const bool isBeforeParenthesis = document()->characterAt(textCursor().position()) == u'(';
    cursor.insertText(toQString(CompletedName(toUtf8(name), isBeforeParenthesis)));
    setTextCursor(cursor);
}

} // namespace tavix
