// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the mesh to a Wavefront OBJ text file.
#pragma once

#include <string>

namespace polyfab {

struct Mesh;

/// Numbers count from 1, from the first element.
inline constexpr unsigned objPlain = 0;
/// Numbers count back from the last element: -1 is the last, -np the first point.
inline constexpr unsigned objRelative = 1;
/// Every face line is followed by the positions of its corners. Such a file cannot be read back.
inline constexpr unsigned objTrace = 2;

/// Writes the mesh to `path`, faces ordered by group, then material, then place in the array. When
/// a live face is not selected it asks whether only the selected ones are wanted; points, texture
/// coordinates and normals are always all written. Faces whose group or material does not exist, or
/// with a corner that has no point, are left out.
///
/// `flags` are the bits above. 1 on success, `workbench.wholeMeshWritten` then tells whether all
/// live faces were written. 0 after a message when the file cannot be created or written; an old
/// file is then as it was.
int writeObjFile(const Mesh& mesh, const std::string& path, unsigned flags);

} // namespace polyfab
