// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/edge_list.h"

#include "tests/display/meshes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace polyfab::test {
namespace {

/// Lower point, higher point -> whether a selected face uses the edge.
using Edges = std::map<std::pair<int, int>, bool>;

Edges plainEdges(const Mesh& mesh) {
    Edges edges;
    for (int i = 0; i < mesh.nf; ++i) {
        const Face& face = mesh.faces[i];
        if (face.q == nullptr) continue;
        for (int k = 0; k < face.n; ++k) {
            const Point* const p = face.q[k].p;
            const Point* const q = face.q[(k + 1) % face.n].p;
            if (p == nullptr || q == nullptr) continue;
            const int from = indexIn<Point>(mesh.points, p);
            const int to = indexIn<Point>(mesh.points, q);
            edges[{std::min(from, to), std::max(from, to)}] |= face.selected != 0;
        }
    }
    return edges;
}

/// What the list says; every edge must be there once.
Edges listed(const DrawnEdges& list) {
    Edges edges;
    std::uint32_t selected = 0;
    for (std::size_t i = 0; i + 1 < list.first.size(); ++i) {
        for (std::uint32_t k = list.first[i]; k < list.first[i + 1]; ++k) {
            const bool bit = (list.other[k] & DrawnEdges::selectedBit) != 0;
            const int higher = static_cast<int>(list.other[k] & ~DrawnEdges::selectedBit);
            edges[{static_cast<int>(i), higher}] = bit;
            selected += bit;
        }
    }
    EXPECT_EQ(list.other.size(), edges.size());
    EXPECT_EQ(list.selected, selected);
    return edges;
}

TEST(EdgeListTest, RandomMeshesGiveEachEdgeOnce) {
    std::mt19937 random(23);
    DrawnEdges list; // used again and again: nothing may stay of the mesh before
    for (int round = 0; round < 2000; ++round) {
        OwnMesh mesh;
        fillRandom(mesh, random, 1 + round % 12, round % 30);
        listEdges(mesh, list);
        ASSERT_EQ(listed(list), plainEdges(mesh)) << round;
    }
}

TEST(EdgeListTest, UnsoundFacesLoseOnlyWhatCannotBeDrawn) {
    OwnMesh mesh;
    addPoints(mesh, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}});
    for (int i = 0; i < 6; ++i) addFace(mesh, {0, 1, 2, 3});
    Point elsewhere{};
    mesh.faces[0].n = 0;
    mesh.faces[5].q[1].p = nullptr;    // leaves 2-3 and 3-0
    mesh.faces[1].q[0].p = &elsewhere; // leaves 1-2 and 2-3
    mesh.faces[2].n = -4;
    mesh.faces[3].n = 32000; // beyond the corners in use
    mesh.faces[4].q = mesh.corners + mesh.nq;
    DrawnEdges list;
    listEdges(mesh, list);
    EXPECT_EQ(listed(list), (Edges{{{2, 3}, true}, {{0, 3}, true}, {{1, 2}, true}}));
}

} // namespace
} // namespace polyfab::test
