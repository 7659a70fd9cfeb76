// SPDX-License-Identifier: GPL-3.0-or-later
// Everything around a read that does not depend on the format.
#include "formats/mesh_files.h"

#include "display/material_looks.h"
#include "display/options.h"
#include "formats/before_append.h"
#include "formats/exchange/import_mesh.h"
#include "formats/exchange/import_offer.h"
#include "formats/file_command.h"
#include "formats/left_out.h"
#include "formats/mesh_formats.h"
#include "formats/obj/material_library.h"
#include "mesh/faces.h"
#include "mesh/garbage.h"
#include "mesh/mesh.h"
#include "mesh/stale.h"
#include "platform/platform.h"
#include "workbench/long_work.h"
#include "workbench/notes.h"
#include "workbench/recent_files.h"
#include "workbench/state.h"

#include <cstdint>

namespace polyfab {
namespace {

struct Source {
    std::string path;
    bool append;
    const Format* format; ///< null: the user has to say
};

enum class Outcome { read, failed, refused, forImport };

/// Whether a file of a suffix that is not ours shall be read as OBJ. To somebody at the window no
/// binary file is offered as a text.
bool takesAsObj(const std::string& path) {
    if (platform().isWatched() && isBinary(path)) return false;
    return platform().question("do you want me to read this file as .OBJ?", path, Buttons::yesNo,
                               isImportable(path) ? Choice::no : Choice::yes)
           == Choice::yes;
}

Outcome refuse(const std::string& path, Busy& busy) {
    busy.end();
    if (isImportable(path) && offerImport(path, "")) return Outcome::forImport;
    complain("bad suffix", path);
    return Outcome::refused;
}

/// Runs the reader that the suffix names, or the OBJ reader where the user wants that.
Outcome dispatchRead(Mesh& mesh, Source& source, Busy& busy) {
    if (source.format == nullptr) {
        if (!takesAsObj(source.path)) return refuse(source.path, busy);
        source.format = &objFormat;
        // A file of unknown suffix is appended exactly when the unselected faces are shown grey.
        source.append = displayOptions.unselectedGrey;
    }
    return source.format->read(mesh, source.path, source.append) ? Outcome::read : Outcome::failed;
}

/// Whether import shall make more of the file than was made of it.
bool wantsImport(const Source& source, Outcome outcome) {
    const std::string& path = source.path;
    if (leftOut.badLine) return !isBinary(path) && offerImport(path, "");
    if (!leftOut.lines.empty() && outcome == Outcome::read) {
        std::string why;
        for (const std::string& line : leftOut.lines) why += (why.empty() ? "" : "; ") + line;
        return !isBinary(path) && offerImport(path, why);
    }
    const bool ordinary3ds =
        outcome == Outcome::failed && source.format == &threeDsFormat && isOrdinary3ds(path);
    return (ordinary3ds || leftOut.elsewhere) && offerImport(path, "");
}

/// What a failed read leaves: no geometry, but the names that were there.
void emptyMesh(Mesh& mesh) {
    mesh.np = mesh.nq = mesh.nf = 0;
    mesh.settleLostArrays();
}

void tidyAll(Mesh& mesh) {
    // A split appends a face, which is tidied in its turn.
    LoopProgress progress(mesh.nf);
    std::int64_t removed = 0, changed = 0;
    for (int face = 0; face < mesh.nf; ++face) {
        progress.step();
        const bool wasLive = isLive(mesh.faces[face]);
        const int corners = mesh.faces[face].n;
        tidyFace(mesh, face, true);
        const Face& tidied = mesh.faces[face];
        removed += wasLive && !isLive(tidied);
        changed += isLive(tidied) && tidied.n != corners;
    }
    leftOut.change(removed, "{face} of fewer than 3 different corners {was} left out");
    leftOut.change(changed, "{face} {has} repeated corners, which were left out");
}

/// Marks what was read in place of the mesh. Where the mesh is only a part of the file, as the
/// reader has it or because it says otherwise, saving does not go there.
void noteRead(const Mesh& mesh, const Source& source) {
    workbench.meshRead = true;
    if (!leftOut.lines.empty() || leftOut.elsewhere || mesh.np == 0) return;
    workbench.home = {source.path, std::string(source.format->suffix), leftOut.held};
}

/// Gives the materials from `firstNew` on their looks, once the reader is done. Returns a note.
std::string readLooks(Mesh& mesh, const Source& source, Outcome outcome, int firstNew) {
    const bool byName = outcome == Outcome::read && source.format == &objFormat;
    if (byName) {
        return readMaterialLibraries(mesh, source.path, namedLibraries, firstNew);
    }
    if (!source.append) setMaterialLooks(nullptr);
    return "";
}

/// The reading itself, and what it leaves. Whether import is to go on with the file.
bool readInto(Mesh& mesh, Source& source) {
    const BeforeAppend before(mesh);
    const ReadNote readNote(mesh);
    const int materials = mesh.nmat;
    Busy busy("HANG ON WHILE I READ THE FILE IN");
    const Outcome outcome = dispatchRead(mesh, source, busy);
    if (outcome == Outcome::refused || outcome == Outcome::forImport) {
        return outcome == Outcome::forImport;
    }
    tellTooLateToStop();
    const bool failed = outcome == Outcome::failed;
    if (failed) complain("I tried to read this file but it didn't work", source.path);
    if (!failed) noteRecentFile(source.path, false);
    busy.end();
    const bool import = wantsImport(source, outcome);
    if (import && source.append) {
        before.restore(mesh);
    } else if (failed) {
        emptyMesh(mesh);
    }
    const std::string looks = readLooks(mesh, source, outcome, source.append ? materials : 0);
    tidyAll(mesh);
    resetForNewMesh(mesh, !source.append);
    if (meshIsSound(mesh, "mesh fault after reading") && !failed) {
        readNote.tell(source.path, source.append);
    }
    if (!looks.empty()) note(looks);
    if (!failed && !source.append) noteRead(mesh, source);
    return import;
}

void readFile(Mesh& mesh, const std::string& path, bool append) {
    setFileName(path);
    if (!meshIsSound(mesh, "mesh fault before reading")) return;
    collectGarbage(mesh);
    moveProgress();
    forgetCurrentEdge(); // faces and corners have other numbers, also when nothing is read
    stale.edges = true;
    leftOut = {};
    namedLibraries.clear();
    Source source{path, append, formatOf(path)};
    if (readInto(mesh, source)) importNamedMesh(path, source.append);
}

void askAndRead(bool append) {
    const auto path = platform().fileDialog({false, "file to read mesh from?",
                                             withReadable({{"all modes", "*.DXF;*.3DS;*.OBJ"},
                                                           {"DXF files", "*.DXF"},
                                                           {"3DS files", "*.3DS"},
                                                           {"OBJ files", "*.OBJ"}}),
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
