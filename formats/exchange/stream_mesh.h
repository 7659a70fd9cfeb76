// SPDX-License-Identifier: GPL-3.0-or-later
// Takes the tables of a stream up into the mesh.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace polyfab {

struct MaterialLook;
struct Mesh;
struct StreamView;

/// The text with blanks for control characters.
[[nodiscard]] std::string withoutControls(std::string_view text);

/// The name that a group or material of the stream gets in the mesh. Names end up in files with one
/// name a line.
[[nodiscard]] std::string cleanName(std::string_view name);

/// Adds the tables to the mesh, or puts them in its place, with these looks of the materials.
/// Returns "" or why not: the mesh is as it was then, but for one that had no memory while it grew,
/// which is empty. The arrays move.
[[nodiscard]] std::string takeStream(Mesh& mesh, const StreamView& view,
                                     const std::vector<MaterialLook>& looks, bool append);

} // namespace polyfab
