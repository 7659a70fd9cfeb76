// SPDX-License-Identifier: GPL-3.0-or-later
// Writing the material libraries of OBJ files.
#pragma once

#include <string>
#include <vector>

namespace polyfab {

struct Mesh;

/// Writes the library that the mesh names beside an OBJ file that was written, unless there is one
/// or none was read: as it was, but with the pictures' paths as they are from there, and with
/// the materials that it does not have. A note tells.
void writeMaterialLibrary(const Mesh& mesh, const std::string& path);

/// Whether the library that the mesh names gives all materials their looks in an OBJ file there:
/// the one that is there, or else the one that writeMaterialLibrary would write, unless pictures
/// would have to come along. Without a name only when no material has a look.
[[nodiscard]] bool libraryHasLooks(const Mesh& mesh, const std::string& path);

/// What a new library for an OBJ file at `path` says of all materials of the mesh, whose pictures
/// have these names, with what else the libraries that were read say of them.
[[nodiscard]] std::string libraryText(const Mesh& mesh, const std::string& path,
                                      const std::vector<std::string>& pictures);

} // namespace polyfab
