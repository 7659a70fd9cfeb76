// SPDX-License-Identifier: GPL-3.0-or-later
// Reads OBJ files.
#pragma once

#include "formats/obj/obj_lines.h"
#include "formats/obj/obj_reading.h"

#include <string>

namespace polyfab {

struct Mesh;

/// Reads the file in place of the mesh, or with `append` adds it to the mesh, its numbers then
/// counting from what is there. Shows a busy notice while counting and a message for every failure.
/// Returns 1; or 0 when the file can't be opened or read to its end, has a bad line, or finds no
/// room. What was read before a bad line stays, the face of a bad corner included, whose corners
/// from that one on have no point: the integrity check tells.
/// Moves the arrays and trims them. A line behind the last line end is not read.
[[nodiscard]] int readObjFile(Mesh& mesh, const std::string& path, bool append);

/// Adds the file to the mesh, read in this way. Returns "" or why it could not be read; what was
/// read by then is in the mesh. Shows no message but those of the mesh's growth.
[[nodiscard]] std::string addObjFile(Mesh& mesh, const std::string& path, const ObjReading& how);

/// Adds what the lines of the file announce to `counts`. 1; 0 after a message when it can't be
/// read; -1 when the user stops it.
[[nodiscard]] int countObjFile(const std::string& path, ObjCounts& counts);

} // namespace polyfab
