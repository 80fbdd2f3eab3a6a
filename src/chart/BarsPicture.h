#pragma once

#include "chart/Picture.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tavix::chart {

/// A bar for each of a few values or patterns, as shares of all rows.
class BarsPicture final : public Picture {
  public:
    struct Bar {
        std::string label;
        std::int64_t count = 0;
        Action action{};
        bool isRest = false; ///< the sum of others

        bool operator==(const Bar&) const = default;
    };

    /// `total` is the base of the shares, in words `base`: "of 2,499 records".
    BarsPicture(std::string title, std::vector<Bar> bars, std::int64_t total, std::string base);

    [[nodiscard]] std::string title() const override { return m_title; }
    [[nodiscard]] std::string description() const override;
    /// As many bars as the height allows.
    [[nodiscard]] Drawing draw(const Canvas& canvas) const override;

  private:
    std::string m_title;
    std::vector<Bar> m_bars;
    std::int64_t m_total;
    std::string m_base;
};

} // namespace tavix::chart
