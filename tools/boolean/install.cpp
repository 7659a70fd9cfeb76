// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/boolean/install.h"

#include "geometry/vec3.h"
#include "mesh/faces.h"
#include "mesh/hash_slots.h"
#include "mesh/stale.h"
#include "tools/delete_faces.h"
#include "tools/edge_cuts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <span>
#include <utility>

namespace polyfab::boolean {
namespace {

constexpr std::int32_t none = -1;

/// The points of the mesh that stand for exact ones. Two that are rounded to one position are one.
class PointNumbers {
  public:
    PointNumbers(MeshDraft& owner, const Soup& places, const ExactPoints& exact)
        : draft(owner), soup(places), points(exact),
          numberOf(static_cast<std::size_t>(exact.count()) - places.places.size(), none) {
        if (numberOf.empty()) return;
        slots.reset(2 * static_cast<std::size_t>(exact.count()));
        for (std::int32_t p = 0; p < sizeOf(soup.places); ++p) {
            const std::int32_t point = nth(soup.pointAt, p);
            slotOf(draft.place(point)) = point;
        }
    }

    /// Adds it when it is wanted for the first time.
    std::int32_t of(std::int32_t id) {
        if (id < sizeOf(soup.places)) return nth(soup.pointAt, id);
        std::int32_t& number = nth(numberOf, id - sizeOf(soup.places));
        if (number != none) return number;
        const Vec3 at = points.rounded(id) * (1 / soup.scale);
        std::int32_t& slot = slotOf(at);
        if (slot == HashSlots::empty) slot = draft.addPoint(at);
        return number = slot;
    }

  private:
    std::int32_t& slotOf(const Vec3& at) {
        return slots.find(hashOfNumbers(at.x, at.y, at.z), [&](std::int32_t point) {
            const Vec3 other = draft.place(point);
            return other.x == at.x && other.y == at.y && other.z == at.z;
        });
    }

    MeshDraft& draft;
    const Soup& soup;
    const ExactPoints& points;
    std::vector<std::int32_t> numberOf; ///< of the points that were made
    HashSlots slots;                    ///< points of the draft
};

/// The corners of one polygon and of the pieces it comes to, by their points.
class CornerMaker {
  public:
    CornerMaker(MeshDraft& owner, const Soup& triangles, PointNumbers& points)
        : draft(owner), soup(triangles), numbers(points) {}

    /// Begins with the corners on the outline of the polygon.
    void start(std::span<const DraftCorner> outline) {
        known.clear();
        for (const DraftCorner& corner : outline) known.try_emplace(pointFor(corner.p), corner);
    }

    /// A corner within gets what the three corners of its triangle have, in the parts in which they
    /// make its place.
    const DraftCorner& at(const OutlineCorner& corner) {
        const auto [entry, isNew] = known.try_emplace(numbers.of(corner.id));
        if (isNew) entry->second = mix(entry->first, nth(soup.triangles, corner.triangle));
        return entry->second;
    }

    /// Points of the mesh at one place are one.
    [[nodiscard]] std::int32_t pointFor(std::int32_t point) const {
        const std::int32_t place = point < sizeOf(soup.placeOf) ? nth(soup.placeOf, point) : none;
        return place < 0 ? point : nth(soup.pointAt, place);
    }

  private:
    [[nodiscard]] std::array<double, 3> partsAt(const Vec3& at, const Triangle& t) const {
        const Vec3 &a = soup.corner(t, 0), &b = soup.corner(t, 1), &c = soup.corner(t, 2);
        const Vec3 normal = unitCross(b - a, c - a);
        std::array<double, 3> parts{dot(normal, cross(b - at, c - at)),
                                    dot(normal, cross(c - at, a - at)),
                                    dot(normal, cross(a - at, b - at))};
        const double sum = parts[0] + parts[1] + parts[2];
        for (double& part : parts) part = sum != 0 ? part / sum : 1.0 / 3;
        return parts;
    }

    DraftCorner mix(std::int32_t point, const Triangle& t) {
        DraftCorner corner{point, none, none, 0};
        std::array<DraftCorner, 3> from{};
        for (std::size_t k = 0; k < 3; ++k) {
            const auto found = known.find(nth(soup.pointAt, t.at[k]));
            if (found == known.end()) return corner;
            from[k] = found->second;
        }
        const auto parts = partsAt(draft.place(point) * soup.scale, t);
        corner.t = mixed(from, &DraftCorner::t, [&] {
            TexCoord sum{0, 0, 0, 1};
            for (std::size_t k = 0; k < 3; ++k) {
                const TexCoord part = draft.texCoord(from[k].t);
                sum.u += part.u * parts[k];
                sum.v += part.v * parts[k];
            }
            return draft.addTexCoord(sum);
        });
        corner.d = mixed(from, &DraftCorner::d, [&] {
            Normal sum{0, 0, 0};
            for (std::size_t k = 0; k < 3; ++k) {
                const Normal part = draft.normal(from[k].d);
                sum = {sum.x + part.x * parts[k], sum.y + part.y * parts[k],
                       sum.z + part.z * parts[k]};
            }
            return draft.addNormal(sum);
        });
        return corner;
    }

    /// None where one of the three has none; that of all where all have the same.
    template <typename Make>
    static std::int32_t mixed(const std::array<DraftCorner, 3>& from,
                              std::int32_t DraftCorner::*what, Make make) {
        const std::int32_t a = from[0].*what, b = from[1].*what, c = from[2].*what;
        if (a < 0 || b < 0 || c < 0) return none;
        return a == b && b == c ? a : make();
    }

    MeshDraft& draft;
    const Soup& soup;
    PointNumbers& numbers;
    std::map<std::int32_t, DraftCorner> known; ///< by points
};

class Installer {
  public:
    Installer(Mesh& owner, const Soup& s, const Arrangement& a, const std::vector<Fate>& f,
              const Outlines& o, const CutEdges& c, const ExactPoints& exact)
        : mesh(owner), soup(s), arrangement(a), fates(f), outlines(o), cuts(c), draft(owner),
          edges(draft), numbers(draft, s, exact), makeCorner(draft, s, numbers),
          used(static_cast<std::size_t>(exact.count())) {}

    /// False when the effort is over.
    bool draw(Effort& effort, Tally& tally) {
        findUsed();
        for (const Face& face : liveFaces(std::as_const(mesh))) {
            if (!effort.goesOn(face.n)) return false;
            cutEdges(face);
        }
        edges.sort();
        std::vector<bool> isPolygon(static_cast<std::size_t>(mesh.nf));
        for (std::int32_t p = 0; p < sizeOf(soup.polygons); ++p) {
            if (!hasCells(p)) continue;
            if (!effort.goesOn(Effort::exactly)) return false;
            isPolygon[static_cast<std::size_t>(nth(soup.polygons, p).face)] = true;
            drawPolygon(p, tally);
        }
        for (const Face& face : liveFaces(std::as_const(mesh))) {
            const std::int32_t number = indexIn<Face>(mesh.faces, &face);
            if (isPolygon[static_cast<std::size_t>(number)] || face.n < 3) continue;
            if (!edges.touch(mesh, face)) continue;
            edges.expand(mesh, face, corners);
            addPiece(number);
        }
        tally.added = draft.newPoints();
        tally.removed = std::ssize(doomed);
        return true;
    }

    bool install() {
        if (!draft.install(mesh)) return false;
        joinPlaces();
        for (const std::int32_t face : doomed) mesh.faces[face].q = nullptr;
        if (!doomed.empty()) noteDeletedFaces(mesh);
        return true;
    }

  private:
    [[nodiscard]] bool hasCells(std::int32_t polygon) const {
        return nth(arrangement.firstOf, polygon) != nth(arrangement.firstOf, polygon + 1);
    }

    void findUsed() {
        for (std::int32_t p = 0; p < sizeOf(soup.polygons); ++p) {
            for (std::int32_t i = 0; i < outlines.count(p); ++i) {
                for (const OutlineCorner& corner : outlines.get(p, i)) {
                    used[static_cast<std::size_t>(corner.id)] = true;
                }
            }
        }
    }

    /// Enters the points on the edges of the face that are wanted.
    void cutEdges(const Face& face) {
        for (const auto& [from, to] : sides(face)) {
            const auto [low, high] = std::minmax({pointOf(mesh, from), pointOf(mesh, to)});
            const std::int32_t first = nth(soup.placeOf, low), last = nth(soup.placeOf, high);
            if (first < 0 || last < 0 || !cuts.startsAt(std::min(first, last))) continue;
            const auto on = cuts.on(std::min(first, last), std::max(first, last));
            if (on.empty() || edges.isCut(low, high)) continue;
            double least = 0;
            for (std::size_t i = 0; i < on.size(); ++i) {
                const std::int32_t id = on[first < last ? i : on.size() - 1 - i];
                if (used[static_cast<std::size_t>(id)])
                    least = cutEdge(low, high, numbers.of(id), least);
            }
        }
    }

    /// Gives how far along the edge the next point must at least lie, so that they keep their
    /// order.
    double cutEdge(std::int32_t low, std::int32_t high, std::int32_t point, double least) {
        const std::int32_t start = makeCorner.pointFor(low), end = makeCorner.pointFor(high);
        if (point == start || point == end) return least;
        const Vec3 from = draft.place(low), way = draft.place(high) - from;
        const double longest = largestPart(way);
        const auto scale = [longest](const Vec3& v) {
            return Vec3{v.x / longest, v.y / longest, v.z / longest};
        };
        const Vec3 scaled = scale(way), reached = scale(draft.place(point) - from);
        const double part = std::clamp(dot(reached, scaled) / dot(scaled, scaled), least, 1.0);
        edges.add(low, high, part, point);
        return std::nextafter(part, 2.0);
    }

    void drawPolygon(std::int32_t p, Tally& tally) {
        const std::int32_t face = nth(soup.polygons, p).face, count = outlines.count(p);
        if (count == 0) return doomed.push_back(face);
        const auto first = fates.begin() + nth(arrangement.firstOf, p);
        const auto end = fates.begin() + nth(arrangement.firstOf, p + 1);
        const bool isTurned = std::find(first, end, Fate::keptTurned) != end;
        const bool isWhole = count == 1 && std::find(first, end, Fate::removed) == end;
        const bool isOnEdge = edges.touch(mesh, mesh.faces[face]);
        if (isWhole && !isTurned && !isOnEdge) return;
        edges.expand(mesh, mesh.faces[face], corners);
        if (!isWhole) {
            const std::vector<DraftCorner> outline = corners;
            makeCorner.start(outline);
        }
        bool isLeft = false;
        for (std::int32_t i = 0; i < count; ++i) {
            if (!isWhole) takeOutline(p, i);
            if (isTurned) turnOver();
            isLeft |= addPiece(face);
        }
        if (!isLeft) return doomed.push_back(face);
        tally.turned += isTurned ? 1 : 0;
        tally.cut += isWhole ? 0 : 1;
    }

    void takeOutline(std::int32_t polygon, std::int32_t number) {
        corners.clear();
        for (const OutlineCorner& corner : outlines.get(polygon, number)) {
            corners.push_back(makeCorner.at(corner));
            corners.back().edgeuse = 0;
        }
        dropSpikes(corners, isSame);
    }

    void turnOver() {
        std::reverse(corners.begin(), corners.end());
        for (DraftCorner& corner : corners) {
            if (corner.d < 0) continue;
            const auto [entry, isNew] = opposite.try_emplace(corner.d);
            if (isNew) {
                const Normal d = draft.normal(corner.d);
                entry->second = draft.addNormal({-d.x, -d.y, -d.z});
            }
            corner.d = entry->second;
        }
    }

    /// Rounding may have brought neighbours together; what has less than three corners left has no
    /// area and is none.
    bool addPiece(std::int32_t face) {
        corners.erase(std::unique(corners.begin(), corners.end(), isSame), corners.end());
        while (corners.size() > 1 && isSame(corners.front(), corners.back())) corners.pop_back();
        if (corners.size() < 3) return false;
        draft.addPiece(face, corners);
        return true;
    }

    /// Makes the points at each place one.
    void joinPlaces() {
        bool joined = false;
        for (const Face& face : liveFaces(mesh)) {
            for (FaceCorner& corner : polyfab::corners(face)) {
                const std::int32_t point = pointOf(mesh, corner), one = makeCorner.pointFor(point);
                if (one == point) continue;
                corner.p = mesh.points + one;
                joined = true;
            }
        }
        if (!joined) return;
        mesh.changed = 1;
        stale.points = stale.edges = true;
    }

    Mesh& mesh;
    const Soup& soup;
    const Arrangement& arrangement;
    const std::vector<Fate>& fates;
    const Outlines& outlines;
    const CutEdges& cuts;
    MeshDraft draft;
    EdgeCuts edges;
    PointNumbers numbers;
    CornerMaker makeCorner;
    struct {
        CornerMaker& maker;
        bool operator()(const DraftCorner& a, const DraftCorner& b) const {
            return maker.pointFor(a.p) == maker.pointFor(b.p);
        }
    } isSame{makeCorner};
    std::vector<bool> used; ///< points that the outlines pass
    std::vector<DraftCorner> corners;
    std::vector<std::int32_t> doomed;              ///< faces of which nothing is left
    std::map<std::int32_t, std::int32_t> opposite; ///< normals
};

} // namespace

bool install(Mesh& mesh, const Soup& soup, const Arrangement& arrangement,
             const std::vector<Fate>& fates, const Outlines& outlines, const CutEdges& cuts,
             const ExactPoints& points, Effort& effort, Tally& tally) {
    Installer installer(mesh, soup, arrangement, fates, outlines, cuts, points);
    return installer.draw(effort, tally) && installer.install();
}

} // namespace polyfab::boolean
