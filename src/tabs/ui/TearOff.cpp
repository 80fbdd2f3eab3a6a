#include "tabs/ui/TearOff.h"

#include "base/ui/QtText.h"
#include "tabs/TearOffPlacement.h"

#include <QKeyEvent>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>
#include <initializer_list>
#include <vector>

namespace tavix {

namespace {

// A dialog window stays above its parent and closes with it; the title bar buttons have to be requested.
constexpr Qt::WindowFlags kOwnedWindow = Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                                         Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint;

} // namespace

CTearOff::CTearOff(CViewSite& site, QWidget* parent) : QWidget(parent, kOwnedWindow) {
    setAttribute(Qt::WA_DeleteOnClose);
    const bool isCollection = site.GetSelection().kind == ReportSelection::Kind::Collection;
    setWindowTitle(isCollection ? QStringLiteral("Collection") : QStringLiteral("Table"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
}

void CTearOff::SetView(CReportView* view) {
    m_view = view;
    layout()->addWidget(view);
    AddKeys();
}

// The shell's shortcuts work only in its own window.
void CTearOff::AddKeys() {
    const auto onKeys = [this](QKeyCombination keys, std::initializer_list<CommandId> commands) {
        const std::vector<CommandId> ids(commands);
        connect(new QShortcut(QKeySequence(keys), this), &QShortcut::activated, this, [this, ids] {
            // The view handles one of them, depending on its kind.
            std::any_of(ids.begin(), ids.end(),
                        [this](CommandId id) { return m_view->ExecuteCommand(static_cast<int>(id)); });
        });
    };
    onKeys(Qt::CTRL | Qt::Key_F, {CommandId::QuickSearch});
    onKeys(Qt::CTRL | Qt::SHIFT | Qt::Key_F, {CommandId::Filter});
    onKeys(Qt::CTRL | Qt::SHIFT | Qt::Key_X, {CommandId::StopFiltering});
    onKeys(Qt::CTRL | Qt::SHIFT | Qt::Key_N, {CommandId::AddTableNote, CommandId::AddFieldNote});
}

void CTearOff::Open(const QWidget& view) {
    const QPoint corner = view.mapToGlobal(QPoint(0, 0));
    const QRect desktop = view.screen()->availableVirtualGeometry();
    const ScreenRect place = placeTearOff({corner.x(), corner.y(), view.width(), view.height()},
                                          {desktop.x(), desktop.y(), desktop.width(), desktop.height()});
    resize(place.width, place.height);
    // The position includes the window frame, so the title bar stays on the desktop.
    move(place.x, place.y);
    show();
    m_view->Refresh(nullptr, RefreshHint::RunLoaded, 0);
    TellName();
    m_view->FocusContents();
}

void CTearOff::Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) {
    m_view->Refresh(sender, hint, parameter);
    TellName();
}

// The title says only what kind of window it is.
void CTearOff::TellName() {
    setAccessibleName(toQString(m_view->GetName()));
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
