// SPDX-License-Identifier: GPL-3.0-or-later
// The faces are put in order by two counting passes, so that the time does not depend on how many
// groups and materials there are.
#include "formats/obj_writer.h"

#include "formats/face_order.h"
#include "formats/file_command.h"
#include "io/print_number.h"
#include "io/save_file.h"
#include "mesh/faces.h"
#include "mesh/mesh.h"
#include "platform/platform.h"
#include "workbench/long_work.h"
#include "workbench/state.h"

#include <algorithm>
#include <initializer_list>
#include <new>
#include <span>
#include <string>
#include <string_view>

namespace polyfab {
namespace {

static_assert(8 * numberRoom < SaveFile::maxRoom); // one line of values, or one corner

char* print(char* out, std::string_view text) { return std::copy(text.begin(), text.end(), out); }

/// Whether the face has a name to stand under and a number for every corner.
bool canBeWritten(const Mesh& mesh, const Face& face) {
    if (face.g < 0 || face.g >= mesh.ng || face.mat < 0 || face.mat >= mesh.nmat) return false;
    return std::none_of(face.q, face.q + face.n,
                        [](const FaceCorner& corner) { return corner.p == nullptr; });
}

/// The faces in the order of the file. A face that is wanted but can't be written takes the mark of
/// the whole mesh with it.
FaceList facesToWrite(const Mesh& mesh, bool onlySelected) {
    FaceList faces;
    faces.reserve(static_cast<std::size_t>(mesh.nf));
    for (int i = 0; i < mesh.nf; ++i) {
        const Face& face = mesh.faces[i];
        if (!isLive(face) || (onlySelected && face.selected == 0)) continue;
        if (canBeWritten(mesh, face)) {
            faces.push_back(i);
        } else {
            workbench.wholeMeshWritten = false;
        }
    }
    faces = sortedBy(faces, mesh.nmat, [&](int i) { return mesh.faces[i].mat; });
    return sortedBy(faces, mesh.ng, [&](int i) { return mesh.faces[i].g; });
}

void writeHeader(SaveFile& file, const Mesh& mesh) {
    const auto text = [](int count) { return std::to_string(count); };
    const auto write = [&](int line, const std::string& rest) {
        file.append(objHeader[line]);
        file.append(rest + "\n");
    };
    write(0, "");
    // The second figure is the least of 0 and all corner counts, and so always 0.
    write(1, "  " + text(mesh.nf) + "/0");
    write(2, "  " + text(mesh.np) + "/" + text(mesh.nt) + "/" + text(mesh.nd));
}

void writeName(SaveFile& file, std::string_view keyword, const char* name) {
    file.append(keyword);
    file.append(name);
    file.append("\n");
}

void writeValues(SaveFile& file, std::string_view keyword, std::initializer_list<double> values,
                 bool exact) {
    char* out = print(file.room(), keyword);
    for (const double value : values) {
        *out++ = ' ';
        out = exact ? printExact(out, value) : printG6(out, value, 6);
    }
    *out++ = '\n';
    file.wrote(out);
}

void writeElements(SaveFile& file, const Mesh& mesh, bool exact, LoopProgress& progress) {
    const std::span points(mesh.points, static_cast<std::size_t>(mesh.np));
    const std::span texcoords(mesh.texcoords, static_cast<std::size_t>(mesh.nt));
    const std::span normals(mesh.normals, static_cast<std::size_t>(mesh.nd));
    for (const Point& point : points) {
        progress.step();
        writeValues(file, "v", {point.x, point.y, point.z}, exact);
    }
    for (const TexCoord& coord : texcoords) {
        progress.step();
        writeValues(file, "vt", {coord.u, coord.v}, exact);
    }
    for (const Normal& normal : normals) {
        progress.step();
        writeValues(file, "vn", {normal.x, normal.y, normal.z}, exact);
    }
}

/// The numbers that elements have in the file: counted from 1, or back from the end of the array.
class Numbering {
  public:
    Numbering(const Mesh& from, bool relative)
        : mesh(from), base{relative ? from.np : -1, relative ? from.nt : -1,
                           relative ? from.nd : -1} {}

    char* printCorner(char* out, const FaceCorner& corner) const {
        *out++ = ' ';
        out = printInteger(out, indexIn(mesh.points, corner.p) - base.point);
        if (corner.t == nullptr && corner.d == nullptr) return out;
        *out++ = '/';
        if (corner.t != nullptr) {
            out = printInteger(out, indexIn(mesh.texcoords, corner.t) - base.texcoord);
        }
        if (corner.d == nullptr) return out;
        *out++ = '/';
        return printInteger(out, indexIn(mesh.normals, corner.d) - base.normal);
    }

  private:
    const Mesh& mesh;
    struct {
        int point, texcoord, normal;
    } base;
};

void writeTrace(SaveFile& file, std::span<const FaceCorner> corners) {
    file.append(" ##");
    for (const FaceCorner& corner : corners) {
        char* out = print(file.room(), " / ");
        out = printG6(out, corner.p->x, 0);
        *out++ = ',';
        out = printG6(out, corner.p->y, 0);
        *out++ = ',';
        file.wrote(printG6(out, corner.p->z, 0));
    }
}

void writeFaces(SaveFile& file, const Mesh& mesh, bool onlySelected, unsigned flags,
                LoopProgress& progress) {
    const Numbering numbering(mesh, (flags & objRelative) != 0);
    int group = -1;
    int material = -1;
    for (const int index : facesToWrite(mesh, onlySelected)) {
        progress.step();
        const Face& face = mesh.faces[index];
        if (face.g != group) {
            writeName(file, "g ", mesh.groups[face.g].name);
            material = -1;
        }
        if (face.mat != material) writeName(file, "usemtl ", mesh.materials[face.mat].name);
        group = face.g;
        material = face.mat;
        file.append("f");
        for (const FaceCorner& corner : corners(face)) {
            file.wrote(numbering.printCorner(file.room(), corner));
        }
        file.append("\n");
        if ((flags & objTrace) != 0) writeTrace(file, corners(face));
    }
}

/// False when anything could not be written.
bool writeMesh(SaveFile& file, const Mesh& mesh, bool onlySelected, unsigned flags) try {
    writeHeader(file, mesh);
    if (mesh.mtllib[0] != 0) writeName(file, "mtllib ", mesh.mtllib);
    LoopProgress progress(std::int64_t{mesh.np} + mesh.nt + mesh.nd + mesh.nf);
    writeElements(file, mesh, (flags & objExact) != 0, progress);
    writeFaces(file, mesh, onlySelected, flags, progress);
    return file.commit();
} catch (const std::bad_alloc&) { // the lists of faces
    return false;
}

int fail(const std::string& path) {
    platform().message("can't open file", path, Icon::exclamation);
    return 0;
}

} // namespace

int writeObjFile(const Mesh& mesh, const std::string& path, unsigned flags, Wanted wanted) {
    SaveFile file;
    // The file first: nobody is asked about a file that cannot be made.
    if (!file.open(path)) return fail(path);
    const bool onlySelected = askOnlySelected(mesh, false, wanted);
    workbench.wholeMeshWritten = !onlySelected;
    if (writeMesh(file, mesh, onlySelected, flags)) {
        noteSaved(path, countFaces(mesh, onlySelected));
        return 1;
    }
    workbench.wholeMeshWritten = false;
    return fail(path);
}

} // namespace polyfab
