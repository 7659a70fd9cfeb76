// SPDX-License-Identifier: GPL-3.0-or-later
// Everything around a read or a write that does not depend on the format.
#include "formats/mesh_files.h"

#include "display/options.h"
#include "formats/3ds_reader.h"
#include "formats/3ds_writer.h"
#include "formats/dxf_reader.h"
#include "formats/dxf_writer.h"
#include "formats/file_command.h"
#include "formats/obj_reader.h"
#include "formats/obj_writer.h"
#include "mesh/garbage.h"
#include "mesh/mesh.h"
#include "mesh/stale.h"
#include "platform/platform.h"
#include "workbench/long_work.h"
#include "workbench/recent_files.h"
#include "workbench/state.h"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <sys/stat.h>

namespace polyfab {
namespace {

struct Format {
    std::string_view suffix;
    int (*read)(Mesh& mesh, const std::string& path, bool append);
};

constexpr Format formats[] = {{".dxf", readDxfFile}, {".3ds", read3dsFile}, {".obj", readObjFile}};

bool endsIn(std::string_view path, std::string_view suffix) {
    const auto same = [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == b;
    };
    return path.size() >= suffix.size()
           && std::equal(suffix.begin(), suffix.end(), path.end() - std::ssize(suffix),
                         [&](char wanted, char c) { return same(c, wanted); });
}

enum class Outcome { read, failed, refused };

/// Runs the reader that the suffix names, or the OBJ reader where the user wants that. `append`
/// becomes what is done in the end.
Outcome dispatchRead(Mesh& mesh, const std::string& path, bool& append, Busy& busy) {
    const auto row =
        std::find_if(std::begin(formats), std::end(formats),
                     [&](const Format& format) { return endsIn(path, format.suffix); });
    const auto outcome = [](int done) { return done ? Outcome::read : Outcome::failed; };
    if (row != std::end(formats)) return outcome(row->read(mesh, path, append));
    if (platform().question("do you want me to read this file as .OBJ?", path, Buttons::yesNo)
        != Choice::yes) {
        busy.end();
        complain("bad suffix", path);
        return Outcome::refused;
    }
    // A file of unknown suffix is appended exactly when the unselected faces are shown grey.
    append = displayOptions.unselectedGrey;
    return outcome(readObjFile(mesh, path, append));
}

/// What a failed read leaves: no geometry, but the names that were there.
void emptyMesh(Mesh& mesh) {
    mesh.np = mesh.nq = mesh.nf = 0;
    mesh.settleLostArrays();
}

void readFile(Mesh& mesh, const std::string& path, bool append) {
    setFileName(path);
    if (!meshIsSound(mesh, "mesh fault before reading")) return;
    collectGarbage(mesh);
    moveProgress();
    forgetCurrentEdge(); // faces and corners have other numbers, also when nothing is read
    stale.edges = true;
    const ReadNote readNote(mesh);
    Busy busy("HANG ON WHILE I READ THE FILE IN");
    const Outcome outcome = dispatchRead(mesh, path, append, busy);
    if (outcome == Outcome::refused) return;
    tellTooLateToStop();
    if (outcome == Outcome::failed) {
        complain("I tried to read this file but it didn't work", path);
        emptyMesh(mesh);
    }
    if (outcome == Outcome::read) noteRecentFile(path, false);
    busy.end();
    // A split appends a face, which is tidied in its turn.
    LoopProgress progress(mesh.nf);
    for (int face = 0; face < mesh.nf; ++face) {
        progress.step();
        tidyFace(mesh, face, true);
    }
    resetForNewMesh(mesh, !append);
    if (meshIsSound(mesh, "mesh fault after reading") && outcome == Outcome::read) {
        readNote.tell(path, append);
    }
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

/// The two variants of OBJ have a letter behind the suffix which is not part of the file's name.
bool namesVariant(const std::string& chosen) {
    return endsIn(chosen, ".obj-") || endsIn(chosen, ".obj#");
}

std::string objFileOf(const std::string& chosen) {
    return chosen.substr(0, chosen.size() - (namesVariant(chosen) ? 1 : 0));
}

/// 1: the command counts as done (which a plain write does even when it failed; its own message has
/// said so, and the mesh still counts as altered).
int writeObjVariant(Mesh& mesh, const std::string& chosen) {
    const std::string path = objFileOf(chosen);
    workbench.fileName = path;
    if (endsIn(chosen, ".obj#")) {
        if (writeObjFile(mesh, path, objTrace)) return 1;
        mesh.changed = 1;
        return 0;
    }
    if (endsIn(chosen, ".obj") && writeObjFile(mesh, path, objPlain)) return 1;
    if (endsIn(chosen, ".obj-") && writeObjFile(mesh, path, objRelative)) return 1;
    (void)writeObjFile(mesh, path, objPlain);
    return 1;
}

/// What differs between the three write commands.
struct WriteCommand {
    std::string_view suffix; ///< that a name must have; "": any
    FileFilter filter;
    int (*write)(Mesh& mesh, const std::string& chosen);
};

WrittenFile fileAt(const std::string& path) {
    struct stat found;
    if (::stat(path.c_str(), &found) != 0) return {};
    return {path, found.st_dev, found.st_ino};
}

/// The mesh is unaltered where all of it was written. Where only a part was, and over the file that
/// held all of it, under whatever name, it counts as altered again.
void settleMark(Mesh& mesh) {
    WrittenFile& whole = workbench.wholeFile;
    if (workbench.wholeMeshWritten) {
        mesh.changed = 0;
        whole = fileAt(workbench.fileName);
    } else if (!whole.path.empty() && fileAt(whole.path) != whole) {
        mesh.changed = 1;
        whole = {};
    }
}

/// Writes the mesh and settles the marks.
void writeTo(Mesh& mesh, const std::string& chosen, const WriteCommand& command) {
    if (chosen.size() <= 4 || !endsIn(chosen, command.suffix)) {
        complain("wrong suffix for this type of file", chosen);
        return;
    }
    Busy busy("");
    const int done = command.write(mesh, chosen);
    busy.end();
    if (!done) {
        complain("I tried to write to this file but it didn't work", workbench.fileName);
        return;
    }
    noteRecentFile(workbench.fileName, false);
    settleMark(mesh);
}

void writeMeshFile(const WriteCommand& command) {
    const auto chosen = platform().fileDialog(
        {true, "file to write mesh to?", {command.filter}, workbench.lastChosen, objFileOf});
    if (!chosen) return;
    setFileName(*chosen);
    workbench.wholeMeshWritten = false;
    writeTo(*OB, *chosen, command);
    updateTitle();
}

} // namespace

void readMeshFile() { askAndRead(false); }

void appendMeshFile() { askAndRead(true); }

void readNamedMeshFile(const std::string& path) {
    readFile(*OB, path, false);
    updateTitle();
}

void writeDxfMeshFile() {
    writeMeshFile({".dxf", {"DXF files", "*.DXF"}, [](Mesh& mesh, const std::string& path) {
                       return writeDxfFile(mesh, path);
                   }});
}

void write3dsMeshFile() { writeMeshFile({".3ds", {"3DS files", "*.3DS"}, write3dsFile}); }

void writeObjMeshFile() { writeMeshFile({"", {"OBJ files", "*.OBJ"}, writeObjVariant}); }

} // namespace polyfab
