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

/// The busy mark and the notice of a read; the mark of a write. Both are gone when it ends.
class Busy {
  public:
    explicit Busy(const char* text) : notice(*text != '\0') {
        editorState.busy = true;
        if (notice) platform().showBusy(text);
    }
    ~Busy() { end(); }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;

    void end() {
        if (!editorState.busy) return;
        editorState.busy = false;
        if (notice) platform().showBusy("");
    }

  private:
    bool notice;
};

enum class Outcome { read, failed, refused };

/// Runs the reader that the suffix names, or the OBJ reader where the user wants that.
Outcome dispatchRead(const std::string& path, bool append, Busy& busy) {
    const auto refuse = [&](const char* why) {
        busy.end();
        complain(why, path);
        return Outcome::refused;
    };
    const auto row =
        std::find_if(std::begin(readers), std::end(readers),
                     [&](const Reader& reader) { return endsIn(path, reader.suffix); });
    if (row != std::end(readers)) {
        if (row->read == nullptr) return refuse("I can't read this kind of file yet");
        return row->read(path, append) ? Outcome::read : Outcome::failed;
    }
    if (platform().question("do you want me to read this file as .OBJ?", path, Buttons::yesNo)
        != Choice::yes) {
        return refuse("bad suffix");
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
    Busy busy("HANG ON WHILE I READ THE FILE IN");
    const Outcome outcome = dispatchRead(path, append, busy);
    if (outcome == Outcome::refused) return;
    if (outcome == Outcome::failed) {
        complain("I tried to read this file but it didn't work", path);
        emptyMesh();
    }
    busy.end();
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
    editorState.fileName = path;
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

} // namespace

void readMeshFile() { askAndRead(false); }

void appendMeshFile() { askAndRead(true); }

void readNamedMeshFile(const std::string& path) {
    readFile(path, false);
    updateTitle();
}

void writeObjMeshFile() {
    const auto chosen = platform().fileDialog({true,
                                               "file to write mesh to?",
                                               {{"OBJ files", "*.OBJ"}},
                                               editorState.lastChosen,
                                               objFileOf});
    if (!chosen) return;
    setFileName(*chosen);
    editorState.wholeMeshWritten = false;
    if (chosen->size() <= 4) {
        complain("wrong suffix for this type of file", *chosen);
    } else {
        Busy busy("");
        const int done = writeObjVariant(*chosen);
        busy.end();
        if (!done) {
            complain("I tried to write to this file but it didn't work", editorState.fileName);
        } else if (editorState.wholeMeshWritten) {
            OB->changed = 0;
        }
    }
    updateTitle();
}

} // namespace polyfab
