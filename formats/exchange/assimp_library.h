// SPDX-License-Identifier: GPL-3.0-or-later
// The Assimp library, opened while the program runs: only the child process of an import or an
// export pays for it, and the editor runs without it.
#pragma once

#include <assimp/cexport.h>
#include <assimp/cimport.h>
#include <assimp/material.h>
#include <assimp/scene.h>

namespace polyfab {

/// The functions of the library that are used, under their own names.
struct AssimpLibrary {
    decltype(&::aiCreatePropertyStore) aiCreatePropertyStore;
    decltype(&::aiSetImportPropertyInteger) aiSetImportPropertyInteger;
    decltype(&::aiImportFileExWithProperties) aiImportFileExWithProperties;
    decltype(&::aiGetErrorString) aiGetErrorString;
    decltype(&::aiGetMaterialString) aiGetMaterialString;
    decltype(&::aiGetMaterialColor) aiGetMaterialColor;
    decltype(&::aiGetMaterialFloatArray) aiGetMaterialFloatArray;
    decltype(&::aiGetExportFormatCount) aiGetExportFormatCount;
    decltype(&::aiGetExportFormatDescription) aiGetExportFormatDescription;
    decltype(&::aiExportSceneEx) aiExportSceneEx;
};

/// The library, which then stays open, or null where it is not installed or is another one.
[[nodiscard]] const AssimpLibrary* openAssimp();

} // namespace polyfab
