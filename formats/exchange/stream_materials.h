// SPDX-License-Identifier: GPL-3.0-or-later
// Takes the materials of a stream up into the mesh.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace polyfab {

struct MaterialLook;
struct Mesh;
struct StreamView;

/// Adds those that the mesh lacks, with their looks, and returns of each of the stream which one of
/// the mesh it is: one with the same name, colour and look. Where another has the name already, it
/// gets a number behind its own.
[[nodiscard]] std::vector<std::int16_t> addMaterials(Mesh& mesh, const StreamView& view,
                                                     const std::vector<MaterialLook>& looks);

} // namespace polyfab
