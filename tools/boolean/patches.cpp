// SPDX-License-Identifier: GPL-3.0-or-later
// A patch is as many sheets as hang together at edges where no others meet them: in front of all of
// it, and behind it, one is in the same bodies. One ray for a patch tells in which: it counts how
// often each piece is left (Jacobson, Kavan and Sorkine-Hornung, Robust inside-outside segmentation
// using generalized winding numbers, 2013, without the fractions that open pieces have).
#include "tools/boolean/patches.h"

#include "geometry/vec3.h"
#include "mesh/faces.h"
#include "tools/boolean/edge_sides.h"
#include "workbench/long_work.h"

#include <algorithm>
#include <map>
#include <set>
#include <span>
#include <utility>

namespace polyfab::boolean {
namespace {

constexpr std::int32_t none = -1;

/// How often each piece winds around a point; those that are not in the map do not.
using Windings = std::map<std::int32_t, int>;

/// What winds around a piece.
struct Around {
    Windings inside;                ///< around all of what it encloses
    std::set<std::int32_t> outside; ///< those that go on outside it anywhere
};

/// The pieces that the polygons form, as the mesh connects them: a piece has the number of one of
/// its polygons.
class Pieces {
  public:
    Pieces(const Mesh& mesh, const Soup& owner) : soup(owner), sets(owner.polygons.size()) {
        EdgeSides sides;
        sides.reserve(3 * soup.triangles.size());
        for (std::int32_t p = 0; p < sizeOf(soup.polygons); ++p) {
            for (const auto& [from, to] : polyfab::sides(mesh.faces[nth(soup.polygons, p).face])) {
                sides.add(pointOf(mesh, from), pointOf(mesh, to), p);
            }
        }
        sides.each([&](auto same) {
            if (same.size() == 2) sets.join(same[0].owner, same[1].owner);
        });
    }

    [[nodiscard]] std::int32_t of(const Cell& cell) { return ofTriangle(cell.triangle); }
    [[nodiscard]] std::int32_t ofTriangle(std::int32_t t) {
        return sets.find(nth(soup.triangles, t).piece);
    }
    [[nodiscard]] std::int32_t ofPolygon(std::int32_t p) { return sets.find(p); }

    /// Joins those that are closed only together. False when some are not even so.
    bool close(const std::vector<Cell>& cells, EdgeSides& edges) {
        edges.each([&](auto sides) {
            std::int32_t open = none;
            for (const auto& [piece, sum] : balance(cells, sides)) {
                if (sum == 0) continue;
                if (open != none) sets.join(open, piece);
                open = piece;
            }
        });
        bool closed = true;
        edges.each([&](auto sides) {
            for (const auto& [piece, sum] : balance(cells, sides)) closed = closed && sum == 0;
        });
        return closed;
    }

  private:
    /// How much oftener the sides of each piece run up the edge than down. Most edges have two
    /// sides, of one piece.
    Windings balance(const std::vector<Cell>& cells, std::span<const EdgeSide> sides) {
        Windings sums;
        if (sides.size() == 2 && sides[0].upwards != sides[1].upwards
            && of(nth(cells, sides[0].owner)) == of(nth(cells, sides[1].owner))) {
            return sums;
        }
        for (const EdgeSide& side : sides)
            sums[of(nth(cells, side.owner))] += side.upwards ? 1 : -1;
        return sums;
    }

    const Soup& soup;
    Sets sets; ///< of polygons
};

/// Bodies are told by the piece that encloses them.
class Bodies {
  public:
    Bodies(const Soup& soup, Pieces& pieces) {
        const Vec3 from = soup.places.front();
        for (std::int32_t t = 0; t < sizeOf(soup.triangles); ++t) {
            const Triangle& triangle = nth(soup.triangles, t);
            if (triangle.axis < 0) continue;
            volume[pieces.ofTriangle(t)] +=
                dot(soup.corner(triangle, 0) - from,
                    cross(soup.corner(triangle, 1) - from, soup.corner(triangle, 2) - from));
        }
        for (const auto& [piece, size] : volume) bodyOf[piece] = piece;
    }

    [[nodiscard]] bool isInsideOut(std::int32_t piece) const {
        const auto found = volume.find(piece);
        return found != volume.end() && found->second < 0;
    }

    /// Each piece that runs the wrong way round becomes a hollow of the smallest that has all of it
    /// inside and is more than that. One that no other has stays a body.
    void findHollows(const std::map<std::int32_t, Around>& insideOut) {
        for (const auto& [piece, around] : insideOut) {
            std::int32_t& body = bodyOf[piece];
            for (const auto& [other, winding] : around.inside) {
                if (winding <= 0 || !around.outside.contains(other)) continue;
                const bool smaller = body == piece || volume[other] < volume[body];
                if (volume[other] > 0 && smaller) body = other;
            }
        }
        count = static_cast<std::size_t>(
            std::count_if(bodyOf.begin(), bodyOf.end(),
                          [](const auto& entry) { return entry.first == entry.second; }));
    }

    /// A piece of its own that is inside out stands for what it encloses all the same.
    [[nodiscard]] bool isIn(const Windings& windings, Want want, std::int32_t firstPiece) {
        Windings ofBody;
        for (const auto& [piece, winding] : windings) {
            const std::int32_t body = bodyOf[piece];
            ofBody[body] += volume[body] < 0 ? -winding : winding;
        }
        std::size_t in = 0;
        for (const auto& [body, winding] : ofBody) in += winding > 0;
        if (want == Want::unite) return in > 0;
        if (want == Want::common) return in == count;
        const auto first = ofBody.find(bodyOf[firstPiece]);
        return in == 1 && first != ofBody.end() && first->second > 0;
    }

  private:
    std::map<std::int32_t, double> volume; ///< six times that of each piece
    std::map<std::int32_t, std::int32_t> bodyOf;
    std::size_t count = 0;
};

class Chooser {
  public:
    Chooser(const Soup& s, const BoxTree& t, const ExactPoints& p, const Arrangement& a,
            Pieces& all, Effort& work)
        : soup(s), tree(t), points(p), cells(a.cells), pieces(all), effort(work),
          patches(static_cast<std::size_t>(a.sheets)),
          firstOn(static_cast<std::size_t>(a.sheets), none), next(a.cells.size(), none) {
        for (std::int32_t i = sizeOf(cells) - 1; i >= 0; --i) {
            nth(next, i) = std::exchange(nth(firstOn, nth(cells, i).sheet), i);
        }
        leader = firstOn;
        for (std::int32_t i = 0; i < sizeOf(cells); ++i) {
            std::int32_t& best = nth(leader, nth(cells, i).sheet);
            if (pieceOf(i) < pieceOf(best)) best = i;
        }
    }

    void joinPatches(EdgeSides& edges) {
        edges.each([&](auto sides) {
            const std::int32_t sheet = sheetOf(sides.front());
            std::int32_t other = none;
            for (const EdgeSide& side : sides) {
                if (sheetOf(side) == sheet) continue;
                if (other != none && sheetOf(side) != other) return;
                other = sheetOf(side);
            }
            if (other != none && goesOn(sheet, other, sides)) patches.join(sheet, other);
        });
    }

    /// For the pieces that are inside out. What winds around all of one is told by the least that
    /// does at one of its patches: of one that only reaches into another some are outside that.
    std::map<std::int32_t, Around> lookAroundInsideOut(const Bodies& bodies) {
        std::map<std::int32_t, Around> found;
        std::vector<bool> known(leader.size());
        for (std::int32_t sheet = 0; sheet < sizeOf(leader) && !effort.isOver(); ++sheet) {
            bool any = false;
            eachOn(sheet, [&](std::int32_t i) { any = any || bodies.isInsideOut(pieceOf(i)); });
            const auto patch = static_cast<std::size_t>(patches.find(sheet));
            if (!any || known[patch]) continue;
            known[patch] = true;
            const auto sides = lookAround(sheet);
            eachOn(sheet, [&](std::int32_t i) {
                if (!bodies.isInsideOut(pieceOf(i))) return;
                const auto& [inside, outside] =
                    isAsLeader(i) ? sides : std::pair(sides.second, sides.first);
                const auto [entry, isNew] = found.try_emplace(pieceOf(i), Around{inside, {}});
                if (!isNew) keepLeast(entry->second.inside, inside);
                for (const auto& [piece, winding] : outside) {
                    if (winding > 0) entry->second.outside.insert(piece);
                }
            });
        }
        return found;
    }

    void choose(Bodies& bodies, Want want, std::int32_t firstPiece, std::vector<Fate>& fates) {
        struct Found {
            bool known, inFront, inBack;
        };
        std::vector<Found> around(leader.size());
        LoopProgress progress(sizeOf(leader));
        for (std::int32_t sheet = 0; sheet < sizeOf(leader); ++sheet) {
            progress.step();
            if (nth(leader, sheet) == none) continue;
            Found& found = nth(around, patches.find(sheet));
            if (!found.known) {
                if (effort.isOver()) return;
                const auto [front, back] = lookAround(sheet);
                found = {true, bodies.isIn(front, want, firstPiece),
                         bodies.isIn(back, want, firstPiece)};
            }
            if (found.inFront != found.inBack) keepOne(sheet, found.inFront, fates);
        }
    }

  private:
    static void keepLeast(Windings& least, const Windings& windings) {
        for (auto& [piece, winding] : least) {
            const auto found = windings.find(piece);
            winding = std::min(winding, found == windings.end() ? 0 : found->second);
        }
    }

    [[nodiscard]] std::int32_t pieceOf(std::int32_t cell) const {
        return pieces.of(nth(cells, cell));
    }

    [[nodiscard]] std::int32_t sheetOf(const EdgeSide& side) const {
        return nth(cells, side.owner).sheet;
    }

    /// Calls use(cell) for the cells of a sheet, in their order.
    template <typename Use>
    void eachOn(std::int32_t sheet, Use use) const {
        for (std::int32_t i = nth(firstOn, sheet); i != none; i = nth(next, i)) use(i);
    }

    [[nodiscard]] bool isOnSheet(std::int32_t sheet, std::int32_t triangle) const {
        bool found = false;
        eachOn(sheet, [&](std::int32_t i) { found = found || nth(cells, i).triangle == triangle; });
        return found;
    }

    /// Whether the cell runs as the one does that stands for its sheet.
    [[nodiscard]] bool isAsLeader(std::int32_t cell) const {
        const Cell& ours = nth(cells, cell);
        return ours.turned == nth(cells, nth(leader, ours.sheet)).turned;
    }

    [[nodiscard]] std::vector<std::pair<std::int32_t, bool>> layersOf(std::int32_t sheet) const {
        std::vector<std::pair<std::int32_t, bool>> layers;
        eachOn(sheet, [&](std::int32_t i) { layers.emplace_back(pieceOf(i), isAsLeader(i)); });
        std::sort(layers.begin(), layers.end());
        return layers;
    }

    /// Whether two sheets that are alone on an edge are of the same pieces, the same way round.
    [[nodiscard]] bool goesOn(std::int32_t sheet, std::int32_t other,
                              std::span<const EdgeSide> sides) const {
        bool upwards[2] = {};
        for (const EdgeSide& side : sides) {
            if (side.owner == nth(leader, sheet)) upwards[0] = side.upwards;
            if (side.owner == nth(leader, other)) upwards[1] = side.upwards;
        }
        if (upwards[0] == upwards[1]) return false;
        if (sides.size() == 2) return pieceOf(sides[0].owner) == pieceOf(sides[1].owner);
        return layersOf(sheet) == layersOf(other);
    }

    /// What winds around the start of a ray from the cell, without the sheet of the cell.
    Windings lookAlong(const Ray& ray, std::int32_t cell) {
        const auto [low, high] = ray.bounds();
        Box way;
        way.add(low);
        way.add(high);
        way.high[0] = Box::infinite;
        Windings windings;
        tree.eachMeeting(way, [&](std::int32_t t) {
            if (!effort.goesOn(Effort::exactly) || isOnSheet(nth(cells, cell).sheet, t)) return;
            const Triangle& triangle = nth(soup.triangles, t);
            const int leaves = ray.leavesThrough(soup.corner(triangle, 0), soup.corner(triangle, 1),
                                                 soup.corner(triangle, 2));
            if (leaves != 0) windings[pieces.ofTriangle(t)] += leaves;
        });
        return windings;
    }

    /// What winds around the two sides of a sheet: that from which its leader runs anticlockwise,
    /// and the other one.
    std::pair<Windings, Windings> lookAround(std::int32_t sheet) {
        const Ray ray(points, nth(cells, nth(leader, sheet)).at);
        const Windings here = lookAlong(ray, nth(leader, sheet));
        const int inwards = ray.startsInFront() ? 1 : -1;
        Windings there = here;
        eachOn(sheet,
               [&](std::int32_t i) { there[pieceOf(i)] += isAsLeader(i) ? inwards : -inwards; });
        return inwards > 0 ? std::pair(here, there) : std::pair(there, here);
    }

    /// The one that is kept has the inside behind it.
    void keepOne(std::int32_t sheet, bool insideInFront, std::vector<Fate>& fates) const {
        std::int32_t best = none;
        eachOn(sheet, [&](std::int32_t i) {
            if (isAsLeader(i) == insideInFront) return;
            if (best == none || pieceOf(i) < pieceOf(best)) best = i;
        });
        if (best != none) {
            nth(fates, best) = Fate::kept;
        } else {
            nth(fates, nth(leader, sheet)) = Fate::keptTurned;
        }
    }

    const Soup& soup;
    const BoxTree& tree;
    const ExactPoints& points;
    const std::vector<Cell>& cells;
    Pieces& pieces;
    Effort& effort;
    mutable Sets patches;              ///< of sheets
    std::vector<std::int32_t> firstOn; ///< of each sheet: its first cell
    std::vector<std::int32_t> next;    ///< of each cell: the next one of its sheet
    std::vector<std::int32_t>
        leader; ///< of each sheet: the cell that stands for it, of the lowest piece
};

} // namespace

Outcome chooseCells(const Mesh& mesh, const Soup& soup, const BoxTree& tree,
                    const ExactPoints& points, const Arrangement& arrangement, Want want,
                    std::int32_t polygon, std::vector<Fate>& fates, Effort& effort) {
    const std::vector<Cell>& cells = arrangement.cells;
    if (cells.empty()) return Outcome::notClosed;
    Pieces pieces(mesh, soup);
    EdgeSides edges;
    edges.reserve(3 * cells.size());
    for (std::int32_t i = 0; i < sizeOf(cells); ++i) {
        const auto& [a, b, c] = nth(cells, i).at;
        edges.add(a, b, i);
        edges.add(b, c, i);
        edges.add(c, a, i);
    }
    if (!pieces.close(cells, edges)) return Outcome::notClosed;
    Chooser chooser(soup, tree, points, arrangement, pieces, effort);
    chooser.joinPatches(edges);
    Bodies bodies(soup, pieces);
    bodies.findHollows(chooser.lookAroundInsideOut(bodies));
    fates.assign(cells.size(), Fate::removed);
    const std::int32_t firstPiece = polygon == none ? none : pieces.ofPolygon(polygon);
    chooser.choose(bodies, want, firstPiece, fates);
    return Outcome::chosen;
}

} // namespace polyfab::boolean
