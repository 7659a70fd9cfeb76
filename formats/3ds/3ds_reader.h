// SPDX-License-Identifier: GPL-3.0-or-later
// Reads 3DS chunk files.
//
// The length of a chunk is taken from the bytes 4 to 7 behind its start, two bytes behind where the
// format and our own writer put it, so that its upper half is the first word of what the chunk
// holds. Of the first chunk only the lower half counts. Files of other programs, and those that
// write3dsFile makes, are "bad 3DS files" to this reader; the import reads them.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace polyfab {

struct Mesh;

/// Reads the file in place of the mesh, or with `append` adds it to the mesh. 1 on success. 0 after
/// a message when the file can't be opened, is no 3DS file, has a bad chunk or finds no room; what
/// was read before that stays in the mesh, which is then sound unless room ran out. Moves the
/// arrays. A file is read up to the length that it begins with, at most 65,535 bytes.
[[nodiscard]] int read3dsFile(Mesh& mesh, const std::string& path, bool append);

/// Adds what the chunk at the start of `bytes` holds to the mesh: a group for each named object,
/// and the points, triangles, materials and their use by the triangles. Null, or the reason why the
/// walk ended early; "" when there was no room, of which a message has told.
[[nodiscard]] const char* add3dsChunks(Mesh& mesh, std::span<const std::uint8_t> bytes);

} // namespace polyfab
