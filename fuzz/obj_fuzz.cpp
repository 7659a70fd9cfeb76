// SPDX-License-Identifier: GPL-3.0-or-later
// The first byte chooses: bit 0 reads the rest a second time, appended; bits 1-2 are the flags of
// the writer. Bit 0 of the second byte imports. What was read must pass the check, and what is then
// written must read back with the same counts; what was imported must come back to the bit.
#include "formats/obj/obj_reader.h"
#include "formats/obj/obj_writer.h"
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

bool add(const std::string& path, const ObjReading& how) {
    const std::string reason = addObjFile(*OB, path, how);
    demand(reason.empty() || reason == "a line is bad" || reason == "it can't be read", "not read");
    return reason.empty();
}

std::string whole() {
    std::string text;
    const auto bytes = [&](const auto* values, int count) {
        text.append(reinterpret_cast<const char*>(values),
                    sizeof *values * static_cast<unsigned>(count));
    };
    for (int i = 0; i < OB->np; ++i) bytes(&OB->points[i].x, 3);
    for (int i = 0; i < OB->nt; ++i) bytes(&OB->texcoords[i].u, 2);
    for (int i = 0; i < OB->nd; ++i) bytes(&OB->normals[i].x, 3);
    for (int i = 0; i < OB->ng; ++i) text += OB->groups[i].name + std::string("\n");
    for (int i = 0; i < OB->nmat; ++i) text += OB->materials[i].name + std::string("\n");
    for (int i = 0; i < OB->nf; ++i) {
        const Face& face = OB->faces[i];
        bytes(&face.g, 1), bytes(&face.mat, 1), bytes(&face.n, 1);
        for (const FaceCorner* c = face.q; c != face.q + face.n; ++c) {
            const std::ptrdiff_t indices[] = {c->p - OB->points, c->t ? c->t - OB->texcoords : -1,
                                              c->d ? c->d - OB->normals : -1};
            bytes(indices, 3);
        }
    }
    return text;
}

void exportAndImport(unsigned flags) {
    static const std::string path = fuzz::scratchPath(".obj");
    const std::string before = whole();
    if ((flags & objTrace) != 0) return;
    demand(writeObjFile(*OB, path, objLossless | flags, Wanted::all) == 1, "not written");
    emptyMesh();
    const bool read = add(path, objImport);
    std::filesystem::remove(path);
    demand(read && check(*OB) == nullptr, "what was exported is not imported");
    demand(whole() == before, "what was exported is imported as something else");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static test::FakePlatform shown;
    createMesh();
    if (size < 2) return 0;
    const bool append = (data[0] & 1) != 0;
    const unsigned flags = (data[0] >> 1) & 3;
    const bool imports = (data[1] & 1) != 0;
    const MemoryFile file(data + 2, size - 2);
    const auto readFile = [&](bool append) {
        return imports ? add(file.path(), objImport) : readObjFile(*OB, file.path(), append) == 1;
    };
    bool read = readFile(false);
    if (append) read = readFile(true) && read;
    if (read) {
        const char* const fault = check(*OB);
        demand(fault == nullptr, fault);
        imports ? exportAndImport(flags) : writeAndReadBack(flags);
    }
    emptyMesh();
    demand(storeBlocks() == 1, "blocks stay behind");
    shown.log.clear();
    return 0;
}
