#include "tabs/ui/TearOff.h"

#include "tabs/TearOffPlacement.h"

#include <QKeyEvent>
#include <QScreen>
#include <QVBoxLayout>

namespace tavix {

CTearOff::CTearOff(CViewSite& site, QWidget* parent) : QWidget(parent, Qt::Window) {
    setAttribute(Qt::WA_DeleteOnClose);
    const bool isCollection = site.GetSelection().kind == ReportSelection::Kind::Collection;
    setWindowTitle(isCollection ? QStringLiteral("Collection") : QStringLiteral("Table"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
}

void CTearOff::SetView(CReportView* view) {
    m_view = view;
    layout()->addWidget(view);
}

void CTearOff::Open(const QWidget& view) {
    const QPoint corner = view.mapToGlobal(QPoint(0, 0));
    const QRect desktop = view.screen()->availableVirtualGeometry();
    const ScreenRect place = placeTearOff({corner.x(), corner.y(), view.width(), view.height()},
                                          {desktop.x(), desktop.y(), desktop.width(), desktop.height()});
    resize(place.width, place.height);
    // With its frame, so that the title can be reached.
    move(place.x, place.y);
    show();
    m_view->Refresh(nullptr, RefreshHint::RunLoaded, 0);
    m_view->FocusContents();
}

void CTearOff::Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) {
    m_view->Refresh(sender, hint, parameter);
}

void CTearOff::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape || event->matches(QKeySequence::Close))
        close();
    else
        QWidget::keyPressEvent(event);
}

CTableTearOff::CTableTearOff(CViewSite& site, QWidget* parent) : CTearOff(site, parent) {
    SetView(new CTableView(site, true, this));
}

CFieldTearOff::CFieldTearOff(CViewSite& site, QWidget* parent) : CTearOff(site, parent) {
    SetView(new CFieldView(site, true, this));
}

} // namespace tavix
