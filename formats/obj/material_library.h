// SPDX-License-Identifier: GPL-3.0-or-later
// The material libraries of OBJ files: colours and pictures of the materials that a file names.
#pragma once

#include "display/material_looks.h"
#include "formats/file_finder.h"

#include <memory>
#include <string>
#include <vector>

namespace polyfab {

struct Mesh;

/// What stands behind each "mtllib" of the OBJ file that was read last. The reader adds to it;
/// whoever begins to read resets it.
inline std::vector<std::string> namedLibraries;

/// Adds one, unless it is there or there are far too many.
void noteLibrary(const std::string& line);

using Libraries = std::vector<std::shared_ptr<const MaterialLibrary>>;

/// The libraries that an OBJ file names in such a line, as far as they are there.
[[nodiscard]] Libraries librariesOf(const std::string& path, const std::string& named);

/// Finds the pictures that a library names.
[[nodiscard]] FileFinder finderOf(const MaterialLibrary& library);

/// Reads the libraries that an OBJ file names into the looks of the mesh, for its materials from
/// `firstNew` on: they also get the libraries' colours. With `firstNew` 0 there are no other looks.
/// What names none that could be read, what they lack and what differs goes to what was changed in
/// the file. Returns a note on pictures that are not there, or "".
[[nodiscard]] std::string readMaterialLibraries(Mesh& mesh, const std::string& path,
                                                const std::vector<std::string>& lines,
                                                int firstNew);

} // namespace polyfab
