#include "frame/ui/CGeneralPage.h"

#include "base/ui/QtText.h"
#include "base/ui/Theme.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFontComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavix {

namespace {

constexpr int kGap = 12;

QFormLayout* makeForm(QGroupBox* box) {
    auto* form = new QFormLayout(box);
    form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    form->setHorizontalSpacing(kGap);
    return form;
}

} // namespace

CGeneralPage::CGeneralPage(OptionValues& values, QWidget* parent) : QWidget(parent), m_values(values) {
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(kGap, kGap, kGap, kGap);
    grid->setHorizontalSpacing(kGap);
    grid->setVerticalSpacing(kGap);
    // Added column by column, which is the tab order.
    grid->addWidget(MakeLimits(), 0, 0);
    grid->addWidget(MakeThresholds(), 1, 0);
    grid->addWidget(MakeFont(), 0, 1);
    grid->addWidget(MakeDisplay(), 1, 1);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(2, 1);
}

QSpinBox* CGeneralPage::MakeNumber(Setting setting) {
    const SettingInfo& info = settingInfo(setting);
    auto* box = new QSpinBox;
    box->setObjectName(toQString(info.key));
    box->setRange(info.lowest, info.highest);
    box->setGroupSeparatorShown(true);
    box->setAccelerated(true);
    box->setAlignment(Qt::AlignRight);
    box->setMinimumWidth(130);
    box->setToolTip(tr("%L1 to %L2").arg(info.lowest).arg(info.highest));
    m_numbers[setting] = box;
    for (const OptionNumber& number : optionNumbers())
        if (number.setting == setting)
            box->setValue(m_values.*number.value);
    return box;
}

QGroupBox* CGeneralPage::MakeLimits() {
    auto* box = new QGroupBox(tr("Show at most"));
    QFormLayout* form = makeForm(box);
    form->addRow(tr("&Values in a chart:"), MakeNumber(Setting::MaxChartVals));
    form->addRow(tr("Values and &patterns in a list:"), MakeNumber(Setting::MaxFreqVals));
    form->addRow(tr("O&utliers of a key analysis:"), MakeNumber(Setting::MaxPkFkOutliers));
    form->addRow(tr("Common value&s of redundant data:"), MakeNumber(Setting::MaxRdndntCmnVals));
    form->addRow(tr("&Drill-through rows:"), MakeNumber(Setting::MaxDrillThruRows));
    for (const auto& [setting, number] : m_numbers)
        m_limitLabels = std::max(m_limitLabels, form->labelForField(number)->sizeHint().width());
    return box;
}

QGroupBox* CGeneralPage::MakeThresholds() {
    auto* box = new QGroupBox(tr("Redundant data analysis"));
    QFormLayout* form = makeForm(box);
    form->addRow(tr("&First warning threshold:"), MakeNumber(Setting::FirstRDAThreshold));
    form->addRow(tr("S&econd warning threshold:"), MakeNumber(Setting::SecondRDAThreshold));
    // Aligns the numbers with those of the group above.
    form->labelForField(m_numbers[Setting::FirstRDAThreshold])->setMinimumWidth(m_limitLabels);
    for (const Setting setting : {Setting::FirstRDAThreshold, Setting::SecondRDAThreshold})
        m_numbers[setting]->setSuffix(tr(" %"));
    return box;
}

QGroupBox* CGeneralPage::MakeFont() {
    const SettingInfo& range = settingInfo(Setting::StatFontSize);
    const DataFont& font = m_values.statFont;
    m_ownFont = new QCheckBox(tr("Same &typeface as the window"));
    m_ownFont->setObjectName(QStringLiteral("ownFont"));
    m_ownFont->setChecked(font.name.empty());
    m_family = new QFontComboBox;
    m_family->setObjectName(QStringLiteral("StatFontName"));
    m_family->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_family->setMinimumContentsLength(16);
    m_family->setCurrentFont(font.name.empty() ? this->font() : QFont(toQString(font.name)));
    m_size = new QDoubleSpinBox;
    m_size->setObjectName(QStringLiteral("StatFontSize"));
    m_size->setDecimals(1);
    m_size->setSingleStep(0.5);
    m_size->setRange(range.lowest / 10.0, range.highest / 10.0);
    m_size->setValue(font.tenthsOfPoint / 10.0);
    m_size->setSuffix(tr(" pt"));
    m_size->setAlignment(Qt::AlignRight);
    m_bold = new QCheckBox(tr("&Bold"));
    m_bold->setChecked(font.bold);
    m_italic = new QCheckBox(tr("&Italic"));
    m_italic->setChecked(font.italic);
    m_sample = new QLabel(tr("Seattle  47.4502  98101  \u00c5\u00e9\u00df"));
    m_sample->setObjectName(QStringLiteral("fontSample"));
    m_sample->setAccessibleName(tr("Sample of the font"));
    m_sample->setFrameShape(QFrame::StyledPanel);
    m_sample->setBackgroundRole(QPalette::Base);
    m_sample->setForegroundRole(QPalette::Text);
    m_sample->setAutoFillBackground(true);
    m_sample->setMargin(6);
    m_sample->setMinimumHeight(44);
    // A large font is cut off here instead of enlarging the sheet.
    m_sample->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);

    auto* box = new QGroupBox(tr("Font of statistics"));
    auto* form = new QFormLayout;
    form->setHorizontalSpacing(kGap);
    form->addRow(tr("T&ypeface:"), m_family);
    auto* style = new QHBoxLayout;
    style->addWidget(m_size);
    style->addSpacing(kGap);
    style->addWidget(m_bold);
    style->addWidget(m_italic);
    style->addStretch();
    form->addRow(tr("Si&ze:"), style);
    static_cast<QLabel*>(form->labelForField(style))->setBuddy(m_size);
    auto* column = new QVBoxLayout(box);
    column->addWidget(m_ownFont);
    column->addLayout(form);
    column->addWidget(m_sample, 1);

    connect(m_ownFont, &QCheckBox::toggled, this, &CGeneralPage::ShowSample);
    connect(m_family, &QFontComboBox::currentTextChanged, this, &CGeneralPage::ShowSample);
    connect(m_size, &QDoubleSpinBox::valueChanged, this, &CGeneralPage::ShowSample);
    connect(m_bold, &QCheckBox::toggled, this, &CGeneralPage::ShowSample);
    connect(m_italic, &QCheckBox::toggled, this, &CGeneralPage::ShowSample);
    ShowSample();
    return box;
}

QGroupBox* CGeneralPage::MakeDisplay() {
    m_notes = new QComboBox;
    m_notes->setObjectName(QStringLiteral("NotesSortOrder"));
    m_notes->addItem(tr("Oldest first"), false);
    m_notes->addItem(tr("Newest first"), true);
    m_notes->setCurrentIndex(m_values.newestNotesFirst ? 1 : 0);
    m_welcome = new QCheckBox(tr("Show the &welcome page at start"));
    m_welcome->setObjectName(QStringLiteral("HideWelcomeDialog"));
    m_welcome->setChecked(!m_values.hideWelcome);

    auto* box = new QGroupBox(tr("Display"));
    QFormLayout* form = makeForm(box);
    if (m_values.colorScheme) {
        m_colors = new QComboBox;
        m_colors->setObjectName(QStringLiteral("ColorScheme"));
        for (const auto& [text, scheme] :
             {std::pair(tr("Like the desktop"), ColorScheme::Desktop), std::pair(tr("Light"), ColorScheme::Light),
              std::pair(tr("Dark"), ColorScheme::Dark)})
            m_colors->addItem(text, static_cast<int>(scheme));
        m_colors->setCurrentIndex(m_colors->findData(static_cast<int>(*m_values.colorScheme)));
        m_notes->setMinimumWidth(m_colors->sizeHint().width());
        form->addRow(tr("C&olours:"), m_colors);
    }
    form->addRow(tr("Order of &notes:"), m_notes);
    form->addRow(m_welcome);
    return box;
}

DataFont CGeneralPage::EnteredFont() const {
    return {m_ownFont->isChecked() ? std::string() : toUtf8(m_family->currentText().trimmed()),
            m_values.statFont.charSet, static_cast<int>(std::lround(m_size->value() * 10)), m_bold->isChecked(),
            m_italic->isChecked()};
}

void CGeneralPage::ShowSample() {
    m_family->setEnabled(!m_ownFont->isChecked());
    m_sample->setFont(toQFont(EnteredFont(), font()));
}

void CGeneralPage::Store() {
    for (const OptionNumber& number : optionNumbers())
        m_values.*number.value = m_numbers[number.setting]->value();
    m_values.statFont = EnteredFont();
    if (m_colors)
        m_values.colorScheme = static_cast<ColorScheme>(m_colors->currentData().toInt());
    m_values.newestNotesFirst = m_notes->currentData().toBool();
    m_values.hideWelcome = !m_welcome->isChecked();
}

void CGeneralPage::FocusOn(Setting field) {
    if (const auto found = m_numbers.find(field); found != m_numbers.end()) {
        found->second->setFocus();
        found->second->selectAll();
    }
}

} // namespace tavix
