// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/exchange/import_mesh.h"

#include "display/material_looks.h"
#include "formats/exchange/export_losses.h"
#include "formats/exchange/import_offer.h"
#include "formats/exchange/import_process.h"
#include "formats/exchange/import_stream.h"
#include "formats/exchange/own_exchange.h"
#include "formats/exchange/save_exported.h"
#include "formats/exchange/stream_looks.h"
#include "formats/exchange/stream_mesh.h"
#include "formats/file_command.h"
#include "formats/left_out.h"
#include "formats/mesh_formats.h"
#include "formats/obj/material_library.h"
#include "formats/written_parts.h"
#include "io/save_file.h"
#include "mesh/faces.h"
#include "mesh/mesh.h"
#include "platform/platform.h"
#include "workbench/long_work.h"
#include "workbench/notes.h"
#include "workbench/recent_files.h"
#include "workbench/state.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <sys/mman.h>
#include <unistd.h>

namespace polyfab {
namespace {

namespace fs = std::filesystem;

/// Shows why it failed, in words that may come from anywhere.
void explain(const char* what, const std::string& path, const std::string& reason) {
    constexpr std::size_t maxReason = 500;
    std::string text = reason.substr(0, maxReason);
    std::replace(text.begin(), text.end(), '\0', ' ');
    complain(what, path + "\n" + text);
}

// Import.

/// What the child wants to be told, in words that may come from anywhere.
void tellNotes(const StreamView& view) {
    constexpr std::size_t mostNotes = 20, mostBytes = 300;
    for (std::size_t i = 0; i < std::min(mostNotes, view.notes.size()); ++i) {
        note(withoutControls(view.notes[i].substr(0, mostBytes)));
    }
}

/// Returns "" or what went wrong. The mesh is as it was then, but for one that had no memory while
/// it grew. `looks` becomes a note on the looks of its materials.
std::string importFile(Mesh& mesh, const std::string& path, bool append, std::string& looks) try {
    const Busy busy("HANG ON WHILE I IMPORT THE FILE (the Escape key stops it)");
    if (importsItself(path)) {
        const int materials = append ? mesh.nmat : 0;
        std::string reason = importOwn(mesh, path, append);
        if (reason.empty()) looks = readMaterialLibraries(mesh, path, namedLibraries, materials);
        return reason;
    }
    std::vector<char> bytes;
    std::string reason = runExchangeProcess({"import", path}, -1, bytes);
    tellTooLateToStop();
    if (!reason.empty()) return reason;
    StreamView view;
    if (!readStream(bytes, view)) return "what came from the importer makes no sense";
    tellNotes(view);
    if (!view.failure.empty()) return std::string(view.failure);
    return takeStream(mesh, view, looksIn(view, path, looks), append);
} catch (const std::bad_alloc&) {
    return "there is not enough memory";
}

// Export.

/// Numbers the elements of an array that are used, and collects them.
template <typename T, typename Value>
class UsedElements {
  public:
    UsedElements(const T* array, int count, std::vector<Value>& values)
        : first(array), list(values), numbers(static_cast<std::size_t>(count), -1) {}
    std::int32_t number(const T* element, const Value& value) {
        std::int32_t& known = numbers[static_cast<std::size_t>(element - first)];
        if (known < 0) {
            known = static_cast<std::int32_t>(list.size());
            list.push_back(value);
        }
        return known;
    }

  private:
    const T* first;
    std::vector<Value>& list;
    std::vector<std::int32_t> numbers;
};

StreamTables tablesOf(const Mesh& mesh, bool onlySelected) {
    StreamTables tables;
    UsedElements points(mesh.points, mesh.np, tables.points);
    UsedElements texcoords(mesh.texcoords, mesh.nt, tables.texcoords);
    UsedElements normals(mesh.normals, mesh.nd, tables.normals);
    LoopProgress progress(mesh.nf);
    for (const Face& face : allFaces(mesh)) {
        progress.step();
        if (!isLive(face) || face.n < 3 || (onlySelected && face.selected == 0)) continue;
        tables.faces.push_back({face.n, face.g, face.mat});
        for (const auto& [p, d, t, edgeuse, mark] : corners(face)) {
            tables.corners.push_back({points.number(p, {p->x, p->y, p->z}),
                                      t != nullptr ? texcoords.number(t, {t->u, t->v}) : -1,
                                      d != nullptr ? normals.number(d, {d->x, d->y, d->z}) : -1});
        }
    }
    for (int i = 0; i < mesh.ng; ++i) tables.groups.emplace_back(mesh.groups[i].name);
    for (int i = 0; i < mesh.nmat; ++i) {
        tables.materials.emplace_back(mesh.materials[i].name);
        tables.colors.push_back(mesh.materials[i].color);
    }
    return tables;
}

/// A file in memory with the mesh in it, for the child to read; -1 when that fails.
int streamFile(const StreamTables& tables) {
    const int file = ::memfd_create("mesh", MFD_CLOEXEC);
    if (file < 0) return -1;
    moveProgress();
    if (writeStream(file, tables)) return file;
    ::close(file);
    return -1;
}

constexpr const char* noRoom = "there is no room for temporary files";

/// Has the child write the file, in a folder of its own, that is to be at `target`. Returns "" or
/// why it did not.
std::string exportByChild(const Mesh& mesh, const fs::path& written, const fs::path& target,
                          bool onlySelected, Sentences& losses) {
    if (endsIn(target.native(), ".gltf")
        && target.filename().string().find('\\') != std::string::npos) {
        return "a name with a backslash would lead a glTF file to another one than its own buffer";
    }
    StreamTables tables = tablesOf(mesh, onlySelected);
    giveLooks(mesh, tables, target, written.parent_path());
    losses = exportLosses(mesh, tables, target);
    addCount(losses, writtenParts(mesh, onlySelected).loosePoints, loosePointsLost);
    const int input = streamFile(tables);
    if (input < 0) return noRoom;
    std::vector<char> bytes;
    std::string reason = runExchangeProcess({"export", written}, input, bytes);
    tellTooLateToStop();
    ::close(input);
    if (!reason.empty()) return reason;
    StreamView view;
    if (!readStream(bytes, view)) return "what came from the exporter makes no sense";
    return std::string(view.failure);
}

/// Returns "" or why the old file is as it was.
std::string exportFile(const Mesh& mesh, const std::string& chosen, const fs::path& path,
                       bool onlySelected, SaveFile& file, Sentences& losses) try {
    const Busy busy("HANG ON WHILE I EXPORT THE FILE (the Escape key stops it)");
    const ScratchFolder folder;
    if (folder.path.empty()) return noRoom;
    const std::string reason =
        exportsItself(chosen)
            ? exportOwn(mesh, chosen, folder.path, onlySelected, losses)
            : exportByChild(mesh, folder.path / path.filename(), path, onlySelected, losses);
    return reason.empty() ? saveExported(folder.path, path, file) : reason;
} catch (const std::bad_alloc&) {
    return "there is not enough memory";
}

/// Opens the file, asks how much of the mesh is wanted and exports that, with notes. Returns "" or
/// why the old file is as it was.
std::string exportTo(const Mesh& mesh, const std::string& chosen, Wanted wanted,
                     bool& onlySelected) {
    const std::string path = objFileOf(chosen);
    SaveFile file;
    if (!file.open(path)) return "can't open file";
    onlySelected = askOnlySelected(mesh, false, wanted);
    Sentences losses;
    std::string reason = exportFile(mesh, chosen, path, onlySelected, file, losses);
    if (!reason.empty()) return reason;
    noteSaved(path, countFaces(mesh, onlySelected));
    noteAll(losses);
    return "";
}

} // namespace

void importOtherMesh() {
    const auto path = platform().fileDialog(
        {false, "file to import mesh from?",
         withReadable({{"common mesh files", commonFormats}, {"all files", "*"}}),
         workbench.lastChosen});
    if (!path) return;
    const Choice append = platform().question("add it to the mesh? (no: it replaces the mesh)",
                                              *path, Buttons::yesNoCancel);
    if (append != Choice::cancel) importNamedMesh(*path, append == Choice::yes);
}

void importNamedMesh(const std::string& path, bool append) {
    Mesh& mesh = *OB;
    if (!meshIsSound(mesh, "mesh fault before reading")) return;
    leftOut = {};
    namedLibraries.clear();
    const ReadNote readNote(mesh);
    std::string looks;
    const std::string reason = importFile(mesh, path, append, looks);
    if (!reason.empty()) {
        explain("I tried to read this file but it didn't work", path, reason);
        return;
    }
    setFileName(path);
    workbench.meshRead = !append;
    noteRecentFile(path, true);
    resetForNewMesh(mesh, !append);
    if (meshIsSound(mesh, "mesh fault after reading")) readNote.tell(path, append);
    if (!looks.empty()) note(looks);
    updateTitle();
}

void exportOtherMesh() {
    const auto chosen =
        platform().fileDialog({true,
                               "file to export mesh to?",
                               {{"common mesh files", commonFormats}, {"all files", "*"}},
                               workbench.lastChosen,
                               objFileOf,
                               workbench.fileName});
    const Mesh& mesh = *OB;
    if (!chosen || !meshIsSound(mesh, "mesh fault before writing")) return;
    const std::string path = objFileOf(*chosen);
    bool onlySelected = false;
    const std::string reason = exportTo(mesh, *chosen, Wanted::asked, onlySelected);
    if (!reason.empty()) {
        return explain("I tried to write to this file but it didn't work", path, reason);
    }
    if (hasSuffixOf(commonFormats, path)) noteRecentFile(path, true);
}

WithLooks saveWithLooks(const Mesh& mesh, const std::string& chosen, Wanted wanted) try {
    if (countFaces(mesh, false) == 0) return WithLooks::refused;
    bool onlySelected = false;
    const std::string reason = exportTo(mesh, chosen, wanted, onlySelected);
    if (!reason.empty()) {
        note("the materials can't be written: " + reason);
        return reason.ends_with(wasKept) ? WithLooks::refused : WithLooks::failed;
    }
    workbench.fileName = objFileOf(chosen);
    workbench.wholeMeshWritten = !onlySelected;
    return WithLooks::saved;
} catch (const std::bad_alloc&) {
    return WithLooks::failed;
}

} // namespace polyfab
