// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/pack_snapshot.h"

#include "mesh/check.h"
#include "tests/support/mesh_fixture.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace polyfab::test {
namespace {

using PackSnapshot = MeshTest;

std::string packed(const Snapshot& snapshot) {
    ByteWriter out;
    packSnapshot(out, snapshot);
    return out.bytes;
}

/// The snapshot of these bytes, which must be used up; null when they are none.
SnapshotRef unpacked(const std::string& bytes) {
    ByteReader in(bytes);
    SnapshotRef snapshot = unpackSnapshot(in);
    return in.ok() && in.left() == 0 ? snapshot : nullptr;
}

/// Figures of every kind in the points, the corners and the faces of OB.
void addOddFigures() {
    using Limits = std::numeric_limits<double>;
    const double reals[] = {Limits::quiet_NaN(),
                            -Limits::quiet_NaN(),
                            Limits::infinity(),
                            -Limits::infinity(),
                            -0.0,
                            Limits::denorm_min(),
                            Limits::max(),
                            0.1,
                            1e-300};
    for (const double x : reals) OB->addPoint(x, -x, 1 / x, false);
    Face& face = OB->faces[OB->nf - 1];
    face.selected = 255;
    face.kind = 128;
    face.tma = INT16_MIN;
    face.prt = INT16_MAX;
    OB->corners[OB->nq - 1].edgeuse = 255;
    OB->points[0].mark3 = 200;
    OB->materials[0].color = 0xFFFFFFFF;
    std::strcpy(OB->mtllib, "a b.mtl");
}

TEST_F(PackSnapshot, KeepsEveryBit) {
    RandomMesh random(5);
    for (int round = 0; round <= 60; ++round) {
        emptyMesh(); // which is the last case
        if (round < 60) {
            random.fill(1 + random.below(9000), 1 + random.below(3000), 7);
            addOddFigures();
        }
        const MeshBits before = bitsOf(*OB);
        const SnapshotRef read = unpacked(packed(*takeSnapshot(*OB, nullptr)));
        ASSERT_NE(read, nullptr);
        emptyMesh();
        ASSERT_TRUE(restoreSnapshot(*OB, *read, *takeSnapshot(*OB, nullptr)));
        ASSERT_TRUE(bitsOf(*OB) == before) << "round " << round;
    }
}

TEST_F(PackSnapshot, NeitherLessRoomNorALooseReferenceMatters) {
    addCube();
    ASSERT_TRUE(OB->growPoints(100'000, false));
    OB->newFace(3); // corners of no face, which lead to no point in use
    OB->faces[OB->nf - 1].q = nullptr;
    OB->corners[OB->nq - 1].p = OB->points + 50'000;
    const SnapshotRef read = unpacked(packed(*takeSnapshot(*OB, nullptr)));
    ASSERT_NE(read, nullptr);
    ASSERT_TRUE(restoreSnapshot(*OB, *read, *takeSnapshot(*OB, nullptr)));
    EXPECT_EQ(OB->npmax, OB->np + 4096);
    EXPECT_EQ(OB->corners[OB->nq - 1].p, nullptr);
    EXPECT_EQ(check(*OB), nullptr);
}

TEST_F(PackSnapshot, BrokenBytesAreRefusedOrSafe) {
    RandomMesh random(11);
    random.fill(6, 5, 5);
    const std::string whole = packed(*takeSnapshot(*OB, nullptr));
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_EQ(unpacked(whole.substr(0, size)), nullptr) << size;
    }
    const SnapshotRef before = takeSnapshot(*OB, nullptr);
    int accepted = 0;
    for (std::size_t i = 0; i < whole.size() * 8; ++i) {
        std::string bad = whole;
        bad[i / 8] = static_cast<char>(bad[i / 8] ^ 1 << i % 8);
        const SnapshotRef read = unpacked(bad);
        if (read == nullptr) continue;
        ++accepted;
        ASSERT_TRUE(restoreSnapshot(*OB, *read, *takeSnapshot(*OB, nullptr)));
        // Whatever was accepted refers to elements that are there: the check is safe, and so is
        // the way back.
        static_cast<void>(check(*OB));
        ASSERT_TRUE(restoreSnapshot(*OB, *before, *takeSnapshot(*OB, nullptr)));
    }
    EXPECT_GT(accepted, 0); // a coordinate may be any number
    EXPECT_EQ(check(*OB), nullptr);
}

} // namespace
} // namespace polyfab::test
