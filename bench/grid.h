// SPDX-License-Identifier: GPL-3.0-or-later
// The object that the benchmarks work on: a wavy height field of quads split into triangles, with
// texture coordinates and normals, one of each for every point.
#pragma once

#include "mesh/mesh.h"

#include <cstdint>
#include <string>

namespace polyfab::bench {

/// Triangles of the grid made for `wanted`: twice the nearest square.
[[nodiscard]] std::int64_t gridTriangles(std::int64_t wanted);

/// Writes the grid as OBJ (six decimals, "f a/a/a b/b/b c/c/c"), about 100 bytes a triangle. False
/// when the file can't be written.
[[nodiscard]] bool writeGridObj(const std::string& path, std::int64_t triangles);

/// Makes OB the grid, in place of what it held.
void buildGridMesh(std::int64_t triangles);

/// Puts points and faces in random order: the worst that a file can do.
void shuffleMesh(Mesh& mesh);

} // namespace polyfab::bench
