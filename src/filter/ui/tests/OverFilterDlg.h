#pragma once

#include "base/SettingsStore.h"
#include "base/tests/ScriptedMessages.h"
#include "base/ui/QtText.h"
#include "expression/Catalogue.h"
#include "filter/ui/CFilterDlg.h"
#include "filter/ui/ExpressionBox.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace tavix::testing {

inline std::vector<FilterFunction> catalogueFunctions() {
    std::vector<FilterFunction> functions;
    for (const expression::Function& function : expression::functions())
        functions.push_back({std::string(function.name), std::string(function.parameters), function.result,
                             std::string(function.description), function.minimum, function.maximum});
    return functions;
}

template <typename Widget>
Widget& child(QWidget& window, const char* name) {
    auto* found = window.findChild<Widget*>(QLatin1String(name));
    if (!found)
        throw std::runtime_error(std::string("no child ") + name);
    return *found;
}

/// With TAVIX_SHOTS set to a folder, a picture of the window is left there.
inline void shoot(QWidget& window, const char* name) {
    const QString folder = qEnvironmentVariable("TAVIX_SHOTS");
    if (folder.isEmpty())
        return;
    QCoreApplication::processEvents();
    window.grab().save(QStringLiteral("%1/%2.png").arg(folder, QLatin1String(name)));
}

/// The filter dialog on the screen, and hands.
class OverFilterDlg : public ::testing::Test {
  protected:
    CFilterDlg& open(const std::string& filterText = {}, DistributionKind kind = DistributionKind::Frequency) {
        dialog = std::make_unique<CFilterDlg>(messages, *settings, kind, filterText, catalogueFunctions());
        dialog->show();
        activate(*dialog);
        return *dialog;
    }
    static void activate(QWidget& window) {
        QApplication::setActiveWindow(&window);
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    QAbstractButton& button(const char* name) { return child<QAbstractButton>(*dialog, name); }
    /// A click that must find the button enabled.
    void click(const char* name) {
        EXPECT_TRUE(button(name).isEnabled()) << name;
        QTest::mouseClick(&button(name), Qt::LeftButton, {}, {6, button(name).height() / 2});
    }
    void choose(const char* list, const char* entry) {
        auto& box = child<QComboBox>(*dialog, list);
        const int index = box.findText(QLatin1String(entry));
        EXPECT_GE(index, 0) << entry;
        box.setFocus();
        box.setCurrentIndex(index);
    }
    void type(const char* value) {
        auto& edit = child<QLineEdit>(*dialog, "value");
        edit.setFocus();
        edit.selectAll();
        edit.insert(toQString(value)); // as an input method does, which knows every character
    }
    void add(const char* operation, const char* value, const char* field = "Frequency value") {
        choose("field", field);
        choose("operation", operation);
        type(value);
        click("addCondition");
    }
    ExpressionBox& box() { return child<ExpressionBox>(*dialog, "expression"); }
    std::string text() { return toUtf8(box().Text()); }
    /// The enabled ones of these, each followed by a blank.
    std::string enabled(const std::vector<const char*>& names) {
        std::string list;
        for (const char* name : names) {
            if (child<QWidget>(*dialog, name).isEnabled())
                list += std::string(name) + ' ';
        }
        return list;
    }
    /// Does this in the next modal dialog over the filter dialog.
    void inNextDialog(std::function<void(QWidget&)> act) {
        QTimer::singleShot(0, dialog.get(), [this, act = std::move(act)] {
            QWidget* over = QApplication::activeModalWidget();
            if (!over || over == dialog.get())
                return inNextDialog(act);
            activate(*over);
            act(*over);
            const QPointer<QWidget> left(over);
            QCoreApplication::processEvents();
            if (left && left->isVisible()) {
                ADD_FAILURE() << "left open: " << toUtf8(left->windowTitle());
                left->close();
            }
        });
    }

    ScriptedMessages messages;
    std::unique_ptr<SettingsStore> settings = makeMemorySettings();
    std::unique_ptr<CFilterDlg> dialog;
};

} // namespace tavix::testing
