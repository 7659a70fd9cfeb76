// SPDX-License-Identifier: GPL-3.0-or-later
// Everything around a read that does not depend on the format.
#include "formats/mesh_files.h"

#include "display/options.h"
#include "formats/file_command.h"
#include "formats/left_out.h"
#include "formats/mesh_formats.h"
#include "mesh/garbage.h"
#include "mesh/mesh.h"
#include "mesh/stale.h"
#include "platform/platform.h"
#include "workbench/long_work.h"
#include "workbench/recent_files.h"
#include "workbench/state.h"

namespace polyfab {
namespace {

struct Source {
    std::string path;
    bool append;
    const Format* format; ///< null: the user has to say
};

enum class Outcome { read, failed, refused };

/// Runs the reader that the suffix names, or the OBJ reader where the user wants that.
Outcome dispatchRead(Mesh& mesh, Source& source, Busy& busy) {
    if (source.format == nullptr) {
        if (platform().question("do you want me to read this file as .OBJ?", source.path,
                                Buttons::yesNo)
            != Choice::yes) {
            busy.end();
            complain("bad suffix", source.path);
            return Outcome::refused;
        }
        source.format = &objFormat;
        // A file of unknown suffix is appended exactly when the unselected faces are shown grey.
        source.append = displayOptions.unselectedGrey;
    }
    return source.format->read(mesh, source.path, source.append) ? Outcome::read : Outcome::failed;
}

/// What a failed read leaves: no geometry, but the names that were there.
void emptyMesh(Mesh& mesh) {
    mesh.np = mesh.nq = mesh.nf = 0;
    mesh.settleLostArrays();
}

void tidyAll(Mesh& mesh) {
    // A split appends a face, which is tidied in its turn.
    LoopProgress progress(mesh.nf);
    for (int face = 0; face < mesh.nf; ++face) {
        progress.step();
        tidyFace(mesh, face, true);
    }
}

/// Marks what was read in place of the mesh. Where the mesh is only a part of the file, as the
/// reader has it or because it says otherwise, saving does not go there.
void noteRead(const Mesh& mesh, const Source& source) {
    workbench.meshRead = true;
    if (leftOut.lines > 0 || leftOut.elsewhere || mesh.np == 0) return;
    workbench.home = {source.path, std::string(source.format->suffix), leftOut.held};
}

/// The reading itself, and what it leaves.
void readInto(Mesh& mesh, Source& source) {
    const ReadNote readNote(mesh);
    Busy busy("HANG ON WHILE I READ THE FILE IN");
    const Outcome outcome = dispatchRead(mesh, source, busy);
    if (outcome == Outcome::refused) return;
    tellTooLateToStop();
    const bool failed = outcome == Outcome::failed;
    if (failed) complain("I tried to read this file but it didn't work", source.path);
    if (!failed) noteRecentFile(source.path, false);
    busy.end();
    if (failed) emptyMesh(mesh);
    tidyAll(mesh);
    resetForNewMesh(mesh, !source.append);
    if (meshIsSound(mesh, "mesh fault after reading") && !failed) {
        readNote.tell(source.path, source.append);
    }
    if (!failed && !source.append) noteRead(mesh, source);
}

void readFile(Mesh& mesh, const std::string& path, bool append) {
    setFileName(path);
    if (!meshIsSound(mesh, "mesh fault before reading")) return;
    collectGarbage(mesh);
    moveProgress();
    forgetCurrentEdge(); // faces and corners have other numbers, also when nothing is read
    stale.edges = true;
    leftOut = {};
    Source source{path, append, formatOf(path)};
    readInto(mesh, source);
}

void askAndRead(bool append) {
    const auto path = platform().fileDialog({false,
                                             "file to read mesh from?",
                                             {{"all modes", "*.DXF;*.3DS;*.OBJ"},
                                              {"DXF files", "*.DXF"},
                                              {"3DS files", "*.3DS"},
                                              {"OBJ files", "*.OBJ"}},
                                             workbench.lastChosen});
    if (!path) return;
    readFile(*OB, *path, append);
    updateTitle();
}

} // namespace

void readMeshFile() { askAndRead(false); }

void appendMeshFile() { askAndRead(true); }

void readNamedMeshFile(const std::string& path) {
    readFile(*OB, path, false);
    updateTitle();
}

} // namespace polyfab
