// SPDX-License-Identifier: GPL-3.0-or-later
// Thickness against a plain statement of its rules on random meshes, and by hand where the result
// can be told.
#include "mesh/faces.h"
#include "mesh/stale.h"
#include "tools/thicken.h"

#include "geometry/vec3.h"
#include "mesh/garbage.h"
#include "tests/tools/tool_test.h"

#include <cmath>
#include <map>
#include <sstream>
#include <utility>

namespace polyfab::test {
namespace {

struct Asked {
    double thickness, step;
    int passes;
    bool keepsSign;
    Choice border;
};

struct PlainMesh {
    std::vector<Vec3> points = allPositions();
    std::vector<PlainFace> faces = plainFaces(*OB);
    int parts = OB->nprt;

    template <typename Use>
    void eachSelectedCorner(Use use) const {
        for (const PlainFace& face : faces) {
            const std::size_t n = face.corners.size();
            for (std::size_t k = 0; face.selected && k < n; ++k) {
                use(face.corners[(k + n - 1) % n].p, face.corners[k].p,
                    face.corners[(k + 1) % n].p);
            }
        }
    }

    void round(const Asked& asked) {
        std::map<int, int> count;
        std::map<int, Vec3> normals;
        const auto at = [&](int p) -> Vec3& { return points[static_cast<std::size_t>(p)]; };
        eachSelectedCorner([&](int prev, int point, int next) {
            const Vec3 normal = unitCross(at(next) - at(point), at(prev) - at(point));
            if (!isZero(normal)) ++count[point];
            normals[point] += normal;
        });
        for (int pass = 0; pass < asked.passes; ++pass) {
            std::map<int, Vec3> fresh;
            eachSelectedCorner([&](int b, int c, int) {
                fresh[b] += normals[c];
                fresh[c] += normals[b];
            });
            for (auto& [p, normal] : fresh) normal = unit(normal);
            normals = fresh;
        }
        for (const auto& [p, normal] : normals) {
            const Vec3 by = unit(normal) * asked.step;
            const double x = at(p).x;
            const bool crosses = by.x * x < 0 && x * x < by.x * by.x;
            if (count[p] > 0 && !isZero(normal) && !(asked.keepsSign && crosses)) at(p) += by;
        }
    }

    void buildWalls(const std::vector<Vec3>& originals, const std::vector<int>& marks) {
        const auto n = static_cast<int>(points.size());
        points.insert(points.end(), originals.begin(), originals.end());
        std::vector<PlainFace> walls;
        for (PlainFace& face : faces) {
            for (std::size_t k = 0; k < face.corners.size(); ++k) {
                PlainCorner& c = face.corners[k];
                const PlainCorner& d = face.corners[(k + 1) % face.corners.size()];
                const auto mark = [&](int p) { return marks[static_cast<std::size_t>(p)]; };
                if (!face.selected) {
                    c.p += n;
                } else if (mark(c.p) == 3 && mark(d.p) == 3) {
                    PlainFace& wall = walls.emplace_back(face);
                    wall.prt = parts;
                    wall.corners = {d, c, {c.p + n, c.t, c.d}, {d.p + n, d.t, d.d}};
                }
            }
        }
        ++parts;
        faces.insert(faces.end(), walls.begin(), walls.end());
        std::map<std::pair<int, int>, int> uses;
        const auto side = [](const PlainFace& face, std::size_t k) {
            const auto next = (k + 1) % face.corners.size();
            return std::pair(std::minmax(face.corners[k].p, face.corners[next].p));
        };
        for (const PlainFace& face : faces) {
            for (std::size_t k = 0; k < face.corners.size(); ++k) ++uses[side(face, k)];
        }
        std::size_t index = faces.size() - walls.size();
        std::erase_if(walls, [&](const PlainFace&) {
            const PlainFace& wall = faces[index++];
            for (std::size_t k = 0; k < 4; ++k) {
                if (uses[side(wall, k)] == 4) return true;
            }
            return false;
        });
        std::erase_if(faces, [&](const PlainFace& face) { return face.prt == parts - 1; });
        faces.insert(faces.end(), walls.begin(), walls.end());
    }

    void thicken(const Asked& asked) {
        std::vector<int> marks(points.size());
        for (const PlainFace& face : faces) {
            for (const PlainCorner& c : face.corners) {
                marks[static_cast<std::size_t>(c.p)] |= face.selected ? 1 : 2;
            }
        }
        const std::vector<Vec3> originals = points;
        if (asked.step > 0) {
            for (double done = 0; done < asked.thickness; done += asked.step) round(asked);
        }
        for (std::size_t i = 0; i < points.size() && asked.border == Choice::no; ++i) {
            if (marks[i] == 3) points[i] = originals[i];
        }
        if (asked.border == Choice::cancel) buildWalls(originals, marks);
    }
};

class Thicken : public ToolTest {
  protected:
    /// Runs the tool with these answers, as they are typed.
    void run(const std::string& thickness, const std::string& step, const std::string& passes,
             bool keepsSign, Choice border) {
        shown.log.clear();
        shown.dialogAnswers = {{thickness}, {step}, {passes}};
        shown.choices = {keepsSign ? Choice::yes : Choice::no, border};
        stale = {false, false, false};
        thicken(*OB);
        ASSERT_TRUE(shown.dialogAnswers.empty() && shown.choices.empty());
        ASSERT_EQ(check(*OB), nullptr);
    }

    void run(const Asked& asked) {
        run(std::to_string(asked.thickness), std::to_string(asked.step),
            std::to_string(asked.passes), asked.keepsSign, asked.border);
    }
};

TEST_F(Thicken, RandomMeshesBecomeThoseOfThePlainRules) {
    int walls = 0, dropped = 0;
    for (int round = 0; round < 3000; ++round) {
        fillWithParts(12, 14, 4);
        ASSERT_TRUE(collectGarbage(*OB));
        constexpr Choice borders[] = {Choice::yes, Choice::no, Choice::cancel};
        const Asked asked{0.5 * random.below(6), 0.25 * random.below(7) - 0.25, random.below(4),
                          random.below(2) != 0, borders[random.below(3)]};
        PlainMesh plain;
        const auto before = plain.faces.size();
        plain.thicken(asked);
        run(asked);
        ASSERT_EQ(describe(), describe(plain.faces, plain.points)) << round;
        ASSERT_EQ(OB->nprt, plain.parts);
        ASSERT_TRUE(OB->changed && stale.points && stale.edges);
        walls += plain.faces.size() > before;
        dropped += plain.faces.size() == before && asked.border == Choice::cancel;
    }
    EXPECT_GT(walls, 100);
    EXPECT_GT(dropped, 100);
}

TEST_F(Thicken, WallsGrowTheArraysAndLackAPartOnlyWhenThereIsNoRoom) {
    addGrid(102, 102);
    for (int f = 0; f < OB->nf; ++f) OB->faces[f].selected = f % 102 % 3 == 1 && f / 102 % 3 == 1;
    while (OB->nprt < maxIndexed) OB->addPart();
    run({1, 1, 0, false, Choice::cancel});
    EXPECT_EQ(OB->np, 103 * 103 + 34 * 34 * 4);
    EXPECT_EQ(OB->nf, 102 * 102 + 34 * 34 * 4);
    EXPECT_EQ(OB->nprt, maxIndexed);
    for (int f = 0; f < OB->nf; ++f) EXPECT_EQ(OB->faces[f].prt, 0);
}

TEST_F(Thicken, AbsurdAnswersMoveNothing) {
    // What is refused first.
    std::istringstream cases("inf .005 1  1e400 1e-300 1  1e300 .005 1  1 inf 1  1 5e-324 1 "
                             "inf inf 1  1 1 inf  1 1 2147483648 "
                             "nan 1 1e400  -1 1 1e400  1e400 nan 1  1e400 0 1e400 "
                             "1e400 -1 nan  -inf -inf -inf");
    std::string thickness, step, passes;
    for (int row = 0; cases >> thickness >> step >> passes; ++row) {
        SCOPED_TRACE(thickness + ' ' + step + ' ' + passes);
        const bool refused = row < 8;
        emptyMesh();
        addGrid(3, 3);
        for (int f = 0; f < OB->nf; ++f) OB->faces[f].selected = f == 4;
        run(thickness, step, passes, false, Choice::cancel);
        EXPECT_EQ(shown.log[shown.log.size() - 2] == "message!||I can't count that far", refused);
        EXPECT_EQ(OB->nf, refused ? 9 : 13); // what moves nothing still builds flat walls
        for (int i = 0; i < OB->np; ++i) EXPECT_EQ(OB->points[i].z, 0);
    }
    for (const char* none : {"nan", "-5", "-1e300", "0.9"}) { // no passes at all
        emptyMesh();
        addCube();
        run("1", "1", none, false, Choice::yes);
        EXPECT_NEAR(OB->points[7].x, 1 + std::sqrt(1 / 3.0), 1e-14) << none;
    }
}

TEST_F(Thicken, PositionsThatAreNoNumbersAreNotSpread) {
    for (const double odd : {infinity, -infinity, nan, 1e308}) {
        emptyMesh();
        addGrid(3, 3);
        OB->points[0].x = OB->points[5].y = odd;
        run("1", ".5", "3", true, Choice::yes);
        for (int i = 6; i < 16; ++i) EXPECT_TRUE(std::isfinite(OB->points[i].x)) << i;
    }
}

} // namespace
} // namespace polyfab::test
