#include "filter/ui/FilterPath.h"

#include "base/ui/QtText.h"
#include "filter/FilterFile.h"

#include <QFileDialog>

namespace tavix {

namespace {

QString ask(QWidget* parent, QFileDialog::AcceptMode mode, const QString& title) {
    QFileDialog dialog(parent, title);
    dialog.setAcceptMode(mode);
    dialog.setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    QStringList kinds;
    for (const std::string& kind : filterFileKinds())
        kinds << toQString(kind);
    dialog.setNameFilters(kinds);
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
