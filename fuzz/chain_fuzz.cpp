// SPDX-License-Identifier: GPL-3.0-or-later
// The first bytes make a small mesh, repeated points and short faces included; each further byte is
// an operation on it, any command of the menus with random answers, a drag or a key. After each the
// mesh must pass the check, and the edge tables must agree with themselves; what is written must
// read back.
#include "display/box.h"
#include "display/options.h"
#include "editor/command_table.h"
#include "editor/editor_state.h"
#include "editor/window.h"
#include "formats/obj_reader.h"
#include "formats/obj_writer.h"
#include "fuzz/fuzz_support.h"
#include "mesh/check.h"
#include "mesh/edges.h"
#include "mesh/garbage.h"
#include "tests/support/fake_platform.h"
#include "workbench/state.h"

#include <filesystem>
#include <iterator>
#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace polyfab;
using fuzz::demand;

test::FakePlatform* shown = nullptr;

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

/// Questions of any kind find an answer, also a wrong one; file dialogs are cancelled.
void prepareAnswers(Bytes& bytes) {
    constexpr const char* texts[] = {"1", "0.5", "0", "-1", "90", "2", "nan", "inf", "x", "a name"};
    const auto text = [&] { return texts[bytes.below(static_cast<int>(std::size(texts)))]; };
    shown->dialogAnswers.clear();
    shown->choices.clear();
    for (int i = 0; i < 6; ++i) {
        // The prompts that come again until they get a number or two axes get them in the end.
        const std::string first = i < 4 ? text() : "x";
        shown->dialogAnswers.push_back({first, i < 4 ? text() : "y", text()});
        shown->choices.push_back(static_cast<Choice>(bytes.below(3) - 1));
    }
    shown->escapeAfter = bytes.below(4) == 0 ? bytes.below(8) : -1;
}

void menuCommand(Bytes& bytes) {
    static const std::vector<int> ready = [] {
        std::vector<int> ids;
        for (const Command& command : commandTable()) {
            if (command.handler != nullptr) ids.push_back(command.id);
        }
        return ids;
    }();
    prepareAnswers(bytes);
    handleEvent(
        {.kind = EventKind::command,
         .command = ready[static_cast<std::size_t>(bytes.below(static_cast<int>(ready.size())))]});
    // A list of names takes the window; a key or a click in it, and it closes.
    if (editorState.subview == 0) return;
    handleEvent({.kind = EventKind::keyDown, .key = 'A' + bytes.below(26)});
    handleEvent({.kind = EventKind::keyDown, .key = key::escape});
    handleEvent({.kind = EventKind::keyUp, .key = key::escape});
}

void drag(Bytes& bytes) {
    prepareAnswers(bytes);
    const unsigned buttons = 1U + static_cast<unsigned>(bytes.below(4));
    const auto mouse = [&](unsigned held) {
        handleEvent({.kind = EventKind::mouse,
                     .x = bytes.below(256) * 4,
                     .y = bytes.below(256) * 2,
                     .buttons = held});
    };
    mouse(0);
    for (int i = 0; i < 3; ++i) mouse(buttons);
    mouse(0);
}

void keyStroke(Bytes& bytes) {
    prepareAnswers(bytes);
    const int code = bytes.below(256);
    handleEvent({.kind = bytes.below(2) != 0 ? EventKind::keyDown : EventKind::keyUp, .key = code});
}

constexpr void (*commands[])(Bytes&) = {deleteFace,  repeatCorner,     tidy, collect,   edges,
                                        orient,      writeAndReadBack, drag, keyStroke, menuCommand,
                                        menuCommand, menuCommand};

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
    while (!bytes.empty()) {
        commands[bytes.below(static_cast<int>(std::size(commands)))](bytes);
        const char* const fault = check(*OB);
        demand(fault == nullptr, fault);
    }
    fuzz::emptyMesh();
    handleEvent({.kind = EventKind::destroy});
    demand(storeBlocks() == 0, "blocks stay behind");
    return 0;
}
