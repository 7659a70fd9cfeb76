// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/fill_holes.h"

#include "mesh/faces.h"
#include "mesh/table.h"
#include "platform/platform.h"
#include "tools/asking.h"
#include "tools/edge_cuts.h"
#include "tools/edge_set.h"
#include "tools/flat_polygon.h"
#include "tools/hole_patch.h"
#include "tools/hole_rims.h"
#include "workbench/long_work.h"
#include "workbench/notes.h"
#include "workbench/state.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <map>
#include <string>
#include <utility>

namespace polyfab {
namespace {

/// What occurs most often; of several the least.
template <typename Member>
std::int16_t mostCommon(const Mesh& mesh, std::span<const RimSide> rim, Member member) {
    std::map<std::int16_t, int> counts;
    for (const RimSide& side : rim) ++counts[mesh.faces[side.face].*member];
    return std::max_element(counts.begin(), counts.end(),
                            [](const auto& a, const auto& b) { return a.second < b.second; })
        ->first;
}

class HoleFiller {
  public:
    explicit HoleFiller(Mesh& target) : mesh(target), draft(target) {}

    /// False when there is nothing to be done but to leave the mesh as it is.
    bool findHoles() { return findRims(mesh, rims) && enterEdges(); }

    Rims rims;

    /// Whether such a rim can be filled, and is.
    void fill(std::size_t number) {
        const auto rim = rims.rim(number);
        stopped = stopped || stopRequested();
        if (rims.closed[number] && fillRim(rim)) {
            ++filled;
        } else {
            leave(rim.size());
        }
    }
    void leave(std::size_t edges) {
        ++left;
        longest = std::max(longest, edges);
    }

    /// Puts the new faces in, unless Escape was pressed.
    void finish() {
        if (stopped || !draft.install(mesh)) return;
        std::string text = counted(filled, "hole") + " filled, " + counted(left) + " left";
        if (left > 0) {
            text +=
                " (the longest has " + counted(static_cast<std::int64_t>(longest), "edge") + ")";
        }
        note(text);
    }
    [[nodiscard]] bool wasStopped() const { return stopped; }

  private:
    [[nodiscard]] std::int32_t startOf(const RimSide& side) const {
        return pointAt(mesh, mesh.faces[side.face], side.place);
    }

    /// Enters the edges between points of rims, whether loose or not.
    bool enterEdges() {
        Table<std::uint8_t> onRim(mesh.np, 0);
        if (!onRim) return false;
        for (const RimSide& side : rims.sides) onRim[startOf(side)] = 1;
        for (const Face& face : liveFaces(mesh)) {
            for (const auto& [from, to] : sides(face)) {
                const std::int32_t a = pointOf(mesh, from), b = pointOf(mesh, to);
                if (onRim[a] != 0 && onRim[b] != 0) taken.add(a, b);
            }
        }
        return true;
    }

    bool fillRim(std::span<const RimSide> rim) {
        points.clear();
        places.clear();
        for (auto side = rim.rbegin(); side != rim.rend(); ++side) {
            points.push_back(startOf(*side));
            places.push_back(worldPosition(mesh.points[points.back()]));
            const Vec3& at = places.back();
            if (!std::isfinite(at.x) || !std::isfinite(at.y) || !std::isfinite(at.z)) return false;
        }
        if (isOneFace(rim)) return false;
        // It is flat: any angle out of its plane will do.
        const bool one = points.size() <= maxIndexed && isFlat(places) && !isBadPolygon(places, 90);
        return one ? fillWithOne(rim) : fillWithTriangles(rim);
    }

    /// Whether the rim is all around a single face.
    [[nodiscard]] bool isOneFace(std::span<const RimSide> rim) const {
        return std::ssize(rim) == mesh.faces[rim[0].face].n
               && std::all_of(rim.begin(), rim.end(),
                              [&](const RimSide& side) { return side.face == rim[0].face; });
    }

    bool fillWithOne(std::span<const RimSide> rim) {
        corners.clear();
        for (const std::int32_t point : points) corners.push_back({point, -1, -1, 2});
        draft.addFace(attributesFor(rim), corners);
        return true;
    }

    bool fillWithTriangles(std::span<const RimSide> rim) {
        const auto pointOfCorner = [&](std::int32_t corner) {
            return points[static_cast<std::size_t>(corner)];
        };
        const auto triangles = patchLoop({
            places,
            [&](std::int32_t a, std::int32_t b) {
                return taken.has(pointOfCorner(a), pointOfCorner(b));
            },
            [&] { return stopped = stopped || stopRequested(); },
        });
        const Face attributes = triangles.empty() ? Face() : attributesFor(rim);
        for (const auto& triangle : triangles) {
            corners.clear();
            for (const std::int32_t corner : triangle) {
                corners.push_back({pointOfCorner(corner), -1, -1, 2});
            }
            draft.addFace(attributes, corners);
            for (std::size_t k = 0; k < 3; ++k) taken.add(corners[k].p, corners[(k + 1) % 3].p);
        }
        return !triangles.empty();
    }

    [[nodiscard]] Face attributesFor(std::span<const RimSide> rim) const {
        Face face = mesh.faces[rim[0].face];
        face.g = mostCommon(mesh, rim, &Face::g);
        face.mat = mostCommon(mesh, rim, &Face::mat);
        face.selected = 1;
        return face;
    }

    Mesh& mesh;
    MeshDraft draft;
    EdgeSet taken;                    ///< edges between points of rims
    std::vector<std::int32_t> points; ///< of the rim that is being filled
    std::vector<Vec3> places;
    std::vector<DraftCorner> corners;
    std::int64_t filled = 0, left = 0;
    std::size_t longest = 0;
    bool stopped = false;
};

bool hasSide(std::span<const RimSide> rim, int face, int place) {
    return std::any_of(rim.begin(), rim.end(), [&](const RimSide& side) {
        return side.face == face && side.place == place;
    });
}

/// The number of the hole that is meant, or that of all rims.
std::size_t currentHole(const Mesh& mesh, const Rims& rims) {
    const auto edge = std::pair(workbench.currentEdgeFace, workbench.currentEdgeCorner);
    std::size_t found = rims.count();
    for (std::size_t i = 0; i < rims.count(); ++i) {
        const auto rim = rims.rim(i);
        if (currentEdgeIsLive() && hasSide(rim, edge.first, edge.second)) return i;
        const bool atVertex = std::any_of(rim.begin(), rim.end(), [&](const RimSide& side) {
            return pointAt(mesh, mesh.faces[side.face], side.place) == mesh.curvertex;
        });
        if (!atVertex || (found < i && rims.rim(found).size() <= rim.size())) continue;
        found = i;
    }
    return found;
}

} // namespace

void fillHole(Mesh& mesh) {
    HoleFiller filler(mesh);
    if (!filler.findHoles()) return;
    const std::size_t hole = currentHole(mesh, filler.rims);
    if (hole == filler.rims.count()) {
        platform().message("", "click a loose edge of the hole first", Icon::none);
        return;
    }
    filler.fill(hole);
    filler.finish();
}

void fillHoles(Mesh& mesh) {
    double most = 0;
    if (!hasFacesTo(mesh, "fill holes between")
        || !askWithin("fill holes of at most how many edges? (0 = any)", "100", 0,
                      std::numeric_limits<double>::max(), most)) {
        return;
    }
    HoleFiller filler(mesh);
    if (!filler.findHoles()) return;
    const Rims& rims = filler.rims;
    for (std::size_t i = 0; i < rims.count() && !filler.wasStopped(); ++i) {
        tellProgress(static_cast<double>(i), static_cast<double>(rims.count()));
        const auto rim = rims.rim(i);
        const bool selected = std::all_of(rim.begin(), rim.end(), [&](const RimSide& side) {
            return mesh.faces[side.face].selected != 0;
        });
        if (!selected) continue;
        if (most > 0 && static_cast<double>(rim.size()) > most) {
            filler.leave(rim.size());
        } else {
            filler.fill(i);
        }
    }
    filler.finish();
}

} // namespace polyfab
