// SPDX-License-Identifier: GPL-3.0-or-later
// The looks of materials on their way through the stream: pictures in files beside the mesh, or
// in the stream itself.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace polyfab {

struct MaterialLook;
struct Mesh;
struct StreamTables;
struct StreamView;

/// The look of each material in the stream of this file. `missing` becomes a note on pictures that
/// are not there, or "".
[[nodiscard]] std::vector<MaterialLook> looksIn(const StreamView& view, const std::string& path,
                                                std::string& missing);

/// Whether files of that name's format have pictures, or name them.
[[nodiscard]] bool takesPictures(const std::filesystem::path& target);

/// Adds the looks of the materials to the tables of an export. A picture goes into the stream where
/// the target's format holds it; else the file names it where it lies in the target's folder, or
/// a copy of it that is made in `scratch`, to come beside the target. Formats without pictures get
/// none. May throw std::bad_alloc.
void giveLooks(const Mesh& mesh, StreamTables& tables, const std::filesystem::path& target,
               const std::filesystem::path& scratch);

/// Per material, the name by which a file at `target` finds its picture, or "": where that lies in
/// the target's folder, or a copy of it that is made in `scratch`, to come beside the target.
[[nodiscard]] std::vector<std::string> picturesBeside(const Mesh& mesh,
                                                      const std::filesystem::path& target,
                                                      const std::filesystem::path& scratch);

} // namespace polyfab
