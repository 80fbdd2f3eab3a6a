#include "shell/ShellIcons.h"

#include "base/ui/Theme.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

#include <array>
#include <cstddef>

namespace tavix::shell {

namespace {

// All shapes are drawn in a square of 20 units.
void drawOpen(QPainter& painter) {
    painter.drawPolyline(QPolygonF{{3, 16}, {3, 4}, {8, 4}, {9.8, 6}, {16, 6}, {16, 9}});
    painter.drawPolygon(QPolygonF{{3, 16}, {5.6, 9}, {18, 9}, {15.4, 16}});
}

void drawReports(QPainter& painter) {
    for (const double y : {5.0, 10.0, 15.0}) {
        painter.drawLine(QPointF(7.5, y), QPointF(17, y));
        painter.drawPoint(QPointF(3.5, y));
    }
}

void drawReload(QPainter& painter) {
    painter.drawArc(QRectF(3.5, 3.5, 13, 13), 60 * 16, 290 * 16);
    painter.drawPolyline(QPolygonF{{13.6, 1.6}, {13.4, 4.9}, {16.9, 5.1}});
}

void drawOptions(QPainter& painter) {
    const auto slider = [&painter](double y, double knob) {
        painter.drawLine(QPointF(3, y), QPointF(knob - 2, y));
        painter.drawLine(QPointF(knob + 2, y), QPointF(17, y));
        painter.drawEllipse(QPointF(knob, y), 2, 2);
    };
    slider(5, 12.5);
    slider(10, 6.5);
    slider(15, 13.5);
}

void drawDeleteHistory(QPainter& painter) {
    painter.drawLine(QPointF(4, 5.5), QPointF(16, 5.5));
    painter.drawPolyline(QPolygonF{{8, 5.5}, {8, 3.2}, {12, 3.2}, {12, 5.5}});
    painter.drawPolyline(QPolygonF{{5.3, 5.5}, {6, 17}, {14, 17}, {14.7, 5.5}});
    painter.drawLine(QPointF(8.6, 8.8), QPointF(8.8, 13.8));
    painter.drawLine(QPointF(11.4, 8.8), QPointF(11.2, 13.8));
}

void drawRuns(QPainter& painter) {
    painter.drawEllipse(QPointF(10, 10), 7, 7);
    painter.drawPolyline(QPolygonF{{10, 5.5}, {10, 10}, {13.2, 12}});
}

void drawFilter(QPainter& painter) {
    painter.drawPolygon(QPolygonF{{3, 4}, {17, 4}, {11.8, 10.5}, {11.8, 14.5}, {8.2, 16.5}, {8.2, 10.5}});
}

void drawStopFiltering(QPainter& painter) {
    painter.drawPolyline(QPolygonF{{10.5, 12}, {8.2, 13.5}, {8.2, 10.5}, {3, 4}, {17, 4}, {13.6, 8.3}});
    painter.drawLine(QPointF(12.5, 12.5), QPointF(17, 17));
    painter.drawLine(QPointF(17, 12.5), QPointF(12.5, 17));
}

void drawNote(QPainter& painter) {
    painter.drawPolygon(QPolygonF{{3.5, 3.5}, {16.5, 3.5}, {16.5, 11.5}, {11.5, 16.5}, {3.5, 16.5}});
    painter.drawPolyline(QPolygonF{{16.5, 11.5}, {11.5, 11.5}, {11.5, 16.5}});
    painter.drawLine(QPointF(6.5, 7.5), QPointF(13.5, 7.5));
}

void drawDetach(QPainter& painter) {
    painter.drawPolyline(QPolygonF{{9, 5.5}, {3.5, 5.5}, {3.5, 16.5}, {14.5, 16.5}, {14.5, 11}});
    painter.drawLine(QPointF(9, 11), QPointF(16.5, 3.5));
    painter.drawPolyline(QPolygonF{{12, 3.5}, {16.5, 3.5}, {16.5, 8}});
}

void drawCircle(QPainter& painter) {
    painter.drawEllipse(QPointF(10, 10), 7.6, 7.6);
}

void drawInformation(QPainter& painter) {
    drawCircle(painter);
    painter.drawLine(QPointF(10, 9.2), QPointF(10, 14));
    painter.drawPoint(QPointF(10, 6.3));
}

void drawQuestion(QPainter& painter) {
    drawCircle(painter);
    QPainterPath hook;
    hook.moveTo(7.8, 8.2);
    hook.cubicTo(7.8, 5.2, 12.2, 5.2, 12.2, 8);
    hook.cubicTo(12.2, 9.8, 10, 9.8, 10, 11.6);
    painter.drawPath(hook);
    painter.drawPoint(QPointF(10, 14.2));
}

void drawWarning(QPainter& painter) {
    painter.drawPolygon(QPolygonF{{10, 2.8}, {18, 16.8}, {2, 16.8}});
    painter.drawLine(QPointF(10, 8), QPointF(10, 12));
    painter.drawPoint(QPointF(10, 14.5));
}

void drawCritical(QPainter& painter) {
    drawCircle(painter);
    painter.drawLine(QPointF(7.2, 7.2), QPointF(12.8, 12.8));
    painter.drawLine(QPointF(12.8, 7.2), QPointF(7.2, 12.8));
}

void drawClear(QPainter& painter) {
    painter.drawLine(QPointF(5.5, 5.5), QPointF(14.5, 14.5));
    painter.drawLine(QPointF(14.5, 5.5), QPointF(5.5, 14.5));
}

void drawBack(QPainter& painter) {
    painter.drawLine(QPointF(4, 10), QPointF(16, 10));
    painter.drawPolyline(QPolygonF{{9, 5}, {4, 10}, {9, 15}});
}

void drawForward(QPainter& painter) {
    painter.drawLine(QPointF(4, 10), QPointF(16, 10));
    painter.drawPolyline(QPolygonF{{11, 5}, {16, 10}, {11, 15}});
}

void drawUp(QPainter& painter) {
    painter.drawLine(QPointF(10, 4), QPointF(10, 16));
    painter.drawPolyline(QPolygonF{{5, 9}, {10, 4}, {15, 9}});
}

void drawFolder(QPainter& painter) {
    painter.drawPolygon(QPolygonF{{3, 16}, {3, 4}, {8, 4}, {9.8, 6.2}, {17, 6.2}, {17, 16}});
}

void drawNewFolder(QPainter& painter) {
    drawFolder(painter);
    painter.drawLine(QPointF(10, 8.7), QPointF(10, 13.7));
    painter.drawLine(QPointF(7.5, 11.2), QPointF(12.5, 11.2));
}

void drawList(QPainter& painter) {
    for (const double x : {3.5, 11.5}) {
        for (const double y : {3.5, 11.5})
            painter.drawRoundedRect(QRectF(x, y, 5, 5), 1, 1);
    }
}

void drawFile(QPainter& painter) {
    painter.drawPolygon(QPolygonF{{4.5, 2.8}, {11.5, 2.8}, {15.5, 6.8}, {15.5, 17.2}, {4.5, 17.2}});
    painter.drawPolyline(QPolygonF{{11.5, 2.8}, {11.5, 6.8}, {15.5, 6.8}});
}

void drawHome(QPainter& painter) {
    painter.drawPolyline(QPolygonF{{2.8, 10}, {10, 3.4}, {17.2, 10}});
    painter.drawPolyline(QPolygonF{{5, 8.5}, {5, 16.5}, {15, 16.5}, {15, 8.5}});
}

void drawComputer(QPainter& painter) {
    painter.drawRoundedRect(QRectF(2.8, 3.8, 14.4, 9.4), 1.2, 1.2);
    painter.drawLine(QPointF(10, 13.2), QPointF(10, 16.5));
    painter.drawLine(QPointF(6.5, 16.5), QPointF(13.5, 16.5));
}

void drawDrive(QPainter& painter) {
    painter.drawRoundedRect(QRectF(2.8, 7, 14.4, 7), 1.5, 1.5);
    painter.drawPoint(QPointF(14, 10.5));
    painter.drawLine(QPointF(5.5, 10.5), QPointF(9, 10.5));
}

/// The colour of an icon.
enum class Ink { Text, Accent, Amber, Red };

struct IconRow {
    ShellIcon icon;
    void (*draw)(QPainter&);
    Ink ink = Ink::Text;
};

// In the order of ShellIcon.
constexpr std::array<IconRow, 26> kIcons = {{
    {ShellIcon::Open, &drawOpen},
    {ShellIcon::Reports, &drawReports},
    {ShellIcon::Reload, &drawReload},
    {ShellIcon::Options, &drawOptions},
    {ShellIcon::DeleteHistory, &drawDeleteHistory},
    {ShellIcon::Runs, &drawRuns},
    {ShellIcon::Filter, &drawFilter},
    {ShellIcon::StopFiltering, &drawStopFiltering},
    {ShellIcon::Note, &drawNote},
    {ShellIcon::Detach, &drawDetach},
    {ShellIcon::Information, &drawInformation, Ink::Accent},
    {ShellIcon::Question, &drawQuestion, Ink::Accent},
    {ShellIcon::Warning, &drawWarning, Ink::Amber},
    {ShellIcon::Critical, &drawCritical, Ink::Red},
    {ShellIcon::Clear, &drawClear},
    {ShellIcon::Back, &drawBack},
    {ShellIcon::Forward, &drawForward},
    {ShellIcon::Up, &drawUp},
    {ShellIcon::NewFolder, &drawNewFolder},
    {ShellIcon::List, &drawList},
    {ShellIcon::Details, &drawReports},
    {ShellIcon::Folder, &drawFolder},
    {ShellIcon::File, &drawFile},
    {ShellIcon::Home, &drawHome},
    {ShellIcon::Computer, &drawComputer},
    {ShellIcon::Drive, &drawDrive},
}};

constexpr bool isInOrder() {
    for (std::size_t i = 0; i < kIcons.size(); ++i) {
        if (static_cast<std::size_t>(kIcons[i].icon) != i)
            return false;
    }
    return true;
}
static_assert(isInOrder() && kIcons.back().icon == ShellIcon::Drive);

QColor colorOf(Ink ink, QIcon::Mode mode, const QPalette& colors) {
    if (mode == QIcon::Disabled)
        return colors.color(QPalette::Disabled, QPalette::WindowText);
    switch (ink) {
    case Ink::Accent:
        return colors.color(QPalette::Link);
    case Ink::Amber:
        return isDark(colors) ? QColor(240, 180, 90) : QColor(180, 110, 10);
    case Ink::Red:
        return isDark(colors) ? QColor(255, 122, 89) : QColor(200, 50, 30);
    case Ink::Text:
        break;
    }
    return mixed(colors.color(QPalette::WindowText), colors.color(QPalette::Window), 0.2);
}

class LineIconEngine final : public QIconEngine {
  public:
    explicit LineIconEngine(ShellIcon icon) : m_icon(icon) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const IconRow& row = kIcons[static_cast<std::size_t>(m_icon)];
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / 20.0, rect.height() / 20.0);
        painter->setBrush(Qt::NoBrush);
        painter->setPen(
            QPen(colorOf(row.ink, mode, QGuiApplication::palette()), 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        row.draw(*painter);
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect({}, size), mode, state);
        return pixmap;
    }

    [[nodiscard]] QIconEngine* clone() const override { return new LineIconEngine(m_icon); }

  private:
    ShellIcon m_icon;
};

struct DialogIcon {
    QStyle::StandardPixmap pixmap;
    ShellIcon icon;
};

constexpr DialogIcon kDialogIcons[] = {
    {QStyle::SP_MessageBoxInformation, ShellIcon::Information},
    {QStyle::SP_MessageBoxQuestion, ShellIcon::Question},
    {QStyle::SP_MessageBoxWarning, ShellIcon::Warning},
    {QStyle::SP_MessageBoxCritical, ShellIcon::Critical},
    {QStyle::SP_LineEditClearButton, ShellIcon::Clear},
    {QStyle::SP_FileDialogBack, ShellIcon::Back},
    {QStyle::SP_ArrowBack, ShellIcon::Back},
    {QStyle::SP_ArrowForward, ShellIcon::Forward},
    {QStyle::SP_FileDialogToParent, ShellIcon::Up},
    {QStyle::SP_FileDialogNewFolder, ShellIcon::NewFolder},
    {QStyle::SP_FileDialogListView, ShellIcon::List},
    {QStyle::SP_FileDialogDetailedView, ShellIcon::Details},
    {QStyle::SP_DirIcon, ShellIcon::Folder},
    {QStyle::SP_DirClosedIcon, ShellIcon::Folder},
    {QStyle::SP_DirOpenIcon, ShellIcon::Open},
    {QStyle::SP_DirLinkIcon, ShellIcon::Folder},
    {QStyle::SP_DirHomeIcon, ShellIcon::Home},
    {QStyle::SP_FileIcon, ShellIcon::File},
    {QStyle::SP_FileLinkIcon, ShellIcon::File},
    {QStyle::SP_ComputerIcon, ShellIcon::Computer},
    {QStyle::SP_DesktopIcon, ShellIcon::Computer},
    {QStyle::SP_DriveHDIcon, ShellIcon::Drive},
    {QStyle::SP_DriveNetIcon, ShellIcon::Drive},
};

} // namespace

QIcon shellIcon(ShellIcon icon) {
    return QIcon(new LineIconEngine(icon));
}

std::optional<ShellIcon> iconOfDialog(QStyle::StandardPixmap pixmap) {
    for (const DialogIcon& each : kDialogIcons) {
        if (each.pixmap == pixmap)
            return each.icon;
    }
    return std::nullopt;
}

} // namespace tavix::shell
