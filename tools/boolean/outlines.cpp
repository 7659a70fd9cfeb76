// SPDX-License-Identifier: GPL-3.0-or-later
// Outlines are rings of links, so that joining two takes the time of looking at the shorter one.
#include "tools/boolean/outlines.h"

#include "tools/boolean/edge_sides.h"

#include <algorithm>
#include <array>
#include <utility>

namespace polyfab::boolean {
namespace {

/// An edge at which two cells of a polygon may be joined: its ends as the first cell runs it.
struct Join {
    std::int32_t polygon;
    std::int32_t cell, other;
    std::int32_t from, to;
};

class JoinFinder {
  public:
    JoinFinder(const Soup& s, const std::vector<Cell>& all, std::int32_t points)
        : bends(static_cast<std::size_t>(points - sizeOf(s.places))), soup(s), cells(all) {}

    std::vector<Bend> bends; ///< of the points that were made

    std::vector<Join> find(const std::vector<Fate>& fates) {
        EdgeSides edges;
        for (std::int32_t i = 0; i < sizeOf(cells); ++i) {
            if (nth(fates, i) == Fate::removed) continue;
            const auto& [a, b, c] = nth(cells, i).at;
            edges.add(a, b, i);
            edges.add(b, c, i);
            edges.add(c, a, i);
        }
        edges.each([&](auto sides) {
            if (addFrom(sides)) return;
            noteLine(sides[0].low, sides[0].high);
            noteLine(sides[0].high, sides[0].low);
        });
        // What is not joined in the end shall best end at points that stay anyway.
        const auto rank = [&](const Join& join) {
            return std::pair(join.polygon, !mayGo(join.from) && !mayGo(join.to));
        };
        std::stable_sort(joins.begin(), joins.end(),
                         [&](const Join& a, const Join& b) { return rank(a) < rank(b); });
        return std::move(joins);
    }

  private:
    [[nodiscard]] const Cell& cellOf(const EdgeSide& side) const { return nth(cells, side.owner); }
    [[nodiscard]] std::int32_t polygonOf(const EdgeSide& side) const {
        return nth(soup.triangles, cellOf(side).triangle).piece;
    }

    /// Every polygon that has a cell on one side of the edge must have one on the other side, and
    /// there must be no third side.
    bool addFrom(std::span<const EdgeSide> sides) {
        if (sides.size() % 2 != 0) return false;
        sorted.assign(sides.begin(), sides.end());
        std::sort(sorted.begin(), sorted.end(), [&](const EdgeSide& a, const EdgeSide& b) {
            return polygonOf(a) < polygonOf(b);
        });
        const std::int32_t first = cellOf(sorted[0]).sheet, second = cellOf(sorted[1]).sheet;
        for (std::size_t i = 0; i < sorted.size(); i += 2) {
            const EdgeSide &a = sorted[i], &b = sorted[i + 1];
            const auto [low, high] = std::minmax(cellOf(a).sheet, cellOf(b).sheet);
            const bool fits = low == std::min(first, second) && high == std::max(first, second);
            const bool pairs =
                polygonOf(a) == polygonOf(b) && a.upwards != b.upwards && low != high;
            if (!fits || !pairs) return false;
        }
        for (std::size_t i = 0; i < sorted.size(); i += 2) {
            const EdgeSide& a = sorted[i];
            joins.push_back({polygonOf(a), a.owner, sorted[i + 1].owner, a.upwards ? a.low : a.high,
                             a.upwards ? a.high : a.low});
        }
        return true;
    }

    [[nodiscard]] bool mayGo(std::int32_t id) const {
        const std::int32_t made = id - sizeOf(soup.places);
        return made >= 0 && nth(bends, made).lines <= 2;
    }

    void noteLine(std::int32_t at, std::int32_t to) {
        if (at < sizeOf(soup.places)) return;
        Bend& bend = nth(bends, at - sizeOf(soup.places));
        if (bend.lines < 2) nth(bend.ends, bend.lines) = to;
        ++bend.lines;
    }

    const Soup& soup;
    const std::vector<Cell>& cells;
    std::vector<EdgeSide> sorted;
    std::vector<Join> joins;
};

/// The cells of one polygon while they are joined.
class Joiner {
  public:
    Joiner(const std::vector<Cell>& all, const std::vector<Bend>& ofMade, std::int32_t firstMade)
        : cells(all), bends(ofMade), made(firstMade) {}

    void start(std::int32_t first, std::int32_t end, const std::vector<Fate>& fates) {
        links.clear();
        firstCell = first;
        for (std::int32_t i = first; i < end; ++i) {
            const std::int32_t start = sizeOf(links);
            const bool isKept = nth(fates, i) != Fate::removed;
            for (const int k : {0, 1, 2}) {
                links.push_back({nth(nth(cells, i).at, k), start + (k + 1) % 3, start + (k + 2) % 3,
                                 start + k, isKept});
            }
        }
        rings = Sets(links.size());
        for (std::int32_t i = 0; i < sizeOf(links); ++i) rings.join(i, i / 3 * 3);
        sizes.assign(links.size(), 3);
        findUses();
    }

    /// Joins the rings of two cells along the whole way on which they run side by side. Inner
    /// points of that way, at which no lines meet, go with it.
    void join(const Join& edge) {
        Way ours = wayAt(linkOf(edge.cell, edge.from)), theirs = wayAt(linkOf(edge.other, edge.to));
        const std::int32_t ring = rings.find(ours.first), other = rings.find(theirs.first);
        if (ring == other) return;
        std::int32_t length = 1;
        for (; isFree(ours.first) && idAt(before(ours.first)) == idAt(after(theirs.last));
             ++length) {
            ours.first = before(ours.first);
            theirs.last = after(theirs.last);
        }
        for (; isFree(ours.last) && idAt(after(ours.last)) == idAt(before(theirs.first));
             ++length) {
            ours.last = after(ours.last);
            theirs.first = before(theirs.first);
        }
        const std::int32_t size = nth(sizes, ring) + nth(sizes, other) - 2 * length;
        const bool isShorter = nth(sizes, ring) < nth(sizes, other);
        if (size < 3 || meets(isShorter ? ours : theirs, isShorter ? other : ring)) return;
        replace(ours, theirs);
        rings.join(ring, other);
        nth(sizes, rings.find(ring)) = size;
    }

    /// Calls use(corners) for each outline.
    template <typename Use>
    void eachOutline(Use use) {
        std::vector<OutlineCorner> outline;
        for (std::int32_t i = 0; i < sizeOf(links); ++i) {
            if (!nth(links, i).isAlive) continue;
            outline.clear();
            for (std::int32_t k = i; nth(links, k).isAlive; k = after(k)) {
                nth(links, k).isAlive = false;
                outline.push_back({idAt(k), nth(cells, firstCell + k / 3).triangle});
            }
            use(outline);
        }
    }

  private:
    struct Link {
        std::int32_t id;
        std::int32_t next, last;
        std::int32_t stands; ///< the link that took its place; itself while it is alive
        bool isAlive;
    };

    /// A stretch of a ring, by its end links.
    struct Way {
        std::int32_t first, last;
    };

    [[nodiscard]] std::int32_t idAt(std::int32_t link) const { return nth(links, link).id; }
    [[nodiscard]] std::int32_t after(std::int32_t link) const { return nth(links, link).next; }
    [[nodiscard]] std::int32_t before(std::int32_t link) const { return nth(links, link).last; }
    [[nodiscard]] Way wayAt(std::int32_t link) const { return {link, after(link)}; }

    [[nodiscard]] bool isFree(std::int32_t link) const {
        return idAt(link) >= made && nth(bends, idAt(link) - made).lines == 0;
    }

    /// All links, sorted by their points.
    void findUses() {
        uses.clear();
        for (std::int32_t i = 0; i < sizeOf(links); ++i) uses.push_back({idAt(i), i});
        std::sort(uses.begin(), uses.end());
    }

    /// The link from which the side of a cell that begins at this point goes out now.
    std::int32_t linkOf(std::int32_t cell, std::int32_t id) {
        std::int32_t link = 3 * (cell - firstCell);
        while (idAt(link) != id) ++link;
        while (nth(links, link).stands != link) {
            link = nth(links, link).stands = nth(links, nth(links, link).stands).stands;
        }
        return link;
    }

    /// Whether the rest of a ring passes a point of the other one.
    bool meets(const Way& way, std::int32_t other) {
        for (std::int32_t link = after(way.last); link != way.first; link = after(link)) {
            if (passes(other, idAt(link))) return true;
        }
        return false;
    }

    bool passes(std::int32_t ring, std::int32_t id) {
        for (auto use = std::lower_bound(uses.begin(), uses.end(), IdPair{id, 0});
             use != uses.end() && (*use)[0] == id; ++use) {
            const std::int32_t link = (*use)[1];
            if (nth(links, link).isAlive && rings.find(link) == ring) return true;
        }
        return false;
    }

    /// Puts the rest of their ring in the place of our way.
    void replace(const Way& ours, const Way& theirs) {
        for (std::int32_t k = after(ours.first); k != ours.last; k = after(k))
            nth(links, k).isAlive = false;
        for (std::int32_t k = theirs.first; k != theirs.last; k = after(k))
            nth(links, k).isAlive = false;
        nth(links, theirs.last).isAlive = false;
        nth(links, theirs.last).stands = ours.first;
        const bool isBare = after(theirs.last) == theirs.first;
        link(ours.first, isBare ? ours.last : after(theirs.last));
        if (!isBare) link(before(theirs.first), ours.last);
    }

    void link(std::int32_t first, std::int32_t second) {
        nth(links, first).next = second;
        nth(links, second).last = first;
    }

    const std::vector<Cell>& cells;
    const std::vector<Bend>& bends;
    std::int32_t made; ///< the first point that was made
    std::int32_t firstCell = 0;
    std::vector<Link> links; ///< three for each cell
    Sets rings{0};           ///< of links
    std::vector<std::int32_t> sizes;
    std::vector<IdPair> uses; ///< points and the links at them
};

} // namespace

Outlines::Outlines(const Soup& soup, const Arrangement& arrangement, const std::vector<Fate>& fates,
                   const ExactPoints& points) {
    JoinFinder finder(soup, arrangement.cells, points.count());
    const std::vector<Join> joins = finder.find(fates);
    auto join = joins.begin();
    Joiner joiner(arrangement.cells, finder.bends, sizeOf(soup.places));
    starts.push_back(0);
    for (std::int32_t p = 0; p < sizeOf(soup.polygons); ++p) {
        firstOf.push_back(sizeOf(starts) - 1);
        const std::int32_t first = nth(arrangement.firstOf, p),
                           end = nth(arrangement.firstOf, p + 1);
        if (first == end || (first + 1 == end && nth(fates, first) == Fate::removed)) continue;
        joiner.start(first, end, fates);
        for (; join != joins.end() && join->polygon == p; ++join) joiner.join(*join);
        joiner.eachOutline([&](const std::vector<OutlineCorner>& outline) {
            corners.insert(corners.end(), outline.begin(), outline.end());
            starts.push_back(corners.size());
        });
    }
    firstOf.push_back(sizeOf(starts) - 1);
    straighten(finder.bends, sizeOf(soup.places), points);
}

void Outlines::straighten(const std::vector<Bend>& bends, std::int32_t made,
                          const ExactPoints& points) {
    std::vector<bool> goes(bends.size());
    for (std::size_t i = 0; i < bends.size(); ++i) {
        const auto [from, to] = bends[i].ends;
        goes[i] =
            bends[i].lines == 2 && points.areInLine(from, made + static_cast<std::int32_t>(i), to);
    }
    const auto eachCorner = [&](auto use) {
        for (std::size_t outline = 0; outline + 1 < starts.size(); ++outline) {
            const std::size_t start = starts[outline], n = starts[outline + 1] - start;
            for (std::size_t k = 0; k < n; ++k) {
                use(corners[start + (k + n - 1) % n].id, corners[start + k].id,
                    corners[start + (k + 1) % n].id);
            }
        }
    };
    // A point whose neighbours in some outline are others than the ends of its lines has to stay.
    eachCorner([&](std::int32_t before, std::int32_t at, std::int32_t after) {
        if (at < made || !goes[static_cast<std::size_t>(at - made)]) return;
        const auto& ends = nth(bends, at - made).ends;
        const bool passes =
            (before == ends[0] && after == ends[1]) || (before == ends[1] && after == ends[0]);
        goes[static_cast<std::size_t>(at - made)] = passes;
    });
    std::size_t kept = 0, from = 0;
    for (std::size_t outline = 1; outline < starts.size(); ++outline) {
        for (; from < starts[outline]; ++from) {
            const std::int32_t id = corners[from].id;
            if (id < made || !goes[static_cast<std::size_t>(id - made)])
                corners[kept++] = corners[from];
        }
        starts[outline] = kept;
    }
    corners.resize(kept);
}

} // namespace polyfab::boolean
