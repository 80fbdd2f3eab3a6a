#include "base/ui/QtText.h"
#include "frame/ui/CTavixView.h"
#include "tabs/ui/TearOff.h"

#include <QApplication>
#include <QDialog>

#include <algorithm>

/// The separate windows of the view: detached views, drill-through.
namespace tavix {

namespace {

constexpr const char* kWindowId = "tavixWindowId"; // a property of a listed window

bool isAncestorOfWindow(const QWidget& ancestor, const QWidget* window) {
    while (window && window != &ancestor)
        window = window->parentWidget();
    return window != nullptr;
}

} // namespace

void CTavixView::Retire() {
    m_isRetired = true;
    m_runsChanged = {};
    m_credentialsRequest = {};
    m_offersColors = {};
    m_colorsChosen = {};
    m_deleteHistoryRequest = [] {};
    OnNew();
    hide();
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (!window->isVisible() || !isAncestorOfWindow(*this, window))
            continue;
        // Skips any confirmation of the dialog.
        if (auto* dialog = qobject_cast<QDialog*>(window))
            dialog->done(QDialog::Rejected);
        else
            window->close();
    }
}

void CTavixView::Detach() {
    CTearOff* window = nullptr;
    // The signal of a double click is posted, and the report may be closed by then.
    if (!m_view)
        return;
    if (m_view->GetKind() == ReportPaneKind::Table)
        window = new CTableTearOff(*this, this);
    else
        window = new CFieldTearOff(*this, this);
    m_tearOffs.push_back({window, m_connection, m_document->GetJobId()});
    window->Open(*m_view);
}

std::vector<CTearOff*> CTavixView::TearOffs() const {
    std::vector<CTearOff*> open;
    for (const Detached& each : m_tearOffs) {
        if (each.window)
            open.push_back(each.window);
    }
    return open;
}

std::vector<CTearOff*> CTavixView::TearOffsOfReport() const {
    std::vector<CTearOff*> open;
    for (const Detached& each : m_tearOffs) {
        const bool isOpen = each.connection == m_connection && each.jobId == m_document->GetJobId();
        if (each.window && isOpen)
            open.push_back(each.window);
    }
    return open;
}

// A name for screen readers tells a window that stays open from dialogs and menus.
std::vector<QWidget*> CTavixView::SeparateWindows() const {
    std::vector<QWidget*> windows;
    for (QWidget* child : findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (child->windowType() == Qt::Dialog && child->isVisible() && !child->isModal() &&
            !child->accessibleName().isEmpty())
            windows.push_back(child);
    }
    return windows;
}

std::vector<OpenWindow> CTavixView::GetOpenWindows() {
    std::vector<OpenWindow> list;
    for (QWidget* window : SeparateWindows()) {
        if (!window->property(kWindowId).isValid())
            window->setProperty(kWindowId, ++m_lastWindow);
        list.push_back({window->property(kWindowId).toInt(), toUtf8(window->accessibleName())});
    }
    return list;
}

bool CTavixView::RaiseWindow(int id) {
    for (QWidget* window : SeparateWindows()) {
        if (!window->property(kWindowId).isValid() || window->property(kWindowId).toInt() != id)
            continue;
        if (window->isMinimized())
            window->showNormal();
        window->raise();
        window->activateWindow();
        return true;
    }
    return false;
}

void CTavixView::CloseWindows() {
    for (QWidget* window : SeparateWindows())
        window->close();
}

} // namespace tavix
