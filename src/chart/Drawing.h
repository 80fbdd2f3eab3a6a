#pragma once

#include "base/KvbString.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// A drawing as plain values: what a widget paints or a file shows. Sizes are pixels at 96 dpi, y goes down.
namespace tavix::chart {

/// What a shape is, by which whoever shows the drawing chooses its colour.
enum class Role {
    Axis,   ///< hairlines that carry ticks
    Faint,  ///< grid lines, guides
    Bar,    ///< counts
    Pale,   ///< counts in the background, such as the sum of others; areas below a curve
    Accent, ///< curves and the marks on them
    Fence,  ///< outlier fences and what lies beyond them
    Alert,  ///< the limits of an alert and the runs that raise it
    Label,  ///< texts at ticks, explanations
    Text,   ///< names and figures
};

struct Point {
    double x = 0;
    double y = 0;

    bool operator==(const Point&) const = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    [[nodiscard]] bool contains(Point at) const {
        return at.x >= x && at.x < x + width && at.y >= y && at.y < y + height;
    }
    bool operator==(const Rect&) const = default;
};

struct Line {
    Point from;
    Point to;
    Role role = Role::Axis;
    double width = 1;
    bool isDashed = false;

    bool operator==(const Line&) const = default;
};

struct Curve {
    std::vector<Point> points;
    Role role = Role::Accent;
    double width = 1.5;

    bool operator==(const Curve&) const = default;
};

/// A filled polygon.
struct Area {
    std::vector<Point> points;
    Role role = Role::Pale;

    bool operator==(const Area&) const = default;
};

/// A filled rectangle.
struct Box {
    Rect rect;
    Role role = Role::Bar;
    double radius = 0; ///< of the corners

    bool operator==(const Box&) const = default;
};

struct Dot {
    Point center;
    double radius = 3;
    Role role = Role::Accent;

    bool operator==(const Dot&) const = default;
};

enum class Anchor { Start, Middle, End };

/// A line of text; `at` is on the middle of its height.
struct Text {
    Point at;
    std::string text;
    Role role = Role::Label;
    Anchor anchor = Anchor::Start;

    bool operator==(const Text&) const = default;
};

using Shape = std::variant<Line, Curve, Area, Box, Dot, Text>;

enum class ActionKind {
    None,
    FilterValues,   ///< show the values for which the filter code is true
    FilterPatterns, ///< the same for patterns
    DrillValue,     ///< open the source rows with the value
    DrillPattern,   ///< open the source rows whose value has the pattern
};

struct Action {
    ActionKind kind = ActionKind::None;
    KvbString text; ///< the filter code; the value, which may be null; the pattern

    bool operator==(const Action&) const = default;
};

/// A part of the drawing that has figures to show under the pointer.
struct HitArea {
    Rect rect;
    std::string text; ///< "1,200 to 1,250: 318 rows, 9.4 %"
    Action action{};

    bool operator==(const HitArea&) const = default;
};

struct Drawing {
    double width = 0;
    double height = 0;
    std::vector<Shape> shapes; ///< later ones cover earlier ones
    std::vector<HitArea> hits; ///< in reading order; of two that overlap, the first counts

    /// The index of the hit area at the point; -1 without one.
    [[nodiscard]] int hitAt(Point at) const {
        for (std::size_t i = 0; i < hits.size(); ++i)
            if (hits[i].rect.contains(at))
                return static_cast<int>(i);
        return -1;
    }
};

} // namespace tavix::chart
