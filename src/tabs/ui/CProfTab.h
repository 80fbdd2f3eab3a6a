#pragma once

#include "doc/CRefreshItem.h"
#include "doc/CViewSite.h"
#include "doc/CommandTarget.h"
#include "report/ReportSubject.h"

#include <QWidget>

#include <string>

namespace tavix {

/// One tab of a view. It fills itself when it is seen and its contents are stale, never before: a tab that nobody opens
/// costs no query.
class CProfTab : public QWidget, public CRefreshItem, public CommandTarget {
    Q_OBJECT
  public:
    /// `subject` is the view's, which changes it and then calls SubjectChanged. Both references must outlive the tab.
    CProfTab(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent = nullptr);

    /// The view shows something else now.
    void SubjectChanged();
    /// What is displayed has nothing to do with the subject any more. It is read anew when the tab is seen.
    void Forget();
    void FillIfSeen();
    /// Hints that concern the tab make its contents stale.
    void Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) override;
    /// Set while the tab is the one that is selected in its view.
    void SetActive(bool active) { m_active = active; }
    [[nodiscard]] bool IsActive() const { return m_active; }
    /// The last control that takes the keyboard; null without one.
    [[nodiscard]] virtual QWidget* GetLastTabStop() = 0;
    /// Whom the keyboard should go to when the tab is opened to work in it.
    [[nodiscard]] virtual QWidget* GetMainControl() { return GetLastTabStop(); }

  Q_SIGNALS:
    /// What the tab's caption says beside its name has changed.
    void CaptionChanged();

  protected:
    [[nodiscard]] virtual bool RefillsOn(RefreshHint hint) const = 0;
    /// Called while the tab is visible. With `isSameObject` false what is displayed belongs to another table or field
    /// and must go even when nothing new can be read; else a failure leaves the display as it is.
    virtual void Fill(bool isSameObject) = 0;

    /// Shows a message as soon as what is going on is over: a tab may be filled while it is being shown, when it is too
    /// early for a box.
    void WarnSoon(const std::string& text);

    [[nodiscard]] CViewSite& Site() const { return m_site; }
    [[nodiscard]] const ReportSubject& Subject() const { return m_subject; }
    [[nodiscard]] bool IsTornOff() const { return m_isTornOff; }

    void showEvent(QShowEvent* event) override;

  private:
    void MakeStale();

    CViewSite& m_site;
    const ReportSubject& m_subject;
    bool m_isTornOff;
    bool m_active = false;
    bool m_isStale = true;
    bool m_isFilling = false;
    ReportSelection m_filledFor;
};

} // namespace tavix
