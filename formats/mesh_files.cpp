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
    int (*read)(const std::string& path, bool append);
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

/// Runs the reader that the suffix names, or the OBJ reader where the user wants that.
Outcome dispatchRead(const std::string& path, bool append, Busy& busy) {
    const auto row =
        std::find_if(std::begin(formats), std::end(formats),
                     [&](const Format& format) { return endsIn(path, format.suffix); });
    if (row != std::end(formats)) return row->read(path, append) ? Outcome::read : Outcome::failed;
    if (platform().question("do you want me to read this file as .OBJ?", path, Buttons::yesNo)
        != Choice::yes) {
        busy.end();
        complain("bad suffix", path);
        return Outcome::refused;
    }
    // A file of unknown suffix is appended exactly when the unselected faces are shown grey.
    return readObjFile(path, displayOptions.unselectedGrey) ? Outcome::read : Outcome::failed;
}

/// What a failed read leaves: no geometry, but the names that were there.
void emptyMesh() {
    OB->np = OB->nq = OB->nf = 0;
    OB->settleLostArrays();
}

void readFile(const std::string& path, bool append) {
    setFileName(path);
    if (!meshIsSound("mesh fault before reading")) return;
    collectGarbage(*OB);
    moveProgress();
    forgetCurrentEdge(); // faces and corners have other numbers, also when nothing is read
    stale.edges = true;
    Busy busy("HANG ON WHILE I READ THE FILE IN");
    const Outcome outcome = dispatchRead(path, append, busy);
    if (outcome == Outcome::refused) return;
    tellTooLateToStop();
    if (outcome == Outcome::failed) {
        complain("I tried to read this file but it didn't work", path);
        emptyMesh();
    }
    if (outcome == Outcome::read) noteRecentFile(path, false);
    busy.end();
    // A split appends a face, which is tidied in its turn.
    LoopProgress progress(OB->nf);
    for (int face = 0; face < OB->nf; ++face) {
        progress.step();
        tidyFace(*OB, face, true);
    }
    resetForNewMesh();
    static_cast<void>(meshIsSound("mesh fault after reading"));
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
    readFile(*path, append);
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
int writeObjVariant(const std::string& chosen) {
    const std::string path = objFileOf(chosen);
    workbench.fileName = path;
    if (endsIn(chosen, ".obj#")) {
        if (writeObjFile(path, objTrace)) return 1;
        OB->changed = 1;
        return 0;
    }
    if (endsIn(chosen, ".obj") && writeObjFile(path, objPlain)) return 1;
    if (endsIn(chosen, ".obj-") && writeObjFile(path, objRelative)) return 1;
    (void)writeObjFile(path, objPlain);
    return 1;
}

/// What differs between the three write commands.
struct WriteCommand {
    std::string_view suffix; ///< that a name must have; "": any
    FileFilter filter;
    int (*write)(const std::string& chosen);
};

WrittenFile fileAt(const std::string& path) {
    struct stat found;
    if (::stat(path.c_str(), &found) != 0) return {};
    return {path, found.st_dev, found.st_ino};
}

/// The mesh is unaltered where all of it was written. Where only a part was, and over the file that
/// held all of it, under whatever name, it counts as altered again.
void settleMark() {
    WrittenFile& whole = workbench.wholeFile;
    if (workbench.wholeMeshWritten) {
        OB->changed = 0;
        whole = fileAt(workbench.fileName);
    } else if (!whole.path.empty() && fileAt(whole.path) != whole) {
        OB->changed = 1;
        whole = {};
    }
}

/// Writes the mesh and settles the marks.
void writeTo(const std::string& chosen, const WriteCommand& command) {
    if (chosen.size() <= 4 || !endsIn(chosen, command.suffix)) {
        complain("wrong suffix for this type of file", chosen);
        return;
    }
    Busy busy("");
    const int done = command.write(chosen);
    busy.end();
    if (!done) {
        complain("I tried to write to this file but it didn't work", workbench.fileName);
        return;
    }
    noteRecentFile(workbench.fileName, false);
    settleMark();
}

void writeMeshFile(const WriteCommand& command) {
    const auto chosen = platform().fileDialog(
        {true, "file to write mesh to?", {command.filter}, workbench.lastChosen, objFileOf});
    if (!chosen) return;
    setFileName(*chosen);
    workbench.wholeMeshWritten = false;
    writeTo(*chosen, command);
    updateTitle();
}

} // namespace

void readMeshFile() { askAndRead(false); }

void appendMeshFile() { askAndRead(true); }

void readNamedMeshFile(const std::string& path) {
    readFile(path, false);
    updateTitle();
}

void writeDxfMeshFile() { writeMeshFile({".dxf", {"DXF files", "*.DXF"}, writeDxfFile}); }

void write3dsMeshFile() { writeMeshFile({".3ds", {"3DS files", "*.3DS"}, write3dsFile}); }

void writeObjMeshFile() { writeMeshFile({"", {"OBJ files", "*.OBJ"}, writeObjVariant}); }

} // namespace polyfab
