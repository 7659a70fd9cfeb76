// SPDX-License-Identifier: GPL-3.0-or-later
// Small meshes for the display tests.
#pragma once

#include "mesh/mesh.h"
#include "mesh/store.h"

#include <array>
#include <random>
#include <vector>

namespace polyfab::test {

/// A mesh that gives back its groups too, which the record itself leaves in the store.
struct OwnMesh : Mesh {
    ~OwnMesh() { farfree(&groups); }
};

inline Face* addFace(Mesh& mesh, const std::vector<int>& corners) {
    std::vector<Point*> list;
    for (const int corner : corners) list.push_back(mesh.points + corner);
    return mesh.addFaceByPoints(list.data(), static_cast<int>(list.size()), false);
}

inline void addPoints(Mesh& mesh, const std::vector<std::array<double, 3>>& positions) {
    for (const auto& [x, y, z] : positions) mesh.addPoint(x, y, z, false);
}

/// Faces of 1 to 5 corners on few points, so that edges are shared in all ways; every fifth face is
/// deleted, every third unselected.
inline void fillRandom(Mesh& mesh, std::mt19937& random, int points, int faces) {
    std::uniform_real_distribution<double> position(-3, 5);
    for (int i = 0; i < points; ++i) {
        const double x = position(random);
        const double y = position(random);
        mesh.addPoint(x, y, position(random), false);
    }
    for (int i = 0; i < faces; ++i) {
        std::vector<int> corners(1 + random() % 5);
        for (int& corner : corners)
            corner = static_cast<int>(random() % static_cast<unsigned>(points));
        Face* const face = addFace(mesh, corners);
        if (random() % 5 == 0) face->q = nullptr;
        face->selected = random() % 3 != 0;
    }
}

} // namespace polyfab::test
