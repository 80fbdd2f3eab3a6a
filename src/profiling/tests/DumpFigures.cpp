#include "profiling/tests/DumpFigures.h"

#include "base/tests/SourceFolder.h"
#include "profiling/FieldProfile.h"
#include "source/TextFileReader.h"

#include <nlohmann/json.hpp>

#include <array>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace tavix::profiling::testing {

namespace {

using nlohmann::json;

template <typename Value>
Value need(Result<Value> result) {
    if (!result)
        throw std::runtime_error(result.error().text);
    return std::move(result).value();
}

json figure(const KvbDatavar& value) {
    if (value.isNull())
        return nullptr;
    if (const auto* integer = std::get_if<std::int64_t>(&value.storage()))
        return *integer;
    if (const auto* real = std::get_if<double>(&value.storage()))
        return *real;
    return value.toText().str();
}

/// The rows of packed blocks; next(block) as in PackedField.
template <typename Next>
json rowsOf(const Next& next) {
    auto list = json::array();
    repository::PackedBlock packed;
    while (need(next(packed))) {
        const auto block = need(repository::UnpackedBlock::parse(packed.payload));
        for (std::size_t i = 0; i < block.rowCount(); ++i) {
            const auto row = block.at(i);
            list.push_back({row.isNull ? json(nullptr) : json(row.value), row.count});
        }
    }
    return list;
}

json fieldJson(const repository::FieldFacts& facts) {
    json metrics;
    for (const MetricInfo& metric : metricCatalogue())
        metrics[std::string(metric.column)] = figure(facts.metrics[index(metric.id)]);
    auto percentiles = json::array();
    for (const auto& percentile : facts.percentiles)
        percentiles.push_back({percentile.interval, percentile.value.str()});
    auto outliers = json::array();
    for (const auto& outlier : facts.outliers)
        outliers.push_back({std::string(1, static_cast<char>(outlier.side)), outlier.position, outlier.value.str(),
                            outlier.count, static_cast<int>(outlier.fence)});
    json histogram;
    if (const auto& bins = facts.histogram)
        histogram = {{"kind", std::string(1, static_cast<char>(bins->kind))},
                     {"unit", std::string(1, static_cast<char>(bins->unit))},
                     {"first", bins->first},
                     {"step", bins->step},
                     {"exponent", bins->exponent},
                     {"counts", bins->counts}};
    json breakdown;
    if (const auto& found = facts.breakdown) {
        auto forms = json::array();
        for (const auto& form : found->forms)
            forms.push_back({form.form, form.values, form.rows, form.example.str()});
        breakdown = {{"values", found->values},
                     {"rows", found->rows},
                     {"forms", forms},
                     {"reading", found->reading},
                     {"fit_values", found->fitValues},
                     {"fit_rows", found->fitRows},
                     {"ambiguity", found->ambiguity},
                     {"has_figures", found->hasFigures}};
    }
    return {{"name", facts.name},
            {"type", facts.typeCode == 0 ? std::string() : std::string(1, facts.typeCode)},
            {"rule", facts.quantileRule},
            {"metrics", metrics},
            {"percentiles", percentiles},
            {"outliers", outliers},
            {"histogram", histogram},
            {"breakdown", breakdown},
            {"values", rowsOf([&](auto& block) { return facts.packed->nextValues(block); })},
            {"patterns", rowsOf([&](auto& block) { return facts.packed->nextPatterns(block); })}};
}

} // namespace

std::string dumpField(const FieldProfile& figures) {
    return fieldJson(figures.facts).dump();
}

std::string dumpFigures(const std::string& path) {
    auto reader = source::TextFileReader::open(path, {});
    if (!reader)
        throw std::runtime_error(reader.error().text);
    std::vector<ColumnValues> columns((*reader)->columnNames().size());
    source::RowBlock block;
    std::size_t rows = 0;
    for (;;) {
        const auto more = (*reader)->read(block);
        if (!more)
            throw std::runtime_error(more.error().text);
        if (!*more)
            break;
        rows += block.rows;
        for (std::size_t c = 0; c < columns.size(); ++c)
            columns[c].counter().count(std::span(block.columns[c].data(), block.rows));
    }
    auto fields = json::array();
    SpillFile file("/tmp");
    ByteStore store(file, std::size_t{1} << 30);
    StopSignal stop;
    for (std::size_t c = 0; c < columns.size(); ++c) {
        const auto figures = need(profileField(columns[c], (*reader)->columnNames()[c], static_cast<int>(c) + 1,
                                               {file, store, stop, std::size_t{1} << 30, false}));
        fields.push_back(fieldJson(figures.facts));
    }
    return json{{"rows", rows}, {"fields", fields}}.dump();
}

std::string checkWithPython(const std::string& path, const std::string& dumpPath) {
    std::ofstream(dumpPath, std::ios::binary) << dumpFigures(path);
    const std::string command = "/usr/bin/python3 '" + tavix::testing::sourceFile("tests/figures/check_figures.py") +
                                "' '" + path + "' '" + dumpPath + "' 2>&1";
    std::FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe)
        throw std::runtime_error("no pipe");
    std::string output;
    std::array<char, 4096> buffer{};
    while (const std::size_t got = std::fread(buffer.data(), 1, buffer.size(), pipe))
        output.append(buffer.data(), got);
    return ::pclose(pipe) == 0 ? std::string() : output;
}

} // namespace tavix::profiling::testing
