#pragma once

#include "doc/CRefreshItem.h"
#include "doc/CViewSite.h"
#include "doc/CommandTarget.h"
#include "doc/ItemCode.h"
#include "report/ReportSubject.h"

#include <QWidget>

#include <string>

namespace tavix {

/// One tab of a view. It fills itself only while it is visible and its contents are stale, so a tab that nobody opens
/// costs no query.
class CProfTab : public QWidget, public CRefreshItem, public CommandTarget {
    Q_OBJECT
  public:
    /// The view owns `subject` and calls SubjectChanged after changing it. Both references must outlive the tab.
    CProfTab(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent = nullptr);

    /// Call after the subject has changed.
    void SubjectChanged();
    /// Drops the contents, which belong to another report. They are read again when the tab becomes visible.
    void Forget();
    void FillIfSeen();
    /// Makes the contents stale if the hint concerns the tab.
    void Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) override;
    /// Set while the tab is selected in its view.
    void SetActive(bool active) { m_active = active; }
    [[nodiscard]] bool IsActive() const { return m_active; }
    /// The last control in the tab order; null without one.
    [[nodiscard]] virtual QWidget* GetLastTabStop() = 0;
    /// The control that gets the focus when the user opens the tab to work in it.
    [[nodiscard]] virtual QWidget* GetMainControl() { return GetLastTabStop(); }

    /// What the caption says after the tab's name; "" for the name alone.
    [[nodiscard]] virtual QString GetCaptionMark() const { return {}; }

  Q_SIGNALS:
    /// The caption's mark has changed.
    void CaptionChanged();
    /// The tab asks its view to show the one with this code.
    void TabRequested(tavix::ItemCode code);

  protected:
    [[nodiscard]] virtual bool RefillsOn(RefreshHint hint) const = 0;
    /// Called while the tab is visible. If `isSameObject` is false, the display belongs to another table or field and
    /// must be cleared even when nothing new can be read; otherwise a failure leaves it unchanged.
    virtual void Fill(bool isSameObject) = 0;

    /// Shows a message once the event loop runs again: a tab may be filled in its show event, which must not open a
    /// box.
    void WarnSoon(const std::string& text);

    [[nodiscard]] CViewSite& Site() const { return m_site; }
    [[nodiscard]] const ReportSubject& Subject() const { return m_subject; }
    [[nodiscard]] bool IsTornOff() const { return m_isTornOff; }

    void showEvent(QShowEvent* event) override;

  private:
    /// Marks the contents stale; a visible tab fills itself at once, a hidden one when it is shown.
    void RefillIfVisible();

    CViewSite& m_site;
    const ReportSubject& m_subject;
    bool m_isTornOff;
    bool m_active = false;
    bool m_isStale = true;
    bool m_isFilling = false;
    ReportSelection m_filledFor;
};

} // namespace tavix
