// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/edges.h"

#include "mesh/check.h"
#include "mesh/garbage.h"
#include "tests/mesh/random_mesh.h"

#include <algorithm>
#include <chrono>
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
            const Face& face = OB->faces[i];
            for (int k = 0; face.q != nullptr && k < face.n; ++k) {
                const int c = indexIn(OB->corners, face.q) + k;
                const std::pair<int, int> edge =
                    std::minmax({indexIn(OB->points, face.q[k].p),
                                 indexIn(OB->points, face.q[(k + 1) % face.n].p)});
                corner(c).face = i;
                corner(c).place = k;
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

TEST_F(Edges, TablesAreThoseOfTheOneByOneRule) {
    for (int round = 0; round < 5000; ++round) {
        freeEdges(*OB);
        random.fill(1 + random.below(12), 1 + random.below(12), 7);
        ASSERT_TRUE(buildEdges(*OB));
        PlainTables plain;
        ASSERT_EQ(OB->nqEdges, OB->nq);
        for (int c = 0; c < OB->nq; ++c) {
            const CornerFace& owner = OB->cornerFace[c];
            const PlainTables::Corner corner{OB->cornerMate[c], OB->cornerSameDir[c],
                                             OB->corners[c].edgeuse, static_cast<int>(owner.face),
                                             owner.place};
            ASSERT_EQ(corner, plain.corner(c)) << round;
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
    for (int i = 1; i <= faces; ++i) test::addFace({0, i, i + 1});
    const int before = storeBlocks();
    ASSERT_TRUE(buildEdges(*OB));
    EXPECT_EQ(OB->pointEdges[0].n, faces + 1);
    // All faces get the edge from 0 to 1 as their first.
    for (int i = 0; i < faces; ++i) OB->faces[i].q[1].p = OB->points + 1;
    ASSERT_TRUE(buildEdges(*OB));
    EXPECT_EQ(OB->edges[0].uses, faces);
    EXPECT_EQ(OB->corners[300].edgeuse, 254);
    freeEdges(*OB);
    EXPECT_EQ(storeBlocks(), before);
}

std::vector<int> uses() {
    std::vector<int> result;
    for (int c = 0; c < OB->nq; ++c) result.push_back(OB->corners[c].edgeuse);
    return result;
}

TEST_F(Edges, AReversedFaceOfACubeIsMarkedAllAround) {
    test::addCube();
    checkEdges(*OB, false, false, false);
    EXPECT_EQ(uses(), std::vector<int>(24, 2));
    EXPECT_EQ(OB->cornerMate, nullptr);
    reverseFace(OB->faces[4]);
    checkEdges(*OB, false, true, true);
    EXPECT_NE(OB->cornerMate, nullptr);
    const std::vector<int> marks = uses();
    EXPECT_EQ(std::count(marks.begin(), marks.end(), 255), 8);
    EXPECT_EQ(std::count(marks.begin() + 16, marks.begin() + 20, 255), 4);
}

/// Orients `faces`, those of OB, in sweeps over them, in which each hands its sense on to its
/// neighbours; the message about it.
template <typename Faces>
std::string plainOrient(Faces& faces) {
    PlainTables tables;
    enum State { unknown, reached, done };
    std::vector<State> states(static_cast<std::size_t>(OB->nf), unknown);
    std::vector<bool> turned(states.size());
    const auto current = static_cast<std::size_t>(OB->curface);
    states[current] = reached;
    turned[current] = screenArea(OB->faces[OB->curface]) > 0;
    int sweeps = 0, count = 1;
    for (int before = 0; before != count; ++sweeps) {
        before = count;
        for (std::size_t i = 0; i < states.size(); ++i) {
            if (states[i] != reached) continue;
            states[i] = done;
            for (const PlainTables::Corner& corner : tables.corners) {
                if (corner.face != static_cast<int>(i) || corner.uses != 2) continue;
                const auto other = static_cast<std::size_t>(tables.corner(corner.mate).face);
                if (states[other] != unknown) continue;
                states[other] = reached;
                turned[other] = turned[i] != (corner.sameDir == 1);
                ++count;
            }
        }
    }
    for (std::size_t i = 0; i < turned.size(); ++i) {
        auto& corners = std::get<2>(faces[i]);
        if (turned[i]) std::reverse(corners.begin(), corners.end());
    }
    const auto reversed = std::count(turned.begin(), turned.end(), true);
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
        auto expected = test::describe();
        const std::string message = plainOrient(expected);
        checkEdges(*OB, true, false, false);
        ASSERT_EQ(shown.log.back(), message) << round;
        ASSERT_EQ(test::describe(), expected) << round;
        ASSERT_EQ(check(*OB), nullptr);
    }
}

TEST_F(Edges, TheCurrentFaceEndsAnticlockwiseAsSeen) {
    test::addCube();
    for (Point* p = OB->points; p != OB->points + 8; ++p) p->sx = p->x, p->sy = -p->y;
    EXPECT_EQ(screenArea(OB->faces[0]), 4);
    reverseFace(OB->faces[3]);
    const struct {
        int current;
        const char* text;
    } rows[] = {{1, "1 reversed"}, {1, "0 reversed"}, {0, "6 reversed"}, {0, "0 reversed"}};
    for (const auto& row : rows) {
        OB->curface = row.current;
        OB->changed = 0;
        checkEdges(*OB, true, false, false);
        EXPECT_NE(shown.log.back().find(row.text), std::string::npos) << shown.log.back();
        EXPECT_EQ(OB->changed, row.text[0] != '0');
        EXPECT_EQ(uses(), std::vector<int>(24, 2));
        EXPECT_EQ(screenArea(OB->faces[row.current]), -4);
    }
    EXPECT_EQ(OB->cornerMate, nullptr);
}

TEST_F(Edges, WithoutALiveCurrentFaceOrWithAFaultNothingHappens) {
    test::addCube();
    OB->faces[2].q = nullptr;
    for (const int current : {-1, 2, 6}) {
        OB->curface = current;
        checkEdges(*OB, true, false, false);
        EXPECT_EQ(OB->nf, 6);
        EXPECT_TRUE(shown.log.empty());
    }
    OB->faces[1].q[0].p = nullptr;
    checkEdges(*OB, false, false, true);
    EXPECT_EQ(OB->cornerMate, nullptr);
    EXPECT_EQ(shown.log.back(), "message!|fault in mesh|V->p==0");
}

TEST_F(Edges, AStripNumberedBackwardsTakesNoSweepPerFace) {
    constexpr int faces = 200'000;
    for (int i = 0; i < faces + 2; ++i) OB->addPoint(i / 2, i % 2, 0, false);
    for (int i = 0; i < faces; ++i) test::addFace({i, i + 1, i + 2}); // every second one disagrees
    OB->curface = faces - 1;
    const auto start = std::chrono::steady_clock::now();
    checkEdges(*OB, true, false, false);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    EXPECT_EQ(shown.log.back(),
              "message|checkedges|200000 iterations, 100000 reversed faces found, "
              "200000 faces checked");
}

} // namespace
} // namespace polyfab
