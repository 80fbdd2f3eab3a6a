#include "drill/ui/CDrillThru.h"

#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "drill/DrillOutput.h"
#include "drill/ui/DrillPrint.h"
#include "drill/ui/ReadingProgress.h"
#include "grid/ui/CUGCtrl.h"
#include "settings/Settings.h"

#include <QCheckBox>
#include <QComboBox>
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
#include <chrono>
#include <initializer_list>
#include <utility>

namespace tavix {

namespace {

constexpr int kMargin = 12;
constexpr QSize kUsualSize(900, 560);
constexpr int kSmallestWidth = 540;
// A search in this many cells takes long enough to show the wait cursor.
constexpr std::int64_t kManyCells = 1'000'000;
/// Of typing, before rows are searched.
constexpr std::chrono::milliseconds kPause(300);

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
    for (QWidget* control : std::initializer_list<QWidget*>{m_find, m_column, m_onlyMatching})
        control->setEnabled(hasRows);
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

    auto* above = new QVBoxLayout();
    above->setContentsMargins(kMargin, kMargin, kMargin, kMargin - 2);
    above->setSpacing(8);
    above->addWidget(m_subject);
    MakeSearch(*above);
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
    const auto onKey = [this](const QKeySequence& keys, auto&& act) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, act);
    };
    onKey(QKeySequence::Find, [this] {
        m_find->setFocus(Qt::ShortcutFocusReason);
        m_find->selectAll();
    });
    onKey(Qt::CTRL | Qt::SHIFT | Qt::Key_F, [this] { m_onlyMatching->toggle(); });
    onKey(Qt::Key_F3, [this] { Find(SearchDirection::Forward, true); });
    onKey(Qt::SHIFT | Qt::Key_F3, [this] { Find(SearchDirection::Backward, true); });
}

void CDrillThru::MakeSearch(QVBoxLayout& above) {
    m_find = new QLineEdit(this);
    m_find->setObjectName(QStringLiteral("find"));
    m_find->setAccessibleName(tr("Find in all columns"));
    m_find->setClearButtonEnabled(true);
    m_find->setMinimumWidth(120);
    m_find->setMaximumWidth(420);
    m_find->setMaxLength(1000);
    m_find->setTextMargins(4, 0, 4, 0);
    m_column = new QComboBox(this);
    m_column->setObjectName(QStringLiteral("searchedColumn"));
    m_column->setAccessibleName(tr("Column to search"));
    m_column->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_column->setMinimumContentsLength(14);
    m_column->addItem(tr("All columns"));
    m_onlyMatching = new QCheckBox(tr("&Only matching rows"), this);
    m_onlyMatching->setObjectName(QStringLiteral("onlyMatching"));
    m_onlyMatching->setToolTip(tr("Show the rows that match: text, =x, <>x, >n, 1..9, ~regexp, null (%1)")
                                   .arg(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_F).toString()));
    m_notFound = new QLabel(this);
    m_notFound->setObjectName(QStringLiteral("notFound"));
    m_notFound->setTextFormat(Qt::PlainText);
    m_notFound->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_notFound->hide();
    QToolButton* previous = arrowButton(Qt::UpArrow, tr("Find previous"), tr("Shift+F3"), this);
    QToolButton* next = arrowButton(Qt::DownArrow, tr("Find next"), tr("F3"), this);
    auto* line = new QHBoxLayout();
    line->addWidget(m_find, 3);
    line->addWidget(previous);
    line->addWidget(next);
    line->addWidget(m_column);
    line->addWidget(m_onlyMatching);
    line->addWidget(m_notFound, 2);
    line->addStretch(0);
    above.addLayout(line);

    m_pause.setSingleShot(true);
    m_pause.setInterval(kPause);
    connect(&m_pause, &QTimer::timeout, this, &CDrillThru::Filter);
    connect(m_find, &QLineEdit::textChanged, this, &CDrillThru::SearchChanged);
    connect(m_column, &QComboBox::currentIndexChanged, this, &CDrillThru::SearchChanged);
    connect(m_onlyMatching, &QCheckBox::toggled, this, [this] {
        Filter();
        SearchChanged();
    });
    connect(next, &QToolButton::clicked, this, [this] { Find(SearchDirection::Forward, true); });
    connect(previous, &QToolButton::clicked, this, [this] { Find(SearchDirection::Backward, true); });
}

void CDrillThru::ReadRows(DrillRequest request, ReadingProgress& progress) {
    const std::int64_t limit = readInteger(m_settings, Setting::MaxDrillThruRows);
    DrillResult result = readDrillRows(std::move(request.cursor), request.mode, limit,
                                       [&progress](std::int64_t rows) { return progress.Found(rows); });
    m_failed = result.end == DrillEnd::Failed;
    m_statusOfAll = drillStatus(result, request.inRun);
    m_status->setText(toQString(m_statusOfAll));
    m_source.SetRows(std::move(result.rows));
    for (const DrillColumn& column : m_source.GetRows().columns())
        m_column->addItem(toQString(column.name).simplified());
    SearchChanged();
}

void CDrillThru::Find(SearchDirection direction, bool beyond) {
    const std::int64_t cells = m_source.GetRowCount() * m_source.GetColumnCount();
    const auto busy = cells >= kManyCells ? m_messages.busy() : nullptr;
    const QModelIndex current = m_grid->currentIndex();
    const CellPlace from = current.isValid() ? CellPlace{current.row(), current.column()} : CellPlace{};
    const auto found = findText(m_source, toUtf8(m_find->text()), from, direction, beyond, SearchedColumn());
    ShowProblem(!found && !m_find->text().isEmpty() ? tr("Not found") : QString());
    if (!found)
        return;
    const QModelIndex index = m_grid->model()->index(static_cast<int>(found->row), found->column);
    m_grid->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    m_grid->scrollTo(index);
}

int CDrillThru::SearchedColumn() const {
    return m_column->currentIndex() > 0 ? m_column->currentIndex() - 1 : kAllColumns;
}

void CDrillThru::ShowProblem(const QString& problem) {
    m_notFound->setText(problem);
    m_notFound->setToolTip(problem);
    m_notFound->setVisible(!problem.isEmpty());
}

void CDrillThru::SearchChanged() {
    const bool filters = m_onlyMatching->isChecked();
    m_find->setPlaceholderText(
        filters ? tr("Rows with: text, =x, >n, 1..9, ~regexp, null")
                : tr("Find in %1 (Ctrl+F)")
                      .arg(SearchedColumn() == kAllColumns ? tr("all columns") : m_column->currentText()));
    ShowProblem({});
    if (!filters)
        return Find(SearchDirection::Forward, false);
    const std::int64_t cells = std::int64_t{m_source.GetRows().count()} * m_source.GetColumnCount();
    if (m_find->text().isEmpty())
        Filter();
    else if (cells < kManyCells) // else Return searches
        m_pause.start();
}

void CDrillThru::Filter() {
    m_pause.stop();
    if (!m_onlyMatching->isChecked())
        return ShowOnly(std::nullopt);
    const Result<std::optional<QuickTerm>> term = ParseQuickSearch(toUtf8(m_find->text()));
    if (term && !*term)
        return ShowOnly(std::nullopt);
    const auto busy = m_messages.busy();
    Result<std::vector<std::uint32_t>> rows =
        term ? searchRows(m_source.GetRows(), **term, SearchedColumn()) : term.error();
    ShowProblem(rows ? QString() : toQString(rows.error().text));
    // A text that is not understood leaves the rows as they are.
    if (rows)
        ShowOnly(std::move(*rows));
}

void CDrillThru::ShowOnly(std::optional<std::vector<std::uint32_t>> rows) {
    if (!rows && m_source.ShowsAll())
        return;
    m_source.ShowOnly(std::move(rows));
    m_grid->RowsRefilled();
    m_grid->SelectRow(0);
    const std::int64_t all = m_source.GetRows().count();
    m_status->setText(
        toQString(m_source.ShowsAll() ? m_statusOfAll : searchStatus(m_source.GetRowCount(), all, m_statusOfAll)));
    for (QAbstractButton* button : {m_export, m_print})
        button->setEnabled(m_source.GetRowCount() > 0);
}

void CDrillThru::keyPressEvent(QKeyEvent* event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && m_find->hasFocus() && m_onlyMatching->isChecked())
        return Filter();
    if (event->key() == Qt::Key_Down && m_find->hasFocus())
        return m_grid->setFocus();
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
