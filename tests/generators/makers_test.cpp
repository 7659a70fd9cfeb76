// SPDX-License-Identifier: GPL-3.0-or-later
// Every maker by what it leaves in the mesh: counts, closed surfaces that look outwards, volumes,
// points that are found again; and what is refused.
#include "generators/maker.h"

#include "mesh/face_area.h"
#include "mesh/faces.h"
#include "tests/tools/tool_test.h"

#include <cmath>
#include <iterator>
#include <map>
#include <sstream>
#include <utility>

namespace polyfab::test {
namespace {

const double pi = std::acos(-1.0);

/// Watches the preview while the dialog is open.
struct Watcher : FakePlatform {
    std::size_t seen = 0;
    DialogResult dialog(Dialog& dialog) override {
        std::vector<DialogField> edited = dialog.fields;
        for (std::size_t i = 0; i < edited.size() && !dialogAnswers.empty(); ++i) {
            if (i < dialogAnswers[0].size()) edited[i].text = dialogAnswers[0][i];
        }
        dialog.onChange(edited);
        seen = workbench.preview.size();
        return FakePlatform::dialog(dialog);
    }
};

class Makers : public ToolTest {
  protected:
    Watcher shown; // over that of the fixture

    /// The answers are parted by blanks.
    void make(const Maker& maker, const char* answers) {
        std::istringstream words(answers);
        const std::istream_iterator<std::string> first(words);
        shown.dialogAnswers = {std::vector<std::string>(first, {})};
        shown.log.clear();
        askAndMake(*OB, maker);
        EXPECT_TRUE(workbench.preview.empty());
    }
    /// The message box that was shown, or "".
    std::string box() const {
        for (const std::string& line : shown.log) {
            if (line.starts_with("message!|")) return line.substr(line.rfind('|') + 1);
        }
        return "";
    }
    /// A square in the plane z = 0 that becomes current: anticlockwise, or seen from behind.
    static void addSquare(double x, double y, double size, bool behind = false) {
        addFaceAt({{x, y, 0}, {x + size, y, 0}, {x + size, y + size, 0}, {x, y + size, 0}});
        OB->curface = OB->nf - 1;
        if (behind) std::reverse(OB->faces[OB->curface].q, OB->faces[OB->curface].q + 4);
    }
};

struct Surface {
    int points = 0, faces = 0, euler = 0;
    bool closed = true; ///< two faces at each edge, which run it opposite ways
    bool thin = false;  ///< some face has no area
    double volume = 0;
};

Surface surfaceOf(const Mesh& mesh) {
    Surface surface;
    std::map<std::pair<int, int>, int> sides;
    std::vector<char> used(static_cast<std::size_t>(mesh.np), 0);
    for (int i = 0; i < mesh.nf; ++i) {
        const Face& face = mesh.faces[i];
        if (!isLive(face)) continue;
        ++surface.faces;
        surface.thin |= hasNoArea(face);
        surface.closed &= face.selected == 1;
        for (int k = 0; k < face.n; ++k) {
            const int from = pointAt(mesh, face, k), to = pointAt(mesh, face, k + 1);
            used[static_cast<std::size_t>(from)] = 1;
            surface.closed &= ++sides[{from, to}] == 1;
            if (k < 2) continue;
            const Vec3 a = worldPosition(*face.q[0].p), b = worldPosition(*face.q[k - 1].p);
            surface.volume += dot(a, cross(b, worldPosition(*face.q[k].p))) / 6;
        }
    }
    for (const auto& [side, uses] : sides)
        surface.closed &= sides.contains({side.second, side.first});
    surface.points = static_cast<int>(std::count(used.begin(), used.end(), 1));
    surface.euler = surface.points - static_cast<int>(sides.size() / 2) + surface.faces;
    return surface;
}

/// The area of a polygon of n equal sides around a circle's radius of 1.
double polygon(int n) { return n / 2.0 * std::sin(2 * pi / n); }

TEST_F(Makers, LeaveClosedSurfacesThatLookOutwards) {
    constexpr double any = -1;
    struct {
        const Maker& maker;
        const char* answers;
        int points, faces, euler;
        double volume, within; ///< relative
    } const cases[] = {
        {sphereMaker, "1 2 3 2", 482, 512, 2, 4 * pi / 3 * 8, 0.02},
        {sphereMaker, "0 0 0 1 3 2", 5, 6, 2, polygon(3) * 2 / 3, 1e-12},
        {sphereMaker, "0 0 0 1e-3 200 150", 29802, 30000, 2, 4e-9 * pi / 3, 1e-3},
        {cylinderMaker, "1 1 1 1 4 1 2 2 7", 14, 9, 2, 12 * polygon(7), 1e-12},
        {cylinderMaker, "1 1 1 3 4 7 2 0 50", 51, 51, 2, 4 * polygon(50) * 7 / 3, 1e-12},
        {cylinderMaker, "1 1 1 3 4 7 0 2 3", 4, 4, 2, 4 * polygon(3) * 7 / 3, 1e-12},
        {roundedCylinderMaker, "0 0 0 6 2 3 2 64 32", 4098, 4160, 2, 28 * pi + 32 * pi / 3, 2e-3},
        {roundedCylinderMaker, "0 0 0 0 0 1 1 5 1", 12, 15, 2, polygon(5) * 5 / 3, 1e-12},
        {torusMaker, "9 0 0 10 1 1 3 1 90 60", 5400, 5400, 0, 6 * pi * pi, 4e-3},
        {torusMaker, "0 0 0 0 0 -1 3 1 3 4", 12, 12, 0, 3 * 4 * polygon(3), 1e-12},
        {sparksMaker, "0 0 0 5 5 5 40 60 3 0.2", 160, 160, 80, 40 * polygon(3) * 0.01, 1e-9},
        {spinMaker, "0 0 0 0 1 0", 96, 96, 0, 4 * pi, 0.02},
        {spinMaker, "0 0 0 0 1 0 -90 9", 40, 38, 2, pi, 0.01},
        {spinMaker, "0 0 0 0 1 0 720 48 9", 196, 194, 2, 8 * pi, 0.03},
        {spinMaker, "1.5 0 0 1.5 7 0 360 5", 12, 15, 2, polygon(5), 1e-12},
        {spinMaker, "1.5 0 0 1.5 7 0 90 5", 14, 17, 2, 5 * std::sin(pi / 10) / 2, 1e-12},
        {pipeMaker, "0.1 8", 32, 32, 0, 4 * polygon(8) * 0.01, 1e-12},
        {rifleMaker, "0 0 0 1 2 3", 3922, 4008, 60, any, 0},
    };
    for (const auto& row : cases) {
        for (const bool behind : {false, true}) {
            emptyMesh();
            if (row.maker.needFace) addSquare(1.5, 0, 1, behind);
            make(row.maker, row.answers);
            // The face that a pipe follows stays inside it.
            FaceCorner* const kept = OB->faces[0].q;
            if (&row.maker == &pipeMaker) OB->faces[0].q = nullptr;
            const Surface surface = surfaceOf(*OB);
            OB->faces[0].q = kept;
            SCOPED_TRACE(std::string(row.maker.what) + " " + row.answers + box());
            EXPECT_GT(shown.seen, 0U);
            EXPECT_EQ(surface.points, row.points);
            EXPECT_EQ(surface.faces, row.faces);
            EXPECT_EQ(surface.euler, row.euler);
            EXPECT_TRUE(surface.closed);
            EXPECT_FALSE(surface.thin);
            EXPECT_EQ(check(*OB), nullptr);
            EXPECT_GT(surface.volume, 0);
            if (row.volume != any) {
                EXPECT_NEAR(surface.volume, row.volume, row.within * row.volume);
            }
            const int points = OB->np;
            if (row.maker.finish == nullptr) make(row.maker, row.answers);
            EXPECT_EQ(OB->np, points); // they are found again
            if (!row.maker.needFace) break;
        }
    }
}

TEST_F(Makers, PutPointsWhereTheyBelongToTheLastBit) {
    make(sphereMaker, "0 0 0 1.1 24 12");
    std::map<std::array<double, 3>, int> at;
    for (int i = 0; i < OB->np; ++i) {
        const Point& p = OB->points[i];
        at[{p.x, p.y, p.z}] = i;
        EXPECT_NEAR(std::hypot(p.x, p.y, p.z), 1.1, 1.1e-12);
    }
    for (const auto& [p, i] : at) {
        EXPECT_TRUE(at.contains({-p[0], p[1], p[2]}) && at.contains({p[0], -p[1], p[2]})
                    && at.contains({p[2], p[1], -p[0]}));
    }
    EXPECT_TRUE(at.contains({0, 1.1, 0}) && at.contains({-1.1, 0, 0}));
}

TEST_F(Makers, RefuseWhatCantBeMade) {
    struct {
        const Maker& maker;
        const char* answers;
        const char* says;
    } const cases[] = {
        {sphereMaker, "0 0 0 0", "radius has to be more than 0"},
        {sphereMaker, "0 0 0 -1", "radius has to be"},
        {sphereMaker, "0 0 0 nan", "radius has to be"},
        {sphereMaker, "0 0 0 inf", "radius has to be"},
        {sphereMaker, "0 0 0 1e300", "radius has to be"},
        {sphereMaker, "0 0 0 wide", "radius has to be"},
        {sphereMaker, "0 -inf 0", "centre y has to be a number"},
        {sphereMaker, "0 0 0 1 2", "around has to be a whole number from 3 to 5,000,000"},
        {sphereMaker, "0 0 0 1 3.5", "around has to be"},
        {sphereMaker, "0 0 0 1 2501 2000", "5,002,000 faces"},
        {sphereMaker, "1e20 0 0 1", "no area"},
        {cylinderMaker, "3 3 3 3 3 3", "same place"},
        {cylinderMaker, "0 0 0 1 0 0 0 0", "one radius"},
        {cylinderMaker, "0 0 0 1 0 0 1 1 32768", "sides has to be"},
        {roundedCylinderMaker, "0 0 0 0 0 0", "same place"},
        {torusMaker, "0 0 0 0 0 0", "no direction"},
        {torusMaker, "0 0 0 1 0 0 1 1", "small radius has to be less"},
        {sparksMaker, "0 0 0 1 0 0 1250001", "5,000,004 faces"},
        {spiralMaker, "0 0 0 1 3 0.2 0.2", "width has to be less"},
        {spiralMaker, "0 0 0 1 1000 0.3 0.2 100", "32,767 corners"},
        {rifleMaker, "1 1 1 1 1 1", "same place"},
        {spinMaker, "2 0 0 2 1 0", "crosses"},
        {spinMaker, "1.9 0.5 -1 2.1 0.5 1", "crosses"},
        {spinMaker, "0 0 0 0 0 1", "own plane"},
        {spinMaker, "0 0 0 0 1 0 361", "without a rise"},
        {spinMaker, "0 0 0 0 1 0 360 2", "half a turn"},
        {spinMaker, "1.5 0 0 1.5 1 0 90 9 1", "side of the face"},
        {pipeMaker, "0.6", "inside out"},
        {pipeMaker, "0.1 1250001", "5,000,004 faces"},
    };
    for (const auto& row : cases) {
        emptyMesh();
        addSquare(1.5, 0, 1);
        make(row.maker, row.answers);
        EXPECT_NE(box().find(row.says), std::string::npos) << row.says << ": " << box();
        EXPECT_EQ(shown.seen, 0U) << row.says;
        EXPECT_EQ(OB->nf, 1);
        EXPECT_EQ(OB->np, 4);
    }
    OB->curface = -1;
    make(pipeMaker, "0.1");
    EXPECT_EQ(shown.log, Log{"message!|I can't make the pipe|click a face first"});
}

TEST_F(Makers, BevelSharpCornersAndFollowBentFaces) {
    const std::vector<Vec3> edges[] = {
        {{0, 0, 0}, {10, -0.5, 0}, {10, 0.5, 0}},                        // about 6 degrees
        {{0, 0, 0}, {2, 0, 0.4}, {2, 2, -0.3}, {1, 0.8, 0}, {0, 2, 0.2}} // re-entrant
    };
    for (const auto& edge : edges) {
        emptyMesh();
        addFaceAt(edge);
        OB->curface = 0;
        make(pipeMaker, "0.05 12");
        EXPECT_EQ(box(), "");
        OB->faces[0].q = nullptr;
        const Surface surface = surfaceOf(*OB);
        EXPECT_EQ(surface.euler, 0);
        EXPECT_TRUE(surface.closed && !surface.thin);
        EXPECT_GT(surface.volume, 0);
    }
}

TEST_F(Makers, KeepGroupsAndTextureAsTheFieldsSay) {
    make(spiralMaker, "0 0 1 0 2.3 0.5 0.49 3 coil wire");
    EXPECT_EQ(OB->nf, 1);
    EXPECT_FALSE(surfaceOf(*OB).thin);
    make(torusMaker, "0 0 0 0 1 0 1 0.25 8 4 ring gold 1");
    EXPECT_EQ(OB->nt, 9 * 5);
    for (int c = OB->faces[0].n; c < OB->nq; ++c) ASSERT_NE(OB->corners[c].t, nullptr);
    shown.dialogResults = {DialogResult::cancel};
    make(torusMaker, "");
    EXPECT_EQ(OB->nf, 33);
    EXPECT_STREQ(OB->currentGroupName(), "ring");
    EXPECT_STREQ(OB->materials[OB->faces[32].mat].name, "gold");
    make(rifleMaker, "0 0 0 1 0 0 gun hull");
    EXPECT_STREQ(OB->currentGroupName(), "gun");
    EXPECT_EQ(OB->ng, 2 + 1 + 5);
    EXPECT_EQ(workbench.settable[1].x, 1);
}

} // namespace
} // namespace polyfab::test
