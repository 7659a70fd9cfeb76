// SPDX-License-Identifier: GPL-3.0-or-later
// Edges wait in a queue by what their loss would cost. When the surface around a point changes its
// edges are entered anew; older entries are known by the versions of their ends and dropped.
// What must not be lost is asked of an edge when its turn comes (Dey, Edelsbrunner, Guha and
// Nekhayev, "Topology preserving edge contraction", 1999).
#include "tools/thin/thin_queue.h"

#include "geometry/closest_point.h"
#include "mesh/face_angle.h"
#include "tools/thin/bucket_queue.h"
#include "tools/thin/quadric.h"
#include "tools/thin/thin_distance.h"
#include "workbench/long_work.h"
#include "workbench/notes.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <optional>
#include <utility>

namespace polyfab {
namespace {

constexpr std::int32_t mostAround = 128; ///< triangles at a point, so that none is gone over often
/// The part of the largest distance that a point may be, on the average, from the planes that the
/// surface around it was in. They tell of places that none of the old points is near.
constexpr double partOfDistance = 0.4;
constexpr double lineWeight = 1;      ///< of the planes that hold feature lines, by squared length
constexpr double spreadWeight = 1e-6; ///< decides where the surface is flat
const double leastTurn = std::cos(78 * pi / 180);

/// An edge that waits for its turn.
struct Candidate {
    std::uint32_t versions; ///< of both ends, when it was entered
    std::int32_t a, b;
};

/// An edge that shrinks: one end goes, the other stays and moves.
struct Move {
    std::int32_t gone, stays;
    Vec3 to;
    double part; ///< of the way from the end that goes
    double cost;
};

/// What a corner at each end has on one side of the edge, and what it gets.
struct Record {
    std::int32_t atGone, atStays, result;
};

/// The two sides of an edge: the corner at the end that goes in the triangle there, or -1.
struct Sides2 {
    std::int32_t corner[2] = {-1, -1};
    std::int32_t apex[2] = {-1, -1};
    [[nodiscard]] bool isApex(std::int32_t point) const {
        return point == apex[0] || point == apex[1];
    }
};

class Thinner {
  public:
    Thinner(ThinSurface& thinned, const ThinGoal& wanted, std::int64_t& count,
            Table<std::uint8_t>& changes)
        : surface(thinned), goal(wanted), faces(count), changed(changes),
          quadric(thinned.mesh.np, Quadric()), spread(thinned.mesh.np, Spread()),
          version(thinned.mesh.np, 0), seen(thinned.mesh.np, 0), around(thinned.mesh.np, 0),
          aliveOf(thinned.mesh.nf, 0), broken(thinned.mesh.nf, 0),
          distance(thinned, wanted.farthest),
          mostCost(wanted.farthest > 0 ? std::pow(partOfDistance * wanted.farthest, 2) : INFINITY) {
    }
    explicit operator bool() const {
        return quadric && spread && version && seen && around && aliveOf && broken && distance;
    }

    ThinEnd work() {
        for (std::int32_t t = 0; t < surface.triangles; ++t) addTriangle(t);
        for (std::int32_t i = 0; i < surface.mesh.np; ++i) addLines(i);
        moveProgress();
        const std::int64_t start = faces;
        while (faces > goal.faces) {
            enterAll();
            const std::int64_t shrunkBefore = shrunk;
            for (Candidate candidate{}; faces > goal.faces && waiting.pop(candidate);) {
                if (stopRequested()) return ThinEnd::stopped;
                if (shrunk % 1024 == 0) {
                    tellProgress(static_cast<double>(start - faces),
                                 static_cast<double>(start - goal.faces));
                }
                take(candidate);
            }
            // What did not fit at its turn may fit now, if much else has changed.
            if (faces > goal.faces && (shrunk - shrunkBefore) * 200 <= faces) {
                return wasTooFar ? ThinEnd::tooFar : ThinEnd::nothingLeft;
            }
        }
        return ThinEnd::reached;
    }

  private:
    [[nodiscard]] const Vec3& placeOf(std::int32_t c) const {
        return surface.place[surface.pointAt(c)];
    }
    static std::int32_t next(std::int32_t c) { return ThinSurface::further(c, 1); }
    static std::int32_t before(std::int32_t c) { return ThinSurface::further(c, 2); }

    void addTriangle(std::int32_t triangle) {
        ++aliveOf[surface.owner[triangle]];
        const std::int32_t c = 3 * triangle;
        const Vec3 &a = placeOf(c), &b = placeOf(c + 1), &d = placeOf(c + 2);
        const Vec3 twice = cross(b - a, d - a);
        const double area = std::sqrt(dot(twice, twice)) / 2;
        const Vec3 normal = unit(twice), middle = (a + b + d) * (1.0 / 3);
        for (std::int32_t k = 0; k < 3; ++k) {
            Quadric& at = quadric[surface.pointAt(c + k)];
            ++around[surface.pointAt(c + k)];
            at.addPlane(normal, a, area);
            spread[surface.pointAt(c + k)].addPlace(middle, area);
        }
    }

    /// Planes through the feature edges at the point, upright on the triangles there.
    void addLines(std::int32_t point) {
        if (surface.kind[point] != ThinKind::line) return;
        surface.eachCornerAt(point, [&](std::int32_t c) {
            const Vec3 area = cross(placeOf(next(c)) - placeOf(c), placeOf(before(c)) - placeOf(c));
            for (const std::int32_t other : {next(c), before(c)}) {
                if (!isLineEnd(point, surface.pointAt(other))) continue;
                const Vec3 way = placeOf(other) - placeOf(c);
                quadric[point].addPlane(unitCross(way, area), placeOf(c),
                                        lineWeight * dot(way, way));
            }
        });
    }

    [[nodiscard]] bool isLineEnd(std::int32_t point, std::int32_t other) const {
        const auto& ends = surface.lineEnds[point];
        return ends[0] == other || ends[1] == other;
    }
    [[nodiscard]] std::int32_t otherEnd(std::int32_t point, std::int32_t end) const {
        const auto& ends = surface.lineEnds[point];
        return ends[0] == end ? ends[1] : ends[0];
    }

    /// How the edge would shrink best; none when its ends are to stay.
    std::optional<Move> moveFor(std::int32_t a, std::int32_t b) {
        if (surface.kind[a] > surface.kind[b]) std::swap(a, b);
        const ThinKind gone = surface.kind[a], stays = surface.kind[b];
        if (gone == ThinKind::fixed || around[a] + around[b] > mostAround) return std::nullopt;
        Quadric planes = quadric[a];
        planes.add(quadric[b]);
        Spread places = spread[a];
        places.add(spread[b]);
        const Quadric sum = mixed(planes, places, spreadWeight);
        const Vec3 from = surface.place[a], to = surface.place[b];
        Move move{a, b, to, 1, 0};
        if (gone == ThinKind::line) {
            if (!isLineEnd(a, b) || (stays == ThinKind::line && !isLineEnd(b, a))) {
                return std::nullopt;
            }
            if (stays == ThinKind::line) move.part = sum.leastBetween(from, to);
            if (move.part != 1) move.to = from + (to - from) * move.part;
        } else if (stays == ThinKind::free) {
            placeFreely(move, sum, from, to);
        }
        move.cost = sum.at(move.to);
        if (planes.at(move.to) > mostCost * planes.weight) {
            wasTooFar = true;
            return std::nullopt;
        }
        return move;
    }

    static void placeFreely(Move& move, const Quadric& sum, const Vec3& from, const Vec3& to) {
        const Vec3 way = to - from, middle = from + way * 0.5;
        const double square = dot(way, way);
        const std::optional<Vec3> least = sum.least();
        if (least && squaredDistance(*least, middle) <= 4 * square) {
            move.to = *least;
            move.part = square > 0 ? std::clamp(dot(*least - from, way) / square, 0.0, 1.0) : 0.5;
            return;
        }
        const std::pair<Vec3, double> places[] = {{middle, 0.5}, {from, 0}, {to, 1}};
        const auto* const best = std::min_element(
            std::begin(places), std::end(places),
            [&](const auto& p, const auto& q) { return sum.at(p.first) < sum.at(q.first); });
        move.to = best->first;
        move.part = best->second;
    }

    void enterAll() {
        for (std::int32_t i = 0; i < surface.mesh.np; ++i) {
            eachNeighbour(i, [&](std::int32_t other) {
                if (other > i) enter(i, other);
            });
        }
        moveProgress();
    }

    void enter(std::int32_t a, std::int32_t b) {
        const std::optional<Move> move = moveFor(a, b);
        if (move) waiting.push(static_cast<float>(move->cost), {version[a] + version[b], a, b});
    }

    /// Calls use for the points that an edge joins to this one, each once.
    template <typename Use>
    void eachNeighbour(std::int32_t point, Use use) {
        ++tick;
        surface.eachCornerAt(point, [&](std::int32_t c) {
            for (const std::int32_t other :
                 {surface.pointAt(next(c)), surface.pointAt(before(c))}) {
                if (seen[other] == tick) continue;
                seen[other] = tick;
                use(other);
            }
        });
    }

    void take(const Candidate& candidate) {
        const auto [versions, a, b] = candidate;
        if (surface.firstCorner[a] < 0 || surface.firstCorner[b] < 0
            || versions != version[a] + version[b]) {
            return;
        }
        const std::optional<Move> move = moveFor(a, b);
        if (!move) return;
        const Sides2 sides = sidesOf(*move);
        if (!keepsSurface(*move, sides) || !keepsLines(*move, sides) || !turnsNothing(*move))
            return;
        if (distance.allows(move->gone, move->stays, move->to)) {
            shrink(*move, sides);
        } else {
            wasTooFar = true;
        }
    }

    Sides2 sidesOf(const Move& move) {
        Sides2 sides;
        surface.eachCornerAt(move.gone, [&](std::int32_t c) {
            if (surface.pointAt(next(c)) == move.stays) {
                sides.corner[0] = c;
                sides.apex[0] = surface.pointAt(before(c));
            } else if (surface.pointAt(before(c)) == move.stays) {
                sides.corner[1] = c;
                sides.apex[1] = surface.pointAt(next(c));
            }
        });
        return sides;
    }

    /// Whether the ends have no neighbours in common but those across from the edge, and more
    /// triangles are left than can lie on each other.
    bool keepsSurface(const Move& move, const Sides2& sides) {
        if (sides.corner[0] < 0 && sides.corner[1] < 0) return false;
        bool fits = true;
        eachNeighbour(move.stays, [](std::int32_t) {});
        const std::uint32_t marked = tick;
        int survivors = 0, capsAtGone = 0, capsAtStays = 0;
        surface.eachCornerAt(move.gone, [&](std::int32_t c) {
            const std::int32_t one = surface.pointAt(next(c)), two = surface.pointAt(before(c));
            if (one == move.stays || two == move.stays) return;
            ++survivors;
            capsAtGone += sides.isApex(one) && sides.isApex(two) ? 1 : 0;
            for (const std::int32_t other : {one, two}) {
                if (!sides.isApex(other) && (seen[other] == marked || isOuter(other, move.stays))) {
                    fits = false;
                }
            }
        });
        surface.eachCornerAt(move.stays, [&](std::int32_t c) {
            const std::int32_t one = surface.pointAt(next(c)), two = surface.pointAt(before(c));
            if (one == move.gone || two == move.gone) return;
            ++survivors;
            capsAtStays += sides.isApex(one) && sides.isApex(two) ? 1 : 0;
        });
        return fits && survivors > 0 && (capsAtGone == 0 || capsAtStays == 0);
    }
    bool isOuter(std::int32_t a, std::int32_t b) {
        return surface.kind[a] == ThinKind::fixed && surface.kind[b] == ThinKind::fixed
               && surface.outerEdges.has(a, b);
    }

    /// Whether no feature line is folded onto another or closed to nothing. That can only happen
    /// where what goes is a side of a triangle whose other sides are both lines; with one that is
    /// none the line goes on along that.
    [[nodiscard]] bool keepsLines(const Move& move, const Sides2& sides) const {
        if (surface.kind[move.gone] != ThinKind::line) return true;
        const std::int32_t behind = otherEnd(move.gone, move.stays);
        if (surface.kind[move.stays] == ThinKind::line) {
            return otherEnd(move.stays, move.gone) != behind;
        }
        if (!sides.isApex(behind)) return true;
        // Of two fixed points it is not known whether a line joins them.
        return surface.kind[behind] == ThinKind::line && !isLineEnd(behind, move.stays);
    }

    bool turnsNothing(const Move& move) {
        bool good = true;
        const auto look = [&](std::int32_t point, std::int32_t other) {
            surface.eachCornerAt(point, [&](std::int32_t c) {
                if (!good || surface.pointAt(next(c)) == other
                    || surface.pointAt(before(c)) == other) {
                    return;
                }
                const Vec3 &q = placeOf(next(c)), &r = placeOf(before(c));
                const Vec3 was = cross(q - placeOf(c), r - placeOf(c));
                const Vec3 is = cross(q - move.to, r - move.to);
                const double product = dot(was, is), squares = dot(was, was) * dot(is, is);
                const bool straight =
                    product > 0 && product * product >= leastTurn * leastTurn * squares;
                // One without area has no direction that could turn.
                good = straight || (isZero(was) && !isZero(is));
            });
        };
        look(move.gone, move.stays);
        if (move.part != 1 || surface.kind[move.stays] == ThinKind::free) {
            look(move.stays, move.gone);
        }
        return good;
    }

    void shrink(const Move& move, const Sides2& sides) {
        const bool isFree =
            surface.kind[move.gone] == ThinKind::free && surface.kind[move.stays] == ThinKind::free;
        findRecords(move, sides, isFree);
        const bool staysPut = !isFree && move.part == 1;
        surface.eachCornerAt(move.gone, [&](std::int32_t c) {
            if (surface.pointAt(next(c)) != move.stays
                && surface.pointAt(before(c)) != move.stays) {
                renew(c, &Record::atGone);
            }
        });
        if (!staysPut) {
            surface.eachCornerAt(move.stays, [&](std::int32_t c) {
                if (surface.pointAt(next(c)) != move.gone
                    && surface.pointAt(before(c)) != move.gone) {
                    renew(c, &Record::atStays);
                }
            });
        }
        for (const std::int32_t c : sides.corner) {
            if (c >= 0) remove(c / 3);
        }
        distance.accept();
        handOver(move);
        ++shrunk;
        eachNeighbour(move.stays, [&](std::int32_t other) { neighbours.push_back(other); });
        for (const std::int32_t other : neighbours) enter(move.stays, other);
        neighbours.clear();
    }

    /// Gives the corners, the lines and the quadric of one end to the other.
    void handOver(const Move& move) {
        if (surface.kind[move.gone] == ThinKind::line) {
            const std::int32_t behind = otherEnd(move.gone, move.stays);
            const auto redirect = [&](std::int32_t point, std::int32_t from, std::int32_t to) {
                for (std::int32_t& end : surface.lineEnds[point]) {
                    if (end == from) end = to;
                }
            };
            redirect(move.stays, move.gone, behind);
            redirect(behind, move.gone, move.stays);
        }
        std::int32_t last = -1;
        surface.eachCornerAt(move.gone, [&](std::int32_t c) {
            surface.corner[c].p = move.stays;
            last = c;
        });
        if (last >= 0) {
            surface.nextCorner[last] = surface.firstCorner[move.stays];
            surface.firstCorner[move.stays] = surface.firstCorner[move.gone];
        }
        surface.firstCorner[move.gone] = -1;
        around[move.stays] += around[move.gone];
        quadric[move.stays].add(quadric[move.gone]);
        spread[move.stays].add(spread[move.gone]);
        if (squaredDistance(surface.place[move.stays], move.to) > 0) surface.moved[move.stays] = 1;
        surface.place[move.stays] = move.to;
        ++version[move.stays];
    }

    /// The triangle is not what it was; those of its face count themselves from now on.
    void touch(std::int32_t triangle) {
        const std::int32_t face = surface.owner[triangle];
        changed[triangle] = 1;
        if (broken[face] == 0) faces += aliveOf[face] - 1;
        broken[face] = 1;
    }
    void remove(std::int32_t triangle) {
        touch(triangle);
        --aliveOf[surface.owner[triangle]];
        --faces;
        for (std::int32_t c = 3 * triangle; c < 3 * triangle + 3; ++c) {
            --around[surface.pointAt(c)];
            surface.corner[c].p = -1;
        }
    }

    void findRecords(const Move& move, const Sides2& sides, bool isFree) {
        records.texture[0] = records.texture[1] = records.normal[0] =
            records.normal[1] = {-1, -1, -1};
        for (std::size_t side = 0; side < 2; ++side) {
            const std::int32_t c = sides.corner[side];
            if (c < 0) continue;
            const ThinCorner gone = surface.corner[c];
            const ThinCorner stays = surface.corner[side == 0 ? next(c) : before(c)];
            records.texture[side] = {gone.t, stays.t, -1};
            records.normal[side] = {gone.d, stays.d, -1};
        }
        if (isFree) {
            const std::int32_t made = textureAt(move);
            for (Record& record : records.texture) record.result = made;
        } else {
            blend(records.texture, move.part, [&](std::int32_t a, std::int32_t b) {
                const TexCoord from = surface.texCoord(a), to = surface.texCoord(b);
                surface.newTexCoords.push_back({from.u + (to.u - from.u) * move.part,
                                                from.v + (to.v - from.v) * move.part, 0, 1});
                return surface.mesh.nt + static_cast<std::int32_t>(surface.newTexCoords.size()) - 1;
            });
        }
        blend(records.normal, move.part, [&](std::int32_t a, std::int32_t b) {
            const Normal from = surface.normal(a), to = surface.normal(b);
            const Vec3 mixed =
                unit({from.x + (to.x - from.x) * move.part, from.y + (to.y - from.y) * move.part,
                      from.z + (to.z - from.z) * move.part});
            surface.newNormals.push_back({mixed.x, mixed.y, mixed.z});
            return surface.mesh.nd + static_cast<std::int32_t>(surface.newNormals.size()) - 1;
        });
    }

    /// Finds what becomes of the records on both sides; where they are the same, they stay so.
    template <typename Make>
    static void blend(Record (&sides)[2], double part, Make make) {
        for (Record& side : sides) {
            const bool both = side.atGone >= 0 && side.atStays >= 0;
            if (part == 1 || side.atGone == side.atStays)
                side.result = side.atStays;
            else if (part == 0)
                side.result = side.atGone;
            else if (&side != sides && side.atGone == sides[0].atGone
                     && side.atStays == sides[0].atStays)
                side.result = sides[0].result;
            else if (both)
                side.result = make(side.atGone, side.atStays);
        }
    }

    /// The place in the texture of what is nearest on the triangles around two free points to where
    /// they go.
    std::int32_t textureAt(const Move& move) {
        TexCoord found{};
        double least = INFINITY;
        for (const std::int32_t point : {move.gone, move.stays}) {
            surface.eachCornerAt(point, [&](std::int32_t c) {
                const std::int32_t corners[] = {c, next(c), before(c)};
                for (const std::int32_t k : corners) {
                    if (surface.corner[k].t < 0) return;
                }
                const Vec3 nearest =
                    closestInTriangle(move.to, placeOf(c), placeOf(next(c)), placeOf(before(c)));
                const double square = squaredDistance(move.to, nearest);
                if (!(square < least)) return;
                least = square;
                found = textureWithin(nearest, corners);
            });
        }
        if (least == INFINITY) return -1;
        surface.newTexCoords.push_back(found);
        return surface.mesh.nt + static_cast<std::int32_t>(surface.newTexCoords.size()) - 1;
    }

    /// That of a place in the triangle of these corners.
    [[nodiscard]] TexCoord textureWithin(const Vec3& at, const std::int32_t (&corners)[3]) const {
        const Vec3 &a = placeOf(corners[0]), &b = placeOf(corners[1]), &c = placeOf(corners[2]);
        const TexCoord ta = surface.texCoord(surface.corner[corners[0]].t),
                       tb = surface.texCoord(surface.corner[corners[1]].t),
                       tc = surface.texCoord(surface.corner[corners[2]].t);
        const Vec3 area = cross(b - a, c - a);
        const double square = dot(area, area);
        const double y = square > 0 ? dot(cross(at - a, c - a), area) / square : 0;
        const double z = square > 0 ? dot(cross(b - a, at - a), area) / square : 0;
        const double x = 1 - y - z;
        return {x * ta.u + y * tb.u + z * tc.u, x * ta.v + y * tb.v + z * tc.v, 0, 1};
    }

    /// The corner gets what its side of the edge got.
    void renew(std::int32_t c, std::int32_t Record::*end) {
        touch(c / 3);
        ThinCorner& corner = surface.corner[c];
        for (const Record& side : records.texture) {
            if (corner.t >= 0 && side.result >= 0 && surface.sameTexCoord(corner.t, side.*end)) {
                corner.t = side.result;
                break;
            }
        }
        for (const Record& side : records.normal) {
            if (corner.d >= 0 && side.result >= 0 && corner.d == side.*end) {
                corner.d = side.result;
                break;
            }
        }
    }

    ThinSurface& surface;
    const ThinGoal& goal;
    std::int64_t& faces;
    Table<std::uint8_t>& changed;
    Table<Quadric> quadric;       ///< of each point
    Table<Spread> spread;         ///< of each point
    Table<std::uint32_t> version; ///< of each point: how often it changed
    Table<std::uint32_t> seen;    ///< of each point: the tick at which it was passed last
    Table<std::int32_t> around;   ///< triangles at each point
    Table<std::int32_t> aliveOf;  ///< triangles of each face
    Table<std::uint8_t> broken;   ///< of each face: whether one of its triangles changed
    ThinDistance distance;
    double mostCost; ///< by weight
    BucketQueue<Candidate> waiting;
    std::vector<std::int32_t> neighbours;
    struct {
        Record texture[2], normal[2];
    } records{};
    std::uint32_t tick = 0;
    std::int64_t shrunk = 0;
    bool wasTooFar = false;
};

} // namespace

ThinEnd thinSurface(ThinSurface& surface, const ThinGoal& goal, std::int64_t& faces,
                    Table<std::uint8_t>& changed) {
    Thinner thinner(surface, goal, faces, changed);
    return thinner ? thinner.work() : ThinEnd::noMemory;
}

} // namespace polyfab
