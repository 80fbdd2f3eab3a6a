#pragma once

#include "frame/OptionsModel.h"

#include <QWidget>

#include <map>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QFontComboBox;
class QGroupBox;
class QLabel;
class QSpinBox;

namespace tavix {

/// The first page of the Options sheet: limits, warning thresholds, notes, and the font of the statistics panes.
class CGeneralPage final : public QWidget {
    Q_OBJECT

  public:
    /// Shows `values`, which must outlive the page.
    explicit CGeneralPage(OptionValues& values, QWidget* parent = nullptr);

    /// Writes the input into the values.
    void Store();
    void FocusOn(Setting field);

  private:
    [[nodiscard]] QGroupBox* MakeLimits();
    [[nodiscard]] QGroupBox* MakeThresholds();
    [[nodiscard]] QGroupBox* MakeFont();
    [[nodiscard]] QGroupBox* MakeDisplay();
    QSpinBox* MakeNumber(Setting setting);
    [[nodiscard]] DataFont EnteredFont() const;
    void ShowSample();

    OptionValues& m_values;
    std::map<Setting, QSpinBox*> m_numbers;
    int m_limitLabels = 0; ///< width of the widest label
    QCheckBox* m_ownFont;
    QFontComboBox* m_family;
    QDoubleSpinBox* m_size;
    QCheckBox* m_bold;
    QCheckBox* m_italic;
    QLabel* m_sample;
    QComboBox* m_colors = nullptr; ///< null when there is no choice
    QComboBox* m_notes;
    QCheckBox* m_welcome;
};

} // namespace tavix
