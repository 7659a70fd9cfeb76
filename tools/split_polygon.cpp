// SPDX-License-Identifier: GPL-3.0-or-later
// On either side of a plane the polygon has chains of corners that start and end on it. Sorted
// along the line in which the plane cuts the polygon, the ends of the chains on one side are the
// ends of the stretches of the line that the polygon has on that side: taken in pairs they tell how
// the chains go on. The two sides are looked at one by one, since they differ where the polygon
// only touches the plane; corners that lie on a stretch belong to it.
#include "tools/split_polygon.h"

#include "geometry/polygon.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace polyfab {
namespace {

/// Corners on one side of the plane, from the corner on it before them to the one behind them.
struct Chain {
    std::size_t first, last; ///< places of the two corners on the plane
    std::size_t next = 0;    ///< the chain that it goes on with
    bool used = false;
};

/// An end of a chain, on the line.
struct ChainEnd {
    double along;
    std::size_t chain;
    bool starts;
};

class PolygonCutter {
  public:
    PolygonCutter(const SlabPolygon& cut, const Vec3& planeNormal, std::int32_t plane)
        : polygon(cut), on(2 * plane + 1) {
        const Vec3 area =
            doubledArea(static_cast<int>(cut.size()), [&](int k) { return at(k) - at(0); });
        direction = unitCross(planeNormal, area);
        for (std::size_t i = 0; i < polygon.size(); ++i) {
            if (polygon[i].slab == on) line.push_back(i);
        }
        std::sort(line.begin(), line.end(),
                  [&](std::size_t a, std::size_t b) { return along(a) < along(b); });
    }

    /// Appends the pieces below the plane, or those above it.
    void addPieces(bool below, std::vector<SlabPolygon>& pieces) {
        findChains(below);
        pairEnds();
        for (Chain& start : chains) {
            SlabPolygon piece;
            for (Chain* chain = &start; !chain->used; chain = &chains[chain->next]) {
                chain->used = true;
                addChain(*chain, piece);
                addStretch(chain->last, chains[chain->next].first, piece);
            }
            dropRepeats(piece);
            if (piece.size() > 2) pieces.push_back(std::move(piece));
        }
    }

  private:
    [[nodiscard]] const Vec3& at(int k) const { return polygon[static_cast<std::size_t>(k)].at; }
    [[nodiscard]] double along(std::size_t i) const {
        return dot(polygon[i].at - polygon[0].at, direction);
    }
    [[nodiscard]] std::size_t after(std::size_t i) const {
        return i + 1 == polygon.size() ? 0 : i + 1;
    }

    void findChains(bool below) {
        chains.clear();
        const auto isInside = [&](std::size_t i) {
            return below ? polygon[i].slab < on : polygon[i].slab > on;
        };
        for (std::size_t i = 0; i < polygon.size(); ++i) {
            if (isInside(i) || !isInside(after(i))) continue;
            std::size_t last = after(i);
            while (isInside(last)) last = after(last);
            chains.push_back({i, last});
        }
    }

    /// Of two ends that are neighbours on the line, one starts the chain that the other goes on
    /// with. Where that is not so, as with sides that cross, the next one that can does.
    void pairEnds() {
        std::vector<ChainEnd> ends;
        for (std::size_t c = 0; c < chains.size(); ++c) {
            ends.push_back({along(chains[c].first), c, true});
            ends.push_back({along(chains[c].last), c, false});
        }
        std::sort(ends.begin(), ends.end(),
                  [](const ChainEnd& a, const ChainEnd& b) { return a.along < b.along; });
        for (auto end = ends.begin(); end != ends.end(); end += 2) {
            const auto partner = std::find_if(end + 1, ends.end(), [&](const ChainEnd& other) {
                return other.starts != end->starts;
            });
            std::rotate(end + 1, partner, partner + 1);
            const auto& [from, to] =
                end->starts ? std::pair(end[1], end[0]) : std::pair(end[0], end[1]);
            chains[from.chain].next = to.chain;
        }
    }

    void addChain(const Chain& chain, SlabPolygon& piece) const {
        for (std::size_t i = chain.first; i != chain.last; i = after(i)) {
            piece.push_back(polygon[i]);
        }
    }

    /// The corner at which a stretch of the line starts, and those on it before its end.
    void addStretch(std::size_t from, std::size_t to, SlabPolygon& piece) const {
        const double start = along(from), end = along(to);
        const auto first = piece.size();
        piece.push_back(polygon[from]);
        const auto low =
            std::upper_bound(line.begin(), line.end(), std::min(start, end),
                             [&](double here, std::size_t i) { return here < along(i); });
        for (auto i = low; i != line.end() && along(*i) < std::max(start, end); ++i) {
            piece.push_back(polygon[*i]);
        }
        const auto place = [&](std::size_t i) {
            return piece.begin() + static_cast<std::ptrdiff_t>(i);
        };
        if (end < start) std::reverse(place(first + 1), piece.end());
        for (std::size_t i = first; i < piece.size(); ++i) piece[i].corner.edgeuse = 2;
    }

    static void dropRepeats(SlabPolygon& piece) {
        const auto same = [](const SlabCorner& a, const SlabCorner& b) {
            return a.corner.p == b.corner.p;
        };
        piece.erase(std::unique(piece.begin(), piece.end(), same), piece.end());
        while (piece.size() > 1 && same(piece.front(), piece.back())) piece.pop_back();
    }

    const SlabPolygon& polygon;
    std::int32_t on; ///< the slab number of the plane
    Vec3 direction;
    std::vector<std::size_t> line; ///< the corners on the plane, along the line
    std::vector<Chain> chains;
};

std::pair<std::int32_t, std::int32_t> slabsOf(const SlabPolygon& polygon) {
    std::pair<std::int32_t, std::int32_t> range{polygon[0].slab, polygon[0].slab};
    for (const SlabCorner& corner : polygon) {
        range.first = std::min(range.first, corner.slab);
        range.second = std::max(range.second, corner.slab);
    }
    return range;
}

class PlaneCuts {
  public:
    PlaneCuts(const Vec3& ofPlanes, const std::function<bool()>& test,
              std::vector<SlabPolygon>& pieces)
        : normal(ofPlanes), stopped(test), done(pieces) {}

    /// Cuts at the planes from `first` on to before `end`, the middle one first: a corner is then
    /// passed as often as they can be halved, and not once for each plane below it.
    bool cut(SlabPolygon polygon, std::int32_t first, std::int32_t end) {
        const auto [low, high] = slabsOf(polygon);
        first = std::max(first, (low + 1) / 2);
        end = std::min(end, high / 2);
        if (first >= end) {
            done.push_back(std::move(polygon));
            return true;
        }
        if (stopped()) return false;
        const std::int32_t middle = first + (end - first) / 2;
        std::vector<SlabPolygon> below, above;
        PolygonCutter cutter(polygon, normal, middle);
        cutter.addPieces(true, below);
        cutter.addPieces(false, above);
        return cutAll(below, first, middle) && cutAll(above, middle + 1, end);
    }

  private:
    bool cutAll(std::vector<SlabPolygon>& pieces, std::int32_t first, std::int32_t end) {
        return std::all_of(pieces.begin(), pieces.end(),
                           [&](SlabPolygon& piece) { return cut(std::move(piece), first, end); });
    }

    const Vec3& normal;
    const std::function<bool()>& stopped;
    std::vector<SlabPolygon>& done;
};

} // namespace

bool cutAtPlanes(const SlabPolygon& polygon, const Vec3& normal,
                 const std::function<bool()>& stopped, std::vector<SlabPolygon>& pieces) {
    const auto [low, high] = slabsOf(polygon);
    return PlaneCuts(normal, stopped, pieces).cut(polygon, low / 2, high);
}

} // namespace polyfab
