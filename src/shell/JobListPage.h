#pragma once

#include "host/TavixHost.h"

#include <QWidget>

#include <string>
#include <vector>

class QLabel;
class QTreeWidget;

namespace tavix::shell {

/// The page that lists the reports of the open repository.
class JobListPage final : public QWidget {
    Q_OBJECT
  public:
    explicit JobListPage(QWidget* parent = nullptr);

    void setReports(const std::string& repository, const std::vector<Veldra::Solenne::Tavix::TavixReportInfo>& reports);
    /// Makes the report the current row.
    void selectJob(int jobId);
    void focusList();

  Q_SIGNALS:
    void jobChosen(int jobId);

  private:
    QLabel* m_title;
    QLabel* m_detail;
    QTreeWidget* m_list;
};

} // namespace tavix::shell
