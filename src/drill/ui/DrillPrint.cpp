#include "drill/ui/DrillPrint.h"

#include "base/ui/QtText.h"
#include "drill/CDrillThruDataSrc.h"
#include "drill/DrillTexts.h"
#include "drill/ui/PrintWhole.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPrinter>

#include <algorithm>
#include <vector>

namespace tavix {

namespace {

constexpr std::int64_t kMeasuredRows = 1000;
// A cell shows one line; longer values are cut to this.
constexpr std::size_t kShownBytes = 512;
constexpr double kPaddingInLetters = 1.0;
constexpr double kWidestShare = 0.4; ///< of a page, for one column
constexpr double kRowHeight = 1.45;  ///< in lines

QString oneLine(std::string_view text) {
    return toQString(text.substr(0, kShownBytes)).simplified();
}

struct Band {
    int first = 0;
    int end = 0;
};

class TablePrint {
  public:
    TablePrint(const CDrillThruDataSrc& source, const QString& subject, const QFont& font, QPrinter& printer)
        : m_source(source),
          m_subject(subject),
          m_printer(printer),
          m_painter(&printer),
          m_font(font, &printer),
          m_bold(m_font) {
        m_bold.setBold(true);
    }

    bool print() {
        if (!m_painter.isActive())
            return false;
        layOut();
        const int first = m_printer.fromPage() > 0 ? m_printer.fromPage() : 1;
        const int last = m_printer.toPage() > 0 ? std::min(m_printer.toPage(), m_pages) : m_pages;
        for (int page = first; page <= last; ++page) {
            if (page > first)
                m_printer.newPage();
            printPage(page);
        }
        return true;
    }

  private:
    void layOut() {
        m_page = QRectF(QPointF(0, 0), m_printer.pageRect(QPrinter::DevicePixel).size());
        const QFontMetricsF metrics(m_font, &m_printer);
        const QFontMetricsF boldMetrics(m_bold, &m_printer);
        m_line = metrics.height() * kRowHeight;
        m_padding = metrics.averageCharWidth() * kPaddingInLetters;
        for (int column = 0; column < m_source.GetColumnCount(); ++column) {
            double width = boldMetrics.horizontalAdvance(toQString(m_source.GetColumn(column).heading));
            for (std::int64_t row = 0; row < std::min(kMeasuredRows, m_source.GetRowCount()); ++row)
                width = std::max(width, metrics.horizontalAdvance(oneLine(m_source.GetText(column, row).text)));
            m_widths.push_back(std::min(width + 4 * m_padding, m_page.width() * kWidestShare));
        }
        for (int column = 0; column < m_source.GetColumnCount();) {
            Band band{column, column};
            double width = 0;
            while (band.end < m_source.GetColumnCount() &&
                   (band.end == band.first || width + widthOf(band.end) <= m_page.width()))
                width += widthOf(band.end++);
            m_bands.push_back(band);
            column = band.end;
        }
        // Less the lines of subject, headings and page number, and the space around them.
        m_rowsOnPage = std::max<std::int64_t>(1, static_cast<std::int64_t>(m_page.height() / m_line - 4.5));
        const std::int64_t sheets = (m_source.GetRowCount() + m_rowsOnPage - 1) / m_rowsOnPage;
        m_pages = static_cast<int>(std::max<std::int64_t>(1, sheets) * static_cast<std::int64_t>(m_bands.size()));
    }

    [[nodiscard]] double widthOf(int column) const { return m_widths[static_cast<std::size_t>(column)]; }

    void printPage(int page) {
        const auto bands = static_cast<int>(m_bands.size());
        if (bands == 0)
            return;
        const Band& band = m_bands[static_cast<std::size_t>((page - 1) % bands)];
        const std::int64_t firstRow = (page - 1) / bands * m_rowsOnPage;
        const std::int64_t endRow = std::min(firstRow + m_rowsOnPage, m_source.GetRowCount());
        m_painter.setPen(Qt::black);
        m_painter.setFont(m_font);
        drawText({0, 0, m_page.width(), m_line}, m_subject, Qt::AlignLeft | Qt::AlignVCenter);
        double y = m_line * 1.5;
        printHeadings(band, y);
        m_painter.setFont(m_font);
        for (std::int64_t row = firstRow; row < endRow; ++row) {
            y += m_line;
            double x = 0;
            for (int column = band.first; column < band.end; x += widthOf(column++)) {
                const bool isNumber = isNumeric(m_source.GetType(column));
                drawText({x, y, widthOf(column), m_line}, oneLine(m_source.GetText(column, row).text),
                         (isNumber ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
            }
            m_painter.setPen(QPen(QColor(215, 215, 215), 0));
            m_painter.drawLine(QPointF(0, y + m_line), QPointF(x, y + m_line));
            m_painter.setPen(Qt::black);
        }
        const QRectF foot(0, m_page.height() - m_line, m_page.width(), m_line);
        drawText(foot, toQString(kDrillPrintJob), Qt::AlignLeft | Qt::AlignVCenter);
        drawText(foot, QObject::tr("Page %1 of %2").arg(page).arg(m_pages), Qt::AlignRight | Qt::AlignVCenter);
    }

    void printHeadings(const Band& band, double y) {
        double x = 0;
        for (int column = band.first; column < band.end; ++column)
            x += widthOf(column);
        m_painter.fillRect(QRectF(0, y, x, m_line), QColor(235, 235, 235));
        m_painter.setFont(m_bold);
        x = 0;
        for (int column = band.first; column < band.end; x += widthOf(column++)) {
            const bool isNumber = isNumeric(m_source.GetType(column));
            drawText({x, y, widthOf(column), m_line}, oneLine(m_source.GetColumn(column).heading),
                     (isNumber ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
        }
        m_painter.drawLine(QPointF(0, y + m_line), QPointF(x, y + m_line));
    }

    void drawText(const QRectF& cell, const QString& text, Qt::Alignment alignment) {
        const QRectF room = cell.adjusted(m_padding, 0, -m_padding, 0);
        m_painter.drawText(room, static_cast<int>(alignment) | Qt::TextSingleLine,
                           QFontMetricsF(m_painter.font(), &m_printer).elidedText(text, Qt::ElideRight, room.width()));
    }

    const CDrillThruDataSrc& m_source;
    const QString& m_subject;
    QPrinter& m_printer;
    QPainter m_painter;
    QFont m_font;
    QFont m_bold;
    QRectF m_page;
    double m_line = 0;
    double m_padding = 0;
    std::vector<double> m_widths;
    std::vector<Band> m_bands; ///< the columns that share a page
    std::int64_t m_rowsOnPage = 1;
    int m_pages = 1;
};

} // namespace

Status printDrillRows(const CDrillThruDataSrc& source, const QString& subject, const QFont& font, QPrinter& printer) {
    return printWhole(
        printer, [&](QPrinter& to) { return TablePrint(source, subject, font, to).print(); },
        "The printer cannot be started.");
}

} // namespace tavix
