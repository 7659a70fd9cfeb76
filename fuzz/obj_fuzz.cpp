// SPDX-License-Identifier: GPL-3.0-or-later
// The first byte chooses: bit 0 reads the rest a second time, appended; bits 1-2 are the flags of
// the writer. What was read must pass the check, and what is then written must read back with the
// same counts.
#include "formats/obj_reader.h"
#include "formats/obj_writer.h"
#include "fuzz/fuzz_support.h"
#include "mesh/check.h"
#include "tests/support/fake_platform.h"

#include <algorithm>
#include <filesystem>
#include <tuple>

namespace {

using namespace polyfab;
using fuzz::demand;
using fuzz::emptyMesh;
using fuzz::MemoryFile;

auto counts() { return std::tuple(OB->np, OB->nt, OB->nd, OB->nf, OB->nq); }

/// Whether every face line will be short enough to be read back whole.
bool facesAreShort() {
    return std::all_of(OB->faces, OB->faces + OB->nf, [](const Face& face) { return face.n < 20; });
}

void writeAndReadBack(unsigned flags) {
    static const std::string path = fuzz::scratchPath(".obj");
    demand(writeObjFile(*OB, path, flags) == 1, "not written");
    const auto before = counts();
    const bool comparable = facesAreShort() && (flags & objTrace) == 0;
    emptyMesh();
    const int result = readObjFile(*OB, path, false);
    std::filesystem::remove(path);
    if (!comparable) return;
    demand(result == 1, "what was written does not read back");
    demand(check(*OB) == nullptr, "what was written reads back unsound");
    demand(counts() == before, "what was written reads back with other counts");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static test::FakePlatform shown;
    createMesh();
    if (size == 0) return 0;
    const bool append = (data[0] & 1) != 0;
    const unsigned flags = (data[0] >> 1) & 3;
    const MemoryFile file(data + 1, size - 1);
    bool read = readObjFile(*OB, file.path(), false) == 1;
    if (append) read = readObjFile(*OB, file.path(), true) == 1 && read;
    if (read) {
        const char* const fault = check(*OB);
        demand(fault == nullptr, fault);
        writeAndReadBack(flags);
    }
    emptyMesh();
    demand(storeBlocks() == 1, "blocks stay behind");
    shown.log.clear();
    return 0;
}
