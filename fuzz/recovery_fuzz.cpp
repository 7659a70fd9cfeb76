// SPDX-License-Identifier: GPL-3.0-or-later
// The first byte chooses: an even one hands the rest to the reader of recovery files as it is, an
// odd one as what stands between a right head and a right checksum. What is accepted must pass the
// check, and be the same after it was written and read once more.
#include "editor/editor_state.h"
#include "editor/recovery/recovery_file.h"
#include "fuzz/fuzz_support.h"
#include "io/bytes.h"
#include "mesh/check.h"
#include "mesh/pack_snapshot.h"
#include "tests/support/fake_platform.h"
#include "workbench/state.h"

#include <string>
#include <string_view>

namespace {

using namespace polyfab;
using fuzz::demand;

/// A file with this body between its head and its checksum.
std::string asFile(std::string_view body) {
    std::string bytes(recoveryHeadBytes, '\0');
    bytes += body;
    sealRecovery(bytes);
    return bytes;
}

std::string packedMesh() {
    ByteWriter out;
    packSnapshot(out, *takeSnapshot(*OB, nullptr));
    return out.bytes;
}

void bringBack(std::string_view file) {
    RecoveryRecord record;
    if (!unpackRecovery(file, record).empty()) return;
    if (restoreMesh(record)) return;
    restoreEditor(record);
    const char* const fault = check(*OB);
    demand(fault == nullptr, fault);

    const std::string mesh = packedMesh();
    const std::string again =
        packRecovery(recoveryRecord(takeSnapshot(*OB, nullptr), presentPart()));
    RecoveryRecord second;
    demand(unpackRecovery(again, second).empty(), "what was written does not read back");
    fuzz::emptyMesh();
    demand(!restoreMesh(second), "what was written is unsound");
    demand(packedMesh() == mesh, "what was written reads back as another mesh");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static test::FakePlatform shown;
    createMesh();
    view.client = {1024, 512};
    resetView();
    if (size == 0) return 0;
    const std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
    bringBack(data[0] % 2 == 0 ? std::string(rest) : asFile(rest));
    fuzz::emptyMesh();
    resetWorkbench();
    demand(storeBlocks() == 1, "blocks stay behind");
    shown.log.clear();
    return 0;
}
