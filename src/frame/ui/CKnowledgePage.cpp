#include "frame/ui/CKnowledgePage.h"

#include "base/ui/QtText.h"

#include <QCheckBox>
#include <QCompleter>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QVBoxLayout>

namespace tavix {

namespace {

constexpr int kGap = 12;

QStringList localeNames() {
    QStringList names;
    for (const QLocale& locale :
         QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory))
        names.append(locale.name());
    names.removeDuplicates();
    names.sort();
    return names;
}

QLabel* explanation(const QString& text) {
    auto* label = new QLabel(text);
    label->setWordWrap(true);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

} // namespace

CKnowledgePage::CKnowledgePage(OptionValues& values, QWidget* parent)
    : QWidget(parent),
      m_values(values),
      m_locale(new QLineEdit(toQString(values.defaultLocale))),
      m_override(new QCheckBox(tr("Override &field widths in new jobs"))) {
    m_locale->setObjectName(QStringLiteral("DefaultLocale"));
    m_locale->setPlaceholderText(tr("None"));
    m_locale->setClearButtonEnabled(true);
    m_locale->setMaximumWidth(260);
    auto* completer = new QCompleter(localeNames(), m_locale);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    m_locale->setCompleter(completer);
    m_override->setObjectName(QStringLiteral("OverrideFieldWidths"));
    m_override->setChecked(values.overrideFieldWidths);

    auto* language = new QGroupBox(tr("Language"));
    auto* form = new QFormLayout(language);
    form->setHorizontalSpacing(kGap);
    form->addRow(tr("Default &locale:"), m_locale);
    form->addRow(
        explanation(tr("The language and country whose rules apply if a task names none, for example en_US.")));
    auto* jobs = new QGroupBox(tr("Creating jobs"));
    auto* column = new QVBoxLayout(jobs);
    column->addWidget(m_override);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kGap, kGap, kGap, kGap);
    layout->setSpacing(kGap);
    layout->addWidget(explanation(tr("This version has no knowledge base and does not create jobs in the window. The "
                                     "settings are stored for one that does.")));
    layout->addWidget(language);
    layout->addWidget(jobs);
    layout->addStretch();
}

void CKnowledgePage::Store() {
    m_values.defaultLocale = toUtf8(m_locale->text().trimmed());
    m_values.overrideFieldWidths = m_override->isChecked();
}

} // namespace tavix
