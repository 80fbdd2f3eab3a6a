#pragma once

#include "report/RunComparison.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tavix {

/// A figure of a change for readers: counts in groups, computed numbers rounded; a text as it is.
[[nodiscard]] std::string figureText(const KvbDatavar& value);
/// The difference with its sign; empty between texts.
[[nodiscard]] std::string differenceText(const RunChange& change);
/// The shares of both runs: "50.00 → 41.60 %".
[[nodiscard]] std::string sharesText(const RunChange& change);

/// How a table or field has changed in one respect.
struct RankedChange {
    std::string table;
    std::string field;  ///< empty for a change of the table itself
    std::string what;   ///< "Values", "Mean", "New field"
    std::string before; ///< empty where one figure would not describe it
    std::string after;
    std::string change;       ///< the difference, or a sentence with sums and the largest examples
    double weight = 0;        ///< the share of rows concerned, in percent
    std::int64_t changes = 1; ///< the differences of the comparison that it sums up
};

/// Sums up the differences between two runs and orders them by the share of rows that they concern. Takes the
/// differences in the order of compareRuns and keeps one record for each respect in which a field has changed, however
/// many values it has.
class ChangeRanking {
  public:
    /// `examples` is the limit for the values and patterns named in a sentence.
    explicit ChangeRanking(std::size_t examples = 3) : m_examples(examples) {}

    void add(const RunChange& change);
    /// Those concerning most rows first. What follows from the number of records alone is told with that number.
    [[nodiscard]] std::vector<RankedChange> ranked() const;
    /// The number of differences added.
    [[nodiscard]] std::int64_t size() const { return m_size; }

  private:
    /// In the order of lines that concern equally many rows.
    enum class Respect { Whole, Type, Nulls, Values, Patterns, Figures, Rule, CustomMetric, Records };

    /// The values or patterns of one kind of change.
    struct Sum {
        std::int64_t texts = 0;
        double percent = 0;
    };
    struct Record {
        Respect respect = Respect::Whole;
        RunChange first; ///< the change that concerns most rows, by which the record is known
        std::int64_t changes = 0;
        std::vector<std::string> others; ///< further metrics
        Sum appeared, vanished, moved;
        std::vector<RunChange> examples; ///< the values that moved most
        std::int64_t rowsDifference = 0; ///< of the nulls
    };
    /// The figures of a table's fields that follow from its number of records.
    struct Followers {
        std::string table;
        std::string lastField;
        std::int64_t fields = 0;
        std::int64_t changes = 0;
    };

    [[nodiscard]] static Respect respectOf(const RunChange& change);
    Record& recordFor(Respect respect, const RunChange& change);
    void follow(const RunChange& change);
    void addText(Record& record, const RunChange& change) const;
    static void addMetric(Record& record, const RunChange& change);
    [[nodiscard]] static RankedChange told(const Record& record);
    [[nodiscard]] static bool isToldByNulls(const Record& record, const Record& nulls);
    [[nodiscard]] std::vector<Record> withoutRepetitions() const;
    void tellFollowers(std::vector<RankedChange>& lines) const;

    std::size_t m_examples;
    std::int64_t m_size = 0;
    std::vector<Record> m_records;
    std::size_t m_subject = 0; ///< the first record of the table or field that is being added
    std::vector<Followers> m_followers;
};

} // namespace tavix
