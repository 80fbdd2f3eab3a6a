#include "filter/ui/FilterPath.h"

#include "base/ui/QtText.h"
#include "filter/FilterFile.h"

#include <QFileDialog>

namespace tavix {

namespace {

/// "Words|*.a|Words|*.*||" gives each pair as "Words (*.a)". Here every name fits "*", also one without a dot.
QStringList nameFilters(std::string_view patterns) {
    const QStringList parts = toQString(patterns).split(u'|', Qt::SkipEmptyParts);
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        const QString words = parts[i].section(QStringLiteral(" ("), 0, 0);
        const QString pattern = parts[i + 1] == QLatin1String("*.*") ? QStringLiteral("*") : parts[i + 1];
        filters << QStringLiteral("%1 (%2)").arg(words, pattern);
    }
    return filters;
}

QString ask(QWidget* parent, QFileDialog::AcceptMode mode, const QString& title) {
    QFileDialog dialog(parent, title);
    dialog.setAcceptMode(mode);
    dialog.setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    dialog.setNameFilters(nameFilters(kFilterFilePatterns));
    dialog.setDefaultSuffix(toQString(kFilterFileExtension));
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

} // namespace

QString AskFilterToLoad(QWidget* parent) {
    return ask(parent, QFileDialog::AcceptOpen, QObject::tr("Load Filter"));
}

QString AskFilterToSave(QWidget* parent) {
    return ask(parent, QFileDialog::AcceptSave, QObject::tr("Save Filter"));
}

} // namespace tavix
