// SPDX-License-Identifier: GPL-3.0-or-later
// Snapshots against plain copies of all arrays.
#include "mesh/snapshot.h"

#include "mesh/check.h"
#include "mesh/edges.h"
#include "mesh/garbage.h"
#include "tests/support/mesh_fixture.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>

namespace polyfab::test {
namespace {

/// A strip of `count` faces that have nothing but the last point in common, in a mesh with room
/// for no more than that.
void addFaces(int count) {
    const int base = OB->np;
    for (int i = 0; i < 2 * count + 1; ++i) OB->addPoint(i, -i, 1.0 / (i + 1), false);
    for (int i = 0; i < count; ++i) addFace({base + 2 * i, base + 2 * i + 1, OB->np - 1});
}

class SnapshotTest : public MeshTest {
  protected:
    int below(int n) { return random.below(n); }

    /// Something that a command might do.
    void change() {
        const auto face = [&]() -> Face& { return OB->faces[below(OB->nf)]; };
        const std::function<void()> commands[] = {
            [&] { OB->points[below(OB->np)].x = std::nan(""); },
            [&] { face().selected = static_cast<std::uint8_t>(below(3)); },
            [&] { face().q = nullptr; },
            [&] { addFaces(1 + below(3000)); },
            [&] { OB->nf -= OB->nf / 2; },
            [&] { collectGarbage(*OB); },
            [&] { checkEdges(*OB, false, true, below(2) != 0); },
            [&] { OB->addGroup("g" + std::to_string(below(99))); },
            [&] { OB->curface = below(OB->nf); },
            [&] { OB->addNormal(below(9), 0, 0); },
            [&] { face().n = 1; },
            [&] { OB->mtllib[below(5)] = 'x'; },
            [&] { std::for_each_n(OB->points, OB->np, [](Point& p) { p.y += 1; }); },
        };
        commands[below(13)]();
        if (OB->nf == 0) addFaces(4);
    }

    RandomMesh random{7};
};

TEST_F(SnapshotTest, BringBackWhateverWasThereInAnyOrder) {
    for (int round = 0; round < 40; ++round) {
        random.fill(1 + below(6000), 1 + below(2000), 6);
        std::vector<SnapshotRef> taken;
        std::vector<MeshBits> states;
        for (int i = 0; i < 8; ++i) {
            if (i > 0) change();
            taken.push_back(takeSnapshot(*OB, i > 0 ? taken.back() : nullptr));
            states.push_back(bitsOf(*OB));
        }
        std::size_t now = taken.size() - 1;
        for (int i = 0; i < 20; ++i) {
            const auto to = static_cast<std::size_t>(below(8));
            ASSERT_TRUE(restoreSnapshot(*OB, *taken[to], *taken[now]));
            ASSERT_TRUE(bitsOf(*OB) == states[to]) << round << ' ' << to << ' ' << now;
            ASSERT_EQ(takeSnapshot(*OB, taken[to]), taken[to]);
            now = to;
        }
    }
}

TEST_F(SnapshotTest, ShareWhatDidNotChange) {
    constexpr int faces = 100'000;
    addFaces(faces);
    ASSERT_TRUE(OB->growPoints(OB->np, true));
    for (int i = 0; i < faces; ++i) OB->faces[i].selected = i % 3 == 0;
    const SnapshotRef first = takeSnapshot(*OB, nullptr);
    struct Row {
        const char* what;
        void (*change)();
        Difference difference;
        int least, most; ///< bytes
    };
    static const auto select = [](auto which) {
        for (int i = 0; i < faces; ++i) OB->faces[i].selected = which(i);
    };
    const Row rows[] = {
        {"nothing", [] {}, Difference::none, 0, 0},
        {"the selection", [] { select([](int i) { return i % 2 != 0; }); }, Difference::content,
         faces, faces * 11 / 10},
        {"the same selection of all", [] { select([](int) { return true; }); }, Difference::content,
         100, 2000},
        {"one point", [] { OB->points[77'777].z += 1; }, Difference::content, 1, 40'000},
        {"all x", [] { std::for_each_n(OB->points, OB->np, [](Point& p) { p.x += 1; }); },
         Difference::content, 8 * 2 * faces, 9 * 2 * faces},
        {"edges' uses", [] { checkEdges(*OB, false, true, false); }, Difference::scratch, 1,
         3 * faces * 11 / 10},
        {"room", [] { ASSERT_TRUE(OB->growPoints(2 * OB->np, false)); }, Difference::scratch, 0, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const std::size_t before = snapshotBytes();
        row.change();
        const SnapshotRef taken = takeSnapshot(*OB, first);
        EXPECT_EQ(differenceOf(*taken, *first), row.difference);
        EXPECT_GE(snapshotBytes() - before, static_cast<std::size_t>(row.least));
        EXPECT_LE(snapshotBytes() - before, static_cast<std::size_t>(row.most));
        ASSERT_TRUE(restoreSnapshot(*OB, *first, *taken));
    }
    EXPECT_EQ(takeSnapshot(*OB, first), first);
}

TEST_F(SnapshotTest, ALostArrayComesBackAndMayBeLostAgain) {
    addCube();
    const SnapshotRef sound = takeSnapshot(*OB, nullptr);
    const MeshBits before = bitsOf(*OB);
    farfree(&OB->points); // as a failed growth leaves the mesh
    OB->npmax = 1 << 30;
    const SnapshotRef lost = takeSnapshot(*OB, sound);
    ASSERT_TRUE(restoreSnapshot(*OB, *sound, *lost));
    EXPECT_TRUE(bitsOf(*OB) == before);
    EXPECT_EQ(check(*OB), nullptr);
    ASSERT_TRUE(restoreSnapshot(*OB, *lost, *sound));
    EXPECT_EQ(OB->points, nullptr);
    EXPECT_EQ(OB->npmax, 1 << 30);
    ASSERT_TRUE(restoreSnapshot(*OB, *sound, *lost));
}

TEST_F(SnapshotTest, WithoutMemoryTheMeshStaysAsItWas) {
    addCube();
    const SnapshotRef small = takeSnapshot(*OB, nullptr);
    addFaces(5000); // corners, points and faces have to grow
    const SnapshotRef large = takeSnapshot(*OB, small);
    const MeshBits before = bitsOf(*OB);
    std::vector<void*> blocks;
    for (bool full = false; !full; full = blocks.back() == nullptr) blocks.push_back(farmalloc(1));
    EXPECT_FALSE(restoreSnapshot(*OB, *small, *large));
    EXPECT_TRUE(bitsOf(*OB) == before);
    EXPECT_EQ(shown.log.back(), "message!|farmalloc|I can't get enough memory");
    for (void*& block : blocks) farfreeBlock(&block);
    EXPECT_TRUE(restoreSnapshot(*OB, *small, *large));
}

} // namespace
} // namespace polyfab::test
