// SPDX-License-Identifier: GPL-3.0-or-later
// The faces of the mesh as triangles for the rasteriser, made once and kept until faces change.
// What lies near in space lies near in memory: along a Morton curve, so that it does not matter in
// what order a file has its faces and points.
#pragma once

#include "mesh/mesh.h"
#include "picture/triangles.h"

#include <cstdint>
#include <vector>

namespace polyfab {

struct TriangleList {
    static constexpr std::uint32_t none = 0xFFFFFFFF;
    struct Corners {
        std::uint32_t corner[3];
    };

    std::vector<RasterTriangle> triangles;
    bool hasPolygons = false; ///< faces that are cut by where their corners are
    /// Per triangle, places in normalOf, or none where the mesh has no normal; until
    /// findSmoothNormals puts others there.
    std::vector<Corners> normals;
    /// Per triangle, the mesh's texture coordinates, or none; empty when they are not wanted.
    std::vector<Corners> texCoords;
    std::vector<std::uint32_t> pointOf;  ///< the mesh's points by the triangles' numbers
    std::vector<std::uint32_t> normalOf; ///< the mesh's normals that corners have
};

/// Lists the sound faces of three and more corners. May throw std::bad_alloc.
void listTriangles(const Mesh& mesh, TriangleList& list, bool withTexCoords);

/// A number that changes with the corners of the faces: of lists with the same one, all but the
/// positions is the same.
[[nodiscard]] std::uint64_t printOfFaces(const Mesh& mesh);

/// Numbers for a print: their sum tells what was put in, each at its place.
[[nodiscard]] inline std::uint64_t printOf(std::uint64_t place, std::uint64_t value) {
    std::uint64_t print = (value + 0x9E3779B97F4A7C15U) * (2 * place + 0xD6E8FEB86659FD93U);
    print ^= print >> 32;
    return print * 0xD6E8FEB86659FD93U;
}

} // namespace polyfab
