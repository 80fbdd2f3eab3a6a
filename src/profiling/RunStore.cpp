#include "profiling/RunStore.h"

#include "base/DateTicks.h"
#include "profiling/FieldExamination.h"

#include <chrono>
#include <utility>

namespace tavix::profiling {

namespace {

/// How long a run waits for another writer.
constexpr std::chrono::minutes kPatience{10};

std::size_t sizeOf(const FieldProfile& field) {
    const repository::FieldFacts& facts = field.facts;
    std::size_t size = sizeof(FieldProfile) + sizeof(PackedResult);
    for (const repository::OffsetIndexPage& page : field.offsetIndex)
        size += sizeof page + page.bytes.size();
    for (const auto& percentile : facts.percentiles)
        size += sizeof percentile + percentile.value.str().size();
    for (const auto& outlier : facts.outliers)
        size += sizeof outlier + outlier.value.str().size();
    return size + (facts.histogram ? facts.histogram->counts.size() * sizeof(std::uint64_t) : 0);
}

} // namespace

RunStore::RunStore(std::string repositoryPath, repository::RunDescription run, RunReporter& reporter, StopSignal& stop)
    : m_path(std::move(repositoryPath)),
      m_held(repositoryFile(m_path)),
      m_run(std::move(run)),
      m_reporter(reporter),
      m_stop(stop) {}

std::optional<Error> RunStore::failure() const {
    if (!m_repository || !m_repository->hasFailed())
        return {};
    return m_repository->finish().error();
}

void RunStore::add(FinishedTable table) {
    for (const FieldProfile& field : table.fields)
        m_waitingSize += sizeOf(field);
    m_waiting.push_back(std::move(table));
}

Status RunStore::storeWaiting(std::vector<TableOutcome>& outcomes) {
    m_reporter.state.phase = ProgressState::Phase::Storing;
    if (Status status = begin(); !status)
        return status;
    if (Status status = storeDistributions(); !status)
        return status;
    for (FinishedTable& table : m_waiting) {
        if (Status status = store(table); !status)
            return status;
        outcomes.push_back(std::move(table.report.outcome));
    }
    m_waiting.clear();
    m_waitingSize = 0;
    return {};
}

Result<std::unique_ptr<DistributionQueue>> RunStore::storeAlong(FinishedTable& table) {
    if (Status status = begin(); !status)
        return status.error();
    auto queue = std::make_unique<DistributionQueue>(*m_writer, m_stop);
    for (FinishedTable& waiting : m_waiting) {
        if (Status status = beginTable(waiting); !status)
            return status.error();
        for (FieldProfile& field : waiting.fields)
            queue->put(*waiting.id, field);
    }
    if (Status status = beginTable(table); !status)
        return status.error();
    return queue;
}

Status RunStore::begin() {
    if (m_writer)
        return {};
    if (Status status = m_repository->finish(); !status)
        return status;
    // Hours of reading must not be lost because another run is being stored.
    const auto end = std::chrono::steady_clock::now() + kPatience;
    const auto phase = m_reporter.state.phase;
    repository::RunDescription run = m_run;
    run.mayWait = [this, end] {
        m_reporter.state.phase = ProgressState::Phase::Waiting;
        return !m_stop.isStopped() && std::chrono::steady_clock::now() < end;
    };
    auto writer = repository::RunWriter::begin(m_path, run);
    m_reporter.state.phase = phase;
    if (!writer)
        return writer.error();
    m_writer = std::move(*writer);
    return {};
}

Status RunStore::beginTable(FinishedTable& table) {
    if (table.id)
        return {};
    repository::TableFacts& facts = table.report.facts;
    facts.offsetIndex = table.offsetIndex ? &*table.offsetIndex : nullptr;
    const auto id = m_writer->addTable(facts);
    facts.offsetIndex = nullptr; // the table may move
    if (!id)
        return id.error();
    table.id = *id;
    return m_writer->nameFields(*id, *table.columns);
}

Status RunStore::storeDistributions() {
    for (FinishedTable& table : m_waiting) {
        m_reporter.state.table = table.report.outcome.name;
        if (Status status = beginTable(table); !status)
            return status;
        DistributionQueue queue(*m_writer, m_stop);
        for (FieldProfile& field : table.fields)
            queue.put(*table.id, field);
        if (Status status = queue.store(); !status)
            return status;
    }
    return {};
}

Status RunStore::store(FinishedTable& table) {
    const auto earlier = m_writer->earlierFields(*table.id);
    if (!earlier)
        return earlier.error();
    for (FieldProfile& field : table.fields) {
        const auto before = earlier->find(field.facts.name);
        if (Status status = storeField(table, field, before != earlier->end() ? &before->second : nullptr); !status)
            return status;
        field = {};
    }
    if (Status status = storeDamage(table); !status)
        return status;
    if (Status status = table.pass->storeRules(*m_writer, *table.id); !status)
        return status;
    for (const LogLine& line : table.report.log)
        if (Status status = m_writer->addLog(*table.id, line.level, line.text); !status)
            return status;
    return {};
}

Status RunStore::storeField(const FinishedTable& table, FieldProfile& field, const repository::EarlierField* before) {
    field.facts.offsetIndex = field.offsetIndex;
    field.summary.table = table.report.outcome.name;
    field.summary.source = sourceOf(table.report.facts);
    if (before)
        addChanges(field.facts, field.summary, *before, ticksOf(m_run.started));
    if (Status status = m_writer->addField(*table.id, field.facts); !status)
        return status;
    m_tableOfField.push_back(*table.id);
    m_summaries.push_back(std::move(field.summary));
    return {};
}

Status RunStore::storeDamage(const FinishedTable& table) {
    const auto damaged = static_cast<std::uint64_t>(table.report.facts.damagedRecords);
    return damaged == 0
               ? Status{}
               : m_writer->addFinding(*table.id, "", {.code = "damaged-rows", .likelihood = 3, .rows = damaged});
}

Status RunStore::storeDifferences() {
    for (const findings::FoundIn& found : findings::findDifferences(m_summaries))
        if (Status status = m_writer->addFinding(m_tableOfField[found.field], m_summaries[found.field].name,
                                                 factsOf(found.finding));
            !status)
            return status;
    return {};
}

} // namespace tavix::profiling
