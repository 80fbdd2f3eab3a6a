#pragma once

#include <QString>

#include <functional>

class QPrinter;
class QWidget;

namespace tavix {

/// Lets the user choose a file to save rows in, proposed in `folder` under `name`; "" for none.
[[nodiscard]] QString chooseRowsFile(QWidget& window, const QString& title, const QString& folder, const QString& name);
[[nodiscard]] QString chooseDrillFile(QWidget& window, const QString& folder, const QString& name);
/// Lets the user choose printer and pages; false for none.
[[nodiscard]] bool chooseDrillPrinter(QWidget& window, QPrinter& printer);

/// What a drill-through window asks its user.
struct DrillDialogs {
    std::function<QString(QWidget& window, const QString& folder, const QString& name)> chooseFile = chooseDrillFile;
    std::function<bool(QWidget& window, QPrinter& printer)> choosePrinter = chooseDrillPrinter;
};

} // namespace tavix
