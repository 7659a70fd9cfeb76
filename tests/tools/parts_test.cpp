// SPDX-License-Identifier: GPL-3.0-or-later
// Parts and texture map areas against plain statements of their rules: full sweeps over the faces
// until nothing changes, with the titles that go with them.
#include "mesh/face_angle.h"
#include "mesh/garbage.h"
#include "tests/tools/tool_test.h"
#include "tools/find_areas.h"
#include "tools/find_parts.h"
#include "workbench/notes.h"

#include <map>
#include <set>

namespace polyfab::test {
namespace {

/// What a tool should leave: the number of each live face, how many numbers, the titles shown.
struct Numbering {
    std::map<int, int> of;
    int count = 0;
    Log titles;
};

/// A title that begins with a number six wide.
std::string countTitle(int count, const std::string& text) {
    const std::string digits = std::to_string(count);
    return "title|" + std::string(6 - digits.size(), ' ') + digits + " " + text;
}

/// Of each live face, the faces that it shares an edge with that has no third side.
std::map<int, std::vector<int>> neighbours() {
    std::map<std::pair<int, int>, std::vector<int>> sides; // the faces on each edge
    for (const int face : liveFaces()) {
        const Numbers points = pointsOf(face);
        for (std::size_t k = 0; k < points.size(); ++k) {
            sides[std::minmax({points[k], points[(k + 1) % points.size()]})].push_back(face);
        }
    }
    std::map<int, std::vector<int>> list;
    for (const auto& [edge, faces] : sides) {
        if (faces.size() != 2) continue;
        list[faces[0]].push_back(faces[1]);
        list[faces[1]].push_back(faces[0]);
    }
    return list;
}

/// Numbers the faces that touch the seed, or touch one that is numbered for that.
template <typename Touches>
void spread(Numbering& to, const Numbers& faces, int seed, Touches touches) {
    to.of[seed] = to.count;
    for (std::size_t before = 0; before != to.of.size();) {
        before = to.of.size();
        for (const auto& [face, number] : std::map(to.of)) {
            if (number != to.count) continue;
            for (const int other : faces) {
                if (touches(face, other)) to.of.try_emplace(other, to.count);
            }
        }
    }
    ++to.count;
}

Numbering partsBySweeps(double maxAngle) {
    Numbering parts;
    auto next = neighbours();
    const auto touch = [&](int face, int other) {
        if (std::count(next[face].begin(), next[face].end(), other) == 0) return false;
        if (maxAngle == 0) return true;
        return maxAngle > angleBetween(faceNormal(OB->faces[face]), faceNormal(OB->faces[other]));
    };
    const Numbers faces = liveFaces();
    for (const int seed : faces) {
        if (parts.of.contains(seed)) continue;
        parts.titles.push_back(countTitle(parts.count, "parts found"));
        spread(parts, faces, seed, touch);
    }
    parts.titles.push_back("title|before");
    parts.titles.push_back("note|found " + counted(parts.count, "part"));
    return parts;
}

std::set<const TexCoord*> texCoordsOf(int index) {
    const Face& face = OB->faces[index];
    std::set<const TexCoord*> used;
    for (int k = 0; k < face.n; ++k) used.insert(face.q[k].t);
    used.erase(nullptr);
    return used;
}

/// Of a mesh without garbage.
Numbering areasBySweeps() {
    Numbering areas;
    areas.titles = {"title|collecting garbage", "title|before"};
    const auto touch = [](int face, int other) {
        const auto used = texCoordsOf(face), others = texCoordsOf(other);
        return std::any_of(used.begin(), used.end(),
                           [&](const TexCoord* t) { return others.contains(t); });
    };
    const Numbers faces = liveFaces();
    for (const int face : faces) {
        if (texCoordsOf(face).empty()) areas.of[face] = 0;
    }
    areas.count = 1;
    areas.titles.push_back(countTitle(1, "texture map areas found, 0 iterations"));
    for (const int seed : faces) {
        if (areas.of.contains(seed)) continue;
        spread(areas, faces, seed, touch);
        areas.titles.push_back(countTitle(areas.count, "texture map areas found, 1 iterations"));
    }
    areas.titles.push_back("title|before");
    areas.titles.push_back("note|found " + counted(areas.count, "texture map area"));
    return areas;
}

class Parts : public ToolTest {
  protected:
    Parts() { shown.windowTitle = "before"; }

    void expect(const Numbering& wanted, std::int16_t Face::*number, int count) {
        ASSERT_EQ(check(*OB), nullptr);
        ASSERT_EQ(count, wanted.count);
        for (const int face : liveFaces()) ASSERT_EQ(OB->faces[face].*number, wanted.of.at(face));
        ASSERT_EQ(shown.log, wanted.titles);
    }
};

TEST_F(Parts, AreThoseOfThePlainRule) {
    const double limits[] = {0, -1, -1e-300, 1e-6, 30, 90, 120, 180, 181, nan, 1e300, -0.0, 60};
    int most = 0;
    for (int round = 0; round < 4000; ++round) {
        // Faces of one or two corners and repeated points among them, as before a collection.
        fillWithParts(9, 12, 5);
        const double limit = limits[round % std::size(limits)];
        const Numbering wanted = partsBySweeps(limit);
        std::map<int, int> deleted;
        for (int i = 0; i < OB->nf; ++i) {
            if (OB->faces[i].q == nullptr) deleted[i] = OB->faces[i].prt;
        }
        for (int i = 0; i < OB->nprt; ++i) OB->parts[i].selected = 0;
        shown.log.clear();
        findparts(*OB, limit);
        ASSERT_NO_FATAL_FAILURE(expect(wanted, &Face::prt, OB->nprt)) << round;
        for (const auto& [face, number] : deleted) ASSERT_EQ(OB->faces[face].prt, number);
        for (int i = 0; i < OB->nprt; ++i) ASSERT_EQ(OB->parts[i].selected, 1U);
        ASSERT_EQ(OB->cornerMate, nullptr);
        most = std::max(most, OB->nf - static_cast<int>(deleted.size()) - OB->nprt);
    }
    EXPECT_GT(most, 5); // some parts had many faces
}

TEST_F(Parts, OfTextureMapsAreThoseOfThePlainRule) {
    for (int round = 0; round < 3000; ++round) {
        random.fill(5 + random.below(9), 1 + random.below(14), 5);
        const int texCoords = 1 + random.below(std::min(20, OB->nt));
        for (int c = 0; c < OB->nq; ++c) {
            const int t = random.below(texCoords * 2);
            OB->corners[c].t = t < texCoords ? OB->texcoords + t : nullptr;
        }
        ASSERT_TRUE(collectGarbage(*OB));
        const Numbering wanted = areasBySweeps();
        shown.log.clear();
        findareas(*OB);
        ASSERT_NO_FATAL_FAILURE(expect(wanted, &Face::tma, OB->ntma)) << round;
        ASSERT_EQ(OB->ntmamax, OB->ntma);
        for (int i = 0; i < OB->ntma; ++i) ASSERT_EQ(OB->tmas[i].selected, 1U);
    }
}

TEST_F(Parts, TooManyToNumberShareTheLastNumber) {
    struct {
        void (*find)(Mesh&);
        std::int16_t Face::*number;
        std::int32_t Mesh::*count;
        std::string name;
        int first; ///< number of the first face
    } const cases[] = {
        {[](Mesh& mesh) { findparts(mesh, 0); }, &Face::prt, &Mesh::nprt, "parts", 0},
        {findareas, &Face::tma, &Mesh::ntma, "texture map areas", 1},
    };
    for (const auto& row : cases) {
        for (const int count : {maxIndexed, maxIndexed + 3}) {
            emptyMesh();
            while (OB->nf < count - row.first) {
                for (int k = 0; k < 3; ++k) OB->addPoint(OB->np, k, 0, false);
                OB->addTexCoord(0, 0);
                addFace({OB->np - 3, OB->np - 2, OB->np - 1});
            }
            for (int i = 0; i < OB->nf; ++i) OB->faces[i].q->t = OB->texcoords + i;
            shown.log.clear();
            row.find(*OB);
            EXPECT_EQ(check(*OB), nullptr);
            EXPECT_EQ(OB->*row.count, maxIndexed);
            for (int i = 0; i < OB->nf; ++i) {
                ASSERT_EQ(OB->faces[i].*row.number, std::min(i + row.first, maxIndexed - 1));
            }
            EXPECT_EQ(shown.windowTitle, "before");
            const std::string told =
                "message!|too many " + row.name + "|I found " + std::to_string(count) + " "
                + row.name
                + ", but I can only number 32767: the last number stands for all "
                  "the rest";
            EXPECT_EQ(std::count(shown.log.begin(), shown.log.end(), told), count > maxIndexed);
        }
    }
}

} // namespace
} // namespace polyfab::test
