// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/dxf_writer.h"

#include "formats/file_command.h"
#include "io/print_number.h"
#include "io/save_file.h"
#include "mesh/faces.h"
#include "mesh/mesh.h"
#include "platform/platform.h"
#include "workbench/long_work.h"
#include "workbench/state.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <string>

namespace polyfab {
namespace {

using Corners = std::span<const FaceCorner>;

static_assert(3 * (decimalRoom + 8) < SaveFile::maxRoom); // one corner

/// One coordinate; the group code is the axis (from 1) and the corner (from 0).
char* printField(char* out, char axis, char corner, double value) {
    *out++ = axis;
    *out++ = corner;
    *out++ = '\n';
    out = printF3(out, value);
    *out++ = '\n';
    return out;
}

void writeEntity(SaveFile& file, const FaceCorner& c0, const FaceCorner& c1, const FaceCorner& c2,
                 const FaceCorner& c3) {
    file.append("0\n3DFACE\n8\n0\n");
    char number = '0';
    for (const FaceCorner* corner : {&c0, &c1, &c2, &c3}) {
        char* out = printField(file.room(), '1', number, corner->p->x);
        out = printField(out, '2', number, corner->p->y);
        file.wrote(printField(out, '3', number, corner->p->z));
        ++number;
    }
}

void writeFan(SaveFile& file, Corners c) {
    const std::size_t n = c.size();
    for (std::size_t i = 1; i + 2 < n; i += 2) writeEntity(file, c[0], c[i], c[i + 1], c[i + 2]);
    if (n % 2 != 0) writeEntity(file, c[0], c[n - 2], c[n - 1], c[n - 1]);
}

/// Names the layer of the face just written, behind its last entity: a reader gives that one the
/// material and the others of the fan "material0".
void writeLayer(SaveFile& file, const Mesh& mesh, int material) {
    std::string name = "THE VOID";
    if (material >= 0 && material < mesh.nmat) name = mesh.materials[material].name;
    // A line end inside a name would shift all the pairs that follow.
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
    file.append("8\n" + name + "\n");
}

/// A longer number than that makes a line which readers cut in two.
bool fitsALine(const FaceCorner& corner) {
    const auto fits = [](double value) { return std::fabs(value) < 1e249; };
    return corner.p == nullptr || (fits(corner.p->x) && fits(corner.p->y) && fits(corner.p->z));
}

/// False after a message when a coordinate cannot be written.
bool writeFaces(SaveFile& file, const Mesh& mesh, bool onlySelected, const std::string& path) {
    LoopProgress progress(mesh.nf);
    for (const Face& face : allFaces(mesh)) {
        progress.step();
        if (!isLive(face) || face.n < 3 || (onlySelected && face.selected == 0)) continue;
        const Corners fan = corners(face);
        if (!std::all_of(fan.begin(), fan.end(), fitsALine)) {
            platform().message("a DXF file can't have a coordinate beyond 1e249", path,
                               Icon::exclamation);
            return false;
        }
        const auto hasNoPoint = [](const FaceCorner& corner) { return corner.p == nullptr; };
        if (std::any_of(fan.begin(), fan.end(), hasNoPoint)) {
            workbench.wholeMeshWritten = false;
            continue;
        }
        writeFan(file, fan);
        if (face.mat != 0) writeLayer(file, mesh, face.mat);
    }
    return true;
}

} // namespace

int writeDxfFile(const Mesh& mesh, const std::string& path, Wanted wanted) {
    SaveFile file;
    // The file first: nobody is asked about a file that cannot be made.
    if (!file.open(path)) return 0;
    file.append("0\nSECTION\n2\nENTITIES\n");
    const bool onlySelected = askOnlySelected(mesh, true, wanted);
    workbench.wholeMeshWritten = !onlySelected;
    bool written = writeFaces(file, mesh, onlySelected, path);
    file.append("0\nENDSEC\n0\nEOF\n");
    written = written && file.commit();
    if (written) noteSaved(path, countFaces(mesh, onlySelected));
    if (!written) workbench.wholeMeshWritten = false;
    return written ? 1 : 0;
}

} // namespace polyfab
