// SPDX-License-Identifier: GPL-3.0-or-later
// Everything is counted before anything is changed, so that a mesh that would grow beyond what can
// be counted in it is refused whole.
#include "tools/duplicate.h"

#include "mesh/faces.h"
#include "mesh/stale.h"
#include "mesh/table.h"
#include "platform/platform.h"
#include "workbench/long_work.h"

#include <algorithm>
#include <cstdint>
#include <tuple>
#include <utility>

namespace polyfab {
namespace {

constexpr std::int32_t none = -1;

/// Of each point its copy's number.
using Copies = Table<std::int32_t>;

/// What is to be added.
struct Counts {
    std::int64_t points = 0;
    std::int64_t corners = 0;
    std::int64_t faces = 0;
};

/// A side of a selected face: the higher point of its edge, and the corner that it begins at.
struct Side {
    std::int32_t high;
    std::int32_t face;
    std::int32_t place;
};

/// Counts the selected faces and what they use, and gives each point of theirs a number behind the
/// last point of the mesh.
Counts countCopies(const Mesh& mesh, Copies& copies, LoopProgress& progress) {
    Counts counts;
    for (const Face& face : allFaces(mesh)) {
        progress.step();
        if (!isLiveSelected(face)) continue;
        ++counts.faces;
        counts.corners += face.n;
        for (const FaceCorner& corner : corners(face)) copies[pointOf(mesh, corner)] = 0;
    }
    for (std::int32_t i = 0; i < mesh.np; ++i) {
        progress.step();
        if (copies[i] != none) copies[i] = static_cast<std::int32_t>(mesh.np + counts.points++);
    }
    return counts;
}

/// Calls use(low, side) for each side between two points, in the order of faces.
template <typename Use>
void eachSide(const Mesh& mesh, LoopProgress& progress, Use use) {
    for (const Face& face : allFaces(mesh)) {
        progress.step();
        if (!isLiveSelected(face)) continue;
        for (const auto& [from, to] : sides(face)) {
            const auto [low, high] = std::minmax({pointOf(mesh, from), pointOf(mesh, to)});
            if (low == high) continue;
            use(low, Side{high, indexIn(mesh.faces, &face), indexIn(face.q, &from)});
        }
    }
}

/// Lists the sides by the lower points of their edges; `ends` becomes where those of a point end.
void sortSides(const Mesh& mesh, Table<Side>& sides, Table<std::int64_t>& ends,
               LoopProgress& progress) {
    eachSide(mesh, progress, [&](std::int32_t low, const Side&) { ++ends[low]; });
    std::int64_t start = 0;
    for (std::int32_t i = 0; i < mesh.np; ++i) ends[i] = std::exchange(start, start + ends[i]);
    eachSide(mesh, progress,
             [&](std::int32_t low, const Side& side) { sides[ends[low]++] = side; });
}

/// Keeps those of a point's sides that no other one lies on, from `kept` on; gives their end.
Side* keepSingle(Side* first, Side* end, Side* kept) {
    std::sort(first, end, [](const Side& a, const Side& b) { return a.high < b.high; });
    for (Side* run = first; run != end;) {
        Side* const next =
            std::find_if(run, end, [high = run->high](const Side& s) { return s.high != high; });
        if (next - run == 1) *kept++ = *run;
        run = next;
    }
    return kept;
}

/// Lists the sides that no other side of a selected face lies on, in the order of faces, and gives
/// their number. `ends` holds a 0 for each point.
std::int64_t findBorder(const Mesh& mesh, Table<Side>& sides, Table<std::int64_t>& ends,
                        LoopProgress& progress) {
    sortSides(mesh, sides, ends, progress);
    Side* const first = &sides[0];
    Side* kept = first;
    for (std::int32_t i = 0; i < mesh.np; ++i) {
        progress.step();
        kept = keepSingle(first + (i == 0 ? 0 : ends[i - 1]), first + ends[i], kept);
    }
    std::sort(first, kept, [](const Side& a, const Side& b) {
        return std::tie(a.face, a.place) < std::tie(b.face, b.place);
    });
    return kept - first;
}

bool makeRoom(Mesh& mesh, const Counts& added) {
    return mesh.growPoints(mesh.np + added.points, false)
           && mesh.growCorners(mesh.nq + added.corners, false)
           && mesh.growFaces(mesh.nf + added.faces, false);
}

/// A new face like this one, with corners yet to be appended.
Face& appendFace(Mesh& mesh, const Face& like) {
    Face& face = mesh.faces[mesh.nf++];
    face = like;
    face.q = mesh.corners + mesh.nq;
    return face;
}

FaceCorner onCopy(const Mesh& mesh, const Copies& copies, FaceCorner corner) {
    corner.p = mesh.points + copies[pointOf(mesh, corner)];
    return corner;
}

void appendCopies(Mesh& mesh, const Copies& copies, LoopProgress& progress) {
    for (std::int32_t i = 0, before = mesh.np; i < before; ++i) {
        progress.step();
        if (copies[i] != none) copyPoint(mesh, i);
    }
    for (std::int32_t i = 0, before = mesh.nf; i < before; ++i) {
        progress.step();
        Face& face = mesh.faces[i];
        if (!isLiveSelected(face)) continue;
        appendFace(mesh, face);
        for (const FaceCorner& corner : corners(face)) {
            mesh.corners[mesh.nq++] = onCopy(mesh, copies, corner);
        }
        face.selected = 0;
    }
}

/// The wall runs the copy's edge against the copy, and so the original's along with the original.
void appendWall(Mesh& mesh, const Side& side, const Copies& copies, int part) {
    const Face& original = mesh.faces[side.face];
    FaceCorner from = original.q[side.place];
    FaceCorner to = cornerAfter(original, side.place);
    from.d = to.d = nullptr; // those of the surface, which the wall stands on
    from.edgeuse = to.edgeuse = 2;
    Face& wall = appendFace(mesh, original);
    wall.n = 4;
    wall.prt = static_cast<std::int16_t>(part);
    for (const FaceCorner& corner :
         {onCopy(mesh, copies, to), onCopy(mesh, copies, from), from, to}) {
        mesh.corners[mesh.nq++] = corner;
    }
}

/// False when there is nothing selected or no memory, which has been said then.
bool duplicate(Mesh& mesh, bool join) {
    Copies copies(mesh.np, none);
    if (!copies) return false;
    // Each array is gone through twice, and twice more for walls.
    LoopProgress progress((join ? 4 : 2) * (std::int64_t{mesh.np} + mesh.nf));
    Counts added = countCopies(mesh, copies, progress);
    if (added.faces == 0) {
        platform().message("", "I have no selected faces to duplicate", Icon::none);
        return false;
    }
    Table<Side> border(join ? added.corners : 0);
    Table<std::int64_t> ends(join ? mesh.np : 0, 0);
    if (!border || !ends) return false;
    const std::int64_t walls = join ? findBorder(mesh, border, ends, progress) : 0;
    added.corners += 4 * walls;
    added.faces += walls;
    if (!makeRoom(mesh, added)) return false;
    appendCopies(mesh, copies, progress);
    // The walls are a part of their own, by which they can be picked.
    const int part = walls > 0 && mesh.nprt < maxIndexed ? mesh.addPart() : 0;
    for (std::int64_t i = 0; i < walls; ++i) {
        progress.step();
        appendWall(mesh, border[i], copies, part);
    }
    mesh.changed = 1;
    stale.edges = true;
    return true;
}

void duplicateAndReport(Mesh& mesh, bool join) {
    if (!duplicate(mesh, join)) return;
    platform().message("", "I have duplicated the selected faces like you told me to", Icon::none);
}

} // namespace

void duplicateSelected(Mesh& mesh) { duplicateAndReport(mesh, false); }

void duplicateSelectedJoined(Mesh& mesh) { duplicateAndReport(mesh, true); }

} // namespace polyfab
