#include "drill/ui/PrintWhole.h"

#include "base/ui/QtText.h"
#include "drill/RowsFile.h"

#include <QFile>
#include <QPrinter>
#include <QTemporaryDir>

#include <algorithm>

namespace tavix {

namespace {

/// Qt truncates the output file at once and does not report a failed write, so the end of the file is checked.
bool endsAsPdf(const QString& path) {
    constexpr qint64 kTail = 32;
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.seek(std::max<qint64>(0, file.size() - kTail)) &&
           file.readAll().trimmed().endsWith("%%EOF");
}

} // namespace

Status printWhole(QPrinter& printer, const std::function<bool(QPrinter&)>& paint, const std::string& cannotStart) {
    const QString path = printer.outputFileName();
    if (path.isEmpty())
        return paint(printer) ? Status() : Error{cannotStart};
    const QTemporaryDir folder;
    const QString made = folder.filePath(QStringLiteral("rows.pdf"));
    printer.setOutputFileName(made);
    if (!folder.isValid() || !paint(printer))
        return Error{cannotStart};
    if (!endsAsPdf(made))
        return Error{"The pages cannot be written into the folder of temporary files " + toUtf8(folder.path())};
    return saveMadeFile(QFile::encodeName(made).toStdString(), QFile::encodeName(path).toStdString());
}

} // namespace tavix
