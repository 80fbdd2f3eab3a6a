#include "base/ui/QtMessages.h"

#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"

#include <QApplication>
#include <QMessageBox>

namespace tavix {

namespace {

/// An error text may quote a whole row; a longer one would push the button off the screen.
constexpr qsizetype kLongestText = 2000;

class CursorGuard final : public Messages::Busy {
  public:
    explicit CursorGuard(Qt::CursorShape shape) { QGuiApplication::setOverrideCursor(shape); }
    ~CursorGuard() override { QGuiApplication::restoreOverrideCursor(); }
    CursorGuard(const CursorGuard&) = delete;
    CursorGuard& operator=(const CursorGuard&) = delete;
};

QString captionOrName(std::string_view caption) {
    if (!caption.empty())
        return toQString(caption);
    const QString name = QGuiApplication::applicationDisplayName();
    return name.isEmpty() ? QStringLiteral("Tavix") : name;
}

QString shortened(QString text) {
    if (text.size() > kLongestText) {
        text.truncate(kLongestText);
        text.append(QChar(0x2026));
    }
    return text;
}

int run(ModalDialog<QMessageBox>& box, std::string_view text, std::string_view caption) {
    // A box that comes up during a long operation must not inherit the wait cursor.
    const CursorGuard arrow(Qt::ArrowCursor);
    box->setObjectName(QStringLiteral("message"));
    box->setWindowTitle(captionOrName(caption));
    box->setTextFormat(Qt::PlainText);
    box->setText(shortened(toQString(text)));
    box->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return box.exec();
}

/// The active modal dialog, if any, else the window.
QWidget* owner(const QPointer<QWidget>& window) {
    if (QWidget* dialog = QApplication::activeModalWidget())
        return dialog;
    return window ? window->window() : nullptr;
}

} // namespace

void QtMessages::warn(std::string_view text, std::string_view caption) {
    ModalDialog<QMessageBox> box(QMessageBox::Warning, QString(), QString(), QMessageBox::Ok, owner(m_window));
    run(box, text, caption);
}

Messages::Answer QtMessages::ask(std::string_view text, std::string_view caption, Answer preset) {
    ModalDialog<QMessageBox> box(QMessageBox::Question, QString(), QString(), QMessageBox::Yes | QMessageBox::No,
                                 owner(m_window));
    box->setDefaultButton(preset == Answer::Yes ? QMessageBox::Yes : QMessageBox::No);
    box->setEscapeButton(QMessageBox::No);
    return run(box, text, caption) == QMessageBox::Yes ? Answer::Yes : Answer::No;
}

std::unique_ptr<Messages::Busy> QtMessages::busy() {
    return std::make_unique<CursorGuard>(Qt::WaitCursor);
}

} // namespace tavix
