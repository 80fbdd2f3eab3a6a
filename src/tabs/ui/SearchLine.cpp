#include "tabs/ui/SearchLine.h"

#include "base/ui/QtText.h"
#include "base/ui/QuietPalette.h"
#include "filter/QuickSearch.h"
#include "grid/ui/Tints.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QSignalBlocker>

#include <algorithm>
#include <chrono>

namespace tavix {

namespace {

constexpr int kMargin = 12;
constexpr int kGap = 4;
constexpr int kLeastSearch = 140;
constexpr int kMostNeeded = 200;
constexpr int kMostSearch = 320;
constexpr int kFieldFrame = 28; ///< margins and frame of the field
constexpr std::chrono::milliseconds kPause(400);
/// A tooltip shows no more of a long filter.
constexpr qsizetype kLongestTip = 1000;

QString helpOnSearch() {
    return QStringLiteral(
        "<table cellspacing='0' cellpadding='2'>"
        "<tr><td><b>text</b></td><td>contains it, ignoring case</td></tr>"
        "<tr><td><b>=x</b>&nbsp; <b>&lt;&gt;x</b></td><td>is, is not exactly x</td></tr>"
        "<tr><td><b>&gt;n</b>&nbsp; <b>&gt;=n</b>&nbsp; <b>&lt;n</b>&nbsp; <b>&lt;=n</b></td>"
        "<td>compares numbers, dates or texts</td></tr>"
        "<tr><td><b>1..9</b>&nbsp; <b>1~9</b></td><td>from the first to the second</td></tr>"
        "<tr><td><b>~expression</b></td><td>matches the regular expression</td></tr>"
        "<tr><td><b>null</b>&nbsp; <b>!null</b>&nbsp; <b>empty</b>&nbsp; <b>!empty</b></td><td></td></tr>"
        "<tr><td><b>&quot;null&quot;</b></td><td>the text in quotes, literally</td></tr></table>");
}

} // namespace

SearchLine::SearchLine(QWidget* parent)
    : QWidget(parent),
      m_search(new QLineEdit(this)),
      m_base(new QLabel(this)),
      m_text(new QLabel(this)),
      m_edit(new QPushButton(tr("Edit..."), this)),
      m_stop(new QPushButton(tr("Stop"), this)) {
    setObjectName(QStringLiteral("filterLine"));
    m_search->setObjectName(QStringLiteral("search"));
    m_search->setAccessibleName(tr("Search the list"));
    m_search->setClearButtonEnabled(true);
    m_search->setMaxLength(static_cast<int>(kLongestQuickSearch) / 4);
    m_search->setTextMargins(4, 0, 4, 0);
    m_search->setMinimumWidth(kLeastSearch);
    m_search->setMaximumWidth(kMostSearch);
    m_search->setToolTip(helpOnSearch());
    m_search->installEventFilter(this);
    m_base->setObjectName(QStringLiteral("base"));
    m_base->setTextFormat(Qt::PlainText);
    m_base->setTextInteractionFlags(Qt::TextSelectableByMouse);
    // It quotes values.
    m_text->setTextFormat(Qt::PlainText);
    m_text->setObjectName(QStringLiteral("filterText"));
    m_text->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_edit->setObjectName(QStringLiteral("editFilter"));
    m_edit->setAccessibleName(tr("Edit the filter"));
    m_edit->setToolTip(m_edit->accessibleName());
    m_stop->setObjectName(QStringLiteral("stopFilter"));
    m_stop->setAccessibleName(tr("Stop filtering"));
    m_stop->setToolTip(m_stop->accessibleName());
    // The buttons are as high as the field.
    for (QPushButton* button : {m_edit, m_stop})
        button->setFixedHeight(m_search->sizeHint().height());
    m_stop->hide();
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(kMargin, kGap, kMargin, kGap + 1);
    layout->setSpacing(8);
    layout->addWidget(m_search, 3);
    layout->addWidget(m_base);
    layout->addWidget(m_text, 2);
    layout->addWidget(m_edit);
    layout->addWidget(m_stop);
    m_pause.setSingleShot(true);
    m_pause.setInterval(kPause);
    connect(&m_pause, &QTimer::timeout, this, [this] { SearchNow(false); });
    connect(m_search, &QLineEdit::textEdited, this, [this] {
        ShowProblem({});
        if (m_searchesWhileTyping)
            m_pause.start();
    });
    // The button in the field clears it like Escape.
    connect(m_search, &QLineEdit::textChanged, this, [this](const QString& text) {
        if (text.isEmpty())
            SearchNow(true);
    });
    connect(m_edit, &QPushButton::clicked, this, &SearchLine::EditClicked);
    connect(m_stop, &QPushButton::clicked, this, &SearchLine::StopClicked);
    ApplyColors();
}

void SearchLine::SearchNow(bool isFinal) {
    m_pause.stop();
    Q_EMIT SearchRequested(isFinal);
}

void SearchLine::ShowSearch(const FreqDistModel::SearchField& field) {
    m_search->setEnabled(field.isEnabled);
    m_search->setPlaceholderText(toQString(field.placeholder));
    // The one that explains the language may be cut.
    const int wanted = m_search->fontMetrics().horizontalAdvance(m_search->placeholderText()) + kFieldFrame;
    m_search->setMinimumWidth(std::clamp(wanted, kLeastSearch, kMostNeeded));
    const QString text = toQString(field.text);
    const bool isTyping = m_search->hasFocus() && (m_pause.isActive() || !m_problem.isEmpty());
    if (isTyping || text == m_search->text())
        return;
    const QSignalBlocker blocker(m_search);
    m_search->setText(text);
    ShowProblem({});
}

QString SearchLine::GetText() const {
    return m_search->text();
}

void SearchLine::ShowProblem(const QString& problem) {
    if (problem == m_problem)
        return;
    m_problem = problem;
    // The message takes its room.
    m_base->setVisible(problem.isEmpty() && !m_base->text().isEmpty());
    layout()->activate();
    FitText();
}

void SearchLine::ShowBase(const QString& text) {
    m_base->setText(text);
    m_base->setVisible(m_problem.isEmpty() && !text.isEmpty());
}

void SearchLine::ShowFilter(const FreqDistModel::Line& line) {
    m_isAlarming = line.isAlarming;
    m_isFiltered = line.isShown;
    m_words = line.isShown ? toQString(line.text).simplified() : QString();
    m_edit->setText(line.isShown ? tr("Edit...") : tr("Filter..."));
    m_stop->setVisible(line.isShown);
    // A summary needs room more than an empty field.
    auto* row = static_cast<QHBoxLayout*>(layout());
    row->setStretchFactor(m_search, line.isShown ? 2 : 3);
    row->setStretchFactor(m_text, line.isShown ? 5 : 2);
    row->activate();
    FitText();
}

void SearchLine::FitText() {
    const QString& words = m_problem.isEmpty() ? m_words : m_problem;
    const QString tip = words.size() > kLongestTip ? words.left(kLongestTip) + QChar(0x2026) : words;
    m_text->setToolTip(tip.isEmpty() ? QString() : QStringLiteral("<p>%1</p>").arg(tip.toHtmlEscaped()));
    m_text->setAccessibleName(tip);
    ApplyColors();
    // A filter may name a million values; measuring them all would be slow.
    m_text->setText(fontMetrics().elidedText(words.left(kLongestTip), Qt::ElideRight, m_text->width()));
}

void SearchLine::FocusSearch() {
    m_search->setFocus(Qt::ShortcutFocusReason);
    m_search->selectAll();
}

QWidget* SearchLine::GetLastTabStop() const {
    return m_isFiltered ? m_stop : m_edit;
}

bool SearchLine::eventFilter(QObject* watched, QEvent* event) {
    if (watched != m_search || event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    switch (key->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        SearchNow(true);
        return true;
    case Qt::Key_Escape:
        // The next Escape belongs to the window.
        if (m_search->text().isEmpty())
            break;
        ShowProblem({});
        m_search->clear();
        return true;
    case Qt::Key_Down:
        Q_EMIT ListRequested();
        return true;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void SearchLine::ApplyColors() {
    m_base->setPalette(quietPalette(palette()));
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, m_isAlarming || !m_problem.isEmpty() ? tint::alert(palette())
                                                                               : palette().color(QPalette::WindowText));
    m_text->setPalette(colors);
}

void SearchLine::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        ApplyColors();
    else if (event->type() == QEvent::FontChange)
        FitText();
}

void SearchLine::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    // The layout has not yet set the text's width.
    layout()->activate();
    FitText();
}

void SearchLine::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(tint::line(palette()));
    painter.drawLine(0, height() - 1, width(), height() - 1);
}

} // namespace tavix
