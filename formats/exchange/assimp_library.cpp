// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/exchange/assimp_library.h"

#include <dlfcn.h>

namespace polyfab {
namespace {

template <typename Function>
bool find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(::dlsym(library, name));
    return function != nullptr;
}

} // namespace

const AssimpLibrary* openAssimp() {
    static AssimpLibrary assimp;
    // By the name of its binary interface: records laid out as in the headers compiled with.
    void* const library = ::dlopen(POLYFAB_ASSIMP, RTLD_NOW | RTLD_LOCAL);
    const auto found = [&](const char* name, auto& function) {
        return find(library, name, function);
    };
    const bool complete =
        library != nullptr && found("aiCreatePropertyStore", assimp.aiCreatePropertyStore)
        && found("aiSetImportPropertyInteger", assimp.aiSetImportPropertyInteger)
        && found("aiImportFileExWithProperties", assimp.aiImportFileExWithProperties)
        && found("aiGetErrorString", assimp.aiGetErrorString)
        && found("aiGetMaterialString", assimp.aiGetMaterialString)
        && found("aiGetMaterialColor", assimp.aiGetMaterialColor)
        && found("aiGetMaterialFloatArray", assimp.aiGetMaterialFloatArray)
        && found("aiGetExportFormatCount", assimp.aiGetExportFormatCount)
        && found("aiGetExportFormatDescription", assimp.aiGetExportFormatDescription)
        && found("aiExportSceneEx", assimp.aiExportSceneEx);
    return complete ? &assimp : nullptr;
}

} // namespace polyfab
