// SPDX-License-Identifier: GPL-3.0-or-later
// The first bytes make a small mesh, repeated points and short faces included; each further byte is
// a command on it. After each the mesh must pass the check, and the edge tables must agree with
// themselves; what is written must read back.
#include "formats/obj_reader.h"
#include "formats/obj_writer.h"
#include "fuzz/fuzz_support.h"
#include "mesh/check.h"
#include "mesh/edges.h"
#include "mesh/garbage.h"
#include "tests/support/fake_platform.h"

#include <filesystem>
#include <iterator>
#include <tuple>

namespace {

using namespace polyfab;
using fuzz::demand;

/// The input byte by byte; behind its end come zeros.
class Bytes {
  public:
    Bytes(const std::uint8_t* data, std::size_t size) : next(data), end(data + size) {}
    [[nodiscard]] bool empty() const { return next == end; }
    int below(int n) { return empty() ? 0 : *next++ % n; }

  private:
    const std::uint8_t* next;
    const std::uint8_t* end;
};

void addFace(Bytes& bytes) {
    OB->curgroup = static_cast<std::int16_t>(bytes.below(3));
    OB->curmat = static_cast<std::int16_t>(bytes.below(3));
    const int n = 1 + bytes.below(40);
    const int face = OB->nf;
    OB->newFace(n);
    for (int k = 0; k < n; ++k) {
        const int texcoord = OB->addTexCoord(k, face);
        FaceCorner& corner = OB->faces[face].q[k];
        corner.p = OB->points + bytes.below(OB->np);
        if (k % 2 == 0) corner.d = OB->normals + k % OB->nd;
        if (k % 3 != 0) corner.t = OB->texcoords + texcoord;
    }
    if (n % 4 == 0) --OB->faces[face].n;
}

void makeMesh(Bytes& bytes) {
    const int points = 1 + bytes.below(30);
    for (int i = 0; i < points; ++i) OB->addPoint(i % 5, i / 5, i % 3, false);
    for (int i = 0; i < 3; ++i) {
        OB->addNormal(i, 1, 0);
        const std::string name(1, static_cast<char>('a' + i));
        OB->addGroup(name);
        OB->addMaterial(0, name);
    }
    const int faces = bytes.below(12);
    for (int i = 0; i < faces; ++i) addFace(bytes);
}

Face* pickFace(Bytes& bytes) {
    if (OB->nf == 0) return nullptr;
    Face* const face = OB->faces + bytes.below(OB->nf);
    return face->q == nullptr ? nullptr : face;
}

void deleteFace(Bytes& bytes) {
    if (Face* const face = pickFace(bytes)) face->q = nullptr;
}

void repeatCorner(Bytes& bytes) {
    Face* const face = pickFace(bytes);
    if (face != nullptr && face->n > 1) face->q[0].p = face->q[1 + bytes.below(face->n - 1)].p;
}

void tidy(Bytes& bytes) {
    const Face* const face = pickFace(bytes);
    if (face == nullptr) return;
    const int index = indexIn(OB->faces, face);
    const bool thorough = bytes.below(2) != 0;
    tidyFace(*OB, index, thorough);
    demand(tidyFace(*OB, index, thorough) == 0, "a tidy face is tidied again");
}

void collect(Bytes&) {
    demand(collectGarbage(*OB), "a sound mesh is not collected");
    const auto sizes = [] { return std::tuple(OB->np, OB->nq, OB->nf, OB->nt, OB->nd, OB->ng); };
    const auto before = sizes();
    collectGarbage(*OB);
    demand(sizes() == before, "a second collection finds something");
}

void checkTables() {
    demand(OB->nqEdges == OB->nq && OB->cornerMate != nullptr, "no tables");
    for (int c = 0; c < OB->nq; ++c) {
        const int mate = OB->cornerMate[c];
        demand(mate == -1 || OB->cornerMate[mate] == c, "a corner is not its mate's mate");
        demand((mate == -1) == (OB->cornerSameDir[c] == 255), "a direction without a mate");
    }
}

void edges(Bytes& bytes) {
    checkEdges(*OB, false, bytes.below(2) != 0, true);
    checkTables();
    freeEdges(*OB);
}

void orient(Bytes& bytes) {
    const Face* const face = pickFace(bytes);
    OB->curface = face == nullptr ? -1 : indexIn(OB->faces, face);
    checkEdges(*OB, true, bytes.below(2) != 0, false);
    demand(OB->cornerMate == nullptr, "tables stay behind");
}

void writeAndReadBack(Bytes&) {
    static const std::string path = fuzz::scratchPath(".obj");
    // Faces of fewer corners and lines too long are not read as they are written.
    collectGarbage(*OB);
    demand(writeObjFile(path, objPlain) == 1, "not written");
    const auto counts = [] { return std::tuple(OB->np, OB->nt, OB->nd, OB->nf, OB->nq); };
    const auto before = counts();
    fuzz::emptyMesh();
    const int result = readObjFile(path, false);
    std::filesystem::remove(path);
    demand(result == 1, "what was written does not read back");
    demand(counts() == before, "what was written reads back with other counts");
}

constexpr void (*commands[])(Bytes&) = {deleteFace, repeatCorner,    tidy, collect, edges,
                                        orient,     writeAndReadBack};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static test::FakePlatform shown;
    createMesh();
    Bytes bytes(data, size);
    makeMesh(bytes);
    while (!bytes.empty()) {
        commands[bytes.below(static_cast<int>(std::size(commands)))](bytes);
        const char* const fault = check(*OB);
        demand(fault == nullptr, fault);
    }
    fuzz::emptyMesh();
    demand(storeBlocks() == 1, "blocks stay behind");
    shown.log.clear();
    return 0;
}
