#include "support/SampleAlerts.h"

#include "access/PrViewer.h"
#include "base/AlertDefinition.h"
#include "support/SampleRepository.h"

#include <stdexcept>

namespace tavix::testing {

namespace {

void require(bool done, const PrViewer& viewer) {
    if (!done)
        throw std::runtime_error(viewer.getErrorString().str());
}

PrViewer::Handle sessionOf(const SampleRepository& sample) {
    PrViewer::Handle viewer = PrViewer::create();
    require(viewer->init(sample.path) && viewer->setCurrentJobSetup(sample.salesJob), *viewer);
    return viewer;
}

} // namespace

int addAlert(const SampleRepository& sample, const std::string& field, MetricId metric, const AlertRule& rule) {
    const PrViewer::Handle viewer = sessionOf(sample);
    AlertDefinition definition;
    definition.table = sample.tables.at(field.substr(0, field.find('/')));
    definition.field = sample.fields.at(field);
    definition.metric = metric;
    definition.rule = rule;
    int alert = -1;
    require(viewer->createEditAlert(alert, definition, "anna"), *viewer);
    return alert;
}

void muteAlert(const SampleRepository& sample, int alert) {
    const PrViewer::Handle viewer = sessionOf(sample);
    require(viewer->muteAlert(alert, "anna", "known gap", 0, std::nullopt), *viewer);
}

} // namespace tavix::testing
