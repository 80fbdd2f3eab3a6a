#include "shell/WelcomePage.h"

#include "base/ui/QtText.h"
#include "base/ui/Theme.h"

#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavix::shell {

namespace {

constexpr int kColumnWidth = 560;
constexpr int kRowHeight = 34;

QLabel* quietLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    QPalette colors = label->palette();
    // On the base colour, text takes the colour that belongs to it.
    colors.setColor(QPalette::Text, quietText(colors));
    label->setPalette(colors);
    return label;
}

} // namespace

WelcomePage::WelcomePage(QWidget* parent)
    : QWidget(parent),
      m_open(new QPushButton(QStringLiteral("&Open Repository..."), this)),
      m_recentTitle(new QLabel(QStringLiteral("Opened lately"), this)),
      m_recent(new QListWidget(this)) {
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    auto* title = new QLabel(QStringLiteral("Tavix"), this);
    QFont titleFont = font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 2.4);
    titleFont.setWeight(QFont::DemiBold);
    title->setFont(titleFont);
    QFont sectionFont = font();
    sectionFont.setWeight(QFont::DemiBold);
    m_recentTitle->setFont(sectionFont);

    m_open->setDefault(true);
    m_open->setMinimumHeight(34);
    m_open->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(m_open, &QPushButton::clicked, this, &WelcomePage::openRequested);
    m_recent->setAccessibleName(QStringLiteral("Repositories opened lately"));
    m_recent->setFrameShape(QFrame::NoFrame);
    m_recent->setUniformItemSizes(true);
    m_recent->setTextElideMode(Qt::ElideMiddle);
    m_recent->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const auto choose = [this](const QListWidgetItem* item) {
        Q_EMIT recentChosen(item->data(Qt::UserRole).toString());
    };
    connect(m_recent, &QListWidget::itemActivated, this, choose);
    connect(m_recent, &QListWidget::itemClicked, this, choose);

    auto* column = new QVBoxLayout;
    column->setSpacing(10);
    column->addStretch(2);
    column->addWidget(title);
    column->addWidget(quietLabel(QStringLiteral("Open a profile repository to look at its tables, fields and metrics, "
                                                "or drop its file on this window."),
                                 this));
    column->addSpacing(6);
    column->addWidget(m_open);
    column->addSpacing(18);
    column->addWidget(m_recentTitle);
    column->addWidget(m_recent, 3);
    column->addWidget(quietLabel(QStringLiteral("A repository is made by the program tavix:\n"
                                                "tavix profile table.csv --repository profiles.tavix"),
                                 this));
    column->addStretch(2);
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(24, 24, 24, 24);
    layout->addLayout(column, 0, 1);
    layout->setColumnStretch(0, 1);
    layout->setColumnMinimumWidth(1, kColumnWidth);
    layout->setColumnStretch(2, 1);
}

void WelcomePage::setRecent(const std::vector<std::string>& paths) {
    m_recent->clear();
    for (const std::string& path : paths) {
        const QString file = toQString(path);
        auto* item = new QListWidgetItem(
            QStringLiteral("%1    %2").arg(QFileInfo(file).fileName(), QFileInfo(file).absolutePath()), m_recent);
        item->setData(Qt::UserRole, file);
        item->setToolTip(file.toHtmlEscaped());
        item->setSizeHint({0, kRowHeight});
    }
    m_recentTitle->setVisible(!paths.empty());
    m_recent->setVisible(!paths.empty());
}

} // namespace tavix::shell
