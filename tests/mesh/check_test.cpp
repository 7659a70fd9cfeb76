// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/check.h"

#include "tests/support/mesh_fixture.h"

#include <cstdint>
#include <utility>

namespace polyfab {
namespace {

using Check = test::MeshTest;

template <typename T>
T* shifted(T* pointer, std::intptr_t bytes) {
    return reinterpret_cast<T*>(reinterpret_cast<std::intptr_t>(pointer) + bytes);
}

TEST_F(Check, FindsEachFaultAndOnlyThat) {
    const struct {
        void (*damage)(Mesh&);
        const char* fault; // null: sound
    } rows[] = {
        {[](Mesh& m) { m.np = 4096; }, nullptr},
        {[](Mesh& m) { m.np = 4097; }, "OB.np = 4097 out of range, should be 0 to 4096"},
        {[](Mesh& m) { m.nf = -1; }, "OB.nf = -1 out of range, should be 0 to 4096"},
        {[](Mesh& m) { m.ng = 5000; }, nullptr},
        {[](Mesh& m) { m.faces[0].q = shifted(m.corners, -8); },
         "fac.q bad, = (as bytes) -8, not a multiple of 16"},
        {[](Mesh& m) { m.faces[0].q = m.corners + m.nq; },
         "fac.q = 24 out of range, should be 0 to 23"},
        {[](Mesh& m) { m.faces[2].q = m.corners + 22; },
         "fac.n = 26 out of range, should be 0 to 24"},
        {[](Mesh& m) { m.corners[23].p = nullptr; }, "V->p==0"},
        {[](Mesh& m) { m.corners[23].p = m.points + 8; }, "q.p = 8 out of range, should be 0 to 7"},
        {[](Mesh& m) { m.corners[4].p = shifted(m.points, 56 * 3 + 4); },
         "q.p bad, = (as bytes) 172, not a multiple of 56"},
        {[](Mesh& m) { m.corners[4].t = m.texcoords + 1, m.corners[4].p = nullptr; },
         "q.t = 1 out of range, should be 0 to 0"},
        {[](Mesh& m) { m.corners[4].d = reinterpret_cast<Normal*>(24); },
         "q.d = 1 out of range, should be 0 to -1"},
        {[](Mesh& m) { m.faces[1].mat = 1; }, "fac.mat = 1 out of range, should be 0 to 0"},
        {[](Mesh& m) { m.faces[1].tma = -1; }, "fac.tma = -1 out of range, should be 0 to 0"},
        {[](Mesh& m) { m.faces[1].g = 1; }, "fac.g = 1 out of range, should be 0 to 0"},
        {[](Mesh& m) { m.faces[1].prt = 9; }, "fac.prt = 9 out of range, should be 0 to 0"},
        {[](Mesh& m) { m.faces[1] = {nullptr, -7, -7, -7, -7, -7, 0, 0}; }, nullptr},
        {[](Mesh& m) { EXPECT_EQ(m.growFaces(INT32_MAX - 4096, false), 0); },
         "OB.nf = 6 out of range, should be 0 to 0"},
    };
    for (const auto& row : rows) {
        // A record of its own each time: the damage must not outlive the row.
        Mesh mesh;
        Mesh* const kept = std::exchange(OB, &mesh);
        EXPECT_EQ(check(mesh), nullptr);
        test::addCube();
        mesh.addTexCoord(0, 0);
        row.damage(mesh);
        EXPECT_STREQ(check(mesh), row.fault);
        OB = kept;
        farfree(&mesh.groups);
    }
}

} // namespace
} // namespace polyfab
