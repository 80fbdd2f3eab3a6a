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
    // On a base-coloured background, a label draws in QPalette::Text.
    colors.setColor(QPalette::Text, quietText(colors));
    label->setPalette(colors);
    return label;
}

} // namespace

WelcomePage::WelcomePage(QWidget* parent)
    : QWidget(parent),
      m_open(new QPushButton(QStringLiteral("&Open Repository..."), this)),
      m_recent(makeSection(QStringLiteral("Recent repositories"), QStringLiteral("Recent repositories"))),
      m_vault(makeSection({}, QStringLiteral("Repositories of the vault"))) {
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    auto* title = new QLabel(QStringLiteral("Tavix"), this);
    QFont titleFont = font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 2.4);
    titleFont.setWeight(QFont::DemiBold);
    title->setFont(titleFont);
    m_open->setDefault(true);
    m_open->setMinimumHeight(34);
    m_open->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(m_open, &QPushButton::clicked, this, &WelcomePage::openRequested);
    auto* column = new QVBoxLayout;
    column->setSpacing(10);
    column->addStretch(2);
    column->addWidget(title);
    column->addWidget(quietLabel(QStringLiteral("Open a profile repository to see its tables, fields and metrics, "
                                                "or drop its file on this window."),
                                 this));
    column->addSpacing(6);
    column->addWidget(m_open);
    column->addSpacing(18);
    for (const Section& section : {m_recent, m_vault}) {
        column->addWidget(section.title);
        column->addWidget(section.list, 3);
    }
    column->addWidget(quietLabel(QStringLiteral("The program tavix makes repositories:\n"
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

WelcomePage::Section WelcomePage::makeSection(const QString& title, const QString& spoken) {
    const Section section{new QLabel(title, this), new QListWidget(this)};
    QFont strong = font();
    strong.setWeight(QFont::DemiBold);
    section.title->setFont(strong);
    section.title->setTextFormat(Qt::PlainText);
    // A long path must not widen the page.
    section.title->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    section.list->setAccessibleName(spoken);
    section.list->setFrameShape(QFrame::NoFrame);
    section.list->setUniformItemSizes(true);
    section.list->setTextElideMode(Qt::ElideMiddle);
    section.list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const auto choose = [this](const QListWidgetItem* item) {
        Q_EMIT repositoryChosen(item->data(Qt::UserRole).toString());
    };
    connect(section.list, &QListWidget::itemActivated, this, choose);
    connect(section.list, &QListWidget::itemClicked, this, choose);
    fill(section, {});
    return section;
}

void WelcomePage::fill(const Section& section, const std::vector<std::string>& paths) {
    section.list->clear();
    for (const std::string& path : paths) {
        const QString file = toQString(path);
        auto* item = new QListWidgetItem(
            QStringLiteral("%1    %2").arg(QFileInfo(file).fileName(), QFileInfo(file).absolutePath()), section.list);
        item->setData(Qt::UserRole, file);
        item->setToolTip(file.toHtmlEscaped());
        item->setSizeHint({0, kRowHeight});
    }
    section.title->setVisible(!paths.empty());
    section.list->setVisible(!paths.empty());
}

void WelcomePage::setRecent(const std::vector<std::string>& paths) {
    fill(m_recent, paths);
}

void WelcomePage::setVault(const std::string& folder, const std::vector<std::string>& paths) {
    m_vault.title->setText(QStringLiteral("In the vault %1").arg(toQString(folder)));
    m_vault.title->setToolTip(toQString(folder).toHtmlEscaped());
    fill(m_vault, paths);
}

} // namespace tavix::shell
