#include "Album.h"

#include "base/FileWriter.h"

#include <QBuffer>
#include <QEventLoop>
#include <QFile>
#include <QPixmap>
#include <QTimer>
#include <QWidget>

#include <cstdio>

namespace tavix::pictures {

void settle(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

Album::Album(const QString& folder) : m_folder(folder) {
    if (!m_folder.mkpath(QStringLiteral("."))) {
        std::fprintf(stderr, "tavix-pictures: cannot make the folder %s\n", qUtf8Printable(folder));
        m_ok = false;
    }
}

void Album::take(QWidget& widget, const QString& name) {
    const QString path = m_folder.filePath(name + QStringLiteral(".png"));
    if (!m_ok)
        return;
    if (const Status saved = save(widget, path); saved) {
        std::printf("%s\n", qUtf8Printable(path));
    } else {
        std::fprintf(stderr, "tavix-pictures: cannot write %s: %s\n", qUtf8Printable(path), saved.error().text.c_str());
        m_ok = false;
    }
}

Status Album::save(QWidget& widget, const QString& path) {
    QByteArray picture;
    QBuffer device(&picture);
    device.open(QIODevice::WriteOnly);
    widget.grab().save(&device, "PNG");
    const auto file = FileWriter::open(QFile::encodeName(path).toStdString());
    if (!file)
        return file.error();
    const Status written = (*file)->write({picture.constData(), static_cast<std::size_t>(picture.size())});
    return written ? (*file)->commit() : written;
}

} // namespace tavix::pictures
