// SPDX-License-Identifier: GPL-3.0-or-later
// The first byte chooses the format, the rest is a file that the real child imports. It may fail in
// whatever way: the editor goes on with a sound mesh. There is no feedback from the child, so the
// seeds and their crossings do the work.
#include "formats/exchange/import_mesh.h"
#include "formats/exchange/import_process.h"
#include "fuzz/fuzz_support.h"
#include "mesh/check.h"
#include "tests/support/fake_platform.h"
#include "workbench/state.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

using namespace polyfab;
using fuzz::demand;

constexpr const char* suffixes[] = {".stl", ".ply", ".gltf", ".glb", ".dae",
                                    ".fbx", ".obj", ".3ds",  ".x",   ".dxf"};

/// A folder for the file alone: the child reads whatever lies beside it.
std::string scratchFolder() {
    std::string folder = fuzz::scratchPath("");
    std::filesystem::create_directory(folder);
    return folder;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static test::FakePlatform shown;
    static const std::string folder = scratchFolder();
    exchangeProgram = POLYFAB_PROGRAM;
    createMesh();
    if (size == 0) return 0;
    const std::string path = folder + "/mesh" + suffixes[data[0] % std::size(suffixes)];
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(data) + 1, static_cast<std::streamsize>(size - 1));
    shown.escapeAfter = 200; // looks: ten seconds. The library does loop on some files
    importNamedMesh(path, false);
    std::filesystem::remove(path);
    const char* const fault = check(*OB);
    demand(fault == nullptr, fault);
    for (const std::string& line : shown.log) {
        if (!line.starts_with("message")) continue; // notes have names out of the file
        demand(line.find("makes no sense") == std::string::npos, "the child wrote nonsense");
        demand(line.find("mesh fault") == std::string::npos, "the mesh is damaged");
    }
    demand(std::filesystem::is_empty(folder), "the child wrote a file");
    fuzz::emptyMesh();
    resetWorkbench();
    demand(storeBlocks() == 1, "blocks stay behind");
    shown.log.clear();
    return 0;
}
