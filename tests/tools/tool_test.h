// SPDX-License-Identifier: GPL-3.0-or-later
// What the tests of tools share.
#pragma once

#include "editor/state.h"
#include "mesh/check.h"
#include "tests/mesh/random_mesh.h"

#include <set>
#include <string>
#include <vector>

namespace polyfab::test {

class ToolTest : public MeshTest {
  protected:
    ToolTest() { resetEditorState(); }
    ~ToolTest() override { resetEditorState(); }

    /// A random mesh whose faces lie in some of six parts and six areas.
    void fillWithParts(int points, int faces, int most) {
        random.fill(points, faces, most);
        for (int i = 0; i < 6; ++i) {
            OB->addPart();
            OB->addTextureMapArea();
        }
        const int parts = 1 + random.below(6);
        for (int i = 0; i < OB->nf; ++i) {
            OB->faces[i].prt = static_cast<std::int16_t>(random.below(parts));
            OB->faces[i].tma = static_cast<std::int16_t>(random.below(6));
        }
        shown.log.clear();
    }

    RandomMesh random{20};
};

inline int pointOf(const FaceCorner& corner) { return indexIn(OB->points, corner.p); }

/// The points of a face.
inline std::vector<int> pointsOf(int face) {
    std::vector<int> points;
    for (int k = 0; k < OB->faces[face].n; ++k) points.push_back(pointOf(OB->faces[face].q[k]));
    return points;
}

inline std::set<int> pointSet(int face) {
    const std::vector<int> points = pointsOf(face);
    return {points.begin(), points.end()};
}

/// The numbers of the live faces, or of those that are selected.
inline std::vector<int> liveFaces(bool onlySelected = false) {
    std::vector<int> list;
    for (int i = 0; i < OB->nf; ++i) {
        const Face& face = OB->faces[i];
        if (face.q != nullptr && (face.selected || !onlySelected)) list.push_back(i);
    }
    return list;
}

} // namespace polyfab::test
