// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace polyfab {

struct Mesh;

/// Asks for a size and a PNG file, and draws the selected faces into it where their texture
/// coordinates are: each in a thin tint of its material's colour, with black lines around it. A
/// note tells how many; the mesh stays. `meshFile` gives the file's name.
void drawTextureMap(const Mesh& mesh, const std::string& meshFile);

} // namespace polyfab
