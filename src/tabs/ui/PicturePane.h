#pragma once

#include "chart/FieldPictures.h"
#include "doc/CViewSite.h"
#include "doc/ItemCode.h"
#include "report/DistributionKind.h"
#include "report/ReportSubject.h"
#include "tabs/ui/DrillThrough.h"

#include <QWidget>

#include <functional>

class QLabel;
class QToolButton;

namespace tavix {

class CProfTab;
class DrawingWidget;

/// A picture of the subject's field beside a list, with a button that closes and opens it. Reads the figures while it
/// is visible and open. A click on a part of the picture filters the values or opens their source rows.
class PicturePane final : public QWidget {
    Q_OBJECT
  public:
    using Read = std::function<Result<chart::FieldPicture>(PrViewer&, const FieldRecord&)>;

    /// All but `read` must outlive the pane.
    PicturePane(CViewSite& site, const ReportSubject& subject, CProfTab& tab, Read read,
                DrillOrigin origin = DrillOrigin::Frequency);

    void SetOpen(bool isOpen);
    [[nodiscard]] bool IsOpen() const { return m_isOpen; }
    /// Call after the list was filled: the picture is read again, at once if it is seen.
    void Refill();
    [[nodiscard]] QWidget* GetLastTabStop() const;

  Q_SIGNALS:
    void ToggleClicked();
    /// The tab with this code shows what the user asked for.
    void TabRequested(tavix::ItemCode code);

  protected:
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void FillIfSeen();
    void Act(const chart::Action& action);
    void Filter(DistributionKind kind, const std::string& code);
    void ShowToggle();
    void ShowFont();

    CViewSite& m_site;
    const ReportSubject& m_subject;
    Read m_read;
    DrillThrough m_drill;
    DrillOrigin m_origin; ///< of the values that the picture shows
    QLabel* m_title;
    QToolButton* m_toggle;
    DrawingWidget* m_drawing;
    QLabel* m_note;
    bool m_isOpen = true;
    bool m_isStale = true;
    bool m_isStyling = false;
};

} // namespace tavix
