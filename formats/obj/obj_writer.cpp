// SPDX-License-Identifier: GPL-3.0-or-later
// Faces are put in order by two counting passes, so that the time does not depend on how many
// groups and materials there are.
#include "formats/obj/obj_writer.h"

#include "formats/face_order.h"
#include "formats/file_command.h"
#include "formats/obj/library_writer.h"
#include "formats/obj/obj_lines.h"
#include "io/print_number.h"
#include "io/save_file.h"
#include "mesh/faces.h"
#include "mesh/mesh.h"
#include "mesh/names.h"
#include "platform/platform.h"
#include "workbench/long_work.h"
#include "workbench/notes.h"
#include "workbench/state.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
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

/// The faces in the order of the file, by name where they are `sorted`. A face that is wanted but
/// can't be written takes the mark of the whole mesh with it.
FaceList facesToWrite(const Mesh& mesh, bool onlySelected, bool sorted) {
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
    if (!sorted) return faces;
    faces = sortedBy(faces, mesh.nmat, [&](int i) { return mesh.faces[i].mat; });
    return sortedBy(faces, mesh.ng, [&](int i) { return mesh.faces[i].g; });
}

/// What the reader of the file will not find as it was.
struct Losses {
    std::int64_t rounded = 0;   ///< numbers
    std::int64_t longFaces = 0; ///< in lines that the read commands cut
};

/// The file that is written, and how.
struct Output {
    SaveFile& file;
    const Mesh& mesh;
    unsigned flags;
    LoopProgress progress;
    Losses losses = {};

    [[nodiscard]] bool has(unsigned flag) const { return (flags & flag) != 0; }
};

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

void writeName(const Output& out, std::string_view keyword, const char* name) {
    out.file.append(keyword);
    out.file.append(out.has(objLossless) ? objName(name) : name);
    out.file.append("\n");
}

void writeValues(Output& to, std::string_view keyword, std::initializer_list<double> values) {
    char* out = print(to.file.room(), keyword);
    for (const double value : values) {
        *out++ = ' ';
        out = to.has(objLossless) ? printExact(out, value) : printG6(out, value, 6);
        if (!to.has(objLossless)) to.losses.rounded += !hasSixDigits(value) && std::isfinite(value);
    }
    *out++ = '\n';
    to.file.wrote(out);
    to.progress.step();
}

void writeElements(Output& out) {
    const Mesh& mesh = out.mesh;
    const std::span points(mesh.points, static_cast<std::size_t>(mesh.np));
    const std::span texcoords(mesh.texcoords, static_cast<std::size_t>(mesh.nt));
    const std::span normals(mesh.normals, static_cast<std::size_t>(mesh.nd));
    for (const Point& point : points) writeValues(out, "v", {point.x, point.y, point.z});
    for (const TexCoord& coord : texcoords) writeValues(out, "vt", {coord.u, coord.v});
    for (const Normal& normal : normals) writeValues(out, "vn", {normal.x, normal.y, normal.z});
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

/// Whether each name is there and met first behind those before it.
template <typename Key>
bool meetsInOrder(const FaceList& faces, int names, Key key) {
    int next = 0;
    for (const int face : faces) {
        if (key(face) > next) return false;
        next += key(face) == next;
    }
    return next == names;
}

/// Where the faces alone would bring the names in another order, or not all.
void writeNames(const Output& out, const FaceList& faces) {
    const Mesh& mesh = out.mesh;
    if (!meetsInOrder(faces, mesh.ng, [&](int i) { return mesh.faces[i].g; })) {
        for (int i = 0; i < mesh.ng; ++i) writeName(out, "g ", mesh.groups[i].name);
    }
    if (!meetsInOrder(faces, mesh.nmat, [&](int i) { return mesh.faces[i].mat; })) {
        for (int i = 0; i < mesh.nmat; ++i) writeName(out, "usemtl ", mesh.materials[i].name);
    }
}

void writeFace(Output& out, const Numbering& numbering, const Face& face) {
    constexpr std::size_t longestCorner = 3 * numberRoom;
    static_assert(2 * longestCorner < maxObjLine);
    SaveFile& file = out.file;
    file.append("f");
    std::size_t length = 1;
    bool isLong = false;
    for (const FaceCorner& corner : corners(face)) {
        if (out.has(objLossless) && length > maxObjLine - longestCorner) {
            file.append("\\\n");
            length = 0;
        }
        char* const begin = file.room();
        char* const end = numbering.printCorner(begin, corner);
        file.wrote(end);
        length += static_cast<std::size_t>(end - begin);
        isLong = isLong || length > maxObjLine;
    }
    file.append("\n");
    out.losses.longFaces += isLong;
    if (out.has(objTrace)) writeTrace(file, corners(face));
}

void writeFaces(Output& out, bool onlySelected) {
    const Mesh& mesh = out.mesh;
    const Numbering numbering(mesh, out.has(objRelative));
    const FaceList faces = facesToWrite(mesh, onlySelected, !out.has(objLossless));
    if (out.has(objLossless) && !onlySelected) writeNames(out, faces);
    int group = -1;
    int material = -1;
    for (const int index : faces) {
        out.progress.step();
        const Face& face = mesh.faces[index];
        const bool newGroup = face.g != group;
        if (newGroup) writeName(out, "g ", mesh.groups[face.g].name);
        const bool namesAnew = newGroup && !out.has(objLossless);
        if (face.mat != material || namesAnew) {
            writeName(out, "usemtl ", mesh.materials[face.mat].name);
        }
        group = face.g;
        material = face.mat;
        writeFace(out, numbering, face);
    }
}

/// False when anything could not be written.
bool writeMesh(SaveFile& file, const Mesh& mesh, bool onlySelected, unsigned flags,
               std::string_view library, Losses& losses) try {
    Output out{file, mesh, flags,
               LoopProgress(std::int64_t{mesh.np} + mesh.nt + mesh.nd + mesh.nf)};
    writeHeader(file, mesh);
    if (!library.empty()) writeName(out, "mtllib ", std::string(library).c_str());
    writeElements(out);
    writeFaces(out, onlySelected);
    losses = out.losses;
    return true;
} catch (const std::bad_alloc&) { // the lists of faces
    return false;
}

void noteLosses(const Losses& losses) {
    noteCount(losses.rounded, "{number} {has} more than six digits: export keeps {it}");
    noteCount(losses.longFaces, "{line} {is} longer than 1,023 characters: export parts {it}");
}

void noteUntold(const Mesh& mesh, const std::string& path) try {
    noteCount(looksUntold(mesh, path),
              "{material} {has} a colour or picture that reading does not bring back: export keeps "
              "{it}");
} catch (const std::bad_alloc&) { // the file is written all the same
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
    Losses losses;
    const bool isWhole = writeMesh(file, mesh, onlySelected, flags, mesh.mtllib, losses);
    // Before the file that names it: whenever this ends, what names a library has it.
    if (isWhole) writeMaterialLibrary(mesh, path);
    if (isWhole && file.commit()) {
        noteSaved(path, countFaces(mesh, onlySelected));
        noteLosses(losses);
        noteUntold(mesh, path);
        return 1;
    }
    workbench.wholeMeshWritten = false;
    return fail(path);
}

std::string objName(std::string_view name) {
    std::string text(trimTrailingBlanks(name));
    std::replace_if(text.begin(), text.end(), isBlank, ' ');
    if (text.empty()) return "default";
    // A backslash at the end of the line would make it go on.
    return text.ends_with('\\') ? text + ' ' : text;
}

bool appendObj(SaveFile& file, const Mesh& mesh, bool onlySelected, unsigned flags,
               std::string_view library) {
    Losses none;
    return writeMesh(file, mesh, onlySelected, flags, library, none);
}

} // namespace polyfab
