// SPDX-License-Identifier: GPL-3.0-or-later
// The formats that are read and written in this process, by the suffixes of their files.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace polyfab {

struct Mesh;

/// What became of a write. After `told` the command counts as done all the same: the message of the
/// writer has said all.
enum class Written : std::uint8_t { no, told, yes };

using Write = Written(Mesh& mesh, const std::string& chosen);

struct Format {
    std::string_view suffix;
    const char* filter; ///< of its dialog: description
    const char* pattern;
    int (*read)(Mesh& mesh, const std::string& path, bool append);
    Write* write;  ///< as its write command does
    Write* saveAs; ///< as saving does under a name that it asks for
    /// Writes all of the mesh, and its numbers as exactly as the format can; 0: it did not work.
    int (*save)(Mesh& mesh, const std::string& path);
};

extern const Format dxfFormat, threeDsFormat, objFormat;

/// The format that the name's suffix stands for, in capitals or not, or null.
[[nodiscard]] const Format* formatOf(std::string_view path);

/// Whether the path ends in this, which is in lower case, in whatever case.
[[nodiscard]] bool endsIn(std::string_view path, std::string_view suffix);

/// The file that choosing this name for an OBJ file writes: the two variants have a letter behind
/// the suffix which is not part of it.
[[nodiscard]] std::string objFileOf(const std::string& chosen);

} // namespace polyfab
