// SPDX-License-Identifier: GPL-3.0-or-later
// What the formats that the library writes do not hold of a mesh.
#pragma once

#include "workbench/notes.h"

#include <filesystem>

namespace polyfab {

struct Mesh;
struct StreamTables;

/// Whether faces of more than 3 corners have to be cut for a file of this name, since its exporter
/// would cut their later corners off.
[[nodiscard]] bool needsTriangles(const std::filesystem::path& target);

/// Sentences on what the file at `target` does not have of the tables that were made of the mesh;
/// none when it has all.
[[nodiscard]] Sentences exportLosses(const Mesh& mesh, const StreamTables& tables,
                                     const std::filesystem::path& target);

} // namespace polyfab
