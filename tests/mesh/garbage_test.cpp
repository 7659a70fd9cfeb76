// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/garbage.h"

#include "mesh/check.h"
#include "tests/support/mesh_fixture.h"

#include <algorithm>
#include <set>

namespace polyfab {
namespace {

class Garbage : public test::MeshTest {
  protected:
    test::RandomMesh random{20260};
};

/// The corners of a face, each 100 * the place it came from + its point; none: deleted.
using Loop = std::vector<int>;

/// Makes OB the face, on the points of these numbers.
void makeFace(const Loop& loop) {
    OB->nf = OB->nq = OB->nt = 0;
    while (OB->np < 26) OB->addPoint(OB->np, 0, 0, false);
    OB->newFace(static_cast<int>(loop.size()));
    for (const int number : loop) {
        const int t = OB->addTexCoord(0, 0);
        OB->corners[t] = {OB->points + number % 100, nullptr, OB->texcoords + t, 2, 0};
    }
}

/// The rules of tidying, one repair at a time.
int plainTidy(std::vector<Loop>& faces, std::size_t index, bool thorough) {
    Loop loop = faces[index];
    if (loop.empty()) return 0;
    const auto at = [&](int k) { return loop[static_cast<std::size_t>(k)]; };
    const auto same = [&](int a, int b) { return at(a) % 100 == at(b) % 100; };
    for (int count = 0;; ++count) {
        const int n = static_cast<int>(loop.size());
        if (n < 3) {
            faces[index].clear();
            return 1;
        }
        // Two corners, and which go (one, or two) when they are on the same point.
        std::vector<std::array<int, 4>> rules;
        for (int k = 2; thorough && k < n; ++k) rules.push_back({k - 2, k, k - 1, k});
        if (thorough) rules.insert(rules.end(), {{n - 1, 1, n - 1, 0}, {n - 2, 0, n - 2, n - 1}});
        for (int k = 1; k < n; ++k) rules.push_back({k - 1, k, k - 1, k - 1});
        rules.push_back({n - 1, 0, n - 1, n - 1});
        const auto rule = std::find_if(rules.begin(), rules.end(),
                                       [&](const auto& r) { return same(r[0], r[1]); });
        if (rule != rules.end()) {
            const int first = at((*rule)[2]), second = at((*rule)[3]);
            std::erase_if(loop, [&](int corner) { return corner == first || corner == second; });
            continue;
        }
        faces[index] = loop;
        for (int a = 1; thorough && a < n; ++a) {
            for (int b = 0; b < a; ++b) {
                if (!same(a, b)) continue;
                faces.emplace_back(loop.begin() + b, loop.begin() + a);
                const std::size_t appended = faces.size() - 1;
                std::rotate(loop.begin(), loop.begin() + a, loop.end());
                loop.resize(static_cast<std::size_t>(n - a + b));
                faces[index] = loop;
                const int left = plainTidy(faces, index, true);
                return count + left + plainTidy(faces, appended, true);
            }
        }
        return count;
    }
}

TEST_F(Garbage, TidyingIsTheOneByOneRule) {
    for (int round = 0; round < 10000; ++round) {
        const bool thorough = random.below(4) != 0;
        const int points = 2 + random.below(12);
        Loop loop;
        for (int k = random.below(25); k >= 0; --k) {
            loop.push_back(100 * static_cast<int>(loop.size()) + random.below(points));
        }
        makeFace(loop);
        OB->faces[0].kind = 7;
        OB->faces[0].selected = OB->changed = 0;
        std::vector<Loop> expected{loop}, faces;
        const int repairs = plainTidy(expected, 0, thorough);
        ASSERT_EQ(tidyFace(*OB, 0, thorough), repairs) << round;
        for (const Face* face = OB->faces; face != OB->faces + OB->nf; ++face) {
            Loop& corners = faces.emplace_back();
            for (int k = 0; face->q != nullptr && k < face->n; ++k) {
                corners.push_back(100 * indexIn(OB->texcoords, face->q[k].t)
                                  + indexIn(OB->points, face->q[k].p));
            }
            ASSERT_EQ(std::tuple(face->kind, face->selected), std::tuple(7, 0));
        }
        ASSERT_EQ(faces, expected) << round;
        ASSERT_EQ(OB->changed, repairs > 0 || OB->nf > 1);
        ASSERT_EQ(check(*OB), nullptr);
    }
}

TEST_F(Garbage, HugeFacesAreTidiedInPlace) {
    // A star around one point, a spike as long as the list, and repeats only.
    const auto tidy = [](int n, auto point) {
        OB->nf = OB->nq = 0;
        while (OB->np < n) OB->addPoint(OB->np, 0, 0, false);
        OB->newFace(n);
        for (int k = 0; k < n; ++k) OB->corners[k].p = OB->points + point(k);
        return tidyFace(*OB, 0, true);
    };
    EXPECT_EQ(tidy(32766, [](int k) { return k % 3 == 0 ? 0 : k; }), 0);
    EXPECT_EQ(OB->nf, 10922);
    EXPECT_LE(OB->nq, 2 * 32766); // only corners that move are added
    EXPECT_EQ(tidy(32767, [](int k) { return k < 16384 ? k : 32766 - k; }), 1);
}

void expectNothingUnused() {
    std::set<const void*> elements;
    std::set<int> groups, materials;
    int corners = 0;
    for (const Face* face = OB->faces; face != OB->faces + OB->nf; ++face) {
        ASSERT_EQ(face->q, OB->corners + corners);
        corners += face->n;
        groups.insert(face->g);
        materials.insert(face->mat);
        for (const FaceCorner* c = face->q; c != face->q + face->n; ++c) {
            elements.insert({c->p, c->t, c->d});
        }
    }
    elements.erase(nullptr);
    EXPECT_EQ(std::tuple(OB->nq, OB->nqmax), std::tuple(corners, corners));
    EXPECT_EQ(OB->np + OB->nt + OB->nd, elements.size());
    if (OB->nf == 0) return; // a group and a material stay
    EXPECT_EQ(std::tuple(OB->ng, OB->nmat), std::tuple(groups.size(), materials.size()));
}

TEST_F(Garbage, CollectionKeepsEveryFaceAndNothingElse) {
    for (int round = 0; round < 3000; ++round) {
        random.fill(3 + random.below(12), 1 + random.below(9), 8);
        for (int i = 0; i < OB->nf; ++i) tidyFace(*OB, i, true);
        const auto before = test::describe();
        const int current = OB->curface;
        const bool live = current >= 0 && OB->faces[current].q != nullptr;
        int earlier = 0;
        for (int i = 0; i < current; ++i) earlier += OB->faces[i].q != nullptr;
        ASSERT_TRUE(collectGarbage(*OB));
        ASSERT_EQ(check(*OB), nullptr) << round;
        ASSERT_EQ(test::describe(), before) << round;
        ASSERT_EQ(OB->curface, live ? earlier : -1);
        ASSERT_TRUE(std::is_sorted(OB->texcoords, OB->texcoords + OB->nt,
                                   [](auto& a, auto& b) { return a.u < b.u; }));
        ASSERT_TRUE(OB->curgroup < OB->ng && OB->curmat < OB->nmat);
        expectNothingUnused();
        OB->changed = 0;
        collectGarbage(*OB);
        // Without a face the names are made anew each time, which counts as a change.
        ASSERT_EQ(std::tuple(test::describe(), OB->changed), std::tuple(before, OB->nf == 0));
        ASSERT_FALSE(HasFailure()) << round;
    }
}

TEST_F(Garbage, AFaultStopsItAndOfNoFacesNothingStays) {
    test::addCube();
    OB->faces[5].q[3].p = nullptr;
    OB->faces[0].q = nullptr;
    EXPECT_FALSE(collectGarbage(*OB));
    EXPECT_EQ(shown.log.back(), "message!|fault in mesh|V->p==0");
    EXPECT_EQ(OB->nf, 6);
    for (int i = 0; i < OB->nf; ++i) OB->faces[i].q = nullptr;
    OB->curvertex = 0;
    EXPECT_TRUE(collectGarbage(*OB));
    EXPECT_EQ(std::tuple(OB->np, OB->npmax, OB->curvertex), std::tuple(0, 0, -1));
    EXPECT_EQ(std::tuple(OB->ng, OB->nmat, OB->materials[0].color), std::tuple(1, 1, 0xffffffu));
    EXPECT_STREQ(OB->groups[0].name, "default");
}

} // namespace
} // namespace polyfab
