#include "drill/ui/CLocateFileDlg.h"

#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "drill/DrillTexts.h"

#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include <utility>

namespace tavix {

namespace {

constexpr int kWidth = 520;
constexpr int kMargin = 16;

/// Lets a label break a path after each slash.
QString breakable(const std::string& path) {
    return QFile::decodeName(path.c_str()).replace(QLatin1Char('/'), QStringLiteral("/\u200B"));
}

QLabel* textLabel(const QString& text, const char* name, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    return label;
}

} // namespace

CLocateFileDlg::CLocateFileDlg(const MissingFile& file, QWidget* parent, std::function<QString()> askPath)
    : QDialog(parent), m_askPath(std::move(askPath)), m_file(file) {
    setObjectName(QStringLiteral("locateFile"));
    setWindowTitle(toQString(kDrillErrorCaption));
    QLabel* heading = textLabel(toQString(kDrillUnavailable), "heading", this);
    QFont strong = heading->font();
    strong.setWeight(QFont::DemiBold);
    heading->setFont(strong);
    QLabel* gone = textLabel(tr("The file that the run read is missing:\n%1").arg(breakable(file.path)), "file", this);
    QLabel* note = textLabel(tr("If it was moved, locate it. A file of the same size is remembered."), "note", this);
    QPalette quiet = note->palette();
    quiet.setColor(QPalette::WindowText, quietText(palette()));
    note->setPalette(quiet);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    QPushButton* locate = buttons->addButton(tr("&Locate..."), QDialogButtonBox::ActionRole);
    locate->setObjectName(QStringLiteral("locate"));
    locate->setDefault(true);
    connect(locate, &QPushButton::clicked, this, [this] {
        // Both dialogs may be destroyed while the file dialog is open.
        const QPointer<CLocateFileDlg> self(this);
        // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): the function was tested
        const QString path = m_askPath ? m_askPath() : ChoosePath();
        if (self)
            Accept(path);
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* texts = new QVBoxLayout;
    texts->setSpacing(10);
    texts->addWidget(heading);
    texts->addWidget(gone);
    if (!file.suggestion.empty()) {
        texts->addWidget(
            textLabel(tr("A file of its name and size is beside the repository:\n%1").arg(breakable(file.suggestion)),
                      "suggestion", this));
        QPushButton* use = buttons->addButton(tr("&Use This File"), QDialogButtonBox::ActionRole);
        use->setObjectName(QStringLiteral("use"));
        use->setDefault(true);
        connect(use, &QPushButton::clicked, this, [this] { Accept(QFile::decodeName(m_file.suggestion.c_str())); });
    }
    texts->addWidget(note);
    auto* icon = new QLabel(this);
    const int side = style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(side, side));
    auto* row = new QHBoxLayout;
    row->setSpacing(kMargin);
    row->addWidget(icon, 0, Qt::AlignTop);
    row->addLayout(texts, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout->setSpacing(kMargin);
    layout->addLayout(row);
    layout->addStretch(1);
    layout->addWidget(buttons);
    setMinimumWidth(kWidth);
    resize(kWidth, layout->totalHeightForWidth(kWidth));
}

void CLocateFileDlg::Accept(const QString& path) {
    if (path.isEmpty())
        return;
    m_place = QFile::encodeName(path).toStdString();
    accept();
}

QString CLocateFileDlg::ChoosePath() {
    const QFileInfo before(QFile::decodeName(m_file.path.c_str()));
    ModalDialog<QFileDialog> dialog(this, tr("Locate %1").arg(before.fileName()));
    if (before.dir().exists())
        dialog->setDirectory(before.dir());
    dialog->setFileMode(QFileDialog::ExistingFile);
    const QString suffix = before.suffix();
    if (!suffix.isEmpty())
        dialog->setNameFilters({tr("%1 files (*.%1)").arg(suffix), tr("All files (*)")});
    return dialog.isAccepted() ? dialog->selectedFiles().value(0) : QString();
}

std::optional<std::string> CLocateFileDlg::Choose(const MissingFile& file, QWidget* window) {
    ModalDialog<CLocateFileDlg> dialog(file, window);
    return dialog.isAccepted() ? std::optional(dialog->GetPlace()) : std::nullopt;
}

} // namespace tavix
