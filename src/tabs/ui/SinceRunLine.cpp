#include "tabs/ui/SinceRunLine.h"

#include "base/ui/QtText.h"
#include "grid/ui/Tints.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QStylePainter>

namespace tavix {

namespace {

constexpr int kMargin = 12;
constexpr int kGap = 4;
constexpr int kShortestRun = 12; // characters
constexpr int kWidestList = 600; // pixels at 96 dpi

/// Ends a text that does not fit with an ellipsis.
class RunBox final : public QComboBox {
  public:
    using QComboBox::QComboBox;

  protected:
    void paintEvent(QPaintEvent*) override {
        QStylePainter painter(this);
        QStyleOptionComboBox option;
        initStyleOption(&option);
        const QRect room = style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
        option.currentText = fontMetrics().elidedText(option.currentText, Qt::ElideRight, room.width() - 2 * kGap);
        painter.drawComplexControl(QStyle::CC_ComboBox, option);
        painter.drawControl(QStyle::CE_ComboBoxLabel, option);
    }
};

void fill(QComboBox& box, const std::vector<RunRow>& runs, int chosen) {
    box.clear();
    for (const RunRow& run : runs)
        box.addItem(toQString(run.Label()), run.id);
    box.setCurrentIndex(box.findData(chosen));
    box.setEnabled(runs.size() > 1);
    box.setToolTip(box.currentText().toHtmlEscaped());
    const int widest = box.view()->sizeHintForColumn(0) + box.style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    box.view()->setMinimumWidth(qMin(widest, kWidestList * box.logicalDpiX() / 96));
}

} // namespace

SinceRunLine::SinceRunLine(QWidget* parent)
    : QWidget(parent), m_summary(new QLabel(this)), m_since(new RunBox(this)), m_until(new RunBox(this)) {
    setObjectName(QStringLiteral("sinceRunLine"));
    m_summary->setObjectName(QStringLiteral("summary"));
    m_summary->setTextFormat(Qt::PlainText);
    m_summary->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_since->setObjectName(QStringLiteral("sinceRun"));
    m_since->setAccessibleName(tr("Since run"));
    m_until->setObjectName(QStringLiteral("untilRun"));
    m_until->setAccessibleName(tr("Compared run"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(kMargin, kGap, kMargin, kGap + 1);
    layout->setSpacing(6);
    const auto add = [this, layout](const QString& text, QComboBox* box) {
        auto* label = new QLabel(text, this);
        label->setBuddy(box);
        // The list that drops down shows long descriptions.
        box->setMinimumContentsLength(kShortestRun);
        box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        box->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
        box->setMaxVisibleItems(20);
        layout->addWidget(label);
        layout->addWidget(box, 3);
        connect(box, &QComboBox::activated, this,
                [this] { Q_EMIT Chosen(m_since->currentIndex(), m_until->currentIndex()); });
    };
    add(tr("Since run:"), m_since);
    add(tr("to run:"), m_until);
    layout->addSpacing(6);
    layout->addWidget(m_summary, 3);
    setTabOrder(m_since, m_until);
}

void SinceRunLine::ShowRuns(const std::vector<RunRow>& runs, const ComparedRuns& pair) {
    fill(*m_since, runs, pair.since);
    fill(*m_until, runs, pair.until);
}

void SinceRunLine::ShowSummary(const QString& text) {
    m_words = text;
    m_summary->setAccessibleName(text);
    m_summary->setToolTip(text);
    FitSummary();
}

void SinceRunLine::FitSummary() {
    m_summary->setText(fontMetrics().elidedText(m_words, Qt::ElideRight, m_summary->width()));
}

QWidget* SinceRunLine::GetLastTabStop() const {
    return m_until;
}

void SinceRunLine::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    // The layout has not yet set the text's width.
    layout()->activate();
    FitSummary();
}

void SinceRunLine::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(tint::line(palette()));
    painter.drawLine(0, height() - 1, width(), height() - 1);
}

} // namespace tavix
