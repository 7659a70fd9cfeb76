// SPDX-License-Identifier: GPL-3.0-or-later
// From the scenes of the Assimp library to the tables of the stream and back.
#pragma once

#include "formats/exchange/assimp_library.h"
#include "formats/exchange/import_stream.h"

#include <cstdint>
#include <string>

namespace polyfab {

/// The meshes of the file. One group a node that has any, which bears the node's name; its points,
/// normals and texture coordinates are those of its meshes moved by the matrices of the nodes,
/// equal ones as one. Polygons stay; what has fewer than three corners is left out. `reads` is told
/// how many bytes all files have that were opened so far. Files that the file refers to and does
/// not get are notes.
[[nodiscard]] StreamTables importScene(const AssimpLibrary& assimp, const std::string& path,
                                       void (*reads)(std::uint64_t bytes));

/// Writes the mesh in the format that the suffix names, one node a group. Returns "" or why not.
[[nodiscard]] std::string exportScene(const AssimpLibrary& assimp, const StreamView& mesh,
                                      const std::string& path);

} // namespace polyfab
