// SPDX-License-Identifier: GPL-3.0-or-later
// A way that comes to a point for the second time leaves the loop behind it.
#include "tools/hole_rims.h"

#include "geometry/vec3.h"
#include "mesh/face_angle.h"
#include "mesh/faces.h"
#include "mesh/table.h"
#include "tools/edge_numbers.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

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
        const bool choose = ends[point] - first[point] <= mostCompared;
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

    [[nodiscard]] double turnTo(const Loose& side, const Loose& before) const {
        const auto place = [&](std::int32_t i) { return worldPosition(mesh.points[i]); };
        const Vec3 back = nearOne(place(before.from) - place(before.to));
        const Vec3 on = nearOne(place(side.to) - place(side.from));
        const Vec3 normal = faceNormal(mesh.faces[before.side.face]);
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
};

} // namespace

bool findRims(const Mesh& mesh, Rims& rims) {
    std::vector<Loose> found;
    {
        const EdgeNumbers edges(mesh);
        Table<std::uint8_t> uses(edges.count(), 0); // counted to two
        if (!edges || !uses) return false;
        for (std::int32_t c = 0; c < mesh.nq; ++c) {
            if (edges.at(c) >= 0 && uses[edges.at(c)] < 2) ++uses[edges.at(c)];
        }
        eachSideWithPoints(mesh, [&](const Face& face, int k, std::int32_t from, std::int32_t to) {
            if (uses[edges.at(indexIn(mesh.corners, face.q) + k)] != 1) return;
            found.push_back({{indexIn(mesh.faces, &face), k}, from, to});
        });
    }
    return RimWalk(mesh, found, rims).walkAll();
}

} // namespace polyfab
