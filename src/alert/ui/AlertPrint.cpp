#include "alert/ui/AlertPrint.h"

#include "alert/AlertPrintout.h"
#include "alert/AlertRows.h"
#include "base/LibraryDate.h"
#include "base/ui/QtText.h"
#include "drill/ui/PrintWhole.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPrinter>

#include <algorithm>
#include <vector>

namespace tavix {

namespace {

constexpr const char* kTitle = "Tavix Alerts Report";
constexpr int kPointSize = 10;
constexpr double kLineHeight = 1.15; ///< of the font's height

void paintPage(QPainter& painter, const PrintedPage& page, const PrintMeasure& measure, const QFont& plain,
               const QFont& bold) {
    painter.setPen(Qt::black);
    for (const PrintedText& text : page.texts) {
        painter.setFont(text.weight == PrintWeight::Bold ? bold : plain);
        const QRectF line(text.x, text.y, measure.pageWidth - text.x, measure.lineHeight);
        painter.drawText(line, static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter) | Qt::TextSingleLine,
                         toQString(text.text));
    }
    painter.setPen(QPen(QColor(150, 150, 150), 0));
    painter.drawLine(QPointF(0, page.titleEnd), QPointF(measure.pageWidth, page.titleEnd));
}

bool paint(const AlertRows& rows, const std::string& filter, QPrinter& printer) {
    QPainter painter(&printer);
    if (!painter.isActive())
        return false;
    const QFont plain(QFont(toQString(kPrintFont), kPointSize), &printer);
    QFont bold = plain;
    bold.setBold(true);
    const QFontMetricsF plainMetrics(plain, &printer);
    const QFontMetricsF boldMetrics(bold, &printer);
    const QSizeF size = printer.pageRect(QPrinter::DevicePixel).size();
    const PrintMeasure measure{
        [&](std::string_view text, PrintWeight weight) {
            return (weight == PrintWeight::Bold ? boldMetrics : plainMetrics).horizontalAdvance(toQString(text));
        },
        plainMetrics.height() * kLineHeight, size.width(), size.height()};
    std::vector<const AlertState*> alerts;
    for (std::int64_t row = 0; row < rows.GetRowCount(); ++row)
        alerts.push_back(&rows.GetAlert(row));
    const PrintHeading heading{kTitle, filter};
    const std::vector<PrintedPage> pages = layOutAlerts(alerts, heading, measure, userLocale());
    const int count = static_cast<int>(pages.size());
    const int first = printer.fromPage() > 0 ? printer.fromPage() : 1;
    const int last = printer.toPage() > 0 ? std::min(printer.toPage(), count) : count;
    for (int page = first; page <= last; ++page) {
        if (page > first)
            printer.newPage();
        paintPage(painter, pages[static_cast<std::size_t>(page - 1)], measure, plain, bold);
    }
    return true;
}

} // namespace

Status printAlerts(const AlertRows& rows, const std::string& filter, QPrinter& printer) {
    return printWhole(
        printer, [&](QPrinter& to) { return paint(rows, filter, to); }, std::string(kPrintFailed));
}

} // namespace tavix
