// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/edges.h"

#include "mesh/check.h"
#include "mesh/face_area.h"
#include "mesh/garbage.h"
#include "tests/support/mesh_fixture.h"

#include <algorithm>
#include <map>

namespace polyfab {
namespace {

class Edges : public test::MeshTest {
  protected:
    ~Edges() override { freeEdges(*OB); }

    test::RandomMesh random{517};
};

/// The tables as the rule builds them, face by face and corner by corner.
struct PlainTables {
    struct Corner {
        int mate = -1, sameDir = 255, uses = 0, face = -1, place = 0;
        bool operator==(const Corner&) const = default;
    };
    std::vector<Corner> corners{static_cast<std::size_t>(OB->nq)};
    /// Of each point: the other point, the first corner and the uses of each edge.
    std::vector<std::vector<std::array<int, 3>>> lists{static_cast<std::size_t>(OB->np)};

    Corner& corner(int c) { return corners[static_cast<std::size_t>(c)]; }

    PlainTables() {
        std::map<std::pair<int, int>, std::vector<int>> edges;
        std::vector<std::pair<int, int>> found;
        for (int i = 0; i < OB->nf; ++i) {
            const std::vector<int> points = test::pointsOf(i);
            for (std::size_t k = 0; k < points.size(); ++k) {
                const int c = indexIn(OB->corners, OB->faces[i].q) + static_cast<int>(k);
                const std::pair edge = std::minmax({points[k], points[(k + 1) % points.size()]});
                corner(c).face = i;
                corner(c).place = static_cast<int>(k);
                edges[edge].push_back(c);
                if (edges[edge].size() == 1) found.push_back(edge);
            }
        }
        for (const auto& edge : found) {
            const std::vector<int>& on = edges[edge];
            const int uses = static_cast<int>(on.size());
            lists[static_cast<std::size_t>(edge.first)].push_back({edge.second, on[0], uses});
            for (const int c : on) corner(c).uses = uses;
            if (uses < 2) continue;
            corner(on[0]).mate = on[1];
            corner(on[1]).mate = on[0];
            corner(on[0]).sameDir = corner(on[1]).sameDir =
                OB->corners[on[0]].p == OB->corners[on[1]].p;
        }
    }
};

TEST_F(Edges, TablesAndMarksAreThoseOfTheOneByOneRule) {
    for (int round = 0; round < 4000; ++round) {
        const bool mark = round % 2 != 0;
        freeEdges(*OB);
        random.fill(1 + random.below(12), 1 + random.below(12), 7);
        static_cast<void>(mark ? checkEdges(*OB, false, true, true) : buildEdges(*OB));
        PlainTables plain;
        ASSERT_EQ(OB->nqEdges, OB->nq);
        for (int c = 0; c < OB->nq; ++c) {
            PlainTables::Corner& expected = plain.corner(c);
            if (mark && expected.uses == 2 && expected.sameDir == 1) expected.uses = 255;
            const CornerFace& owner = OB->cornerFace[c];
            const PlainTables::Corner corner{OB->cornerMate[c], OB->cornerSameDir[c],
                                             OB->corners[c].edgeuse, static_cast<int>(owner.face),
                                             owner.place};
            ASSERT_EQ(corner, expected) << round;
        }
        for (int p = 0; p < OB->np; ++p) {
            std::vector<std::array<int, 3>> list;
            for (int e = 0; e < OB->pointEdges[p].n; ++e) {
                const Edge& edge = OB->edges[OB->pointEdges[p].first + e];
                list.push_back({edge.high, edge.corner, edge.uses});
            }
            ASSERT_EQ(list, plain.lists[static_cast<std::size_t>(p)]) << round;
        }
    }
}

TEST_F(Edges, CountsOfHugeFansDoNotWrap) {
    constexpr int faces = 100'000;
    for (int i = 0; i < faces + 2; ++i) OB->addPoint(i, 0, 0, false);
    for (int i = 1; i <= faces; ++i) test::addFace({0, 1, i + 1});
    ASSERT_TRUE(buildEdges(*OB));
    EXPECT_EQ(OB->edges[0].uses, faces);
    EXPECT_EQ(OB->corners[300].edgeuse, 254);
}

/// Orients `faces`, those of OB, in sweeps over them, in which each hands its sense on to its
/// neighbours; the message about it.
template <typename Faces>
std::string plainOrient(Faces& faces) {
    PlainTables tables;
    std::vector<int> turned(faces.size(), -1); // not reached
    std::vector<bool> done(faces.size());
    turned[static_cast<std::size_t>(OB->curface)] = screenArea(OB->faces[OB->curface]) > 0;
    int sweeps = 0, count = 1;
    for (int before = 0; before != count; ++sweeps) {
        before = count;
        for (std::size_t i = 0; i < faces.size(); ++i) {
            if (turned[i] < 0 || done[i]) continue;
            done[i] = true;
            for (const PlainTables::Corner& corner : tables.corners) {
                if (corner.face != static_cast<int>(i) || corner.uses != 2) continue;
                int& other = turned[static_cast<std::size_t>(tables.corner(corner.mate).face)];
                if (other >= 0) continue;
                other = turned[i] != (corner.sameDir == 1);
                ++count;
            }
        }
    }
    for (std::size_t i = 0; i < faces.size(); ++i) {
        auto& corners = faces[i].corners;
        if (turned[i] == 1) std::reverse(corners.begin(), corners.end());
    }
    const auto reversed = std::count(turned.begin(), turned.end(), 1);
    return "message|checkedges|" + std::to_string(sweeps) + " iterations, "
           + std::to_string(reversed) + " reversed faces found, " + std::to_string(count)
           + " faces checked";
}

TEST_F(Edges, OrientationIsThatOfTheSweeps) {
    for (int round = 0; round < 3000; ++round) {
        // On so few points all faces hang together, one-sided rings among them.
        random.fill(5 + random.below(15), 3 + random.below(20), 5);
        collectGarbage(*OB);
        if (OB->nf == 0) continue;
        OB->curface = random.below(OB->nf);
        OB->changed = 0;
        auto expected = test::describe();
        const std::string message = plainOrient(expected);
        checkEdges(*OB, true, false, true);
        ASSERT_EQ(shown.log.back(), message) << round;
        ASSERT_EQ(test::describe(), expected) << round;
        ASSERT_EQ(OB->changed, message.find(", 0 reversed") == message.npos);
        ASSERT_EQ(OB->cornerMate, nullptr);
    }
}

TEST_F(Edges, NeedALiveCurrentFaceToOrientByAndASoundMesh) {
    test::addCube();
    for (Point* p = OB->points; p != OB->points + 8; ++p) p->sx = p->x, p->sy = -p->y;
    EXPECT_EQ(screenArea(OB->faces[0]), 4);
    checkEdges(*OB, true, false, false); // without a current face
    OB->faces[2].q = nullptr;
    OB->curface = 2;
    checkEdges(*OB, true, false, false);
    EXPECT_TRUE(shown.log.empty());
    OB->faces[1].q[0].p = nullptr;
    checkEdges(*OB, false, false, true);
    EXPECT_EQ(OB->cornerMate, nullptr);
    EXPECT_EQ(shown.log.back(), "message!|fault in mesh|V->p==0");
    EXPECT_EQ(OB->nf, 6);
}

TEST_F(Edges, AStripNumberedBackwardsIsTurnedFaceByFace) {
    constexpr int faces = 200'000;
    for (int i = 0; i < faces + 2; ++i) OB->addPoint(i / 2, i % 2, 0, false);
    for (int i = 0; i < faces; ++i) test::addFace({i, i + 1, i + 2}); // every second one disagrees
    OB->curface = faces - 1;
    checkEdges(*OB, true, false, false);
    EXPECT_TRUE(shown.log.back().starts_with("message|checkedges|200000 iterations, 100000 rev"));
}

} // namespace
} // namespace polyfab
