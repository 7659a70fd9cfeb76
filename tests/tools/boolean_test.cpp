// SPDX-License-Identifier: GPL-3.0-or-later
// Random pairs of small bodies, most of them in contact by faces, edges, points or whole: what
// their union and their common part enclose adds up, a weld keeps all area, and nothing is left
// open.
#include "tools/boolean/boolean.h"

#include "mesh/faces.h"
#include "tests/support/described_mesh.h"
#include "tests/tools/tool_test.h"

#include <cmath>
#include <map>

namespace polyfab::test {
namespace {

struct Measure {
    double volume = 0, area = 0;
    int open = 0; ///< edges that are not run as often one way as the other
    std::size_t faces = 0;
};

Measure measure() {
    Measure sum;
    std::map<std::pair<int, int>, int> runs;
    for (const Face& face : polyfab::liveFaces(*OB)) {
        ++sum.faces;
        if (face.n < 3) continue;
        const Vec3 from = worldPosition(*face.q->p);
        Vec3 normal;
        for (const auto& [a, b] : sides(face)) {
            normal += cross(worldPosition(*a.p) - from, worldPosition(*b.p) - from);
            const int low = pointOf(*OB, a), high = pointOf(*OB, b);
            low < high ? ++runs[{low, high}] : --runs[{high, low}];
        }
        sum.area += std::sqrt(dot(normal, normal)) / 2;
        sum.volume += dot(from, normal) / 6;
    }
    for (const auto& [edge, balance] : runs) sum.open += balance != 0;
    return sum;
}

class BooleanTest : public ToolTest {
  protected:
    void addTurnedCube(const Vec3& at, const Vec3& size) {
        const int first = OB->np;
        addCube();
        for (int i = first; i < OB->np; ++i) {
            const Vec3 corner = worldPosition(OB->points[i]);
            moveTo(OB->points[i], at
                                      + Vec3{corner.x > 0 ? size.x : 0, corner.y > 0 ? size.y : 0,
                                             corner.z > 0 ? size.z : 0});
        }
    }

    Vec3 randomPlace() {
        return {double(random.below(5)), double(random.below(5)), double(random.below(5))};
    }

    void addTetrahedron() {
        Vec3 corner[4];
        double turns = 0;
        while (turns == 0) {
            for (Vec3& at : corner) at = randomPlace();
            turns = dot(corner[1] - corner[0], cross(corner[2] - corner[0], corner[3] - corner[0]));
        }
        if (turns < 0) std::swap(corner[0], corner[1]);
        const int p = OB->np;
        for (const Vec3& at : corner) OB->addPoint(at.x, at.y, at.z, false);
        for (const Numbers& face : {Numbers{p, p + 2, p + 1},
                                    {p, p + 1, p + 3},
                                    {p + 1, p + 2, p + 3},
                                    {p, p + 3, p + 2}}) {
            addFace(face);
        }
    }

    /// The second body of every tenth pair is a copy of the first.
    double addBody() {
        const double before = measure().volume;
        if (random.below(2) == 0) {
            addTetrahedron();
        } else {
            addTurnedCube(randomPlace(),
                          {1.0 + random.below(3), 1.0 + random.below(3), 1.0 + random.below(3)});
        }
        return measure().volume - before;
    }

    Measure weld(const char* keep) {
        shown.dialogAnswers = {{keep}};
        OB->curface = 0;
        weldIntersecting(*OB);
        EXPECT_EQ(check(*OB), nullptr);
        return measure();
    }
};

TEST_F(BooleanTest, VolumesOfRandomPairsAddUp) {
    for (unsigned pair = 0; pair < 500; ++pair) {
        SCOPED_TRACE(pair);
        const auto build = [&] {
            random = RandomMesh(pair);
            emptyMesh();
            const double first = addBody();
            if (pair % 10 == 0) random = RandomMesh(pair);
            return std::pair(first, addBody());
        };
        const auto [first, second] = build();
        const double area = measure().area;
        const Measure all = weld("a");
        EXPECT_NEAR(all.area, area, 1e-9);
        EXPECT_EQ(all.open, 0);
        const Measure again = weld("a");
        EXPECT_EQ(again.faces, all.faces);
        build();
        const Measure both = weld("u");
        build();
        const Measure common = weld("i");
        build();
        const Measure rest = weld("d");
        EXPECT_EQ(both.open + common.open + rest.open, 0);
        EXPECT_NEAR(both.volume + common.volume, first + second, 1e-9);
        EXPECT_NEAR(rest.volume + common.volume, first, 1e-9);
        EXPECT_TRUE(shown.log.empty() || shown.log.back().find("enclose") == std::string::npos);
        ASSERT_FALSE(HasFailure());
    }
}

/// Rounding puts the faces in contact a hair beside each other: pieces thinner than that vanish.
TEST_F(BooleanTest, TurnedBodiesOfAnySizeStayClosed) {
    constexpr double sizes[] = {1, 1e299, 1e-299, 1e-320};
    for (unsigned pair = 0; pair < 400; ++pair) {
        SCOPED_TRACE(pair);
        random = RandomMesh(pair);
        emptyMesh();
        addBody();
        addBody();
        for (int i = 0; i < OB->np; ++i) {
            const auto [x, y, z] = worldPosition(OB->points[i]);
            moveTo(OB->points[i], Vec3{.6 * x - .8 * y, .8 * x + .6 * y, z} * sizes[pair % 4]);
        }
        EXPECT_EQ(weld(pair % 3 == 0 ? "u" : pair % 3 == 1 ? "i" : "d").open, 0);
    }
}

/// A row of quads in the plane z = 0 whose texture follows x and y, the last of them not selected.
/// A wall stands across it, and a needle comes through from below.
void addPiercedRow() {
    addGrid(3, 1);
    for (int c = 0; c < OB->nq; ++c) {
        const Point& p = *OB->corners[c].p;
        OB->corners[c].t = OB->texcoords + OB->findOrAddTexCoord(p.x, p.y);
    }
    OB->faces[2].selected = 0;
    addFaceAt({{0.5, 0.25, -1}, {2.5, 0.25, -1}, {2.5, 0.25, 1}, {0.5, 0.25, 1}});
    addFaceAt({{0.25, 0.5, -1}, {0.5, 0.75, -1}, {0.375, 0.625, 0}});
}

TEST_F(BooleanTest, NeighboursGetTheNewCornersAndTextureFollows) {
    addPiercedRow();
    OB->points[0].z = -0.0; // is at no other place than 0
    weld("a");
    const Face& neighbour = OB->faces[2];
    EXPECT_EQ(neighbour.n, 5);
    EXPECT_FALSE(neighbour.selected);
    int touched = 0;
    for (const Face& face : polyfab::liveFaces(*OB)) {
        for (const FaceCorner& corner : corners(face)) {
            touched += corner.p->x == 0.375 && corner.p->y == 0.625;
            if (corner.t == nullptr) continue;
            EXPECT_DOUBLE_EQ(corner.t->u, corner.p->x);
            EXPECT_DOUBLE_EQ(corner.t->v, corner.p->y);
        }
    }
    EXPECT_GE(touched, 3); // the needle's tip is a corner of what it touches
    EXPECT_EQ(shown.log.back(), "note|3 faces cut, 3 new points, 0 faces removed");
}

TEST_F(BooleanTest, EscapeAndRefusalsChangeNothing) {
    constexpr struct {
        const char* keep;
        int escapeAfter;
        int current;
    } cases[] = {{"a", 0, 0}, {"u", 1, 0}, {"x", -1, 0}, {"d", -1, 2}};
    for (const auto& [keep, escapeAfter, current] : cases) {
        SCOPED_TRACE(keep);
        emptyMesh();
        addPiercedRow();
        const auto before = describe();
        OB->changed = 0;
        OB->curface = current;
        shown.escapeAfter = escapeAfter;
        shown.dialogAnswers = {{keep}};
        weldIntersecting(*OB);
        shown.escapeAfter = -1;
        EXPECT_EQ(describe(), before);
        EXPECT_FALSE(OB->changed);
        EXPECT_EQ(shown.log.back() == "note|stopped: nothing has changed", escapeAfter >= 0);
    }
}

TEST_F(BooleanTest, EscapeAtAnyTimeChangesNothing) {
    int looks = 0;
    for (bool stopped = true; stopped; ++looks) {
        emptyMesh();
        addGrid(16, 16);
        addGrid(16, 16);
        for (int i = 0; i < OB->np / 2; ++i) OB->points[i].z = i % 2 - 0.5;
        const auto before = describe();
        shown.escapeAfter = looks;
        weld("u");
        stopped = shown.log.back() == "note|stopped: nothing has changed";
        EXPECT_EQ(describe() == before, stopped);
    }
    shown.escapeAfter = -1;
    EXPECT_GT(looks, 4);
}

TEST_F(BooleanTest, SpikesDoNotSpoilAReentrantFace) {
    constexpr int xs[] = {0, 2, 2, 1, 1, 0}, ys[] = {0, 0, 1, 1, 2, 2};
    for (int i = 0; i < 12; ++i) OB->addPoint(xs[i % 6], ys[i % 6], i / 6, false);
    OB->addPoint(1.5, 1, 0, false);
    addFace({4, 3, 2, 12, 2, 1, 0, 5});
    addFace({6, 7, 8, 9, 10, 11});
    for (int i = 0; i < 6; ++i) addFace({i, (i + 1) % 6, 6 + (i + 1) % 6, 6 + i});
    for (const char* const keep : {"u", "i"}) {
        EXPECT_NEAR(weld(keep).volume, 3, 1e-9);
        EXPECT_EQ(measure().open, 0);
    }
}

TEST_F(BooleanTest, HollowsBelongToTheBodyAroundThem) {
    const auto build = [this] {
        emptyMesh();
        addTurnedCube({0, 0, 0}, {6, 6, 6});
        addTurnedCube({1, 1, 1}, {4, 4, 4});
        for (int f = 6; f < 12; ++f) std::reverse(OB->faces[f].q, OB->faces[f].q + 4);
        addTurnedCube({3, 3, 3}, {9, 9, 9}); // reaches into the hollow
    };
    constexpr struct {
        const char* keep;
        double volume;
    } cases[] = {{"u", 216 - 64 + 729 - 27 + 8}, {"i", 27 - 8}, {"d", 216 - 64 - 27 + 8}};
    for (const auto& [keep, volume] : cases) {
        build();
        const Measure found = weld(keep);
        EXPECT_NEAR(found.volume, volume, 1e-9) << keep;
        EXPECT_EQ(found.open, 0);
    }
}

TEST_F(BooleanTest, InsideOutIsAHollowOnlyWhereAllOfItIsInside) {
    constexpr struct {
        double at, size; ///< of the first
        const char* keep;
        double volume;
    } cases[] = {{1, 2, "u", 15}, {1, 2, "i", 1},  {1, 2, "d", 7}, {2, 2, "i", 0}, {0, 4, "u", 56},
                 {0, 4, "i", 56}, {0, 4, "d", 56}, {0, 2, "u", 8}, {0, 2, "i", 8}, {0, 2, "d", 0}};
    for (const auto& [at, size, keep, volume] : cases) {
        for (int octant = 0; octant < 8; ++octant) {
            SCOPED_TRACE(keep + std::to_string(octant));
            emptyMesh();
            addTurnedCube({0, 0, 0}, {size, size, size});
            addTurnedCube({octant & 1 ? -at : at, octant & 2 ? -at : at, octant & 4 ? -at : at},
                          {2, 2, 2});
            for (int f = 6; f < 12; ++f) std::reverse(OB->faces[f].q, OB->faces[f].q + 4);
            EXPECT_NEAR(weld(keep).volume, volume, 1e-9);
            EXPECT_EQ(measure().open, 0);
            const bool told = shown.log.back().ends_with(", 6 faces turned");
            EXPECT_TRUE(volume != 15 || told) << shown.log.back();
        }
    }
}

TEST_F(BooleanTest, RandomTrianglesKeepTheirAreaAndNothingBreaks) {
    for (unsigned seed = 0; seed < 400; ++seed) {
        SCOPED_TRACE(seed);
        random = RandomMesh(seed);
        // The area of a face that is not flat is up to how it is cut.
        const bool triangles = seed % 2 == 0;
        random.fill(1 + random.below(20), 1 + random.below(25), triangles ? 3 : 6);
        const double area = measure().area;
        const double left = weld(triangles ? "a" : seed % 4 == 1 ? "u" : "d").area;
        if (triangles) {
            EXPECT_NEAR(left, area, 1e-9);
        }
    }
}

} // namespace
} // namespace polyfab::test
