#pragma once

#include "base/Result.h"

#include <QDir>
#include <QString>

class QWidget;

namespace tavix::pictures {

/// Longer than the viewer's longest delay after a report is opened.
inline constexpr int kSettleMilliseconds = 500;
/// Long enough to lay out and paint the widget that was clicked.
inline constexpr int kPaintMilliseconds = 60;

/// Handles events for so long.
void settle(int milliseconds = kSettleMilliseconds);

/// Writes pictures of widgets to a folder and prints the path of each. After the first failure it writes nothing more.
class Album {
  public:
    /// Makes the folder if there is none.
    explicit Album(const QString& folder);

    /// Writes NAME.png.
    void take(QWidget& widget, const QString& name);
    /// False after a failure, whose reason is on stderr.
    [[nodiscard]] bool ok() const { return m_ok; }

  private:
    static Status save(QWidget& widget, const QString& path);

    QDir m_folder;
    bool m_ok = true;
};

} // namespace tavix::pictures
