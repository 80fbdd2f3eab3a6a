#pragma once

#include "access/PrViewer.h"
#include "base/AlertDefinition.h"
#include "support/SampleRepository.h"

#include <stdexcept>
#include <string>

namespace tavix::testing {

/// A session of its own with the latest run of "Sales"; throws std::runtime_error where it fails.
class SalesSession {
  public:
    explicit SalesSession(const SampleRepository& sample) : m_viewer(PrViewer::create()) {
        Require(m_viewer->init(sample.path) && m_viewer->setCurrentJobSetup(sample.salesJob));
    }
    PrViewer* operator->() { return m_viewer.get(); }
    void Require(bool done) const {
        if (!done)
            throw std::runtime_error(m_viewer->getErrorString().str());
    }

  private:
    PrViewer::Handle m_viewer;
};

/// Makes an alert of the user "anna" on a metric of a field of "Sales", "customers/name", and returns its id.
inline int addAlert(const SampleRepository& sample, const std::string& field, MetricId metric, const AlertRule& rule) {
    SalesSession session(sample);
    AlertDefinition definition;
    definition.table = sample.tables.at(field.substr(0, field.find('/')));
    definition.field = sample.fields.at(field);
    definition.metric = metric;
    definition.rule = rule;
    int alert = -1;
    session.Require(session->createEditAlert(alert, definition, "anna"));
    return alert;
}

/// Mutes the alert from the latest run on.
inline void muteAlert(const SampleRepository& sample, int alert) {
    SalesSession session(sample);
    session.Require(session->muteAlert(alert, "anna", "known gap", 0, std::nullopt));
}

} // namespace tavix::testing
