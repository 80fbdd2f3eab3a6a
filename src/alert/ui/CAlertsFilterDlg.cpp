#include "alert/ui/CAlertsFilterDlg.h"

#include "base/ui/QtText.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavix {

namespace {

constexpr std::array kCriteria = {CAlertsFilter::DataSource, CAlertsFilter::Catalog, CAlertsFilter::Schema,
                                  CAlertsFilter::Table, CAlertsFilter::Type};
// Each key opens another list.
constexpr std::array<const char*, CAlertsFilter::kCriteria> kLabels = {
    "&Data Source:", "&Catalog:", "&Schema:", "&Table:", "T&ype:"};
constexpr std::array<const char*, CAlertsFilter::kCriteria> kNames = {"dataSource", "catalog", "schema", "table",
                                                                      "type"};
constexpr int kLettersShown = 28;

} // namespace

CAlertsFilterDlg::CAlertsFilterDlg(const std::vector<AlertState>& alerts, const CAlertsFilter& filter, QWidget* parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("alertsFilterDialog"));
    setWindowTitle(tr("Filter Alerts"));
    auto* form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    for (const CAlertsFilter::Criterion criterion : kCriteria) {
        auto* choice = new QComboBox(this);
        choice->setObjectName(QString::fromLatin1(kNames.at(criterion)));
        choice->setAccessibleName(toQString(CAlertsFilter::LabelOf(criterion)));
        choice->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        choice->setMinimumContentsLength(kLettersShown);
        m_choices.at(criterion) = choice;
        Offer(criterion, alerts, filter.Get(criterion));
        form->addRow(QString::fromLatin1(kLabels.at(criterion)), choice);
        connect(choice, &QComboBox::currentIndexChanged, this, &CAlertsFilterDlg::ShowReset);
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_reset = buttons->addButton(tr("Show &All"), QDialogButtonBox::ResetRole);
    m_reset->setObjectName(QStringLiteral("showAll"));
    buttons->button(QDialogButtonBox::Ok)->setText(tr("&Filter"));
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addSpacing(8);
    layout->addWidget(buttons);
    connect(m_reset, &QPushButton::clicked, this, [this] {
        for (QComboBox* choice : m_choices)
            choice->setCurrentIndex(0);
        m_choices.front()->setFocus();
    });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    ShowReset();
}

// A list that holds "(All)" alone has nothing to choose from. The item's data is its value: an object may be named
// "(All)", too.
void CAlertsFilterDlg::Offer(CAlertsFilter::Criterion criterion, const std::vector<AlertState>& alerts,
                             const std::string& chosen) {
    QComboBox& choice = *m_choices.at(criterion);
    choice.addItem(toQString(CAlertsFilter::kAll), QString());
    for (const std::string& value : CAlertsFilter::ValuesOf(criterion, alerts))
        choice.addItem(toQString(value).simplified(), toQString(value));
    const QString wanted = toQString(chosen);
    if (!chosen.empty() && choice.findData(wanted) < 0)
        choice.addItem(wanted.simplified(), wanted);
    choice.setCurrentIndex(chosen.empty() ? 0 : choice.findData(wanted));
    choice.setEnabled(choice.count() > 1);
}

void CAlertsFilterDlg::ShowReset() {
    m_reset->setEnabled(!Filter().IsEmpty());
}

CAlertsFilter CAlertsFilterDlg::Filter() const {
    CAlertsFilter filter;
    for (const CAlertsFilter::Criterion criterion : kCriteria)
        filter.Set(criterion, toUtf8(m_choices.at(criterion)->currentData().toString()));
    return filter;
}

} // namespace tavix
