// SPDX-License-Identifier: GPL-3.0-or-later
// Unique edges by counting: the edges of all faces are put into buckets by their lower point, then
// each bucket is thinned out in place with one table of where a higher point was met last.
#include "display/edge_list.h"

#include "display/options.h"
#include "mesh/faces.h"

#include <algorithm>

namespace polyfab {
namespace {

/// Number of the element at `address` in its array, or a huge number for none of it (null, say).
template <typename T>
std::size_t elementAt(const T* array, const T* address) {
    return (reinterpret_cast<std::uintptr_t>(address) - reinterpret_cast<std::uintptr_t>(array))
           / sizeof(T);
}

/// Whether its corners lie in the array; their points may not.
bool hasCorners(const Mesh& mesh, const Face& face) {
    if (!isLive(face) || face.n <= 0) return false;
    const std::size_t start = elementAt(mesh.corners, static_cast<const FaceCorner*>(face.q));
    const auto corners = static_cast<std::size_t>(mesh.nq);
    return start < corners && static_cast<std::size_t>(face.n) <= corners - start;
}

/// Calls use(lower point, higher point, marks) for each side of the face, which gives it `marks`.
template <typename Use>
void forEachSideOf(const Mesh& mesh, const Face& face, unsigned marks, Use use) {
    const auto points = static_cast<std::size_t>(mesh.np);
    const FaceCorner* corner = face.q + face.n - 1;
    std::size_t from = elementAt<Point>(mesh.points, corner->p);
    for (int k = 0; k < face.n; ++k) {
        const unsigned bad = corner->edgeuse == 255 ? edgemark::bad : 0;
        corner = face.q + k;
        const std::size_t to = elementAt<Point>(mesh.points, corner->p);
        if (from < points && to < points) {
            use(std::min(from, to), std::max(from, to), static_cast<std::uint8_t>(marks | bad));
        }
        from = to;
    }
}

/// The same for each live face, which marksOf(face) gives its marks.
template <typename MarksOf, typename Use>
void forEachSide(const Mesh& mesh, MarksOf marksOf, Use use) {
    for (const Face& face : allFaces(mesh)) {
        if (hasCorners(mesh, face)) forEachSideOf(mesh, face, marksOf(face), use);
    }
}

/// Marks that the face gives all its edges. One that is hidden in a pane must be sound, so that
/// its outline can be looked at.
unsigned marksOfFace(const Mesh& mesh, const Face& face) {
    const unsigned marks = face.selected != 0 ? edgemark::selected : 0;
    if (!displayOptions.hideFacingAway || !isSound(mesh, face)) {
        return marks | edgemark::inLeft | edgemark::inRight;
    }
    return marks | (isShown(face, true) ? edgemark::inLeft : 0)
           | (isShown(face, false) ? edgemark::inRight : 0);
}

/// Leaves each edge once in its bucket, the buckets moved together and the marks united.
void dropRepeats(DrawnEdges& list) {
    list.most = 0;
    const std::size_t points = list.first.size() - 1;
    // A place at or after the present bucket's start can only come from this bucket.
    std::vector<std::uint32_t> place(points, 0);
    std::uint32_t kept = 0;
    std::uint32_t next = 0;
    for (std::size_t i = 0; i < points; ++i) {
        const std::uint32_t start = kept;
        const std::uint32_t end = list.first[i + 1];
        for (; next < end; ++next) {
            const std::uint32_t higher = list.other[next];
            // Places count from 1, so that the cleared table holds none.
            if (place[higher] > start) {
                std::uint8_t& marks = list.marks[place[higher] - 1];
                marks = static_cast<std::uint8_t>(marks | list.marks[next] | edgemark::shared);
            } else {
                list.other[kept] = higher;
                list.marks[kept] = list.marks[next];
                place[higher] = ++kept;
            }
        }
        list.first[i + 1] = kept;
        list.most = std::max(list.most, kept - start);
    }
    list.other.resize(kept);
    list.marks.resize(kept);
}

void noteKinds(DrawnEdges& list) {
    list.kinds = 0;
    for (const std::uint8_t marks : list.marks) list.kinds |= 1U << marks;
}

} // namespace

bool DrawnEdges::has(unsigned mask, unsigned value) const {
    for (unsigned kind = 0; kind < 32; ++kind) {
        if ((kinds >> kind & 1) != 0 && (kind & mask) == value) return true;
    }
    return false;
}

void listEdges(const Mesh& mesh, DrawnEdges& list) {
    const auto points = static_cast<std::size_t>(mesh.np);
    list.first.assign(points + 1, 0);
    forEachSide(
        mesh, [](const Face&) { return 0U; },
        [&](std::size_t low, std::size_t, std::uint8_t) { ++list.first[low]; });
    std::uint32_t sum = 0;
    for (std::uint32_t& entry : list.first) {
        sum += entry;
        entry = sum;
    }
    // Filled from the back, each bucket's end becomes its start.
    list.other.resize(sum);
    list.marks.resize(sum);
    forEachSide(
        mesh, [&](const Face& face) { return marksOfFace(mesh, face); },
        [&](std::size_t low, std::size_t high, std::uint8_t marks) {
            const std::uint32_t place = --list.first[low];
            list.other[place] = static_cast<std::uint32_t>(high);
            list.marks[place] = marks;
        });
    dropRepeats(list);
    noteKinds(list);
}

void markSelected(const Mesh& mesh, DrawnEdges& list) {
    constexpr std::uint32_t mostToSearch = 64; // for each side of a face
    if (list.most > mostToSearch) return listEdges(mesh, list);
    for (std::uint8_t& marks : list.marks) marks &= static_cast<std::uint8_t>(~edgemark::selected);
    for (const Face& face : allFaces(mesh)) {
        if (face.selected == 0 || !hasCorners(mesh, face)) continue;
        forEachSideOf(mesh, face, 0, [&list](std::size_t low, std::size_t high, std::uint8_t) {
            std::uint32_t place = list.first[low];
            const std::uint32_t end = list.first[low + 1];
            while (place < end && list.other[place] != high) ++place;
            if (place < end) list.marks[place] |= edgemark::selected;
        });
    }
    noteKinds(list);
}

bool isSound(const Mesh& mesh, const Face& face) {
    const auto points = static_cast<std::size_t>(mesh.np);
    return hasCorners(mesh, face)
           && std::all_of(face.q, face.q + face.n, [&](const FaceCorner& corner) {
                  return elementAt<Point>(mesh.points, corner.p) < points;
              });
}

} // namespace polyfab
