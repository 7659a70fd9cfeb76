// SPDX-License-Identifier: GPL-3.0-or-later
// A way that comes to a point for the second time leaves the loop behind it.
#include "tools/hole_rims.h"

#include "geometry/vec3.h"
#include "mesh/face_angle.h"
#include "mesh/faces.h"
#include "mesh/hash_slots.h"
#include "mesh/table.h"
#include "tools/edge_numbers.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <utility>

namespace polyfab {
namespace {

/// A loose side on its way into a rim.
struct Loose {
    RimSide side;
    std::int32_t from, to;
    bool used = false;
};

constexpr std::int32_t mostCompared = 64; ///< ways on from one point, to find the right one

class RimWalk {
  public:
    RimWalk(const Mesh& walked, std::vector<Loose>& found, Rims& result)
        : mesh(walked), loose(found), rims(result), first(walked.np), ends(walked.np, 0),
          onWay(walked.np, -1), surplus(walked.np, 0) {}

    bool walkAll() {
        if (!first || !ends || !onWay || !surplus) return false;
        std::sort(loose.begin(), loose.end(),
                  [](const Loose& a, const Loose& b) { return a.from < b.from; });
        for (const Loose& side : loose) ++ends[side.from], ++surplus[side.from], --surplus[side.to];
        std::int32_t start = 0;
        for (std::int32_t i = 0; i < mesh.np; ++i) {
            first[i] = start;
            ends[i] = start += ends[i];
        }
        // Ways that can't be closed are walked from where they begin.
        for (const bool fromBeginnings : {true, false}) {
            for (std::size_t i = 0; i < loose.size(); ++i) {
                if (!fromBeginnings || surplus[loose[i].from] > 0) walk(i);
            }
        }
        return true;
    }

  private:
    void walk(std::size_t start) {
        way.clear();
        for (std::size_t next = start; next < loose.size() && !loose[next].used;) {
            loose[next].used = true;
            onWay[loose[next].from] = static_cast<std::int32_t>(way.size());
            way.push_back(next);
            const std::int32_t at = loose[next].to;
            const std::size_t from = next;
            if (onWay[at] >= 0) leave(static_cast<std::size_t>(onWay[at]), true);
            next = way.empty() ? loose.size() : nextSide(at, from);
        }
        if (!way.empty()) leave(0, false);
    }

    /// What the way passed since this place becomes a rim.
    void leave(std::size_t place, bool closed) {
        for (std::size_t i = place; i < way.size(); ++i) {
            rims.sides.push_back(loose[way[i]].side);
            onWay[loose[way[i]].from] = -1;
        }
        way.resize(place);
        rims.ends.push_back(static_cast<std::int32_t>(rims.sides.size()));
        rims.closed.push_back(closed);
    }

    /// The side from this point that comes first when one turns from the way back into the hole,
    /// which lies to the right of the side before.
    std::size_t nextSide(std::int32_t point, std::size_t before) {
        // Used ones at the front are not looked at again.
        while (first[point] < ends[point] && loose[at(first[point])].used) ++first[point];
        const std::int32_t count = ends[point] - first[point];
        const bool choose = count > 1 && count <= mostCompared;
        std::size_t best = loose.size();
        double least = INFINITY;
        for (std::int32_t i = first[point]; i < ends[point]; ++i) {
            if (loose[at(i)].used) continue;
            const double turn = choose ? turnTo(loose[at(i)], loose[before]) : 0;
            if (best != loose.size() && !(turn < least)) continue;
            best = at(i);
            least = turn;
            if (!choose) break;
        }
        return best;
    }
    static std::size_t at(std::int32_t i) { return static_cast<std::size_t>(i); }

    double turnTo(const Loose& side, const Loose& before) {
        const auto place = [&](std::int32_t i) { return worldPosition(mesh.points[i]); };
        const Vec3 back = nearOne(place(before.from) - place(before.to));
        const Vec3 on = nearOne(place(side.to) - place(side.from));
        // A face of many corners is not gone around at each of them.
        if (std::exchange(normalFace, before.side.face) != before.side.face) {
            normal = faceNormal(mesh.faces[before.side.face]);
        }
        const double angle = std::atan2(dot(cross(normal, back), on), dot(back, on));
        return angle > 0 ? angle : angle + 2 * pi;
    }

    const Mesh& mesh;
    std::vector<Loose>& loose;
    Rims& rims;
    Table<std::int32_t> first; ///< of each point: the first loose side from there not known as used
    Table<std::int32_t> ends;  ///< of each point: behind the last one
    Table<std::int32_t> onWay; ///< of each point: where the way passed it, -1: it did not
    Table<std::int32_t> surplus; ///< of each point: loose sides from there, less those to there
    std::vector<std::size_t> way;
    std::int32_t normalFace = -1;
    Vec3 normal; ///< of that face
};

/// Of an edge, whichever way it is run: some others hardly ever come to the same.
std::uint64_t markOf(std::int32_t from, std::int32_t to) {
    return hashOfNumbers(std::min(from, to), std::max(from, to));
}

/// Leaves those whose edge no other one has, in their order.
void dropShared(std::vector<Loose>& sides) {
    const auto edgeOf = [&](std::size_t i) { return std::minmax(sides[i].from, sides[i].to); };
    std::vector<std::size_t> order(sides.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return edgeOf(a) < edgeOf(b); });
    for (std::size_t i = 0, end = 0; i < order.size(); i = end) {
        while (end < order.size() && edgeOf(order[end]) == edgeOf(order[i])) ++end;
        for (std::size_t k = i; k < end; ++k) sides[order[k]].used = end - i > 1;
    }
    std::erase_if(sides, [](const Loose& side) { return side.used; });
}

} // namespace

bool findRims(const Mesh& mesh, Rims& rims) {
    // Each side leaves its mark at both ends, and two sides of an edge take theirs away again: what
    // is left tells the points at loose edges, few of most meshes, from all others.
    Table<std::uint64_t> marks(mesh.np, 0);
    if (!marks) return false;
    eachSideWithPoints(mesh, [&](const Face&, int, std::int32_t from, std::int32_t to) {
        const std::uint64_t mark = markOf(from, to);
        marks[from] ^= mark;
        marks[to] ^= mark;
    });
    std::vector<Loose> sides;
    eachSideWithPoints(mesh, [&](const Face& face, int k, std::int32_t from, std::int32_t to) {
        if (marks[from] != 0 && marks[to] != 0)
            sides.push_back({{indexIn(mesh.faces, &face), k}, from, to});
    });
    dropShared(sides);
    return RimWalk(mesh, sides, rims).walkAll();
}

} // namespace polyfab
