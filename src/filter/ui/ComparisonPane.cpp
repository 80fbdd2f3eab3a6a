#include "filter/ui/ComparisonPane.h"

#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "filter/ValueLines.h"
#include "filter/ui/CValueListDlg.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

namespace tavix {

ComparisonPane::ComparisonPane(FilterModel& model, QWidget* parent)
    : QWidget(parent),
      m_model(model),
      m_field(new QComboBox(this)),
      m_operation(new QComboBox(this)),
      m_single(new QRadioButton(tr("Single value"), this)),
      m_multiple(new QRadioButton(tr("Multiple values"), this)),
      m_value(new QLineEdit(this)),
      m_valueList(new QPushButton(tr("&Value List..."), this)),
      m_values(new QLabel(this)),
      m_caseInsensitive(new QCheckBox(tr("Case insensitive"), this)),
      m_wildcard(new QCheckBox(tr("Treat '*' and '?' as wildcards"), this)) {
    MakeControls();
    LayOut();
    Connect();
    ShowInput();
}

void ComparisonPane::MakeControls() {
    m_field->setObjectName(QStringLiteral("field"));
    m_field->setAccessibleName(tr("Field"));
    m_field->setPlaceholderText(tr("Choose a field"));
    for (const std::string& field : ComparisonInput::Fields(m_model.Kind()))
        m_field->addItem(toQString(field));
    m_operation->setObjectName(QStringLiteral("operation"));
    m_operation->setAccessibleName(tr("Operation"));
    m_operation->setPlaceholderText(tr("Choose an operation"));
    m_operation->setMaxVisibleItems(19);
    m_single->setObjectName(QStringLiteral("single"));
    m_multiple->setObjectName(QStringLiteral("multiple"));
    m_value->setObjectName(QStringLiteral("value"));
    m_value->setAccessibleName(tr("Single value"));
    m_valueList->setObjectName(QStringLiteral("valueList"));
    m_valueList->setAutoDefault(false);
    m_values->setObjectName(QStringLiteral("values"));
    m_values->setTextFormat(Qt::PlainText);
    m_values->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_caseInsensitive->setObjectName(QStringLiteral("caseInsensitive"));
    m_wildcard->setObjectName(QStringLiteral("wildcard"));
}

void ComparisonPane::LayOut() {
    auto* fieldLabel = new QLabel(tr("Fiel&d:"), this);
    fieldLabel->setBuddy(m_field);
    auto* operationLabel = new QLabel(tr("Operatio&n:"), this);
    operationLabel->setBuddy(m_operation);
    for (QComboBox* box : {m_field, m_operation})
        box->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_operation->setMinimumContentsLength(24);
    auto* what = new QHBoxLayout;
    what->addWidget(m_field, 2);
    what->addSpacing(6);
    what->addWidget(operationLabel);
    what->addWidget(m_operation, 3);
    auto* values = new QHBoxLayout;
    values->addWidget(m_valueList);
    values->addSpacing(6);
    values->addWidget(m_values, 1);
    auto* options = new QHBoxLayout;
    options->addWidget(m_caseInsensitive);
    options->addSpacing(18);
    options->addWidget(m_wildcard);
    options->addStretch(1);
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setColumnStretch(1, 1);
    grid->addWidget(fieldLabel, 0, 0);
    grid->addLayout(what, 0, 1);
    grid->addWidget(m_single, 1, 0);
    grid->addWidget(m_value, 1, 1);
    grid->addWidget(m_multiple, 2, 0);
    grid->addLayout(values, 2, 1);
    grid->addLayout(options, 3, 1);
    QWidget* order[] = {m_field,    m_operation, m_single,          m_value,
                        m_multiple, m_valueList, m_caseInsensitive, m_wildcard};
    for (std::size_t i = 1; i < std::size(order); ++i)
        setTabOrder(order[i - 1], order[i]);
}

void ComparisonPane::Connect() {
    connect(m_field, &QComboBox::currentIndexChanged, this,
            [this](int index) { Chosen([index](ComparisonInput& input) { input.ChooseField(index); }); });
    connect(m_operation, &QComboBox::currentIndexChanged, this,
            [this](int index) { Chosen([index](ComparisonInput& input) { input.ChooseOperation(index); }); });
    connect(m_single, &QRadioButton::toggled, this, [this](bool isSingle) {
        Chosen([isSingle](ComparisonInput& input) {
            input.ChooseMode(isSingle ? ValueMode::Single : ValueMode::Multiple);
        });
    });
    connect(m_value, &QLineEdit::textChanged, this, [this](const QString& text) {
        Chosen([&text](ComparisonInput& input) { input.SetSingleValue(toUtf8(text)); });
    });
    connect(m_caseInsensitive, &QCheckBox::toggled, this, [this](bool checked) {
        Chosen([checked](ComparisonInput& input) { input.CheckCaseInsensitive(checked); });
    });
    connect(m_wildcard, &QCheckBox::toggled, this,
            [this](bool checked) { Chosen([checked](ComparisonInput& input) { input.CheckWildcard(checked); }); });
    connect(m_valueList, &QPushButton::clicked, this, &ComparisonPane::EditValues);
}

void ComparisonPane::FillOperations() {
    const std::vector<std::string_view> operations = m_model.input.Operations();
    if (m_operation->count() == static_cast<int>(operations.size()))
        return;
    m_operation->clear();
    for (const std::string_view operation : operations)
        m_operation->addItem(toQString(operation));
}

void ComparisonPane::ShowInput() {
    m_isShowing = true;
    const ComparisonInput& input = m_model.input;
    FillOperations();
    m_field->setCurrentIndex(input.Field());
    m_operation->setCurrentIndex(input.Operation());
    m_single->setChecked(input.Mode() == ValueMode::Single);
    m_multiple->setChecked(input.Mode() == ValueMode::Multiple);
    if (toUtf8(m_value->text()) != input.SingleValue())
        m_value->setText(toQString(input.SingleValue()));
    m_values->setText(toQString(ValueListSummary(input.ValueList())));
    m_caseInsensitive->setChecked(input.CaseInsensitive());
    m_wildcard->setChecked(input.Wildcard());

    const ComparisonInput::Enabled enabled = input.Controls();
    m_single->setEnabled(enabled.singleMode);
    m_multiple->setEnabled(enabled.multipleMode);
    m_value->setEnabled(enabled.singleValue);
    m_valueList->setEnabled(enabled.valueList);
    m_values->setEnabled(enabled.valueList);
    m_caseInsensitive->setEnabled(enabled.caseInsensitive);
    m_wildcard->setEnabled(enabled.wildcard);
    setEnabled(m_model.Enabled().comparison);
    m_isShowing = false;
}

void ComparisonPane::EditValues() {
    CValueListDlg dialog(m_model.input.ValueList(), window());
    if (dialog.exec() == QDialog::Accepted)
        Chosen([&dialog](ComparisonInput& input) { input.SetValueList(dialog.GetValues()); });
}

void ComparisonPane::FocusOn(FilterFocus control) {
    switch (control) {
    case FilterFocus::FieldList:
        return m_field->setFocus();
    case FilterFocus::OperationList:
        return m_operation->setFocus();
    case FilterFocus::ValueList:
        return m_valueList->setFocus();
    case FilterFocus::Stays:
        break;
    }
}

bool ComparisonPane::HasKeyboard() const {
    const QWidget* holder = window()->focusWidget();
    return holder && isAncestorOf(holder);
}

bool ComparisonPane::IsInValue() const {
    return m_value->hasFocus();
}

} // namespace tavix
