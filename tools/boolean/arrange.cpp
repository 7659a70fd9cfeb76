// SPDX-License-Identifier: GPL-3.0-or-later
// Triangles of one plane that cover each other in part form a cluster, which is arranged once; most
// are clusters of one. All traces of others in it and the edges of its triangles are split where
// they cross, and the pieces become sides of a constrained triangulation; each triangle owns those
// of its cells that its outline encloses.
#include "tools/boolean/arrange.h"

#include "workbench/long_work.h"
#include "workbench/state.h"

#include <algorithm>
#include <exception>
#include <numeric>
#include <unordered_map>
#include <utility>

namespace polyfab::boolean {
namespace {

/// A stretch of a line between points of a view, or a point alone.
struct Stretch {
    std::int32_t from, to;
    std::array<double, 4> box;
    std::vector<std::int32_t> cuts;

    [[nodiscard]] bool isPoint() const { return from == to; }
};

/// Splits stretches where they cross and touch each other.
class Splitter {
  public:
    explicit Splitter(FlatView& points) : view(points) {}

    void add(std::int32_t from, std::int32_t to) {
        const auto [a, b] = std::minmax(from, to);
        if (!known.try_emplace(keyOf(a, b)).second) return;
        const auto first = view.bounds(a), second = view.bounds(b);
        stretches.push_back({a,
                             b,
                             {std::min(first[0], second[0]), std::max(first[1], second[1]),
                              std::min(first[2], second[2]), std::max(first[3], second[3])},
                             {}});
    }

    /// Goes over them from the left to the right.
    void crossAll() {
        std::sort(stretches.begin(), stretches.end(),
                  [](const Stretch& a, const Stretch& b) { return a.box[0] < b.box[0]; });
        std::vector<std::size_t> open;
        for (std::size_t i = 0; i < stretches.size(); ++i) {
            const auto& box = stretches[i].box;
            std::erase_if(open, [&](std::size_t k) { return stretches[k].box[1] < box[0]; });
            for (const std::size_t k : open) {
                const auto& other = stretches[k].box;
                if (box[2] <= other[3] && other[2] <= box[3]) cross(stretches[k], stretches[i]);
            }
            open.push_back(i);
        }
    }

    [[nodiscard]] std::vector<IdPair> parts() {
        std::vector<IdPair> all;
        for (Stretch& stretch : stretches) {
            if (stretch.isPoint()) continue;
            auto& cuts = stretch.cuts;
            cuts.insert(cuts.end(), {stretch.from, stretch.to});
            std::sort(cuts.begin(), cuts.end(),
                      [&](std::int32_t a, std::int32_t b) { return view.isBefore(a, b); });
            for (std::size_t i = 1; i < cuts.size(); ++i) {
                const auto [low, high] = std::minmax(cuts[i - 1], cuts[i]);
                if (low != high) all.push_back({low, high});
            }
        }
        std::sort(all.begin(), all.end());
        all.erase(std::unique(all.begin(), all.end()), all.end());
        return all;
    }

  private:
    [[nodiscard]] int turn(const Stretch& s, std::int32_t point) const {
        return point == s.from || point == s.to ? 0 : view.turn(s.from, s.to, point);
    }

    /// Of a point on its line: whether it lies between the ends.
    void cutAt(Stretch& s, std::int32_t point) const {
        if (point == s.from || point == s.to) return;
        if (view.isBefore(s.from, point) != view.isBefore(s.to, point)) s.cuts.push_back(point);
    }

    void cross(Stretch& a, Stretch& b) {
        if (a.isPoint() || b.isPoint()) {
            if (!a.isPoint() && turn(a, b.from) == 0) cutAt(a, b.from);
            if (!b.isPoint() && turn(b, a.from) == 0) cutAt(b, a.from);
            return;
        }
        const int fromOfB = turn(a, b.from), toOfB = turn(a, b.to);
        if (fromOfB * toOfB > 0) return;
        const int fromOfA = turn(b, a.from), toOfA = turn(b, a.to);
        if (fromOfA * toOfA > 0) return;
        if (fromOfB * toOfB * fromOfA * toOfA != 0) {
            const std::int32_t point = view.crossing(a.from, a.to, b.from, b.to);
            a.cuts.push_back(point);
            b.cuts.push_back(point);
            return;
        }
        if (fromOfB == 0) cutAt(a, b.from);
        if (toOfB == 0) cutAt(a, b.to);
        if (fromOfA == 0) cutAt(b, a.from);
        if (toOfA == 0) cutAt(b, a.to);
    }

    FlatView& view;
    std::unordered_map<std::int64_t, std::int32_t> known;
    std::vector<Stretch> stretches;
};

/// The triangles of a triangulation by their sides.
class Sides {
  public:
    explicit Sides(const std::vector<Ids>& owner) : triangles(owner) {
        for (std::int32_t i = 0; i < sizeOf(triangles); ++i) {
            const auto& [a, b, c] = nth(triangles, i);
            for (const auto& [from, to] : {IdPair{a, b}, {b, c}, {c, a}}) left[keyOf(from, to)] = i;
        }
    }

    /// Those within an outline that runs anticlockwise.
    [[nodiscard]] std::vector<std::int32_t> within(const std::vector<IdPair>& outline) const {
        std::unordered_map<std::int64_t, bool> border;
        std::vector<std::int32_t> found;
        std::vector<bool> seen(triangles.size());
        const auto reach = [&](std::int32_t from, std::int32_t to) {
            const auto side = left.find(keyOf(from, to));
            if (side == left.end() || seen[static_cast<std::size_t>(side->second)]) return;
            seen[static_cast<std::size_t>(side->second)] = true;
            found.push_back(side->second);
        };
        for (const auto& [from, to] : outline) border[keyOf(from, to)] = true;
        for (const auto& [from, to] : outline) reach(from, to);
        for (std::size_t i = 0; i < found.size(); ++i) {
            const auto& [a, b, c] = nth(triangles, found[i]);
            for (const auto& [from, to] : {IdPair{a, b}, {b, c}, {c, a}}) {
                if (!border.contains(keyOf(from, to))) reach(to, from);
            }
        }
        return found;
    }

  private:
    const std::vector<Ids>& triangles;
    std::unordered_map<std::int64_t, std::int32_t> left; ///< of each side
};

/// What there is to arrange in one plane.
struct Cluster {
    std::span<const std::int32_t> triangles;
    std::span<const Trace> traces;
};

class Arranger {
  public:
    Arranger(const Soup& s, const CutEdges& edges, const std::vector<std::int32_t>& meetings,
             ExactPoints& exact, Arrangement& out)
        : soup(s), cuts(edges), idOf(meetings), points(exact), result(out) {}

    /// A triangle that nothing meets is a cell.
    void addWhole(std::int32_t triangle) {
        result.cells.push_back(
            {nth(soup.triangles, triangle).at, triangle, result.sheets++, false});
    }

    void add(const Cluster& cluster) {
        const Triangle& first = nth(soup.triangles, cluster.triangles.front());
        FlatView view(points, first.axis);
        std::vector<std::vector<IdPair>> outlines;
        for (const std::int32_t t : cluster.triangles)
            outlines.push_back(outlineOf(view, nth(soup.triangles, t)));
        const std::vector<IdPair> segments = split(view, cluster, outlines);
        const std::vector<Ids> triangles = view.triangulate(segments);
        const std::int32_t firstSheet = result.sheets;
        result.sheets += sizeOf(triangles);
        std::vector<bool> seen(triangles.size());
        const Sides sides(triangles);
        for (std::size_t i = 0; i < outlines.size(); ++i) {
            for (const std::int32_t cell : sides.within(outlines[i])) {
                const std::int32_t number = cluster.triangles[i];
                const bool turned = nth(soup.triangles, number).isTurned;
                addCell(view, nth(triangles, cell), number, firstSheet + cell, turned);
            }
        }
    }

  private:
    /// Anticlockwise as the view shows it.
    std::vector<IdPair> outlineOf(FlatView& view, const Triangle& t) const {
        std::vector<std::int32_t> around;
        for (int k = 0; k < 3; ++k) {
            const std::int32_t from = nth(t.at, k), to = nth(t.at, (k + 1) % 3);
            around.push_back(view.add(from));
            const auto between = cuts.on(std::min(from, to), std::max(from, to));
            for (std::size_t i = 0; i < between.size(); ++i) {
                around.push_back(view.add(between[from < to ? i : between.size() - 1 - i]));
            }
        }
        if (t.isTurned) std::reverse(around.begin(), around.end());
        std::vector<IdPair> outline;
        for (std::size_t i = 0; i < around.size(); ++i) {
            outline.push_back({around[i], around[(i + 1) % around.size()]});
        }
        return outline;
    }

    /// The outline of a triangle alone is split already.
    [[nodiscard]] std::vector<IdPair>
    split(FlatView& view, const Cluster& cluster,
          const std::vector<std::vector<IdPair>>& outlines) const {
        Splitter splitter(view);
        for (const Trace& trace : cluster.traces) {
            const std::int32_t from = view.add(nth(idOf, trace.from));
            splitter.add(from, trace.to < 0 ? from : view.add(nth(idOf, trace.to)));
        }
        const bool isAlone = outlines.size() == 1;
        const auto addOutlines = [&] {
            for (const auto& outline : outlines) {
                for (const auto& [from, to] : outline) splitter.add(from, to);
            }
        };
        if (!isAlone) addOutlines();
        splitter.crossAll();
        if (isAlone) addOutlines();
        return splitter.parts();
    }

    void addCell(const FlatView& view, const Ids& cell, std::int32_t triangle, std::int32_t sheet,
                 bool turned) {
        Ids at{view.idOf(cell[0]), view.idOf(cell[1]), view.idOf(cell[2])};
        if (turned) std::swap(at[1], at[2]);
        result.cells.push_back({at, triangle, sheet, turned});
    }

    const Soup& soup;
    const CutEdges& cuts;
    const std::vector<std::int32_t>& idOf;
    ExactPoints& points;
    Arrangement& result;
};

/// Which polygons and triangles there is something to do for.
struct Work {
    std::vector<bool> polygons;
    std::vector<bool> triangles;
};

bool hasCutEdge(const Triangle& t, const CutEdges& cuts) {
    for (int k = 0; k < 3; ++k) {
        const auto [low, high] = std::minmax(nth(t.at, k), nth(t.at, (k + 1) % 3));
        if (cuts.startsAt(low) && !cuts.on(low, high).empty()) return true;
    }
    return false;
}

Work findWork(const Soup& soup, const Contacts& contacts, const CutEdges& cuts, bool allPolygons) {
    Work work{std::vector<bool>(soup.polygons.size(), allPolygons),
              std::vector<bool>(soup.triangles.size())};
    const auto mark = [&](std::int32_t triangle, bool isSplit) {
        const auto t = static_cast<std::size_t>(triangle);
        if (isSplit) work.triangles[t] = true;
        work.polygons[static_cast<std::size_t>(soup.triangles[t].piece)] = true;
    };
    for (const Trace& trace : contacts.traces) mark(trace.triangle, true);
    for (const auto& [a, b] : contacts.overlaps) mark(a, true), mark(b, true);
    for (const auto& [a, b] : contacts.onInner) mark(a, false), mark(b, false);
    for (std::int32_t t = 0; t < sizeOf(soup.triangles); ++t) {
        const Triangle& triangle = nth(soup.triangles, t);
        if (triangle.axis >= 0 && hasCutEdge(triangle, cuts)) mark(t, true);
        if (nth(contacts.met, t)) mark(t, false);
    }
    return work;
}

/// Sorts the cells by polygons.
void order(const Soup& soup, Arrangement& result) {
    const auto pieceOf = [&](const Cell& cell) { return nth(soup.triangles, cell.triangle).piece; };
    std::stable_sort(result.cells.begin(), result.cells.end(),
                     [&](const Cell& a, const Cell& b) { return pieceOf(a) < pieceOf(b); });
    result.firstOf.assign(soup.polygons.size() + 1, 0);
    for (const Cell& cell : result.cells) ++nth(result.firstOf, pieceOf(cell) + 1);
    std::partial_sum(result.firstOf.begin(), result.firstOf.end(), result.firstOf.begin());
}

/// The triangles to be split, sorted by their clusters, and the traces likewise.
struct Clusters {
    std::vector<std::int32_t> triangles;
    std::vector<Trace> traces;
    Sets sets;

    Clusters(const Contacts& contacts, const Work& work)
        : traces(contacts.traces), sets(work.triangles.size()) {
        for (const auto& [a, b] : contacts.overlaps) sets.join(a, b);
        for (std::size_t t = 0; t < work.triangles.size(); ++t) {
            if (work.triangles[t]) triangles.push_back(static_cast<std::int32_t>(t));
        }
        const auto before = [&](std::int32_t a, std::int32_t b) {
            return std::pair(sets.find(a), a) < std::pair(sets.find(b), b);
        };
        std::sort(triangles.begin(), triangles.end(), before);
        std::stable_sort(traces.begin(), traces.end(), [&](const Trace& a, const Trace& b) {
            return sets.find(a.triangle) < sets.find(b.triangle);
        });
    }

    /// Calls use(cluster) until it gives false.
    template <typename Use>
    bool each(Use use) {
        const std::span<const Trace> all(traces);
        std::size_t trace = 0;
        for (std::size_t i = 0, end = 0; i < triangles.size(); i = end) {
            const std::int32_t set = sets.find(triangles[i]);
            while (end < triangles.size() && sets.find(triangles[end]) == set) ++end;
            const std::size_t firstTrace = trace;
            while (trace < traces.size() && sets.find(traces[trace].triangle) == set) ++trace;
            if (!use(Cluster{std::span(triangles).subspan(i, end - i),
                             all.subspan(firstTrace, trace - firstTrace)})) {
                return false;
            }
        }
        return true;
    }
};

} // namespace

CutEdges::CutEdges(const Contacts& contacts, const std::vector<std::int32_t>& idOf,
                   const ExactPoints& points)
    : ends(static_cast<std::size_t>(points.count())) {
    const auto& all = contacts.onEdges;
    slots.reset(4 * all.size() + 16);
    for (std::size_t i = 0, end = 0; i < all.size(); i = end) {
        const auto [low, high, meeting] = all[i];
        const std::size_t first = ids.size();
        for (; end < all.size() && all[end].low == low && all[end].high == high; ++end) {
            ids.push_back(nth(idOf, all[end].meeting));
        }
        const auto start = ids.begin() + static_cast<std::ptrdiff_t>(first);
        std::sort(start, ids.end());
        ids.erase(std::unique(start, ids.end()), ids.end());
        const bool upwards = points.isBefore(low, high);
        std::sort(start, ids.end(), [&](std::int32_t a, std::int32_t b) {
            return upwards ? points.isBefore(a, b) : points.isBefore(b, a);
        });
        slotOf(low, high) = sizeOf(edges);
        edges.push_back({low, high, first, ids.size() - first});
        ends[static_cast<std::size_t>(low)] = true;
    }
}

std::int32_t& CutEdges::slotOf(std::int32_t low, std::int32_t high) const {
    return slots.find(hashOfNumbers(low, high), [&](std::int32_t number) {
        const Edge& edge = nth(edges, number);
        return edge.low == low && edge.high == high;
    });
}

std::span<const std::int32_t> CutEdges::on(std::int32_t low, std::int32_t high) const {
    const std::int32_t number = slotOf(low, high);
    if (number == HashSlots::empty) return {};
    const Edge& edge = nth(edges, number);
    return std::span(ids).subspan(edge.first, edge.n);
}

bool CutEdges::startsAt(std::int32_t place) const { return ends[static_cast<std::size_t>(place)]; }

std::vector<std::int32_t> resolve(const Soup& soup, const Contacts& contacts, ExactPoints& points) {
    for (std::int32_t t = 0; t < sizeOf(soup.triangles); ++t) {
        if (!nth(contacts.met, t)) continue;
        for (const std::int32_t place : nth(soup.triangles, t).at) points.enter(place);
    }
    std::vector<std::int32_t> ids;
    for (std::int32_t i = 0; i < sizeOf(contacts.meetings); ++i) {
        const Meeting& meeting = nth(contacts.meetings, i);
        const Recipe& recipe = nth(contacts.recipes, i);
        ids.push_back(
            meeting[2] < 0 ? meeting[0]
            : recipe.axis < 0
                ? points.meet(recipe.line[0], recipe.line[1], recipe.plane)
                : points.cross(recipe.line, {recipe.plane[0], recipe.plane[1]}, recipe.axis));
    }
    return ids;
}

bool arrange(const Soup& soup, const Contacts& contacts, const CutEdges& cuts,
             const std::vector<std::int32_t>& idOf, bool allPolygons, ExactPoints& points,
             Arrangement& result) {
    const Work work = findWork(soup, contacts, cuts, allPolygons);
    Arranger arranger(soup, cuts, idOf, points, result);
    Clusters clusters(contacts, work);
    LoopProgress progress(sizeOf(clusters.triangles));
    if (!clusters.each([&](const Cluster& cluster) {
            progress.step();
            arranger.add(cluster);
            return !abortRequested();
        })) {
        return false;
    }
    for (std::int32_t t = 0; t < sizeOf(soup.triangles); ++t) {
        const Triangle& triangle = nth(soup.triangles, t);
        const bool isWhole = !work.triangles[static_cast<std::size_t>(t)] && triangle.axis >= 0;
        if (isWhole && work.polygons[static_cast<std::size_t>(triangle.piece)])
            arranger.addWhole(t);
    }
    order(soup, result);
    return true;
}

std::vector<Ids> fillOutline(std::span<const Vec3> outline, int axis) try {
    ExactPoints points(outline);
    FlatView view(points, axis);
    const auto n = static_cast<std::int32_t>(outline.size());
    std::vector<IdPair> border;
    for (std::int32_t i = 0; i < n; ++i) {
        points.enter(i);
        border.push_back({view.add(i), (i + 1) % n});
    }
    const std::vector<Ids> triangles = view.triangulate(border);
    std::vector<Ids> filled;
    for (const std::int32_t t : Sides(triangles).within(border))
        filled.push_back(nth(triangles, t));
    if (sizeOf(filled) != n - 2) filled.clear();
    return filled;
} catch (const std::exception&) {
    return {};
}

} // namespace polyfab::boolean
