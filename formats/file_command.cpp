// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/file_command.h"

#include "display/box.h"
#include "display/view.h"
#include "io/read_file.h"
#include "mesh/check.h"
#include "mesh/mesh.h"
#include "mesh/stale.h"
#include "platform/platform.h"
#include "workbench/long_work.h"
#include "workbench/state.h"

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
    workbench.lastChosen = path.substr(path.find_last_of('/') + 1);
}

void resetForNewMesh(Mesh& mesh) {
    mesh.curface = mesh.curvertex = mesh.curtexcoord = -1;
    forgetCurrentEdge();
    stale.edges = true;
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
