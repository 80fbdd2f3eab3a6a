#pragma once

#include "chart/Drawing.h"

#include <functional>
#include <string>
#include <string_view>

namespace tavix::chart {

/// What a picture is drawn on.
struct Canvas {
    double width = 0;
    double height = 0;
    double lineHeight = 16;
    /// The width of a text in the font of the drawing.
    std::function<double(std::string_view)> textWidth;
};

/// Estimates text widths where no font is at hand.
[[nodiscard]] Canvas plainCanvas(double width, double height);

/// The text, or as much of its beginning as fits with "…" after it.
[[nodiscard]] std::string fittedText(const Canvas& canvas, std::string_view text, double width);

/// The figures of a picture, ready to be drawn in any size.
class Picture {
  public:
    virtual ~Picture() = default;

    [[nodiscard]] virtual std::string title() const = 0;
    /// The picture in a sentence or two, for people who do not see it.
    [[nodiscard]] virtual std::string description() const = 0;
    /// Without shapes if the canvas is too small for it.
    [[nodiscard]] virtual Drawing draw(const Canvas& canvas) const = 0;
};

} // namespace tavix::chart
