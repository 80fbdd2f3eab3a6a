#include "drill/ui/DrillDialogs.h"

#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "drill/DrillOutput.h"

#include <QFileDialog>
#include <QPrintDialog>
#include <QPrinter>

namespace tavix {

QString chooseRowsFile(QWidget& window, const QString& title, const QString& folder, const QString& name) {
    ModalDialog<QFileDialog> dialog(&window, title, folder);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    // saveRowsFile() asks before it replaces a file.
    dialog->setOption(QFileDialog::DontConfirmOverwrite);
    const QStringList parts = toQString(kDrillFilePatterns).split(u'|', Qt::SkipEmptyParts);
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2)
        filters << QStringLiteral("%1 (%2)").arg(parts[i].section(QStringLiteral(" ("), 0, 0),
                                                 QString(parts[i + 1]).replace(u';', u' '));
    dialog->setNameFilters(filters);
    dialog->setDefaultSuffix(toQString(kDrillFileExtension));
    QObject::connect(&*dialog, &QFileDialog::filterSelected, &*dialog, [&dialog](const QString& filter) {
        dialog->setDefaultSuffix(filter.contains(QLatin1String("*.xls")) ? QStringLiteral("xls")
                                                                         : toQString(kDrillFileExtension));
    });
    dialog->selectFile(name);
    return dialog.isAccepted() ? dialog->selectedFiles().value(0) : QString();
}

QString chooseDrillFile(QWidget& window, const QString& folder, const QString& name) {
    return chooseRowsFile(window, QObject::tr("Export"), folder, name);
}

bool chooseDrillPrinter(QWidget& window, QPrinter& printer) {
    ModalDialog<QPrintDialog> dialog(&printer, &window);
    dialog->setWindowTitle(QObject::tr("Print"));
    dialog->setOption(QAbstractPrintDialog::PrintPageRange);
    return dialog.isAccepted();
}

} // namespace tavix
