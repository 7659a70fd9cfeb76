// SPDX-License-Identifier: GPL-3.0-or-later
// Bit 0 of the first byte reads the rest a second time, appended. What was read must pass the
// check, and what is then written must read back with as many entities as were written.
#include "formats/dxf/dxf_reader.h"
#include "formats/dxf/dxf_writer.h"
#include "fuzz/fuzz_support.h"
#include "mesh/check.h"
#include "tests/support/fake_platform.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace {

using namespace polyfab;
using fuzz::demand;

/// Whether the writer has lines long enough for all coordinates.
bool numbersFit() {
    return std::all_of(OB->points, OB->points + OB->np, [](const Point& point) {
        return std::fabs(point.x) < 1e249 && std::fabs(point.y) < 1e249
               && std::fabs(point.z) < 1e249;
    });
}

int entities() {
    int count = 0;
    for (int i = 0; i < OB->nf; ++i) count += std::max(0, (OB->faces[i].n - 1) / 2);
    return count;
}

void writeAndReadBack() {
    static const std::string path = fuzz::scratchPath(".dxf");
    const bool fits = numbersFit(); // every point has a face: reading ends with a collection
    demand((writeDxfFile(*OB, path) == 1) == fits, fits ? "not written" : "written all the same");
    if (!fits) return;
    const int written = entities();
    fuzz::emptyMesh();
    const int boundaries = readDxfFile(*OB, path, false);
    std::filesystem::remove(path);
    demand(check(*OB) == nullptr, "what was written reads back unsound");
    demand(boundaries == written + 1, "entities get lost");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static test::FakePlatform shown;
    createMesh();
    if (size == 0) return 0;
    const fuzz::MemoryFile file(data + 1, size - 1);
    bool read = readDxfFile(*OB, file.path(), false) != 0;
    if ((data[0] & 1) != 0) read = readDxfFile(*OB, file.path(), true) != 0 && read;
    if (read) {
        const char* const fault = check(*OB);
        demand(fault == nullptr, fault);
        writeAndReadBack();
    }
    fuzz::emptyMesh();
    demand(storeBlocks() == 1, "blocks stay behind");
    shown.log.clear();
    return 0;
}
