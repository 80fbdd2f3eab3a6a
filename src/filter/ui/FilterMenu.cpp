#include "filter/ui/FilterMenu.h"

#include "base/ui/QtText.h"
#include "filter/FilterModel.h"
#include "filter/FilterSummary.h"
#include "filter/OneLine.h"

#include <QInputDialog>

namespace tavix {

namespace {

// Characters.
constexpr std::size_t kLongestWords = 69;
constexpr std::size_t kLongestTip = 599;

/// Escapes ampersands, which would mark a letter as the mnemonic.
QString asMenuText(const std::string& text) {
    return toQString(Shortened(OneLine(text), kLongestWords)).replace(u'&', QStringLiteral("&&"));
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
    // Escaped, since a value may look like markup.
    action->setToolTip(
        QStringLiteral("<p>%1</p>").arg(toQString(Shortened(FilterSummary(text), kLongestTip)).toHtmlEscaped()));
    return action;
}

void FilterMenu::Take(const std::string& text) {
    // asks before edits are lost
    if (!m_model.SetEditMode(false))
        return;
    m_model.LoadText(text);
    Q_EMIT Taken();
}

bool FilterMenu::MayReplace(const std::string& name) const {
    const auto known = m_memory.FindName(m_model.Kind(), name);
    return !known || m_messages.ask("A filter named \"" + *known + "\" exists already. Replace it?", "Save Filter",
                                    Messages::Answer::No) == Messages::Answer::Yes;
}

void FilterMenu::KeepUnderName() {
    if (!m_model.Accept()) {
        Q_EMIT Refused();
        return;
    }
    QString name;
    // A rejected name is offered again for correction.
    while (true) {
        bool isOk = false;
        name = QInputDialog::getText(parentWidget()->window(), tr("Save Filter"), tr("&Name of the filter:"),
                                     QLineEdit::Normal, name, &isOk);
        // The report may have been closed meanwhile, and the filter dialog with it.
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
