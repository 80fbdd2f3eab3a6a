#pragma once

#include "access/PrViewerDrillCursor.h"
#include "access/ProfileCursor.h"
#include "base/GenException.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tavix::testing {

/// A source of drill-through rows that fails on request and counts how often its cursor was released.
struct FakeSource {
    static constexpr std::size_t kNever = static_cast<std::size_t>(-1);

    std::vector<std::string> names;
    std::vector<kvbType> types;
    std::vector<std::vector<KvbString>> rows;
    std::size_t failsAt = kNever;     ///< next() throws in place of this row
    std::size_t failsInside = kNever; ///< the last value of this row throws
    int opened = 0;
    int released = 0;
    std::size_t asked = 0; ///< calls of next()
};

template <typename Base>
class FakeCursorBase : public Base {
  public:
    explicit FakeCursorBase(FakeSource& source) : m_source(source) { ++source.opened; }
    ~FakeCursorBase() override { ++m_source.released; }
    FakeCursorBase(const FakeCursorBase&) = delete;
    FakeCursorBase& operator=(const FakeCursorBase&) = delete;

    bool next() override {
        ++m_source.asked;
        if (m_next == m_source.failsAt)
            throw GenException("The source is gone.");
        return m_next++ < m_source.rows.size();
    }
    [[nodiscard]] int getColumnCount() const override { return static_cast<int>(m_source.names.size()); }
    [[nodiscard]] KvbString getColumnName(int column) const override {
        return KvbString(m_source.names.at(static_cast<std::size_t>(column)));
    }
    [[nodiscard]] KvbString getColumnValue(int column) const override {
        if (m_next - 1 == m_source.failsInside && column + 1 == getColumnCount())
            throw GenException("The row is damaged.");
        return m_source.rows.at(m_next - 1).at(static_cast<std::size_t>(column));
    }

  protected:
    FakeSource& m_source;
    std::size_t m_next = 0;
};

class FakeDrillCursor final : public FakeCursorBase<PrViewerDrillCursor> {
  public:
    using FakeCursorBase::FakeCursorBase;
    [[nodiscard]] kvbType getColumnType(int column) const override {
        return m_source.types.at(static_cast<std::size_t>(column));
    }
};

class FakeProfileCursor final : public FakeCursorBase<ProfileCursor> {
  public:
    using FakeCursorBase::FakeCursorBase;
    [[nodiscard]] int getColumnInt(int) const override { return 0; }
    [[nodiscard]] std::int64_t getColumnInt64(int) const override { return 0; }
    [[nodiscard]] double getColumnDouble(int) const override { return 0; }
    [[nodiscard]] bool isColumnNull(int column) const override { return getColumnValue(column).isNull(); }
    [[nodiscard]] bool isColumnValid(int) const override { return true; }
};

[[nodiscard]] inline PrViewerDrillCursorHandle openDrill(FakeSource& source) {
    return PrViewerDrillCursorHandle(new FakeDrillCursor(source));
}

[[nodiscard]] inline ProfileCursorHandle openProfile(FakeSource& source) {
    return ProfileCursorHandle(new FakeProfileCursor(source));
}

/// Three columns, an integer, a real and a text, and one row for each text.
[[nodiscard]] inline FakeSource sampleSource(const std::vector<std::string>& texts) {
    FakeSource source{{"id", "price", "name"}, {kvbType::Integer, kvbType::Real, kvbType::Text}, {}};
    for (std::size_t i = 0; i < texts.size(); ++i)
        source.rows.push_back({KvbString(std::to_string(i)), KvbString(std::to_string(i) + ".5"), KvbString(texts[i])});
    return source;
}

} // namespace tavix::testing
