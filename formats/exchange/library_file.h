// SPDX-License-Identifier: GPL-3.0-or-later
// Files that the Assimp library works on through operations of ours.
#pragma once

#include <assimp/cfileio.h>

#include <cstdio>

namespace polyfab {

/// The open stream for the library, or null for none.
[[nodiscard]] aiFile* libraryFile(std::FILE* stream);

/// Closes the stream. False when anything that was written to it is lost.
bool closeLibraryFile(aiFile* file);

} // namespace polyfab
