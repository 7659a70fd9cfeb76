// SPDX-License-Identifier: GPL-3.0-or-later
// The kept cells of each polygon joined again into as few outlines as can be.
#pragma once

#include "tools/boolean/arrange.h"
#include "tools/boolean/exact.h"
#include "tools/boolean/patches.h"
#include "tools/boolean/soup.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace polyfab::boolean {

/// A corner of an outline.
struct OutlineCorner {
    std::int32_t id;       ///< a point
    std::int32_t triangle; ///< one of the polygon's that it lies on
};

/// The lines that meet at a made point and have to stay.
struct Bend {
    int lines = 0;
    std::array<std::int32_t, 2> ends{}; ///< where the first two of them lead
};

class Outlines {
  public:
    /// Joins cells of one polygon where no other kept cell touches their common edge. No outline
    /// passes a point twice. Made points at which nothing ends or bends go.
    Outlines(const Soup& soup, const Arrangement& arrangement, const std::vector<Fate>& fates,
             const ExactPoints& points);

    [[nodiscard]] std::int32_t count(std::int32_t polygon) const {
        return nth(firstOf, polygon + 1) - nth(firstOf, polygon);
    }
    [[nodiscard]] std::span<const OutlineCorner> get(std::int32_t polygon,
                                                     std::int32_t number) const {
        const std::int32_t outline = nth(firstOf, polygon) + number;
        const std::size_t start = nth(starts, outline);
        return std::span(corners).subspan(start, nth(starts, outline + 1) - start);
    }

  private:
    /// Takes made points out in which two lines go on straight.
    void straighten(const std::vector<Bend>& bends, std::int32_t made, const ExactPoints& points);

    std::vector<std::int32_t> firstOf; ///< of each polygon and behind the last: its first outline
    std::vector<std::size_t> starts;   ///< of each outline and behind the last: its first corner
    std::vector<OutlineCorner> corners;
};

} // namespace polyfab::boolean
