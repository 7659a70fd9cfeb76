// SPDX-License-Identifier: GPL-3.0-or-later
// Writing the material libraries of OBJ files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace polyfab {

struct Mesh;

/// Writes the library that the mesh names beside an OBJ file that was written, unless there is one
/// or none was read: as it was, but with the pictures' paths as they are from there, and with
/// the materials that it does not have. A note tells.
void writeMaterialLibrary(const Mesh& mesh, const std::string& path);

/// How many materials of the mesh an OBJ file there would not bring back as they look, with the
/// library that the mesh names: the one that is there, or else the one that writeMaterialLibrary
/// would write, unless pictures would have to come along.
[[nodiscard]] std::int64_t looksUntold(const Mesh& mesh, const std::string& path);

/// What a library is called that is written for an OBJ file.
[[nodiscard]] std::string newLibraryName(const std::string& path);

/// What a new library for an OBJ file at `path` says of all materials of the mesh, whose pictures
/// have these names, with what else the libraries that were read say of them.
[[nodiscard]] std::string libraryText(const Mesh& mesh, const std::string& path,
                                      const std::vector<std::string>& pictures);

} // namespace polyfab
