// SPDX-License-Identifier: GPL-3.0-or-later
// Each face gets the sorted list of its points, and the faces are sorted by these lists: equal ones
// stand together then. A hash of the list decides nearly every comparison; the list itself has the
// last word.
#include "tools/same_corners.h"

#include "mesh/faces.h"
#include "mesh/hash_slots.h"
#include "mesh/stale.h"
#include "mesh/table.h"
#include "platform/platform.h"
#include "tools/delete_faces.h"
#include "workbench/long_work.h"

#include <algorithm>
#include <cstdint>
#include <string>

namespace polyfab {
namespace {

/// A selected face and its points, each once.
struct PointSet {
    std::uint64_t hash;
    const std::int32_t* points;
    std::int32_t n;
    std::int32_t face;
};

bool samePoints(const PointSet& a, const PointSet& b) {
    return a.hash == b.hash && std::equal(a.points, a.points + a.n, b.points, b.points + b.n);
}

/// Equal sets in the order of faces.
bool before(const PointSet& a, const PointSet& b) {
    if (a.hash != b.hash) return a.hash < b.hash;
    if (samePoints(a, b)) return a.face < b.face;
    return std::lexicographical_compare(a.points, a.points + a.n, b.points, b.points + b.n);
}

/// Lists the points of each selected face, and gives the end of the sets. There must be room.
PointSet* listSets(const Mesh& mesh, std::int32_t* points, PointSet* sets) {
    LoopProgress progress(mesh.nf);
    for (const Face& face : allFaces(mesh)) {
        progress.step();
        if (!isLiveSelected(face)) continue;
        std::int32_t* const list = points;
        for (const FaceCorner& corner : corners(face)) *points++ = pointOf(mesh, corner);
        std::sort(list, points);
        points = std::unique(list, points);
        std::uint64_t hash = 0;
        for (const std::int32_t* point = list; point != points; ++point) {
            hash = mixedInto(hash, *point);
        }
        *sets++ = {hash, list, static_cast<std::int32_t>(points - list),
                   indexIn(mesh.faces, &face)};
    }
    return sets;
}

/// Calls use(face, isFirst) for every selected face that is not alone on its points; isFirst for
/// the first of those on the same ones. False without memory.
template <typename Use>
bool eachTwin(Mesh& mesh, Use use) {
    std::int64_t faces = 0;
    std::int64_t sides = 0;
    for (const Face& face : selectedFaces(mesh)) {
        ++faces;
        sides += face.n;
    }
    Table<std::int32_t> points(sides);
    Table<PointSet> sets(faces);
    if (!points || !sets) return false;
    PointSet* const first = &sets[0];
    PointSet* const end = listSets(mesh, &points[0], first);
    std::sort(first, end, before);
    for (const PointSet* set = first; set != end; ++set) {
        const bool follows = set != first && samePoints(set[-1], *set);
        const bool isFollowed = set + 1 != end && samePoints(*set, set[1]);
        if (follows || isFollowed) use(mesh.faces[set->face], !follows);
    }
    return true;
}

void report(const std::string& text) { platform().message("", text, Icon::none); }

} // namespace

void removeFacesOnSamePoints(Mesh& mesh) {
    int count = 0;
    const bool done = eachTwin(mesh, [&](Face& face, bool isFirst) {
        if (isFirst) return;
        face.q = nullptr;
        ++count;
    });
    if (!done) return;
    if (count > 0) noteDeletedFaces(mesh);
    report("I have removed " + std::to_string(count) + (count == 1 ? " face" : " faces"));
}

void unselectFacesOnSamePoints(Mesh& mesh) {
    int count = 0;
    const bool done = eachTwin(mesh, [&](Face& face, bool) {
        face.selected = 0;
        ++count;
    });
    if (!done) return;
    if (count > 0) stale.edges = true;
    report(std::to_string(count) + " such faces found");
}

} // namespace polyfab
