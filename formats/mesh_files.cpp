// SPDX-License-Identifier: GPL-3.0-or-later
// Everything around a read or a write that does not depend on the format.
#include "formats/mesh_files.h"

#include "display/view.h"
#include "editor/state.h"
#include "formats/obj_reader.h"
#include "formats/obj_writer.h"
#include "mesh/check.h"
#include "mesh/mesh.h"
#include "platform/platform.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace polyfab {
namespace {

struct Reader {
    std::string_view suffix;
    int (*read)(const std::string& path, bool append); ///< null: not built yet
};

constexpr Reader readers[] = {{".dxf", nullptr}, {".3ds", nullptr}, {".obj", readObjFile}};

bool endsIn(std::string_view path, std::string_view suffix) {
    const auto same = [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == b;
    };
    return path.size() >= suffix.size()
           && std::equal(suffix.begin(), suffix.end(), path.end() - std::ssize(suffix),
                         [&](char wanted, char c) { return same(c, wanted); });
}

/// A message about a file: its path is the text, what happened the title.
void complain(const std::string& what, const std::string& path) {
    platform().message(what, path, Icon::exclamation);
}

/// Shows the fault that the integrity check finds, if any.
bool meshIsSound(const char* title) {
    const char* const fault = check(*OB);
    if (fault != nullptr) platform().message(title, fault, Icon::exclamation);
    return fault == nullptr;
}

void setFileName(const std::string& path) {
    editorState.fileName = path;
    editorState.lastChosen = path.substr(path.find_last_of('/') + 1);
}

/// Holds the busy mark for as long as it lives and takes the busy notice away with it.
class Busy {
  public:
    Busy() { editorState.busy = true; }
    ~Busy() {
        editorState.busy = false;
        platform().showBusy("");
    }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;
};

enum class Outcome { read, failed, refused };

/// Runs the reader that the suffix names, or the OBJ reader where the user wants that.
Outcome dispatchRead(const std::string& path, bool append) {
    const auto row =
        std::find_if(std::begin(readers), std::end(readers),
                     [&](const Reader& reader) { return endsIn(path, reader.suffix); });
    if (row != std::end(readers)) {
        if (row->read != nullptr) return row->read(path, append) ? Outcome::read : Outcome::failed;
        complain("I can't read this kind of file yet", path);
        return Outcome::refused;
    }
    if (platform().question("do you want me to read this file as .OBJ?", path, Buttons::yesNo)
        != Choice::yes) {
        complain("bad suffix", path);
        return Outcome::refused;
    }
    // A file of unknown suffix is appended exactly when the unselected faces are shown grey.
    return readObjFile(path, editorState.showUnselectedGrey) ? Outcome::read : Outcome::failed;
}

/// What a failed read leaves: no geometry, but the names that were there. Where memory ran out an
/// array is lost, and its count must not outlive it.
void emptyMesh() {
    OB->np = 0;
    OB->nq = 0;
    OB->nf = 0;
    if (OB->texcoords == nullptr) OB->nt = 0;
    if (OB->normals == nullptr) OB->nd = 0;
    if (OB->groups == nullptr) OB->ng = 0;
    if (OB->materials == nullptr) OB->nmat = 0;
    if (OB->tmas == nullptr) OB->ntma = 0;
    if (OB->parts == nullptr) OB->nprt = 0;
}

void resetForNewMesh() {
    OB->curface = OB->curvertex = OB->curtexcoord = -1;
    stale.edges = true;
    fitView(*OB);
}

void readFile(const std::string& path, bool append) {
    setFileName(path);
    if (!meshIsSound("mesh fault before reading")) return;
    Outcome outcome = Outcome::refused;
    {
        const Busy busy;
        platform().showBusy("HANG ON WHILE I READ THE FILE IN");
        outcome = dispatchRead(path, append);
    }
    if (outcome == Outcome::refused) return;
    if (outcome == Outcome::failed) {
        complain("I tried to read this file but it didn't work", path);
        emptyMesh();
    }
    resetForNewMesh();
    meshIsSound("mesh fault after reading");
}

void askAndRead(bool append) {
    const auto path = platform().fileDialog({false,
                                             "file to read mesh from?",
                                             {{"all modes", "*.DXF;*.3DS;*.OBJ"},
                                              {"DXF files", "*.DXF"},
                                              {"3DS files", "*.3DS"},
                                              {"OBJ files", "*.OBJ"}},
                                             editorState.lastChosen});
    if (!path) return;
    readFile(*path, append);
    updateTitle();
}

/// 1: the command counts as done (which a plain write does even when it failed; its own message has
/// said so, and the mesh still counts as altered).
int writeObjVariant(std::string& path) {
    if (endsIn(path, ".obj") && writeObjFile(path, objPlain)) return 1;
    if (endsIn(path, ".obj-")) {
        path.pop_back();
        if (writeObjFile(path, objRelative)) return 1;
    }
    if (endsIn(path, ".obj#")) {
        path.pop_back();
        if (writeObjFile(path, objTrace)) return 1;
        OB->changed = 1;
        return 0;
    }
    (void)writeObjFile(path, objPlain);
    return 1;
}

} // namespace

void readMeshFile() { askAndRead(false); }

void appendMeshFile() { askAndRead(true); }

void readNamedMeshFile(const std::string& path) {
    readFile(path, false);
    updateTitle();
}

void writeObjMeshFile() {
    const auto chosen = platform().fileDialog(
        {true, "file to write mesh to?", {{"OBJ files", "*.OBJ"}}, editorState.lastChosen});
    if (!chosen) return;
    if (chosen->size() <= 4) return complain("wrong suffix for this type of file", *chosen);
    std::string path = *chosen;
    editorState.wholeMeshWritten = false;
    int done = 0;
    {
        const Busy busy;
        done = writeObjVariant(path);
    }
    setFileName(path);
    if (!done) {
        complain("I tried to write to this file but it didn't work", path);
    } else if (editorState.wholeMeshWritten) {
        OB->changed = 0;
    }
    updateTitle();
}

} // namespace polyfab
