#pragma once

#include "chart/Drawing.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <variant>
#include <vector>

/// What a reader sees of a drawing, for tests.
namespace tavix::chart::testing {

/// All texts, in drawing order.
[[nodiscard]] inline std::vector<std::string> texts(const Drawing& drawing) {
    std::vector<std::string> found;
    for (const Shape& shape : drawing.shapes)
        if (const auto* text = std::get_if<Text>(&shape))
            found.push_back(text->text);
    return found;
}

[[nodiscard]] inline std::vector<std::string> hits(const Drawing& drawing) {
    std::vector<std::string> found;
    for (const HitArea& hit : drawing.hits)
        found.push_back(hit.text);
    return found;
}

/// The shapes of one kind with this role.
template <typename Kind>
[[nodiscard]] std::vector<Kind> shapesOf(const Drawing& drawing, Role role) {
    std::vector<Kind> found;
    for (const Shape& shape : drawing.shapes)
        if (const auto* wanted = std::get_if<Kind>(&shape); wanted && wanted->role == role)
            found.push_back(*wanted);
    return found;
}

/// Whether all shapes but texts, and all hit areas, have finite positions within the drawing.
[[nodiscard]] inline bool isInside(const Drawing& drawing) {
    const auto inside = [&](Point at) {
        return std::isfinite(at.x) && std::isfinite(at.y) && at.x >= -1 && at.y >= -1 && at.x <= drawing.width + 1 &&
               at.y <= drawing.height + 1;
    };
    const auto isRectInside = [&](const Rect& rect) {
        return rect.width >= 0 && rect.height >= 0 && inside({rect.x, rect.y}) &&
               inside({rect.x + rect.width, rect.y + rect.height});
    };
    const auto isShapeInside = [&](const Shape& shape) {
        if (const auto* line = std::get_if<Line>(&shape))
            return inside(line->from) && inside(line->to);
        if (const auto* box = std::get_if<Box>(&shape))
            return isRectInside(box->rect);
        if (const auto* dot = std::get_if<Dot>(&shape))
            return inside(dot->center);
        if (const auto* curve = std::get_if<Curve>(&shape))
            return std::ranges::all_of(curve->points, inside);
        if (const auto* area = std::get_if<Area>(&shape))
            return std::ranges::all_of(area->points, inside);
        return inside(std::get<Text>(shape).at);
    };
    return std::ranges::all_of(drawing.shapes, isShapeInside) &&
           std::ranges::all_of(drawing.hits, [&](const HitArea& hit) { return isRectInside(hit.rect); });
}

} // namespace tavix::chart::testing
