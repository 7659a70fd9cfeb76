// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/pack_snapshot.h"

#include "mesh/check.h"
#include "tests/mesh/random_mesh.h"

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

/// Whether all that the columns hold is the same to the last bit.
bool same(const Snapshot& a, const Snapshot& b) {
    bool equal = a.arrays == b.arrays && a.current == b.current
                 && std::strcmp(a.mtllib.data(), b.mtllib.data()) == 0;
    for (std::size_t i = 0; i < Snapshot::columnCount && equal; ++i) {
        const Chunks& left = *a.columns[i];
        const Chunks& right = *b.columns[i];
        equal = left.size() == right.size();
        for (std::size_t k = 0; k < left.size() && equal; ++k) {
            equal = left[k]->size() == right[k]->size()
                    && std::memcmp(left[k]->data(), right[k]->data(), left[k]->size()) == 0;
        }
    }
    return equal;
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
    for (int round = 0; round < 60; ++round) {
        random.fill(1 + random.below(9000), 1 + random.below(3000), 7);
        addOddFigures();
        const SnapshotRef before = takeSnapshot(*OB, nullptr);
        const SnapshotRef after = unpacked(packed(*before));
        ASSERT_NE(after, nullptr);
        ASSERT_TRUE(same(*before, *after)) << "round " << round;
    }
    emptyMesh();
    const SnapshotRef none = takeSnapshot(*OB, nullptr);
    EXPECT_TRUE(same(*none, *unpacked(packed(*none))));
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
