// SPDX-License-Identifier: GPL-3.0-or-later
// The material libraries of OBJ files: colours and pictures of the materials that a file names.
#pragma once

#include <string>
#include <vector>

namespace polyfab {

struct Mesh;

/// What stands behind each "mtllib" of the OBJ file that was read last. The reader adds to it;
/// whoever begins to read resets it.
inline std::vector<std::string> namedLibraries;

/// Adds one, unless it is there or there are far too many.
void noteLibrary(const std::string& line);

/// Adds a sentence to what was changed in the OBJ file for each that names no library that could be
/// read.
void holdMissingLibraries(const std::string& path, const std::vector<std::string>& lines);

/// Reads the libraries that an OBJ file names into the looks of the mesh, for its materials from
/// `firstNew` on: they also get the libraries' colours. With `firstNew` 0 there are no other looks.
/// Returns a note on pictures that are not there, or "".
[[nodiscard]] std::string readMaterialLibraries(Mesh& mesh, const std::string& path,
                                                const std::vector<std::string>& lines,
                                                int firstNew);

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
