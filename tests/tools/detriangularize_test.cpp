// SPDX-License-Identifier: GPL-3.0-or-later
// Joining of triangles, both ways against plain statements of their rules on random flat patches.
#include "mesh/stale.h"
#include "tools/detriangularize.h"

#include "geometry/vec3.h"
#include "mesh/face_angle.h"
#include "mesh/faces.h"
#include "mesh/garbage.h"
#include "tests/tools/tool_test.h"

#include <cmath>

namespace polyfab::test {
namespace {

using Slots = std::vector<PlainFace>;

bool isTriangle(const PlainFace& face) {
    return face.live && face.selected && face.corners.size() == 3;
}

const PlainCorner& at(const PlainFace& triangle, int k) {
    return triangle.corners[static_cast<std::size_t>(k % 3)];
}

double angleOf(const PlainFace& a, const PlainFace& b) {
    const auto normal = [](const PlainFace& triangle) {
        FaceCorner copies[3];
        for (int k = 0; k < 3; ++k) copies[k].p = OB->points + at(triangle, k).p;
        Face face{};
        face.q = copies;
        face.n = 3;
        return faceNormal(face);
    };
    return angleBetween(normal(a), normal(b));
}

double vertexAngle(const PlainCorner& a, const PlainCorner& b, const PlainCorner& c) {
    const auto square = [](const PlainCorner& from, const PlainCorner& to) {
        const Vec3 way = worldPosition(OB->points[to.p]) - worldPosition(OB->points[from.p]);
        return dot(way, way);
    };
    const double ba = square(b, a), bc = square(b, c);
    if (ba == 0 || bc == 0) return 4 * std::atan(1.0);
    const double cosine = (ba + bc - square(a, c)) / (2 * std::sqrt(ba) * std::sqrt(bc));
    return std::acos(std::clamp(cosine, -1.0, 1.0));
}

void joinQuickly(Slots& list, double most) {
    for (std::size_t i = 1; i < list.size(); ++i) {
        PlainFace &b = list[i], &a = list[i - 1];
        if (!isTriangle(a) || !isTriangle(b) || a.g != b.g || a.mat != b.mat) continue;
        if (a.start + 3 != b.start) continue;
        int ib = -1, ja = -1;
        for (int k = 0; k < 9 && ib < 0; ++k) {
            if (at(b, k / 3).p == at(a, k).p && at(b, k / 3 + 1).p == at(a, k + 2).p) {
                ib = k / 3;
                ja = k % 3;
            }
        }
        if (ib < 0 || at(b, ib).t != at(a, ja).t || at(b, ib + 1).t != at(a, ja + 2).t) continue;
        if (at(b, ib + 2).p == at(a, ja + 1).p || !(angleOf(b, a) <= most)) continue;
        a.corners = {at(b, ib), at(a, ja + 1), at(b, ib + 1), at(b, ib + 2)};
        b = {};
    }
}

/// Gives the titles.
Log joinThoroughly(Slots& list, double most, double variation) {
    Log titles;
    const double right = 2 * std::atan(1.0), tolerance = variation * (2 * right) / 180;
    int nq = OB->nq;
    for (std::size_t i = 0; i + 1 < list.size(); ++i) {
        PlainFace& a = list[i];
        if (!isTriangle(a)) continue;
        if ((list.size() - i) % 100 == 0)
            titles.push_back("title|" + std::to_string(list.size() - i));
        for (std::size_t j = i + 1; j < list.size(); ++j) {
            PlainFace& b = list[j];
            if (!isTriangle(b) || a.g != b.g || a.mat != b.mat) continue;
            int sideB = -1, sideA = -1;
            for (int k = 0; k < 9 && sideB < 0; ++k) {
                const int tryB = k / 3, tryA = k + 2;
                const PlainCorner &p = at(b, tryB), &q = at(b, tryB + 1);
                const PlainCorner &from = at(a, tryA), &to = at(a, tryA + 1);
                if (from.p != q.p || to.p != p.p || from.t != q.t || to.t != p.t) continue;
                sideB = tryB;
                sideA = tryA;
            }
            if (sideB < 0 || !(angleOf(b, a) <= most)) continue;
            const std::vector quad{at(b, sideB + 1), at(b, sideB + 2), at(b, sideB),
                                   at(a, sideA + 2)};
            if (!(std::abs(vertexAngle(quad[1], quad[0], quad[3]) - right) <= tolerance)) continue;
            if (!(std::abs(vertexAngle(quad[1], quad[2], quad[3]) - right) <= tolerance)) continue;
            a.corners = quad;
            a.start = nq;
            nq += 4;
            b = {};
            break;
        }
    }
    return titles;
}

class Detriangularize : public ToolTest {
  protected:
    /// Squares of a lattice cut into triangles, in any order or not; some turned over, some there
    /// twice, some bent out of the plane, some with texture of their own, some not to be joined.
    void fillPatch(int side, int faces) {
        emptyMesh();
        for (int i = 0; i < side * side; ++i) {
            const double height = random.below(4) == 0 ? random.below(9) * 0.05 : 0;
            OB->addPoint(i % side, i / side, height, false);
            OB->addTexCoord(i, 0);
        }
        OB->addNormal(0, 0, 1);
        for (const char* name : {"a", "b"}) {
            OB->addGroup(name);
            OB->addMaterial(0, name);
        }
        while (OB->nf < faces) {
            const int low = random.below(side - 1) + side * random.below(side - 1);
            const int around[4] = {low, low + 1, low + side + 1, low + side};
            addTriangle(around, 0, 1, 2);
            if (random.below(5) == 0) addTriangle(around, 1, 2, 3);
            if (random.below(9) != 0) addTriangle(around, 2, 3, 0);
        }
        if (random.below(2) != 0) shuffle();
        OB->curface = random.below(OB->nf);
    }

    void addTriangle(const int (&around)[4], int a, int b, int c) {
        OB->curgroup = random.below(9) == 0;
        OB->curmat = random.below(9) == 0;
        std::vector<int> points{around[a], around[b], around[c]};
        if (random.below(12) == 0) points.push_back(around[6 - a - b - c]);
        std::rotate(points.begin(), points.begin() + random.below(3), points.end());
        if (random.below(9) == 0) std::reverse(points.begin(), points.end());
        Face& face = *addFace(points);
        face.selected = random.below(9) != 0;
        const bool textured = random.below(7) != 0;
        for (int k = 0; k < face.n; ++k) {
            if (textured && random.below(30) != 0) {
                face.q[k].t = OB->texcoords + indexIn(OB->points, face.q[k].p);
            }
            if (random.below(2) != 0) face.q[k].d = OB->normals;
        }
    }

    /// Brings the faces into any order; the corners stay.
    void shuffle() {
        for (int i = OB->nf - 1; i > 0; --i) {
            std::swap(OB->faces[i], OB->faces[random.below(i + 1)]);
        }
    }

    void run(bool thorough, bool silent, const std::string& angle, const std::string& variation) {
        shown.log.clear();
        shown.dialogAnswers = {{angle}, {variation}};
        (thorough ? detrithorough : detriquick)(*OB, silent);
        ASSERT_EQ(check(*OB), nullptr);
    }
};

TEST_F(Detriangularize, SilentlyBothJoinByThePlainRule) {
    constexpr double angles[] = {0, 4, 25, 90, 200, -1, nan};
    constexpr double variations[] = {0, 20, 45, 90, infinity};
    int joined = 0;
    for (int round = 0; round < 8000; ++round) {
        const bool large = round % 100 == 0;
        fillPatch(large ? 9 : 3, large ? 100 + random.below(250) : 2 + random.below(14));
        if (round % 20 == 0) OB->points[random.below(9)].z = round % 40 == 0 ? nan : 1e300;
        ASSERT_TRUE(collectGarbage(*OB));
        const double angle = angles[random.below(7)], variation = variations[random.below(5)];
        const bool thorough = round % 2 == 0;
        Slots expected = plainFaces(*OB);
        const auto before = std::size_t(OB->nf);
        Log titles;
        if (thorough) {
            titles = joinThoroughly(expected, angle, variation);
        } else {
            joinQuickly(expected, angle);
        }
        const int curface = OB->curface;
        run(thorough, true, std::to_string(angle), std::to_string(variation));
        ASSERT_TRUE(OB->changed && stale.edges);
        ASSERT_TRUE(plainFaces(*OB) == expected) << round;
        const auto live = liveFaces().size();
        joined += static_cast<int>(before - live);
        ASSERT_EQ(OB->curface, isLive(OB->faces[curface]) ? curface : -1);
        const auto shownTitles = shown.log.end() - std::ssize(titles);
        ASSERT_EQ(Log(shownTitles, shown.log.end()), titles);
        ASSERT_EQ(shown.log.size(), (thorough ? 4U : 3U) + titles.size());
    }
    EXPECT_GT(joined, 5000);
}

} // namespace
} // namespace polyfab::test
