#pragma once

#include <QByteArray>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QtEndian>

namespace tavix::testing {

/// The texts on the pages of a PDF file that Qt wrote, in the order in which they were drawn, one per line. Understands
/// what Qt writes: compressed streams, and fonts of glyphs with a table of their characters.
class PdfText {
  public:
    explicit PdfText(const QString& path) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return;
        const QString all = QString::fromLatin1(file.readAll());
        static const QRegularExpression kObject(QStringLiteral("(\\d+) 0 obj\n(.*?)endobj"),
                                                QRegularExpression::DotMatchesEverythingOption);
        for (auto found = kObject.globalMatch(all); found.hasNext();) {
            const QRegularExpressionMatch object = found.next();
            m_objects[object.captured(1).toInt()] = object.captured(2);
        }
        static const QRegularExpression kPage(QStringLiteral("/Type /Page\n.*?/Contents (\\d+) 0 R"),
                                              QRegularExpression::DotMatchesEverythingOption);
        for (const QString& object : std::as_const(m_objects)) {
            if (const auto page = kPage.match(object); page.hasMatch())
                m_pages << read(stream(page.captured(1).toInt()));
        }
    }

    [[nodiscard]] const QStringList& pages() const { return m_pages; }

  private:
    /// The contents of a stream, one character per byte.
    [[nodiscard]] QString stream(int object) const {
        const QString text = m_objects.value(object);
        const qsizetype start = text.indexOf(QLatin1String("stream\n")) + 7;
        const QByteArray bytes = text.mid(start, text.lastIndexOf(QLatin1String("endstream")) - start).toLatin1();
        if (!text.contains(QLatin1String("/FlateDecode")))
            return QString::fromLatin1(bytes);
        QByteArray size(4, '\0');
        qToBigEndian<quint32>(1, size.data()); // a guess, from which it grows
        return QString::fromLatin1(qUncompress(size + bytes));
    }

    /// The character of each glyph of a font.
    [[nodiscard]] QMap<int, QString> characters(int font) const {
        static const QRegularExpression kTable(QStringLiteral("/ToUnicode (\\d+) 0 R"));
        static const QRegularExpression kRange(QStringLiteral("<(\\w+)> <(\\w+)> <(\\w+)>"));
        static const QRegularExpression kList(QStringLiteral("<(\\w+)> <\\w+> \\[([^\\]]*)\\]"));
        static const QRegularExpression kCharacter(QStringLiteral("<(\\w+)>"));
        QMap<int, QString> map;
        const QString table = stream(kTable.match(m_objects.value(font)).captured(1).toInt());
        for (auto found = kRange.globalMatch(table); found.hasNext();) {
            const auto range = found.next();
            const int first = range.captured(1).toInt(nullptr, 16);
            const int last = range.captured(2).toInt(nullptr, 16);
            for (int glyph = first; glyph <= last; ++glyph)
                map[glyph] = QChar(range.captured(3).toInt(nullptr, 16) + glyph - first);
        }
        for (auto found = kList.globalMatch(table); found.hasNext();) {
            const auto list = found.next();
            int glyph = list.captured(1).toInt(nullptr, 16);
            for (auto each = kCharacter.globalMatch(list.captured(2)); each.hasNext();)
                map[glyph++] = QChar(each.next().captured(1).toInt(nullptr, 16));
        }
        return map;
    }

    [[nodiscard]] QString read(const QString& contents) {
        static const QRegularExpression kToken(QStringLiteral("/F(\\d+) |<(\\w+)> Tj|\\b(ET)\\b"));
        QString text;
        QMap<int, QString> font;
        for (auto found = kToken.globalMatch(contents); found.hasNext();) {
            const auto token = found.next();
            if (!token.captured(1).isEmpty())
                font = characters(token.captured(1).toInt());
            const QString glyphs = token.captured(2);
            for (qsizetype at = 0; at + 4 <= glyphs.size(); at += 4)
                text += font.value(glyphs.mid(at, 4).toInt(nullptr, 16));
            if (!token.captured(3).isEmpty())
                text += QLatin1Char('\n');
        }
        // A blank has the glyph of a tab, and Qt names the glyph by the first character that has it.
        return text.replace(u'\t', u' ');
    }

    QMap<int, QString> m_objects;
    QStringList m_pages;
};

} // namespace tavix::testing
