// SPDX-License-Identifier: GPL-3.0-or-later
// The first bytes make a small mesh, repeated points and short faces included; each further byte is
// an operation on it or lets the random user act. After each the
// mesh must pass the check, and the edge tables must agree with themselves; what is written must
// read back.
#include "display/box.h"
#include "display/options.h"
#include "editor/editor_state.h"
#include "editor/window.h"
#include "formats/obj/obj_reader.h"
#include "formats/obj/obj_writer.h"
#include "fuzz/fuzz_support.h"
#include "mesh/check.h"
#include "mesh/edges.h"
#include "mesh/faces.h"
#include "mesh/garbage.h"
#include "tests/support/random_mesh.h"
#include "tests/support/random_user.h"
#include "workbench/state.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <iterator>
#include <string>
#include <tuple>

namespace {

using namespace polyfab;
using fuzz::demand;

test::FakePlatform* shown = nullptr;

/// The input byte by byte, or by twos for large numbers; behind its end come zeros.
class Bytes {
  public:
    Bytes(const std::uint8_t* data, std::size_t size) : next(data), end(data + size) {}
    [[nodiscard]] bool empty() const { return next == end; }
    int below(int n) {
        const int low = take();
        return (n > 256 ? low + 256 * take() : low) % n;
    }

  private:
    int take() { return empty() ? 0 : *next++; }

    const std::uint8_t* next;
    const std::uint8_t* end;
};

void makeMesh(Bytes& bytes) {
    const auto below = [&](int n) { return bytes.below(n); };
    const int points = 1 + below(30), faces = below(12);
    test::RandomMesh(below).fill(points, faces, 1 + below(40));
    for (int c = 0; c < OB->nq; c += 3) OB->corners[c].t = nullptr;
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
    shown->escapeAfter = -1; // Escape would end the reading
    workbench.keys = {};
    shown->choices.clear(); // the whole mesh is to be written
    demand(writeObjFile(*OB, path, objPlain) == 1, "not written");
    const auto counts = [] { return std::tuple(OB->np, OB->nt, OB->nd, OB->nf, OB->nq); };
    const auto before = counts();
    fuzz::emptyMesh();
    const int result = readObjFile(*OB, path, false);
    std::filesystem::remove(path);
    demand(result == 1, "what was written does not read back");
    demand(counts() == before, "what was written reads back with other counts");
}

/// A box, a tetrahedron or a bumpy sheet with texture and normals, for others to touch or cut.
void addBody(Bytes& bytes) {
    const int firstPoint = OB->np, firstFace = OB->nf;
    const int kind = bytes.below(3), size = 1 + bytes.below(4);
    const Vec3 at{double(bytes.below(5)), double(bytes.below(5)), double(bytes.below(5))};
    if (kind == 0) {
        test::addCube();
    } else if (kind == 1) {
        for (const int i : {0, 1, 2, 4}) OB->addPoint(i & 1, i >> 1 & 1, i >> 2, false);
        for (const auto& [a, b, c] : {std::array{0, 2, 1}, {0, 1, 3}, {1, 2, 3}, {0, 3, 2}}) {
            test::addFace({firstPoint + a, firstPoint + b, firstPoint + c});
        }
    } else {
        test::addGrid(2 + bytes.below(6), 2 + bytes.below(6));
    }
    for (int i = firstPoint; i < OB->np; ++i) {
        const Vec3 shape = worldPosition(OB->points[i]);
        const double bump = kind == 2 ? 0.02 * bytes.below(16) : 0;
        moveTo(OB->points[i], at + (shape + Vec3{0, 0, bump}) * size);
    }
    const bool isTurned = bytes.below(8) == 0;
    for (int f = firstFace; f < OB->nf; ++f) {
        Face& face = OB->faces[f];
        if (isTurned) std::reverse(face.q, face.q + face.n);
        for (FaceCorner& corner : corners(face)) {
            const int t = kind == 2 ? OB->findOrAddTexCoord(corner.p->x, corner.p->y) : -1;
            corner.t = t < 0 ? nullptr : OB->texcoords + t;
            corner.d = t < 0 || OB->nd == 0 ? nullptr : OB->normals + t % OB->nd;
        }
    }
}

/// A tool that cuts, closes or thins, which a user who tries all commands comes to too seldom.
void cut(Bytes& bytes) {
    constexpr struct {
        int id;
        const char* answer;
    } uses[] = {{394, "a"},    {394, "u"},     {394, "i"}, {394, "d"},  {1035, ""}, {1052, "0"},
                {1052, "4"},   {1056, "5"},    {395, "0"}, {395, "40"}, {403, ""},  {404, ""},
                {405, ""},     {406, "3"},     {407, "7"}, {408, "10"}, {329, "0"}, {329, "60"},
                {1085, "0.1"}, {1085, "1e99"}, {261, ""},  {1037, ""}};
    const auto& [id, answer] = uses[static_cast<std::size_t>(bytes.below(std::size(uses)))];
    const int mode = bytes.below(16);
    shown->dialogAnswers = {{answer, mode % 2 == 0 ? "0" : "0.5"}};
    if (mode < 8) {
        for (int i = 0; i < OB->nf; ++i) OB->faces[i].selected = 1;
    }
    if (mode % 4 == 0 && fitBox(*OB, false)) box.right += (box.left - box.right) * 0.5;
    OB->curvertex = bytes.below(OB->np + 1) - 1;
    OB->curface = bytes.below(OB->nf + 1) - 1;
    shown->escapeAfter = mode == 15 ? bytes.below(8) : -1;
    handleEvent({.kind = EventKind::command, .command = id});
    shown->escapeAfter = -1;
    shown->dialogAnswers.clear();
}

constexpr void (*operations[])(Bytes&) = {deleteFace, repeatCorner,     tidy,    collect, edges,
                                          orient,     writeAndReadBack, addBody, cut};

/// The editor as it is at start-up, with an empty mesh.
void startAnew() {
    resetEditorState();
    displayOptions = {};
    box = {};
    handleEvent({.kind = EventKind::create});
    shown->log.clear();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static test::FakePlatform screen;
    shown = &screen;
    startAnew();
    Bytes bytes(data, size);
    makeMesh(bytes);
    test::RandomUser user(screen, [&](int n) { return bytes.below(n); }, {});
    while (!bytes.empty()) {
        const auto choice = static_cast<std::size_t>(bytes.below(2 * std::size(operations)));
        choice < std::size(operations) ? operations[choice](bytes) : user.act();
        const char* const fault = check(*OB);
        demand(fault == nullptr, fault);
    }
    fuzz::emptyMesh();
    handleEvent({.kind = EventKind::destroy});
    demand(storeBlocks() == 0, "blocks stay behind");
    return 0;
}
