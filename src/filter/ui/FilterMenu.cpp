#include "filter/ui/FilterMenu.h"

#include "base/ui/QtText.h"
#include "filter/FilterModel.h"
#include "filter/FilterSummary.h"

#include <QInputDialog>

#include <algorithm>

namespace tavix {

namespace {

constexpr qsizetype kLongestWords = 70;
constexpr qsizetype kLongestTip = 600;

QString shortened(const std::string& text, qsizetype most) {
    const QString words = toQString(text).simplified();
    return words.size() > most ? words.left(most - 1) + QChar(0x2026) : words;
}

/// Names and values come from users and data: an ampersand is one.
QString asMenuText(const std::string& text) {
    return shortened(text, kLongestWords).replace(u'&', QStringLiteral("&&"));
}

} // namespace

FilterMenu::FilterMenu(FilterModel& model, SettingsStore& settings, Messages& messages, QWidget* parent)
    : QMenu(parent), m_model(model), m_memory(settings), m_messages(messages) {
    setObjectName(QStringLiteral("filterMenu"));
    setToolTipsVisible(true);
    connect(this, &QMenu::aboutToShow, this, &FilterMenu::Fill);
}

void FilterMenu::Fill() {
    clear();
    const DistributionKind kind = m_model.Kind();
    const std::vector<NamedFilter> named = m_memory.Named(kind);
    const std::vector<std::string> recent = m_memory.Recent(kind);
    if (!named.empty())
        addSection(tr("Named filters"));
    for (const NamedFilter& filter : named)
        AddFilter(filter.name, filter.text);
    addSection(tr("Recent filters"));
    for (const std::string& text : recent)
        AddFilter(FilterSummary(text), text);
    if (recent.empty())
        addAction(tr("None yet"))->setEnabled(false);
    addSeparator();
    addAction(tr("&Save Under a Name..."), this, &FilterMenu::KeepUnderName)
        ->setEnabled(!m_model.ComposeText().empty());
    QMenu* forget = addMenu(tr("&Delete a Name"));
    forget->setEnabled(!named.empty());
    for (const NamedFilter& filter : named)
        forget->addAction(asMenuText(filter.name), this, [this, name = filter.name] { Forget(name); });
}

QAction* FilterMenu::AddFilter(const std::string& words, const std::string& text) {
    QAction* action = addAction(asMenuText(words), this, [this, text] { Take(text); });
    // Escaped and in one piece: what looks like markup in a value is none.
    action->setToolTip(QStringLiteral("<p>%1</p>").arg(shortened(FilterSummary(text), kLongestTip).toHtmlEscaped()));
    return action;
}

void FilterMenu::Take(const std::string& text) {
    // Asks before what was edited is lost.
    if (!m_model.SetEditMode(false))
        return;
    m_model.LoadText(text);
    Q_EMIT Taken();
}

bool FilterMenu::MayReplace(const std::string& name) const {
    const QString wanted = toQString(name).simplified();
    const std::vector<NamedFilter> named = m_memory.Named(m_model.Kind());
    const auto known = std::find_if(named.begin(), named.end(), [&wanted](const NamedFilter& filter) {
        return toQString(filter.name).simplified().compare(wanted, Qt::CaseInsensitive) == 0;
    });
    return known == named.end() || m_messages.ask("A filter named \"" + known->name + "\" exists already. Replace it?",
                                                  "Save Filter", Messages::Answer::No) == Messages::Answer::Yes;
}

void FilterMenu::KeepUnderName() {
    if (!m_model.Accept()) {
        Q_EMIT Refused();
        return;
    }
    QString name;
    // A name that does not do is there again to be improved.
    while (true) {
        bool isOk = false;
        name = QInputDialog::getText(parentWidget()->window(), tr("Save Filter"), tr("&Name of the filter:"),
                                     QLineEdit::Normal, name, &isOk);
        // The filter dialog may have been closed together with the report.
        if (!isOk || !parentWidget()->isVisible())
            return;
        if (!MayReplace(toUtf8(name))) {
            if (!parentWidget()->isVisible())
                return;
            continue;
        }
        const Status kept = m_memory.Keep(m_model.Kind(), toUtf8(name), m_model.FilterText());
        if (kept)
            return;
        m_messages.warn(kept.error().text, "Save Filter");
    }
}

void FilterMenu::Forget(const std::string& name) {
    if (m_messages.ask("Delete the filter named \"" + name + "\"?", "Delete Filter", Messages::Answer::No) !=
        Messages::Answer::Yes)
        return;
    if (const Status forgotten = m_memory.Forget(m_model.Kind(), name); !forgotten)
        m_messages.warn(forgotten.error().text, "Delete Filter");
}

} // namespace tavix
