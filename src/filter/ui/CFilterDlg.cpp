#include "filter/ui/CFilterDlg.h"

#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "filter/ExpressionCheck.h"
#include "filter/ui/CFields.h"
#include "filter/ui/CKeywords.h"
#include "filter/ui/ComparisonPane.h"
#include "filter/ui/ExpressionBox.h"
#include "filter/ui/FilterMenu.h"
#include "filter/ui/FilterPath.h"
#include "grid/ui/Tints.h"

#include <QCheckBox>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <utility>

namespace tavix {

namespace {

/// The pause in typing after which the expression is checked.
constexpr int kCheckMilliseconds = 250;

QPushButton* makeButton(const char* name, const QString& text, const QString& spoken, QWidget* parent) {
    auto* button = new QPushButton(text, parent);
    button->setObjectName(QLatin1String(name));
    button->setAutoDefault(false);
    button->setAccessibleName(spoken);
    button->setToolTip(spoken);
    return button;
}

template <typename Button>
Button* makeChoice(const char* name, const QString& text, QWidget* parent) {
    auto* choice = new Button(text, parent);
    choice->setObjectName(QLatin1String(name));
    return choice;
}

} // namespace

CFilterDlg::CFilterDlg(Messages& messages, SettingsStore& settings, DistributionKind kind, std::string_view filterText,
                       Functions functions, QWidget* parent)
    : QDialog(parent), m_messages(messages), m_model(messages, kind, filterText), m_functions(std::move(functions)) {
    setWindowTitle(tr("Report Filter"));
    setSizeGripEnabled(true);
    MakeConditionArea();
    MakeActionArea();
    MakeExpressionArea();
    m_filters = makeButton("filters", tr("Fil&ters"), tr("Recent and named filters"), this);
    m_menu = new FilterMenu(m_model, settings, messages, m_filters);
    m_filters->setMenu(m_menu);
    m_load = makeButton("load", tr("&Load..."), tr("Load a filter from a file"), this);
    m_save = makeButton("save", tr("&Save..."), tr("Save the filter in a file"), this);
    LayOut();
    ConnectBuilding();
    ConnectEditing();
    if (m_functions) {
        QStringList names;
        for (const FilterFunction& function : *m_functions)
            names << toQString(function.name);
        m_box->SetFunctions(names);
    }
    m_checkSoon.setSingleShot(true);
    m_checkSoon.setInterval(kCheckMilliseconds);
    ApplyColors();
    ShowModel();
    resize(680, 620);
    if (m_model.EditMode())
        m_box->setFocus();
    else
        m_comparison->FocusOn(FilterFocus::FieldList);
}

void CFilterDlg::MakeConditionArea() {
    m_conditionArea = new QGroupBox(tr("Condition"), this);
    m_comparison = new ComparisonPane(m_model, m_conditionArea);
    m_add = makeButton("addCondition", tr("&Add Condition"), toQString(m_model.AddHint()), m_conditionArea);
    m_left = makeButton("leftParenthesis", QStringLiteral("("), tr("Open a parenthesis"), m_conditionArea);
    m_right = makeButton("rightParenthesis", QStringLiteral(")"), tr("Close a parenthesis"), m_conditionArea);
    m_and = makeButton("and", tr("AND"), tr("Both conditions must hold"), m_conditionArea);
    m_or = makeButton("or", tr("OR"), tr("One of the conditions must hold"), m_conditionArea);
    m_undo = makeButton("undo", tr("&Undo"), tr("Remove the last entry"), m_conditionArea);
    m_clear = makeButton("clear", tr("&Clear"), tr("Remove all entries"), m_conditionArea);
    const int narrow = fontMetrics().horizontalAdvance(QStringLiteral("MMMM")) + 8;
    for (QPushButton* button : {m_left, m_right, m_and, m_or})
        button->setFixedWidth(narrow);
    auto* row = new QHBoxLayout;
    row->addWidget(m_add);
    row->addSpacing(10);
    for (QPushButton* button : {m_left, m_right, m_and, m_or})
        row->addWidget(button);
    row->addStretch(1);
    row->addWidget(m_undo);
    row->addWidget(m_clear);
    auto* layout = new QVBoxLayout(m_conditionArea);
    layout->addWidget(m_comparison);
    layout->addSpacing(4);
    layout->addLayout(row);
}

void CFilterDlg::MakeActionArea() {
    m_actionArea = new QGroupBox(tr("Remove a row from the report when the row:"), this);
    m_passes = makeChoice<QRadioButton>("passes", tr("Passes filter validation"), m_actionArea);
    m_fails = makeChoice<QRadioButton>("fails", tr("Fails filter validation"), m_actionArea);
    auto* layout = new QHBoxLayout(m_actionArea);
    layout->addWidget(m_passes);
    layout->addSpacing(18);
    layout->addWidget(m_fails);
    layout->addStretch(1);
}

void CFilterDlg::MakeExpressionArea() {
    m_expressionArea = new QGroupBox(tr("Filter"), this);
    m_plainText = makeChoice<QRadioButton>("plainText", tr("Show plain text"), m_expressionArea);
    m_code = makeChoice<QRadioButton>("code", tr("Show expression code"), m_expressionArea);
    m_editMode = makeChoice<QCheckBox>("editMode", tr("Edit filter expression"), m_expressionArea);
    m_box = new ExpressionBox(m_expressionArea);
    m_box->setObjectName(QStringLiteral("expression"));
    m_error = new QLabel(m_expressionArea);
    m_error->setObjectName(QStringLiteral("error"));
    m_error->setAccessibleName(tr("Fault in the expression"));
    m_error->setTextFormat(Qt::RichText);
    m_error->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    m_error->setWordWrap(true);
    m_functionsButton =
        makeButton("functions", tr("&Functions..."), tr("Insert a function into the expression"), m_expressionArea);
    m_fields = makeButton("fields", tr("Fi&elds..."), tr("Insert a field into the expression"), m_expressionArea);
    m_copy =
        makeButton("copy", tr("C&opy"), tr("Copy the selected part of the expression, or all of it"), m_expressionArea);
    m_paste = makeButton("paste", tr("&Paste"), tr("Paste into the expression"), m_expressionArea);
    auto* choices = new QHBoxLayout;
    choices->addWidget(m_plainText);
    choices->addSpacing(18);
    choices->addWidget(m_code);
    choices->addStretch(1);
    choices->addWidget(m_editMode);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_functionsButton);
    buttons->addWidget(m_fields);
    buttons->addStretch(1);
    buttons->addWidget(m_copy);
    buttons->addWidget(m_paste);
    auto* layout = new QVBoxLayout(m_expressionArea);
    layout->addLayout(choices);
    layout->addWidget(m_box, 1);
    layout->addWidget(m_error);
    layout->addLayout(buttons);
}

void CFilterDlg::LayOut() {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &CFilterDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(m_filters);
    bottom->addWidget(m_load);
    bottom->addWidget(m_save);
    bottom->addStretch(1);
    bottom->addWidget(buttons);
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(10);
    layout->addWidget(m_conditionArea);
    layout->addWidget(m_expressionArea, 1);
    layout->addWidget(m_actionArea);
    layout->addLayout(bottom);
}

void CFilterDlg::ConnectBuilding() {
    const auto onClick = [this](QPushButton* button, auto act) {
        connect(button, &QPushButton::clicked, this, [this, act] {
            act(m_model);
            ShowModel();
        });
    };
    connect(m_add, &QPushButton::clicked, this, &CFilterDlg::AddCondition);
    onClick(m_left, [](FilterModel& model) { model.AddLeftParenthesis(); });
    onClick(m_right, [](FilterModel& model) { model.AddRightParenthesis(); });
    onClick(m_and, [](FilterModel& model) { model.AddConnector(Connector::And); });
    onClick(m_or, [](FilterModel& model) { model.AddConnector(Connector::Or); });
    onClick(m_undo, [](FilterModel& model) { model.Undo(); });
    onClick(m_clear, [](FilterModel& model) { model.Clear(); });
    const auto onChoice = [this](QRadioButton* button, auto act) {
        connect(button, &QRadioButton::toggled, this, [this, act](bool checked) {
            if (!checked || m_isShowing)
                return;
            act(m_model);
            ShowModel();
        });
    };
    onChoice(m_passes, [](FilterModel& model) { model.ChooseAction(FilterAction::RemovePassing); });
    onChoice(m_fails, [](FilterModel& model) { model.ChooseAction(FilterAction::RemoveFailing); });
    onChoice(m_plainText, [](FilterModel& model) { model.ChooseDisplay(FilterDisplay::PlainText); });
    onChoice(m_code, [](FilterModel& model) { model.ChooseDisplay(FilterDisplay::ExpressionCode); });
}

void CFilterDlg::ConnectEditing() {
    connect(m_editMode, &QCheckBox::toggled, this, &CFilterDlg::SwitchEditMode);
    connect(m_box, &QPlainTextEdit::textChanged, this, &CFilterDlg::BoxEdited);
    connect(&m_checkSoon, &QTimer::timeout, this, &CFilterDlg::CheckExpression);
    connect(m_error, &QLabel::linkActivated, this, [this] {
        if (m_fault)
            m_box->GoTo(*m_fault);
    });
    connect(m_functionsButton, &QPushButton::clicked, this, &CFilterDlg::PasteFunction);
    connect(m_fields, &QPushButton::clicked, this, &CFilterDlg::PasteField);
    connect(m_copy, &QPushButton::clicked, this, &CFilterDlg::Copy);
    connect(m_paste, &QPushButton::clicked, this, [this] {
        m_box->paste();
        m_box->setFocus();
    });
    connect(m_menu, &FilterMenu::Taken, this, &CFilterDlg::ShowModel);
    connect(m_menu, &FilterMenu::Refused, this, [this] { m_comparison->FocusOn(FilterFocus::FieldList); });
    connect(m_load, &QPushButton::clicked, this, &CFilterDlg::Load);
    connect(m_save, &QPushButton::clicked, this, &CFilterDlg::Save);
}

void CFilterDlg::ShowModel() {
    m_isShowing = true;
    const FilterModel::Controls enabled = m_model.Enabled();
    m_comparison->ShowInput();
    m_add->setEnabled(enabled.addCondition);
    m_add->setToolTip(toQString(m_model.AddHint()));
    m_left->setEnabled(enabled.leftParenthesis);
    m_right->setEnabled(enabled.rightParenthesis);
    m_and->setEnabled(enabled.connectors);
    m_or->setEnabled(enabled.connectors);
    m_undo->setEnabled(enabled.undo);
    m_clear->setEnabled(enabled.undo);
    m_passes->setChecked(m_model.Action() == FilterAction::RemovePassing);
    m_fails->setChecked(m_model.Action() == FilterAction::RemoveFailing);
    m_actionArea->setEnabled(enabled.action);
    m_plainText->setChecked(m_model.Display() == FilterDisplay::PlainText);
    m_code->setChecked(m_model.Display() == FilterDisplay::ExpressionCode);
    m_plainText->setEnabled(enabled.display);
    m_code->setEnabled(enabled.display);
    m_editMode->setChecked(m_model.EditMode());
    const bool isCode = m_model.Display() == FilterDisplay::ExpressionCode;
    m_box->ShowText(toQString(m_model.BoxText()), isCode, enabled.editing);
    m_box->setAccessibleName(isCode ? tr("Filter as expression code") : tr("Filter as plain text"));
    m_box->setPlaceholderText(toQString(m_model.BoxHint()));
    for (QPushButton* button : {m_functionsButton, m_fields, m_copy, m_paste})
        button->setEnabled(enabled.editing);
    m_error->setVisible(enabled.editing);
    m_isShowing = false;
    CheckExpression();
}

void CFilterDlg::ApplyColors() {
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, quietText(palette()));
    m_error->setPalette(colors);
}

void CFilterDlg::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_error) {
        ApplyColors();
        CheckExpression();
    }
}

void CFilterDlg::AddCondition() {
    const FilterFocus focus = m_model.AddCondition();
    ShowModel();
    m_comparison->FocusOn(focus);
}

void CFilterDlg::SwitchEditMode(bool on) {
    if (m_isShowing)
        return;
    m_model.SetEditMode(on);
    ShowModel();
    if (m_model.EditMode())
        m_box->setFocus();
}

void CFilterDlg::BoxEdited() {
    if (m_isShowing)
        return;
    m_model.EditBox(toUtf8(m_box->Text()));
    m_checkSoon.start();
}

void CFilterDlg::CheckExpression() {
    m_checkSoon.stop();
    m_fault.reset();
    m_box->ClearMark();
    if (!m_model.EditMode())
        return;
    const ExpressionNotice notice = NoticeOn(toUtf8(m_box->Text()));
    m_fault = notice.fault;
    if (!m_fault) {
        m_error->setText(toQString(notice.text));
        return;
    }
    const bool isError = notice.kind == ExpressionNotice::Kind::Error;
    if (isError)
        m_box->MarkError(*m_fault);
    const QColor color = isError ? tint::alert(palette()) : m_error->palette().color(QPalette::WindowText);
    // A click on the text goes to the fault.
    m_error->setText(QStringLiteral("<a href=\"#\" style=\"color:%1; text-decoration:none\">%2</a>")
                         .arg(color.name(), toQString(notice.text).toHtmlEscaped()));
}

void CFilterDlg::PasteFunction() {
    if (!m_functions) {
        m_messages.warn(m_functions.error().text);
        return;
    }
    if (CKeywords(*m_functions, this).exec() == QDialog::Accepted)
        m_box->paste();
    m_box->setFocus();
}

void CFilterDlg::PasteField() {
    if (CFields(this).exec() == QDialog::Accepted)
        m_box->paste();
    m_box->setFocus();
}

void CFilterDlg::Copy() {
    if (m_box->textCursor().hasSelection())
        m_box->copy();
    else
        QGuiApplication::clipboard()->setText(m_box->Text());
    m_box->setFocus();
}

void CFilterDlg::Load() {
    const QString path = AskFilterToLoad(this);
    if (!path.isEmpty() && m_model.Load(toUtf8(path)))
        ShowModel();
}

void CFilterDlg::Save() {
    const QString path = AskFilterToSave(this);
    if (!path.isEmpty())
        m_model.Save(toUtf8(path));
}

void CFilterDlg::keyPressEvent(QKeyEvent* event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool withControl = event->modifiers() == Qt::ControlModifier;
    const FilterEnter action =
        isEnter ? m_model.PressEnter(m_comparison->IsInValue(), m_comparison->HasKeyboard(), withControl)
                : FilterEnter::PassOn;
    switch (action) {
    case FilterEnter::AddCondition:
        return AddCondition();
    case FilterEnter::Accept:
        return accept();
    case FilterEnter::PassOn:
        return QDialog::keyPressEvent(event);
    }
}

void CFilterDlg::accept() {
    if (m_model.Accept())
        return QDialog::accept();
    // Accept() may have added a condition.
    ShowModel();
    m_comparison->FocusOn(FilterFocus::FieldList);
}

} // namespace tavix
