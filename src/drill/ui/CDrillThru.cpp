#include "drill/ui/CDrillThru.h"

#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "drill/DrillOutput.h"
#include "drill/ui/DrillPrint.h"
#include "drill/ui/ReadingProgress.h"
#include "grid/ui/CUGCtrl.h"
#include "settings/Settings.h"

#include <QDialogButtonBox>
#include <QFile>
#include <QGuiApplication>
#include <QIcon>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPrinter>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace tavix {

namespace {

constexpr int kMargin = 12;
constexpr QSize kUsualSize(900, 560);
constexpr int kSmallestWidth = 420;
// A search in this many cells takes long enough to show the wait cursor.
constexpr std::int64_t kManyCells = 1'000'000;

// As wide as the columns need, within limits.
QSize sizeFor(const CDrillThruDataSrc& source, const QScreen* screen) {
    int width = 60;
    for (int column = 0; column < source.GetColumnCount(); ++column)
        width += source.GetColumn(column).width;
    const QSize most = screen ? screen->availableSize() * 9 / 10 : kUsualSize;
    return QSize(std::clamp(width, kSmallestWidth + 180, kUsualSize.width() + 200), kUsualSize.height())
        .boundedTo(most);
}

QToolButton* arrowButton(Qt::ArrowType arrow, const QString& name, const QString& keys, QWidget* parent) {
    auto* button = new QToolButton(parent);
    button->setArrowType(arrow);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    button->setAccessibleName(name);
    button->setToolTip(QStringLiteral("%1 (%2)").arg(name, keys));
    return button;
}

} // namespace

CDrillThru::CDrillThru(DrillRequest request, ReadingProgress& progress, SettingsStore& settings, Messages& messages,
                       QWidget* parent, DrillDialogs dialogs)
    // A dialog stays above the window that opened it; the other flags give it the buttons of an ordinary window.
    : QDialog(parent, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowMinMaxButtonsHint |
                          Qt::WindowCloseButtonHint),
      m_settings(settings),
      m_messages(messages),
      m_dialogs(std::move(dialogs)),
      m_context(request.context) {
    setObjectName(QStringLiteral("drillThru"));
    setWindowTitle(toQString(drillTitle(request.origin)));
    setAccessibleName(windowTitle() + QStringLiteral(" · ") + toQString(request.subject).simplified());
    if (parent)
        setWindowIcon(parent->window()->windowIcon());
    MakeControls(request.subject);
    m_grid->setFont(toQFont(readStatFont(m_settings), font()));
    m_grid->SetShowsInvisible(readFlag(m_settings, Setting::ShowInvisible));
    ReadRows(std::move(request), progress);
    m_grid->SetSource(&m_source);
    const bool hasRows = m_source.GetRowCount() > 0;
    m_export->setEnabled(hasRows);
    m_print->setEnabled(hasRows);
    m_find->setEnabled(hasRows);
    m_grid->SortBy(0, false);
    m_grid->SelectRow(0);
    m_grid->setFocus();
}

// The grid must not ask for rows that are being destroyed.
CDrillThru::~CDrillThru() {
    m_grid->SetSource(nullptr);
}

CDrillThru* CDrillThru::Show(DrillRequest request, ReadingProgress& progress, SettingsStore& settings,
                             Messages& messages, QWidget* parent, const QWidget& over, DrillDialogs dialogs) {
    auto* window = new CDrillThru(std::move(request), progress, settings, messages, parent, std::move(dialogs));
    window->ShowOver(over);
    return window;
}

void CDrillThru::ShowOver(const QWidget& over) {
    setAttribute(Qt::WA_DeleteOnClose);
    const QWidget& frame = *over.window();
    resize(sizeFor(m_source, frame.screen()));
    QRect place(QPoint(), size());
    place.moveCenter(frame.geometry().center());
    if (const QScreen* screen = frame.screen()) {
        const QRect room = screen->availableGeometry();
        place.moveLeft(std::max(room.left(), std::min(place.left(), room.right() - place.width())));
        place.moveTop(std::max(room.top(), std::min(place.top(), room.bottom() - place.height())));
    }
    move(place.topLeft());
    show();
    if (m_failed)
        m_messages.warn(kDrillUnavailable, kDrillErrorCaption);
}

void CDrillThru::MakeControls(const std::string& subject) {
    m_subject = new QLabel(toQString(subject).simplified(), this);
    m_subject->setObjectName(QStringLiteral("subject"));
    // The subject quotes the data, which may look like markup.
    m_subject->setTextFormat(Qt::PlainText);
    m_subject->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_subject->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    QFont strong = m_subject->font();
    strong.setWeight(QFont::DemiBold);
    m_subject->setFont(strong);

    m_find = new QLineEdit(this);
    m_find->setObjectName(QStringLiteral("find"));
    m_find->setPlaceholderText(tr("Find in all columns (Ctrl+F)"));
    m_find->setAccessibleName(tr("Find in all columns"));
    m_find->setClearButtonEnabled(true);
    m_find->setMinimumWidth(240);
    m_find->setMaxLength(1000);
    m_find->setTextMargins(4, 0, 4, 0);
    m_notFound = new QLabel(tr("Not found"), this);
    m_notFound->setObjectName(QStringLiteral("notFound"));
    m_notFound->hide();
    QToolButton* previous = arrowButton(Qt::UpArrow, tr("Find previous"), tr("Shift+F3"), this);
    QToolButton* next = arrowButton(Qt::DownArrow, tr("Find next"), tr("F3"), this);

    m_grid = new CUGCtrl(this);
    m_grid->setAccessibleName(tr("Rows of the source"));
    m_status = new QLabel(this);
    m_status->setObjectName(QStringLiteral("status"));
    m_status->setTextFormat(Qt::PlainText);
    m_status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_status->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(this);
    m_export = buttons->addButton(tr("&Export..."), QDialogButtonBox::ActionRole);
    m_print = buttons->addButton(tr("&Print..."), QDialogButtonBox::ActionRole);
    QPushButton* close = buttons->addButton(tr("&Close"), QDialogButtonBox::RejectRole);
    m_export->setObjectName(QStringLiteral("export"));
    m_print->setObjectName(QStringLiteral("print"));
    close->setObjectName(QStringLiteral("close"));
    // Enter is for the list and the search, not for a default button.
    for (QAbstractButton* button : buttons->buttons())
        static_cast<QPushButton*>(button)->setAutoDefault(false);

    auto* above = new QHBoxLayout();
    above->setContentsMargins(kMargin, kMargin, kMargin, kMargin - 2);
    above->addWidget(m_subject, 1);
    above->addWidget(m_notFound);
    above->addWidget(m_find);
    above->addWidget(previous);
    above->addWidget(next);
    auto* below = new QHBoxLayout();
    below->setContentsMargins(kMargin, kMargin - 2, kMargin, kMargin);
    below->addWidget(m_status, 1);
    below->addWidget(buttons);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(above);
    layout->addWidget(m_grid, 1);
    layout->addLayout(below);
    setMinimumWidth(kSmallestWidth);

    connect(close, &QPushButton::clicked, this, &QDialog::close);
    connect(m_export, &QAbstractButton::clicked, this, &CDrillThru::Export);
    connect(m_print, &QAbstractButton::clicked, this, &CDrillThru::Print);
    connect(m_find, &QLineEdit::textChanged, this, [this] { Find(SearchDirection::Forward, false); });
    connect(next, &QToolButton::clicked, this, [this] { Find(SearchDirection::Forward, true); });
    connect(previous, &QToolButton::clicked, this, [this] { Find(SearchDirection::Backward, true); });
    const auto onKey = [this](const QKeySequence& keys, auto&& act) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, act);
    };
    onKey(QKeySequence::Find, [this] {
        m_find->setFocus(Qt::ShortcutFocusReason);
        m_find->selectAll();
    });
    onKey(Qt::Key_F3, [this] { Find(SearchDirection::Forward, true); });
    onKey(Qt::SHIFT | Qt::Key_F3, [this] { Find(SearchDirection::Backward, true); });
}

void CDrillThru::ReadRows(DrillRequest request, ReadingProgress& progress) {
    const std::int64_t limit = readInteger(m_settings, Setting::MaxDrillThruRows);
    DrillResult result = readDrillRows(std::move(request.cursor), request.mode, limit,
                                       [&progress](std::int64_t rows) { return progress.Found(rows); });
    m_failed = result.end == DrillEnd::Failed;
    m_status->setText(toQString(drillStatus(result, request.inRun)));
    m_source.SetRows(std::move(result.rows));
}

void CDrillThru::Find(SearchDirection direction, bool beyond) {
    const std::int64_t cells = m_source.GetRowCount() * m_source.GetColumnCount();
    const auto busy = cells >= kManyCells ? m_messages.busy() : nullptr;
    const QModelIndex current = m_grid->currentIndex();
    const CellPlace from = current.isValid() ? CellPlace{current.row(), current.column()} : CellPlace{};
    const auto found = findText(m_source, toUtf8(m_find->text()), from, direction, beyond);
    m_notFound->setVisible(!found && !m_find->text().isEmpty());
    if (!found)
        return;
    const QModelIndex index = m_grid->model()->index(static_cast<int>(found->row), found->column);
    m_grid->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    m_grid->scrollTo(index);
}

void CDrillThru::keyPressEvent(QKeyEvent* event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && m_find->hasFocus())
        return Find(event->modifiers().testFlag(Qt::ShiftModifier) ? SearchDirection::Backward
                                                                   : SearchDirection::Forward,
                    true);
    // The first Escape clears the search, the next closes the window.
    if (event->key() == Qt::Key_Escape && m_find->hasFocus() && !m_find->text().isEmpty()) {
        m_find->clear();
        return m_grid->setFocus();
    }
    QDialog::keyPressEvent(event);
}

void CDrillThru::Export() {
    const QString path =
        m_dialogs.chooseFile(*this, toQString(drillFolder(m_settings)), toQString(drillFileName(m_context)));
    if (!path.isEmpty())
        saveDrillRows(m_source, QFile::encodeName(path).toStdString(), m_context, m_messages);
}

void CDrillThru::Print() {
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(toQString(kDrillPrintJob));
    if (m_source.GetColumnCount() > 6)
        printer.setPageOrientation(QPageLayout::Landscape);
    if (!m_dialogs.choosePrinter(*this, printer))
        return;
    const auto busy = m_messages.busy();
    if (const Status printed = printDrillRows(m_source, m_subject->text(), m_grid->font(), printer); !printed)
        m_messages.warn(printed.error().text, "Print");
}

} // namespace tavix
