// SPDX-License-Identifier: GPL-3.0-or-later
// Everything around a write that does not depend on the format.
#include "formats/exchange/import_mesh.h"
#include "formats/file_command.h"
#include "formats/mesh_files.h"
#include "formats/mesh_formats.h"
#include "formats/obj/library_writer.h"
#include "mesh/mesh.h"
#include "platform/platform.h"
#include "workbench/notes.h"
#include "workbench/recent_files.h"
#include "workbench/state.h"

#include <sys/stat.h>

namespace polyfab {
namespace {

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

/// What is done when the mesh was written to the current file.
void noteWritten(Mesh& mesh, const Format& format, bool readable) {
    noteRecentFile(workbench.fileName, false);
    settleMark(mesh);
    if (workbench.wholeMeshWritten && readable) {
        workbench.home = {workbench.fileName, std::string(format.suffix), ""};
    }
}

/// Writes the mesh to the file, whose name is the current one, and settles the marks. False: the
/// file is as it was.
bool writeTo(Mesh& mesh, const std::string& chosen, const Format& format, Write* write) {
    // An OBJ file may have any suffix.
    if (chosen.size() <= 4 || (&format != &objFormat && !endsIn(chosen, format.suffix))) {
        complain("wrong suffix for this type of file", chosen);
        return false;
    }
    Busy busy("");
    const Written written = write(mesh, chosen);
    busy.end();
    if (written == Written::no) {
        complain("I tried to write to this file but it didn't work", workbench.fileName);
    }
    if (written == Written::yes) noteWritten(mesh, format, !endsIn(chosen, ".obj#"));
    return written == Written::yes;
}

/// Saves with a library where one is needed for how the materials look.
WithLooks savedWithLooks(const Mesh& mesh, const std::string& chosen, Wanted wanted) {
    const bool needed = looksUntold(mesh, objFileOf(chosen)) > 0;
    return needed ? saveWithLooks(mesh, chosen, wanted) : WithLooks::refused;
}

Written saveObjAs(Mesh& mesh, const std::string& chosen) {
    const WithLooks done = savedWithLooks(mesh, chosen, Wanted::asked);
    if (done == WithLooks::refused) return objFormat.saveAs(mesh, chosen);
    return done == WithLooks::saved ? Written::yes : Written::no;
}

void askAndWrite(const Format& format, Write* write) {
    const auto chosen = platform().fileDialog({true,
                                               "file to write mesh to?",
                                               {{format.filter, format.pattern}},
                                               workbench.lastChosen,
                                               objFileOf,
                                               workbench.fileName,
                                               std::string(format.suffix)});
    if (!chosen) return;
    const std::string fileName = workbench.fileName, lastChosen = workbench.lastChosen;
    const HomeFile home = workbench.home;
    setFileName(*chosen);
    workbench.wholeMeshWritten = false;
    if (!writeTo(*OB, *chosen, format, write)) {
        workbench.fileName = fileName;
        workbench.home = home;
        // Scripts are offered what they named last.
        if (platform().isWatched()) workbench.lastChosen = lastChosen;
    }
    updateTitle();
}

std::string toldOf(const HomeFile& file) {
    return "not in the mesh, and so gone from the file: " + file.lost;
}

/// Whether what only the file holds may go.
bool mayLose(const HomeFile& file) {
    return file.lost.empty() || !platform().isWatched()
           || platform().question("do you want to save over this file?",
                                  file.path + "\n" + toldOf(file), Buttons::yesNo, Choice::no)
                  == Choice::yes;
}

/// Writes the whole mesh to the file that it came from.
void saveTo(Mesh& mesh, const HomeFile& home, const Format& format) {
    Busy busy("");
    workbench.wholeMeshWritten = false;
    const WithLooks done =
        &format == &objFormat ? savedWithLooks(mesh, home.path, Wanted::all) : WithLooks::refused;
    const bool written = done == WithLooks::saved
                         || (done == WithLooks::refused && format.save(mesh, home.path) != 0);
    busy.end();
    if (!written) return complain("I tried to write to this file but it didn't work", home.path);
    setFileName(home.path);
    noteWritten(mesh, format, true);
    if (!home.lost.empty() && !platform().isWatched()) note(toldOf(home));
    updateTitle();
}

} // namespace

void writeDxfMeshFile() { askAndWrite(dxfFormat, dxfFormat.write); }

void write3dsMeshFile() { askAndWrite(threeDsFormat, threeDsFormat.write); }

void writeObjMeshFile() { askAndWrite(objFormat, objFormat.write); }

void saveMeshFile() {
    const HomeFile home = workbench.home;
    const Format* const format = formatOf(home.path.empty() ? workbench.fileName : home.format);
    if (home.path.empty()) {
        const Format& asked = format != nullptr ? *format : objFormat;
        return askAndWrite(asked, &asked == &objFormat ? saveObjAs : asked.saveAs);
    }
    if (mayLose(home)) saveTo(*OB, home, *format);
}

} // namespace polyfab
