// SPDX-License-Identifier: GPL-3.0-or-later
// What the tests of tools share.
#pragma once

#include "display/view.h"
#include "mesh/check.h"
#include "tests/support/mesh_fixture.h"
#include "workbench/state.h"

#include <algorithm>

namespace polyfab::test {

class ToolTest : public MeshTest {
  protected:
    ToolTest() { resetWorkbench(); }
    ~ToolTest() override { resetWorkbench(); }

    /// A random mesh whose faces lie in some of six parts.
    void fillWithParts(int points, int faces, int most) {
        random.fill(1 + random.below(points), 1 + random.below(faces), most);
        for (int i = 0; i < 6; ++i) OB->addPart();
        const int parts = 1 + random.below(6);
        for (int i = 0; i < OB->nf; ++i) {
            OB->faces[i].prt = static_cast<std::int16_t>(random.below(parts));
        }
    }

    RandomMesh random{20};
};

/// Adds a face with corners of its own at these positions to OB.
inline Face& addFaceAt(const std::vector<Vec3>& corners) {
    Numbers points;
    for (const Vec3& at : corners) points.push_back(OB->addPoint(at.x, at.y, at.z, false));
    return *addFace(points);
}

/// The numbers of the live faces, or of those that are selected.
inline Numbers liveFaces(bool onlySelected = false) {
    Numbers list;
    for (int i = 0; i < OB->nf; ++i) {
        const Face& face = OB->faces[i];
        if (face.q != nullptr && (face.selected || !onlySelected)) list.push_back(i);
    }
    return list;
}

} // namespace polyfab::test
