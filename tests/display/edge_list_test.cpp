// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/edge_list.h"

#include "display/options.h"
#include "display/view.h"
#include "tests/display/meshes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace polyfab::test {
namespace {

/// Lower point, higher point -> marks.
using Edges = std::map<std::pair<int, int>, unsigned>;

Edges plainEdges(const Mesh& mesh) {
    Edges edges;
    std::map<std::pair<int, int>, int> sides;
    for (int i = 0; i < mesh.nf; ++i) {
        const Face& face = mesh.faces[i];
        if (face.q == nullptr) continue;
        for (int k = 0; k < face.n; ++k) {
            const int from = indexIn<Point>(mesh.points, face.q[k].p);
            const int to = indexIn<Point>(mesh.points, face.q[(k + 1) % face.n].p);
            const std::pair key(std::min(from, to), std::max(from, to));
            unsigned& marks = edges[key];
            if (face.selected != 0) marks |= edgemark::selected;
            if (face.q[k].edgeuse == 255) marks |= edgemark::bad;
            if (++sides[key] > 1) marks |= edgemark::shared;
            if (isShown(face, true)) marks |= edgemark::inLeft;
            if (isShown(face, false)) marks |= edgemark::inRight;
        }
    }
    return edges;
}

/// What the list says; every edge must be there once.
Edges listed(const DrawnEdges& list) {
    Edges edges;
    std::uint32_t kinds = 0;
    for (std::size_t i = 0; i + 1 < list.first.size(); ++i) {
        for (std::uint32_t k = list.first[i]; k < list.first[i + 1]; ++k) {
            edges[{static_cast<int>(i), static_cast<int>(list.other[k])}] = list.marks[k];
            kinds |= 1U << list.marks[k];
        }
    }
    EXPECT_EQ(list.other.size(), edges.size());
    EXPECT_EQ(list.kinds, kinds);
    return edges;
}

TEST(EdgeListTest, RandomMeshesGiveEachEdgeOnce) {
    std::mt19937 random(23);
    DrawnEdges list; // used again and again: nothing may stay of the mesh before
    for (int round = 0; round < 2000; ++round) {
        OwnMesh mesh;
        fillRandom(mesh, random, 1 + round % 12, round % 30);
        transformPoints(mesh);
        for (int k = 0; k < mesh.nq; ++k) mesh.corners[k].edgeuse = random() % 4 == 0 ? 255 : 2;
        displayOptions.hideFacingAway = round % 2 != 0;
        listEdges(mesh, list);
        ASSERT_EQ(listed(list), plainEdges(mesh)) << round;
    }
    displayOptions = {};
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
    constexpr unsigned marks = edgemark::selected | edgemark::inLeft | edgemark::inRight;
    for (const bool hide : {false, true}) {
        displayOptions.hideFacingAway = hide;
        DrawnEdges list;
        listEdges(mesh, list);
        EXPECT_EQ(listed(list),
                  (Edges{{{2, 3}, marks | edgemark::shared}, {{0, 3}, marks}, {{1, 2}, marks}}));
    }
    displayOptions = {};
}

} // namespace
} // namespace polyfab::test
