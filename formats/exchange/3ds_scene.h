// SPDX-License-Identifier: GPL-3.0-or-later
// From 3DS files, as all programs write them, to the tables of the stream.
#pragma once

#include "formats/exchange/import_stream.h"

#include <cstdint>
#include <span>
#include <string>

namespace polyfab {

/// The triangles of the file. An object becomes a group of its name; in one object, and in those of
/// the same name right behind it, equal points are one. Positions and axes are those of the file.
/// Notes count what is no surface and what is damaged.
[[nodiscard]] StreamTables import3ds(const std::string& path);

/// The same of the bytes of a file.
[[nodiscard]] StreamTables threeDsTables(std::span<const std::uint8_t> bytes);

} // namespace polyfab
