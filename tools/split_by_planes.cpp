// SPDX-License-Identifier: GPL-3.0-or-later
// Every point is told the plane it lies on, or the two that it lies between; from then on nothing
// is measured any more. Edges get their new points first, then faces are cut from corner to corner.
#include "tools/split_by_planes.h"

#include "mesh/extent.h"
#include "mesh/faces.h"
#include "mesh/table.h"
#include "platform/platform.h"
#include "tools/edge_cuts.h"
#include "tools/split_polygon.h"
#include "workbench/long_work.h"
#include "workbench/notes.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>

namespace polyfab {
namespace {

constexpr std::int64_t mostPoints = 20'000'000;
constexpr std::int32_t notFinite = -1; ///< in place of a slab

bool isWithinReach(const Point& p) { return largestPart(worldPosition(p)) <= farthest; }

/// Deleted ones are no live faces.
bool isSplittable(const Face& face) {
    return isLiveSelected(face) && face.n > 2
           && std::all_of(face.q, face.q + face.n,
                          [](const FaceCorner& corner) { return isWithinReach(*corner.p); });
}

class PlaneSplitter {
  public:
    PlaneSplitter(const Mesh& split, ParallelPlanes by)
        : mesh(split), planes(std::move(by)), draft(split), cuts(draft), slab(split.np),
          onCut(split.np, 0) {}
    explicit operator bool() const { return slab && onCut; }

    /// False when there are too many points, which has been said, or Escape was pressed.
    bool work() {
        placePoints();
        if (!mayCut() || !cutEdges()) return false;
        return splitFaces();
    }

    MeshDraft& result() { return draft; }
    void tell() const {
        std::string text =
            counted(facesSplit, "face") + " split, " + counted(draft.newPoints(), "new point");
        if (leftOut > 0) text += "; " + counted(leftOut, "face") + " left out, not finite";
        note(text);
    }

  private:
    [[nodiscard]] double heightOf(const Vec3& at) const {
        return dot(planes.normal, at) + planes.offset;
    }

    void placePoints() {
        const double slack = 1e-9 * extent();
        std::sort(planes.at.begin(), planes.at.end());
        const auto near = [&](double a, double b) { return !(b - a > 4 * slack); };
        planes.at.erase(std::unique(planes.at.begin(), planes.at.end(), near), planes.at.end());
        for (std::int32_t i = 0; i < mesh.np; ++i) {
            const double height = heightOf(worldPosition(mesh.points[i]));
            const bool placed = isWithinReach(mesh.points[i]) && std::abs(height) <= farthest;
            slab[i] = placed ? slabOf(height, slack) : notFinite;
        }
    }

    [[nodiscard]] double extent() const {
        const Extent faces = extentOfFaces(mesh, AffineMap(), true);
        const double size = largestPart(faces.high - faces.low) * largestPart(planes.normal);
        return std::isfinite(size) && !faces.empty() ? size : 0;
    }

    [[nodiscard]] std::int32_t slabOf(double height, double slack) const {
        const auto plane = std::lower_bound(planes.at.begin(), planes.at.end(), height - slack);
        const auto number = static_cast<std::int32_t>(plane - planes.at.begin());
        return 2 * number + (plane != planes.at.end() && *plane <= height + slack ? 1 : 0);
    }

    /// Calls use(face, from, to, first plane, behind the last plane) for sides that planes cut.
    template <typename Use>
    bool eachCutSide(Use use) const {
        LoopProgress progress(mesh.nf);
        for (const Face& face : allFaces(mesh)) {
            progress.step();
            if (!isSplittable(face)) continue;
            if (stopRequested()) return false;
            if (!spansPlane(face)) continue;
            for (const auto& [from, to] : sides(face)) {
                const std::int32_t a = pointOf(mesh, from), b = pointOf(mesh, to);
                const auto [low, high] = std::minmax(slab[a], slab[b]);
                if (low == notFinite || (low + 1) / 2 >= high / 2) continue;
                use(std::min(a, b), std::max(a, b), (low + 1) / 2, high / 2);
            }
        }
        return true;
    }

    [[nodiscard]] bool spansPlane(const Face& face) const {
        std::int32_t low = slab[pointOf(mesh, face.q[0])], high = low;
        for (const FaceCorner& corner : corners(face)) {
            const std::int32_t here = slab[pointOf(mesh, corner)];
            low = std::min(low, here);
            high = std::max(high, here);
        }
        return low != notFinite && (low + 1) / 2 < high / 2;
    }

    bool mayCut() const {
        std::int64_t count = 0;
        const bool all = eachCutSide([&](std::int32_t, std::int32_t, std::int32_t first,
                                         std::int32_t end) { count += end - first; });
        if (count <= mostPoints || !all) return all;
        platform().message("", "so many planes would make more than 20,000,000 points",
                           Icon::exclamation);
        return false;
    }

    bool cutEdges() {
        const bool all = eachCutSide(
            [&](std::int32_t low, std::int32_t high, std::int32_t first, std::int32_t end) {
                if (cuts.isCut(low, high)) return;
                onCut[low] = onCut[high] = 1;
                const Vec3 from = draft.place(low), to = draft.place(high);
                const double start = heightOf(from), rise = heightOf(to) - start;
                for (std::int32_t plane = first; plane < end; ++plane) {
                    const double part = (planes.at[static_cast<std::size_t>(plane)] - start) / rise;
                    newSlabs.push_back(2 * plane + 1);
                    cuts.add(low, high, part, draft.addPoint(from + (to - from) * part));
                }
            });
        cuts.sort();
        return all;
    }

    bool splitFaces() {
        LoopProgress progress(mesh.nf);
        for (const Face& face : allFaces(mesh)) {
            progress.step();
            if (!isLive(face)) continue;
            if (isLiveSelected(face) && face.n > 2 && !isSplittable(face)) ++leftOut;
            if (isSplittable(face) && spansPlane(face)) {
                if (!splitFace(face)) return false;
            } else if (mayTouch(face) && cuts.touch(mesh, face)) {
                cuts.expand(mesh, face, expanded);
                draft.addPiece(indexIn(mesh.faces, &face), expanded);
            }
        }
        return true;
    }

    [[nodiscard]] bool mayTouch(const Face& face) const {
        for (const auto& [from, to] : sides(face)) {
            if (onCut[pointOf(mesh, from)] != 0 && onCut[pointOf(mesh, to)] != 0) return true;
        }
        return false;
    }

    /// False when Escape was pressed.
    bool splitFace(const Face& face) {
        cuts.expand(mesh, face, expanded);
        SlabPolygon polygon;
        for (const DraftCorner& corner : expanded) {
            const std::int32_t slabHere =
                corner.p < mesh.np ? slab[corner.p]
                                   : newSlabs[static_cast<std::size_t>(corner.p - mesh.np)];
            polygon.push_back({corner, slabHere, draft.place(corner.p)});
        }
        std::vector<SlabPolygon> pieces;
        if (!cutAtPlanes(polygon, planes.normal, stopRequested, pieces)) return false;
        facesSplit += pieces.size() > 1 ? 1 : 0;
        for (const SlabPolygon& piece : pieces) {
            expanded.clear();
            for (const SlabCorner& corner : piece) expanded.push_back(corner.corner);
            draft.addPiece(indexIn(mesh.faces, &face), expanded);
        }
        return true;
    }

    const Mesh& mesh;
    ParallelPlanes planes;
    MeshDraft draft;
    EdgeCuts cuts;
    Table<std::int32_t> slab;           ///< of each point
    Table<std::uint8_t> onCut;          ///< of each point: whether an edge to it is cut
    std::vector<std::int32_t> newSlabs; ///< of the new points
    std::vector<DraftCorner> expanded;
    std::int64_t facesSplit = 0, leftOut = 0;
};

} // namespace

void splitByPlanes(Mesh& mesh, ParallelPlanes planes) {
    PlaneSplitter splitter(mesh, std::move(planes));
    if (splitter && splitter.work() && splitter.result().install(mesh)) splitter.tell();
}

} // namespace polyfab
