// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/file_command.h"

#include "display/box.h"
#include "display/view.h"
#include "formats/left_out.h"
#include "io/file_name.h"
#include "io/read_file.h"
#include "mesh/check.h"
#include "mesh/faces.h"
#include "mesh/mesh.h"
#include "mesh/stale.h"
#include "platform/platform.h"
#include "workbench/long_work.h"
#include "workbench/notes.h"
#include "workbench/state.h"

#include <cstdio>

namespace polyfab {
void complain(const std::string& what, const std::string& path) {
    platform().message(what, path, Icon::exclamation);
}

bool meshIsSound(const Mesh& mesh, const char* title) {
    const char* const fault = check(mesh);
    if (fault != nullptr) platform().message(title, fault, Icon::exclamation);
    return fault == nullptr;
}

void setFileName(const std::string& path) {
    workbench.fileName = path;
    workbench.home = {};
    workbench.lastChosen = fileNameOf(path);
}

ReadNote::ReadNote(const Mesh& changed)
    : mesh(changed), points(changed.np), faces(countFaces(changed, false)),
      started(platform().workSeconds()) {}

void ReadNote::tell(const std::string& path, bool added) const {
    const double seconds = platform().workSeconds() - started;
    char time[32] = "";
    if (seconds > 0) std::snprintf(time, sizeof time, " in %.2f s", seconds);
    note((added ? "added " : "read ") + fileNameOf(path) + ": "
         + counted(mesh.np - (added ? points : 0), "point") + ", "
         + counted(countFaces(mesh, false) - (added ? faces : 0), "face") + time);
    tellLeftOut();
}

void tellLeftOut() {
    if (!leftOut.missing.empty()) note("left out: " + leftOut.missing);
    for (const std::string& change : leftOut.changed) note(change);
}

void noteSaved(const std::string& path, std::int64_t faces) {
    note("saved " + fileNameOf(path) + ", " + counted(faces, "face"));
}

std::int64_t countFaces(const Mesh& mesh, bool onlySelected) {
    std::int64_t count = 0;
    for (const Face& face : liveFaces(mesh)) count += onlySelected && face.selected == 0 ? 0 : 1;
    return count;
}

void resetForNewMesh(Mesh& mesh, bool replaced) {
    mesh.curface = mesh.curvertex = mesh.curtexcoord = -1;
    forgetCurrentEdge();
    stale.edges = true;
    if (replaced) resetAttitude();
    fitView(mesh);
    fitBox(mesh, false);
}

bool readsOn(const PieceReader& file, Pass pass) {
    /// Where the pass begins and how long it is, in eighths of the work.
    struct Share {
        int begin, length;
    };
    constexpr Share shares[] = {{0, 8}, {0, 1}, {1, 7}};
    const auto& [begin, length] = shares[static_cast<int>(pass)];
    const auto size = static_cast<double>(file.size());
    tellProgress(begin * size + length * static_cast<double>(file.bytesRead()), 8 * size);
    return !abortRequested();
}

Busy::Busy(const char* text) : notice(*text != '\0') {
    workbench.busy = true;
    if (notice) platform().showBusy(text);
}

void Busy::end() {
    if (!workbench.busy) return;
    workbench.busy = false;
    if (notice) platform().showBusy("");
}

} // namespace polyfab
