// SPDX-License-Identifier: GPL-3.0-or-later
// The sides of all faces are sorted by their lower point (a counting sort, which keeps them in the
// order of faces), so that each point's edges are found together and every list is complete before
// the next one starts: the lists lie in one block, however many points there are. Within a list, a
// table by the higher point finds an edge in one step, however long the list is.
#include "mesh/edges.h"

#include "mesh/faces.h"
#include "mesh/progress.h"
#include "mesh/table.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace polyfab {
namespace {

constexpr std::int32_t mostUses = 254; // 255 marks a bad edge

struct Side {
    std::int32_t corner;
    std::int32_t high; ///< the higher-numbered of its two points
};

template <typename T>
bool take(T*& table, std::int32_t count) {
    table = static_cast<T*>(farmalloc(static_cast<std::size_t>(count) * sizeof(T)));
    return table != nullptr;
}

/// Takes the tables of edges, with nothing found yet. There are at most as many edges as corners.
bool takeTables(Mesh& mesh) {
    if (!take(mesh.cornerMate, mesh.nq) || !take(mesh.cornerSameDir, mesh.nq)
        || !take(mesh.pointEdges, mesh.np) || !take(mesh.edges, mesh.nq)) {
        return false;
    }
    std::fill_n(mesh.cornerMate, mesh.nq, -1);
    std::fill_n(mesh.cornerSameDir, mesh.nq, std::uint8_t{255});
    std::fill_n(mesh.pointEdges, mesh.np, EdgeList{});
    return true;
}

/// Hands out every side of a live face: its corner and its two points, the lower one first. Written
/// out so that each point is looked up once: the time of building the edges is spent here.
template <typename Use>
void eachSide(const Mesh& mesh, Use use) {
    WorkCounter done;
    for (const Face& face : liveFaces(mesh)) {
        done.step(face.n);
        if (face.n < 1) continue;
        const std::int32_t start = indexIn(mesh.corners, face.q);
        const std::int32_t first = indexIn(mesh.points, face.q->p);
        std::int32_t from = first;
        for (std::int32_t k = 0; k < face.n; ++k) {
            const bool last = k + 1 == face.n;
            const std::int32_t to = last ? first : indexIn(mesh.points, face.q[k + 1].p);
            use(start + k, std::min(from, to), std::max(from, to));
            from = to;
        }
    }
}

bool enterOwners(Mesh& mesh) {
    if (!take(mesh.cornerFace, mesh.nq)) return false;
    std::fill_n(mesh.cornerFace, mesh.nq, CornerFace{noFace, 0});
    WorkCounter done;
    for (const Face& face : liveFaces(mesh)) {
        done.step(face.n);
        const auto number = static_cast<std::uint32_t>(indexIn(mesh.faces, &face));
        CornerFace* const owners = mesh.cornerFace + indexIn(mesh.corners, face.q);
        for (std::int32_t k = 0; k < face.n; ++k)
            owners[k] = {number, static_cast<std::uint16_t>(k)};
    }
    return true;
}

/// Sorts the sides by their lower points; `first` of each point's list becomes the end of its sides
/// in `sides`, which is where those of the next point start.
void sortSides(Mesh& mesh, Table<Side>& sides) {
    EdgeList* const lists = mesh.pointEdges;
    eachSide(mesh, [&](std::int32_t, std::int32_t low, std::int32_t) { ++lists[low].n; });
    std::int32_t start = 0;
    for (std::int32_t i = 0; i < mesh.np; ++i)
        lists[i].first = std::exchange(start, start + lists[i].n);
    eachSide(mesh, [&](std::int32_t corner, std::int32_t low, std::int32_t high) {
        sides[lists[low].first++] = {corner, high};
    });
}

void makeMates(Mesh& mesh, std::int32_t first, std::int32_t second) {
    const bool sameDir = mesh.corners[first].p == mesh.corners[second].p;
    mesh.cornerMate[first] = second;
    mesh.cornerMate[second] = first;
    mesh.cornerSameDir[first] = mesh.cornerSameDir[second] = sameDir ? 1 : 0;
}

/// Makes the edge lists; gives the number of edges. `found` holds the last edge that ended at each
/// point; one before the start of the present list belongs to another.
std::int32_t findEdges(Mesh& mesh, const Table<Side>& sides, Table<std::int32_t>& found) {
    WorkCounter done;
    std::int32_t count = 0;
    std::int32_t start = 0;
    for (std::int32_t low = 0; low < mesh.np; ++low) {
        EdgeList& list = mesh.pointEdges[low];
        const std::int32_t end = list.first;
        list.first = count;
        done.step(end - start);
        for (std::int32_t s = start; s < end; ++s) {
            const Side side = sides[s];
            std::int32_t& place = found[side.high];
            if (place < list.first) {
                place = count++;
                mesh.edges[place] = {side.high, side.corner, 0};
            }
            Edge& edge = mesh.edges[place];
            if (++edge.uses == 2) makeMates(mesh, edge.corner, side.corner);
        }
        list.n = count - list.first;
        for (; start < end; ++start) {
            const std::int32_t uses = mesh.edges[found[sides[start].high]].uses;
            mesh.corners[sides[start].corner].edgeuse =
                static_cast<std::uint8_t>(std::min(uses, mostUses));
        }
    }
    return count;
}

/// All tables but that of the owners. False when memory runs out.
bool enterEdges(Mesh& mesh) {
    Table<Side> sides(mesh.nq);
    Table<std::int32_t> found(mesh.np, -1);
    if (!sides || !found || !takeTables(mesh)) return false;
    for (std::int32_t c = 0; c < mesh.nq; ++c) mesh.corners[c].edgeuse = 0;
    sortSides(mesh, sides);
    const auto count = static_cast<std::size_t>(findEdges(mesh, sides, found));
    mesh.edges = static_cast<Edge*>(farrealloc(mesh.edges, count * sizeof(Edge), "edgel2"));
    return count == 0 || mesh.edges != nullptr;
}

} // namespace

bool buildEdges(Mesh& mesh) {
    freeEdges(mesh);
    // The table of owners comes last, when the memory for the sorting is free again.
    if (enterEdges(mesh) && enterOwners(mesh)) {
        mesh.nqEdges = mesh.nq;
        return true;
    }
    freeEdges(mesh);
    return false;
}

void freeEdges(Mesh& mesh) {
    farfree(&mesh.edges);
    farfree(&mesh.pointEdges);
    farfree(&mesh.cornerSameDir);
    farfree(&mesh.cornerFace);
    farfree(&mesh.cornerMate);
    mesh.nqEdges = 0;
}

} // namespace polyfab
