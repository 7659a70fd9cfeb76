// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/garbage.h"

#include "mesh/check.h"
#include "tests/mesh/random_mesh.h"
#include "tests/support/mesh_fixture.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <numeric>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace polyfab {
namespace {

class Garbage : public test::MeshTest {
  protected:
    /// A face with a corner for each letter, A being point 0; u of a corner is its place.
    int addFace(const std::string& letters) {
        while (OB->np < 26) OB->addPoint(OB->np, 0, 0, false);
        const int index = OB->nf;
        OB->newFace(static_cast<int>(letters.size()));
        for (std::size_t k = 0; k < letters.size(); ++k) {
            const int t = OB->addTexCoord(static_cast<double>(k), 0);
            FaceCorner& corner = OB->faces[index].q[k];
            corner = {OB->points + (letters[k] - 'A'), nullptr, OB->texcoords + t, 2, 0};
        }
        return index;
    }

    static std::string letters(const Face& face) {
        std::string result;
        for (int k = 0; face.q != nullptr && k < face.n; ++k) {
            result += static_cast<char>('A' + indexIn(OB->points, face.q[k].p));
            result += static_cast<char>('0' + static_cast<int>(face.q[k].t->u));
        }
        return result;
    }

    test::RandomMesh random{20260};
};

TEST_F(Garbage, TidiesFaces) {
    struct Row {
        const char* before;
        bool thorough;
        int result;
        const char* after; // each corner with the place it came from; faces parted by " "
    };
    const Row rows[] = {
        {"ABACD", true, 1, "A0C3D4"},
        {"ABACD", false, 0, "A0B1A2C3D4"},
        {"AABC", true, 1, "A1B2C3"},
        {"AABC", false, 1, "A1B2C3"},
        {"ABCA", true, 1, "A0B1C2"},
        {"AABCA", false, 2, "A1B2C3"},
        {"AB", true, 1, ""},
        {"ABCBD", true, 1, "A0B1D4"},
        {"ABAB", false, 0, "A0B1A2B3"},
        {"ABAB", true, 1, ""},
        {"", false, 1, ""},
        {"AABBB", false, 1, ""},
        {"BACDA", true, 1, "A1C2D3"},
        {"CDAEA", true, 1, "C0D1A2"},
        {"ABCDBE", true, 0, "B4E5A0 B1C2D3"},
        {"ABCADEAFG", true, 0, "A6F7G8 A0B1C2 A3D4E5"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.before);
        OB->nf = OB->nq = OB->nt = 0;
        const int face = addFace(row.before);
        EXPECT_EQ(tidyFace(*OB, face, row.thorough), row.result);
        std::string after = letters(OB->faces[0]);
        for (int i = 1; i < OB->nf; ++i) after += " " + letters(OB->faces[i]);
        EXPECT_EQ(after, row.after);
        EXPECT_EQ(tidyFace(*OB, face, row.thorough), 0);
    }
}

TEST_F(Garbage, ASplitKeepsAttributesAndAddsOnlyTheCornersThatMove) {
    OB->addGroup("a");
    OB->addGroup("b");
    OB->curgroup = 1;
    const int face = addFace("ABCDBE");
    OB->faces[face].selected = 0;
    OB->changed = 0;
    tidyFace(*OB, face, true);
    ASSERT_EQ(OB->nf, 2);
    EXPECT_EQ(std::tuple(OB->faces[1].g, OB->faces[1].selected), std::tuple(1, 0));
    EXPECT_EQ(OB->nq, 12);
    EXPECT_EQ(OB->changed, 1);
}

/// The rules of tidying, one repair at a time. Appends to `faces`; an empty list: deleted.
using Loop = std::vector<int>; // 100 * place + point

int plainTidy(std::vector<Loop>& faces, std::size_t index, bool thorough) {
    if (faces[index].empty()) return 0;
    const auto same = [&](std::size_t a, std::size_t b) {
        return faces[index][a] % 100 == faces[index][b] % 100;
    };
    const auto erase = [&](std::size_t k, std::size_t count) {
        const auto at = faces[index].begin() + static_cast<std::ptrdiff_t>(k);
        faces[index].erase(at, at + static_cast<std::ptrdiff_t>(count));
    };
    int count = 0;
    for (bool repaired = true; repaired; count += repaired ? 1 : 0) {
        const std::size_t n = faces[index].size();
        if (n < 3) {
            faces[index].clear();
            return 1;
        }
        repaired = false;
        for (std::size_t k = 2; thorough && !repaired && k < n; ++k) {
            if (same(k - 2, k)) erase(k - 1, 2), repaired = true;
        }
        if (repaired || !thorough) {
        } else if (same(n - 1, 1)) {
            erase(n - 1, 1), erase(0, 1), repaired = true;
        } else if (same(n - 2, 0)) {
            erase(n - 2, 2), repaired = true;
        }
        for (std::size_t k = 1; !repaired && k < n; ++k) {
            if (same(k - 1, k)) erase(k - 1, 1), repaired = true;
        }
        if (!repaired && same(n - 1, 0)) erase(n - 1, 1), repaired = true;
    }
    for (std::size_t a = 1; thorough && a < faces[index].size(); ++a) {
        for (std::size_t b = 0; b < a; ++b) {
            if (!same(a, b)) continue;
            Loop& all = faces[index];
            const auto at = [&](std::size_t k) {
                return all.begin() + static_cast<std::ptrdiff_t>(k);
            };
            Loop loop(at(b), at(a));
            Loop rest(at(a), all.end());
            rest.insert(rest.end(), all.begin(), at(b));
            all = rest;
            faces.push_back(loop);
            const std::size_t appended = faces.size() - 1;
            const int left = plainTidy(faces, index, true);
            return left + count + plainTidy(faces, appended, true);
        }
    }
    return count;
}

TEST_F(Garbage, TidyingIsTheOneByOneRule) {
    for (int round = 0; round < 10000; ++round) {
        const bool thorough = random.below(4) != 0;
        random.fill(2 + random.below(12), 1, 24);
        OB->faces[0].q = OB->corners;
        Loop loop;
        for (int k = 0; k < OB->faces[0].n; ++k) {
            loop.push_back(100 * k + indexIn(OB->points, OB->corners[k].p));
        }
        if (loop.empty()) loop.push_back(0); // a face that is not deleted yet
        std::vector<Loop> faces{loop};
        ASSERT_EQ(tidyFace(*OB, 0, thorough), plainTidy(faces, 0, thorough)) << round;
        std::vector<Loop> result;
        for (int i = 0; i < OB->nf; ++i) {
            result.emplace_back();
            for (int k = 0; OB->faces[i].q != nullptr && k < OB->faces[i].n; ++k) {
                const FaceCorner& corner = OB->faces[i].q[k];
                result.back().push_back(100 * indexIn(OB->texcoords, corner.t)
                                        + indexIn(OB->points, corner.p));
            }
        }
        ASSERT_EQ(result, faces) << round;
        ASSERT_EQ(check(*OB), nullptr);
    }
}

TEST_F(Garbage, HugeFacesTakeNoSquareTime) {
    // A star around one point, a spike as long as the list, and repeats only.
    const auto fill = [](int n, auto point) {
        OB->nf = OB->nq = 0;
        while (OB->np < n) OB->addPoint(OB->np, 0, 0, false);
        OB->newFace(n);
        for (int k = 0; k < n; ++k) OB->corners[k].p = OB->points + point(k);
        return tidyFace(*OB, 0, true);
    };
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(fill(32766, [](int k) { return k % 3 == 0 ? 0 : k; }), 0);
    EXPECT_EQ(OB->nf, 10922);
    EXPECT_LE(OB->nq, 2 * 32766);
    EXPECT_EQ(fill(32767, [](int k) { return k < 16384 ? k : 32766 - k; }), 1);
    EXPECT_EQ(OB->faces[0].q, nullptr);
    EXPECT_EQ(fill(32767, [](int k) { return k / 8000; }), 16383);
    EXPECT_EQ(OB->faces[0].n, 5);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

/// The faces that are left after tidying, by what their corners refer to, with their names.
auto describe() {
    std::vector<std::tuple<std::string, std::string, std::vector<test::CornerView>>> faces;
    for (int i = 0; i < OB->nf; ++i) {
        const Face& face = OB->faces[i];
        if (face.q == nullptr) continue;
        faces.emplace_back(OB->groups[face.g].name, OB->materials[face.mat].name,
                           test::view(face.q, face.n));
    }
    return faces;
}

/// Whether 0 to `count` - 1 are all used.
void expectAllUsed(const std::set<int>& used, int count) {
    std::vector<int> all(static_cast<std::size_t>(count));
    std::iota(all.begin(), all.end(), 0);
    EXPECT_EQ(std::vector<int>(used.begin(), used.end()), all);
}

void expectNothingUnused() {
    std::map<std::string, std::set<int>> used;
    int corners = 0;
    for (const Face* face = OB->faces; face != OB->faces + OB->nf; ++face) {
        ASSERT_EQ(face->q, OB->corners + corners);
        corners += face->n;
        used["g"].insert(face->g);
        used["mat"].insert(face->mat);
        for (const FaceCorner* c = face->q; c != face->q + face->n; ++c) {
            used["p"].insert(indexIn(OB->points, c->p));
            used["t"].insert(indexIn(OB->texcoords, c->t));
            if (c->d != nullptr) used["d"].insert(indexIn(OB->normals, c->d));
        }
    }
    EXPECT_EQ(std::pair(OB->nq, OB->nqmax), std::pair(corners, corners));
    expectAllUsed(used["p"], OB->np);
    expectAllUsed(used["t"], OB->nt);
    expectAllUsed(used["d"], OB->nd);
    if (OB->nf == 0) return;
    expectAllUsed(used["g"], OB->ng);
    expectAllUsed(used["mat"], OB->nmat);
}

TEST_F(Garbage, CollectionKeepsEveryFaceAndNothingElse) {
    const int blocks = storeBlocks();
    for (int round = 0; round < 3000; ++round) {
        random.fill(3 + random.below(12), 1 + random.below(9), 8);
        for (int i = 0; i < OB->nf; ++i) tidyFace(*OB, i, true);
        const auto before = describe();
        const int current = OB->curface;
        const bool live = current >= 0 && OB->faces[current].q != nullptr;
        int earlier = 0;
        for (int i = 0; i < current; ++i) earlier += OB->faces[i].q != nullptr;
        ASSERT_TRUE(collectGarbage(*OB));
        ASSERT_EQ(check(*OB), nullptr) << round;
        ASSERT_EQ(describe(), before) << round;
        ASSERT_EQ(OB->curface, live ? earlier : -1);
        ASSERT_TRUE(std::is_sorted(OB->texcoords, OB->texcoords + OB->nt,
                                   [](auto& a, auto& b) { return a.u < b.u; }));
        ASSERT_TRUE(OB->curgroup < OB->ng && OB->curmat < OB->nmat);
        expectNothingUnused();
        ASSERT_FALSE(HasFailure()) << round;
        OB->changed = 0;
        const auto first = describe();
        collectGarbage(*OB);
        // Without a face the names are made anew each time, which counts as a change.
        ASSERT_EQ(std::tuple(describe(), OB->changed), std::tuple(first, OB->nf == 0));
    }
    OB->clear(true);
    EXPECT_EQ(storeBlocks(), blocks + 1); // the groups
}

TEST_F(Garbage, AnEmptiedMesh) {
    test::addCube();
    OB->curvertex = OB->curtexcoord = 0;
    for (int i = 0; i < OB->nf; ++i) OB->faces[i].q = nullptr;
    shown.windowTitle = "before";
    EXPECT_TRUE(collectGarbage(*OB));
    EXPECT_EQ(shown.log, (std::vector<std::string>{"title|collecting garbage", "title|before"}));
    EXPECT_EQ(std::tuple(OB->np, OB->nq, OB->nf, OB->nt, OB->nd, OB->npmax),
              std::tuple(0, 0, 0, 0, 0, 0));
    EXPECT_EQ(std::tuple(OB->ng, OB->nmat, OB->materials[0].color), std::tuple(1, 1, 0xffffffu));
    EXPECT_STREQ(OB->groups[0].name, "default");
    EXPECT_EQ(std::tuple(OB->curvertex, OB->curtexcoord, OB->curface), std::tuple(-1, -1, -1));
    test::addCube();
    EXPECT_TRUE(collectGarbage(*OB));
    EXPECT_EQ(std::pair(OB->np, OB->nf), std::pair(8, 6));
}

TEST_F(Garbage, AFaultStopsIt) {
    test::addCube();
    OB->faces[5].q[3].p = nullptr;
    OB->faces[0].q = nullptr;
    EXPECT_FALSE(collectGarbage(*OB));
    EXPECT_EQ(shown.log.back(), "message!|fault in mesh|V->p==0");
    EXPECT_EQ(OB->nf, 6);
}

} // namespace
} // namespace polyfab
