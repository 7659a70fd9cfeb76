// SPDX-License-Identifier: GPL-3.0-or-later
// Every command that works on the mesh, on every sample: it leaves a sound mesh that is marked when
// it was altered, can be undone to the last bit and done again, and heeds Escape only if it says
// so. What it shows on the cube and what becomes of each sample stands in
// tests/golden/commands.txt.
#include "editor/command_table.h"
#include "editor/history/undo.h"
#include "editor/status_line.h"
#include "mesh/garbage.h"
#include "mesh/snapshot.h"
#include "tests/editor/window_fixture.h"
#include "tests/support/golden_text.h"

namespace polyfab::test {
namespace {

/// A strip of quads that ends where it began; with an odd number of half turns it has one side.
void addRing(int quads, int halfTurns) {
    for (int i = 0; i < quads; ++i) {
        const double angle = 2 * M_PI * i / quads, tilt = halfTurns * angle / 2;
        for (const double out : {0.75, 1.25}) {
            const double r = 1 + (out - 1) * std::cos(tilt);
            OB->addPoint(r * std::cos(angle), r * std::sin(angle), (out - 1) * std::sin(tilt),
                         false);
        }
    }
    for (int i = 0; i < quads; ++i) {
        const int a = 2 * i, b = (a + 2) % (2 * quads);
        const bool crosses = b == 0 && halfTurns % 2 != 0;
        addFace({a, b + crosses, b + !crosses, a + 1});
    }
}

/// The cube in two groups, materials, parts and areas, with a normal and texture coordinates.
void addDressedCube() {
    addCube();
    for (const char* name : {"lid", "lid"}) OB->addGroup(name), OB->addMaterial(0xFF0000, name);
    OB->addNormal(0, 0, 1), OB->addPart(), OB->addTextureMapArea();
    for (int c = 0; c < OB->nq; ++c) {
        OB->corners[c].d = OB->normals;
        OB->corners[c].t = OB->texcoords + OB->addTexCoord(c / 4 * 0.1, c % 4 * 0.25);
    }
    for (int f = 0; f < 4; ++f) {
        Face& face = OB->faces[f];
        face.g = face.mat = static_cast<std::int16_t>(f % 3);
        face.prt = face.tma = f == 0;
    }
}

void readSample(const char* name) {
    const std::string path = std::string(POLYFAB_SAMPLES) + "/" + name + ".obj";
    handleEvent({.kind = EventKind::drop, .paths = {path}});
}

constexpr struct {
    const char* name;
    void (*build)();
} samples[] = {
    {"cube", addDressedCube},
    {"empty", [] {}},
    {"gear", [] { readSample("gear"); }},
    {"shell", [] { readSample("shell"); }},
    {"moebius", [] { addRing(9, 1); }},
    {"fan",
     [] {
         for (int i = 0; i < 7; ++i) OB->addPoint(std::cos(i), std::sin(i), i == 0 ? 2 : 0, false);
         for (int i = 2; i < 7; ++i) addFace({0, 1, i}); // on one edge
     }},
    {"inside out and twice",
     [] {
         addCube();
         for (int f = 0; f < 6; ++f) std::reverse(OB->faces[f].q, OB->faces[f].q + 4);
         addCube();
     }},
    {"no numbers",
     [] {
         addGrid(3, 3);
         OB->points[5].x = nan, OB->points[6].y = infinity, OB->points[10].z = -1e308;
     }},
    {"degenerate",
     [] {
         addGrid(4, 1);
         for (const Numbers& face :
              {Numbers{0, 1, 2}, {3}, {4, 4}, {0, 1, 0, 5}, {1, 1, 1, 1}, {6, 7, 2, 1}}) {
             addFace(face);
         }
     }},
    {"half deleted",
     [] {
         addGrid(4, 4);
         for (int f = 0; f < 16; f += 3) OB->faces[f].q = nullptr;
     }},
    {"half selected",
     [] {
         addRing(8, 0);
         for (int f = 0; f < 8; ++f) OB->faces[f].selected = f > 3;
     }},
    {"nothing selected",
     [] {
         addDressedCube();
         for (int f = 0; f < 6; ++f) OB->faces[f].selected = 0;
     }},
    {"random", [] { RandomMesh(8).fill(12, 14, 6); }},
};

/// Points, faces, those that are live and those that are selected; the current face and that of the
/// current edge; a sum over what each live face is made of.
std::string digest() {
    double sum = 0;
    int live = 0, selected = 0;
    for (const Description& face : describe()) {
        ++live;
        selected += face.selected != 0;
        double weight = 1 + face.prt + 2 * face.tma + 0.5 * face.selected
                        + static_cast<double>(face.group.size() + 3 * face.material.size());
        for (const auto& [x, y, z, u, d] : face.corners) {
            sum += weight * (x + 2 * y + 3 * z + 4 * u + 5 * d);
            weight += 1;
        }
    }
    char text[120];
    std::snprintf(text, sizeof text, " %d/%d/%d/%d %d/%d ", OB->np, OB->nf, live, selected,
                  OB->curface, workbench.currentEdgeFace);
    const std::string counts = text;
    std::snprintf(text, sizeof text, "%.2f", std::abs(sum) < 0.005 ? 0 : sum);
    return counts + (std::isnan(sum) ? "nan" : text);
}

/// Whether the command leaves files, modes and the history alone.
bool worksOnTheMesh(const Command& command) {
    const std::set<std::string> others{"&file", "&edit", "&write", "&mode", listMenu, helpMenu};
    return command.handler != nullptr && !others.contains(command.menu);
}

class EveryCommand : public WindowEvents {
  protected:
    EveryCommand() {
        for (const auto& sample : samples) {
            reset();
            sample.build();
            built.push_back(takeSnapshot(*OB, nullptr));
        }
    }
    /// The sample in the editor as at start-up, with a face and an edge that are current.
    void load(const SnapshotRef& sample) {
        reset();
        ASSERT_TRUE(restoreSnapshot(*OB, *sample, *takeSnapshot(*OB, nullptr)));
        fitBox(*OB, false);
        if (isLive(0)) OB->curface = workbench.currentEdgeFace = workbench.currentEdgeCorner = 0;
        OB->changed = 0;
        startHistory();
        countFaces();
        shown.log.clear();
    }
    /// Loads the sample and runs the command with these answers; Escape is down at that look.
    void run(const SnapshotRef& sample, int id, Choice answer, int escapeAfter = -1) {
        ASSERT_NO_FATAL_FAILURE(load(sample));
        shown.choices.assign(5, answer);
        shown.dialogAnswers.assign(5, {}); // as they stand
        if (answer == Choice::yes) shown.dialogAnswers = {{"60"}, {"40"}, {"2"}};
        shown.escapeAfter = escapeAfter;
        command(id);
        if (editorState.subview != 0) key(key::escape);
    }
    void expectSoundAndUndone(const MeshBits& before) {
        ASSERT_EQ(check(*OB), nullptr);
        const MeshBits after = bitsOf(*OB);
        ASSERT_TRUE(after.saved == before.saved || OB->changed);
        const bool step = !undoLabel().empty();
        ASSERT_TRUE(step || after.content == before.content);
        if (!step) return;
        command(undoCommand);
        ASSERT_TRUE(bitsOf(*OB) == before);
        command(redoCommand);
        ASSERT_TRUE(bitsOf(*OB) == after);
    }

    std::vector<SnapshotRef> built;
};

TEST_F(EveryCommand, OnEverySampleIsSoundAndCanBeUndone) {
    constexpr std::pair<const char*, Choice> answers[] = {
        {", no", Choice::no}, {", yes", Choice::yes}, {", cancel", Choice::cancel}};
    std::string all;
    for (const Command& row : commandTable()) {
        const bool works = worksOnTheMesh(row);
        bool asks = works, heeds = false;
        std::string before;
        for (const auto& [word, answer] : answers) {
            if (!asks) break;
            std::string told, line = " ";
            for (std::size_t i = 0; i < built.size(); ++i) {
                const std::string name = samples[i].name;
                // One answer is enough for the large ones.
                if (answer != Choice::no && (name == "gear" || name == "shell")) continue;
                SCOPED_TRACE(row.label + (", " + name) + word);
                ASSERT_NO_FATAL_FAILURE(run(built[i], row.id, answer, 0));
                heeds |= shown.escapeAfter < 0;
                const MeshBits stopped = bitsOf(*OB);
                ASSERT_NO_FATAL_FAILURE(load(built[i]));
                const MeshBits bits = bitsOf(*OB);
                const std::string from = digest();
                ASSERT_NO_FATAL_FAILURE(run(built[i], row.id, answer));
                ASSERT_TRUE(row.escape != Escape::stopsNothing || stopped == bitsOf(*OB));
                for (const std::string& shows : shown.log) {
                    if (i == 0 && !shows.starts_with("title")) told += "    " + shows + "\n";
                }
                if (const std::string now = digest(); now != from) {
                    const std::string item = " " + name + now + ";";
                    if (line.size() + item.size() > 100) told += line + "\n", line = " ";
                    line += item;
                }
                ASSERT_NO_FATAL_FAILURE(expectSoundAndUndone(bits));
            }
            if (line != " ") told += line + "\n";
            asks = told.find("question|") != told.npos || told.find("dialog|") != told.npos;
            if (told != before) {
                all += std::to_string(row.id) + " " + row.label + (asks ? word : "") + "\n" + told;
            }
            before = told;
        }
        EXPECT_TRUE(!works || heeds || row.escape == Escape::stopsNothing) << row.label;
    }
    expectGoldenText("commands.txt", all);
}

} // namespace
} // namespace polyfab::test
