// SPDX-License-Identifier: GPL-3.0-or-later
// From DXF files, in all that they have of surfaces, to the tables of the stream.
#pragma once

#include "formats/exchange/import_stream.h"

#include <string>
#include <string_view>

namespace polyfab {

/// The faces of the file, where its blocks are inserted. A block becomes a group of its name, the
/// rest the group "default"; layers become materials, one for each colour that a layer has, with
/// names that differ: "a", "a 2". Corners at equal positions share a point. A note counts what is
/// no surface.
[[nodiscard]] StreamTables importDxf(const std::string& path);

/// The same of the bytes of a file, which a NUL follows.
[[nodiscard]] StreamTables dxfTables(std::string_view file);

} // namespace polyfab
