// SPDX-License-Identifier: GPL-3.0-or-later
// The formats that import and export read and write in this process, where they lose less than the
// library would: the readers and writers are those of the read and write commands, in their
// lossless ways.
#pragma once

#include "workbench/notes.h"

#include <filesystem>
#include <string>

namespace polyfab {

struct Mesh;

[[nodiscard]] bool importsItself(const std::string& path);
[[nodiscard]] bool exportsItself(const std::string& path);

/// Reads a file of such a format in place of the mesh, or adds it. Returns "" or why it could not
/// be read; the mesh is as it was then.
[[nodiscard]] std::string importOwn(Mesh& mesh, const std::string& path, bool append);

/// Writes the live faces, or the selected ones, into files in this folder, the first of which has
/// the name of the target. `chosen` is the name that was chosen for it. `lost` becomes sentences on
/// what the files do not have of the mesh. Returns "" or what went wrong.
[[nodiscard]] std::string exportOwn(const Mesh& mesh, const std::string& chosen,
                                    const std::filesystem::path& folder, bool onlySelected,
                                    Sentences& lost);

} // namespace polyfab
