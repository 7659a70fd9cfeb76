// SPDX-License-Identifier: GPL-3.0-or-later
// Files that are rather for import than for the readers of our own formats, and the offer to take
// them there.
#pragma once

#include "platform/platform.h"

#include <string>
#include <vector>

namespace polyfab {

/// The formats of other programs that are met most.
inline constexpr const char* commonFormats =
    "*.STL;*.PLY;*.GLTF;*.GLB;*.DAE;*.DXF;*.FBX;*.OBJ;*.3DS;*.X;*.X3D;*.3MF";

/// Whether the pattern has the suffix of the file, in capitals or not.
[[nodiscard]] bool hasSuffixOf(const std::string& pattern, const std::string& path);

/// Whether import reads files of this suffix.
[[nodiscard]] bool isImportable(const std::string& path);

/// These filters, and in a window one more before them: whatever can be read in one way or other.
[[nodiscard]] std::vector<FileFilter> withReadable(std::vector<FileFilter> filters);

/// Whether the file begins with what no text holds. False when it can't be read.
[[nodiscard]] bool isBinary(const std::string& path);

/// Whether the first chunk of the file is all of it, as other programs write 3DS files.
[[nodiscard]] bool isOrdinary3ds(const std::string& path);

/// Asks whether to import the file; `why` is a sentence about it, or "". In a headless run nobody
/// is asked: a note says that import reads it.
[[nodiscard]] bool offerImport(const std::string& path, const std::string& why);

} // namespace polyfab
