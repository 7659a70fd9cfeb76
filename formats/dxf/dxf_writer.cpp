// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/dxf/dxf_writer.h"

#include "formats/file_command.h"
#include "formats/written_parts.h"
#include "io/print_number.h"
#include "io/save_file.h"
#include "mesh/faces.h"
#include "mesh/mesh.h"
#include "platform/platform.h"
#include "workbench/long_work.h"
#include "workbench/notes.h"
#include "workbench/state.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace polyfab {
namespace {

using Corners = std::span<const FaceCorner>;

static_assert(3 * (decimalRoom + 8) < SaveFile::maxRoom); // one corner

constexpr const char* head = "0\nSECTION\n2\nENTITIES\n";
constexpr const char* tail = "0\nENDSEC\n0\nEOF\n";

/// What the reader of the file will not find as it was.
struct Losses {
    std::int64_t collapsed = 0; ///< faces whose corners come to lie in one or two places
    std::int64_t cut = 0;       ///< faces
};

using PrintNumber = char*(char* out, double value);

/// One coordinate; the group code is the axis (from 1) and the corner (from 0).
char* printField(char* out, char axis, char corner, double value, PrintNumber* print) {
    *out++ = axis;
    *out++ = corner;
    *out++ = '\n';
    out = print(out, value);
    *out++ = '\n';
    return out;
}

/// An entity as it begins, and with what numbers it goes on.
struct Entity {
    std::string begin;
    PrintNumber* print;
};

const Entity plainEntity{"0\n3DFACE\n8\n0\n", printF3};

void writeEntity(SaveFile& file, const Entity& entity, const FaceCorner& c0, const FaceCorner& c1,
                 const FaceCorner& c2, const FaceCorner& c3) {
    file.append(entity.begin);
    char number = '0';
    for (const FaceCorner* corner : {&c0, &c1, &c2, &c3}) {
        char* out = printField(file.room(), '1', number, corner->p->x, entity.print);
        out = printField(out, '2', number, corner->p->y, entity.print);
        file.wrote(printField(out, '3', number, corner->p->z, entity.print));
        ++number;
    }
}

void writeFan(SaveFile& file, const Entity& entity, Corners c) {
    const std::size_t n = c.size();
    for (std::size_t i = 1; i + 2 < n; i += 2) {
        writeEntity(file, entity, c[0], c[i], c[i + 1], c[i + 2]);
    }
    if (n % 2 != 0) writeEntity(file, entity, c[0], c[n - 2], c[n - 1], c[n - 1]);
}

std::string layerName(const Mesh& mesh, int material) {
    std::string name = "THE VOID";
    if (material >= 0 && material < mesh.nmat) name = mesh.materials[material].name;
    // A line end inside a name would shift all the pairs that follow.
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
    return name;
}

/// Names the layer of the face just written, behind its last entity: a reader gives that one the
/// material and the others of the fan "material0".
void writeLayer(SaveFile& file, const Mesh& mesh, int material) {
    file.append("8\n" + layerName(mesh, material) + "\n");
}

/// The entities of faces of this material, with its colour.
Entity exactEntity(const Mesh& mesh, int material) {
    const bool known = material >= 0 && material < mesh.nmat;
    const std::uint32_t color = known ? mesh.materials[material].color & 0xFFFFFF : defaultColor;
    const std::string name = layerName(mesh, material);
    return {"0\n3DFACE\n8\n" + (name.empty() ? "default" : name) + "\n420\n" + std::to_string(color)
                + "\n",
            printExact};
}

double rounded(double value) { return std::round(value * 1000) / 1000; }

/// Counts a face that three decimals leave without area.
void countCollapsed(Corners corners, Losses& losses) {
    const auto place = [](const FaceCorner& corner) {
        const Point& p = *corner.p;
        return std::array{rounded(p.x), rounded(p.y), rounded(p.z)};
    };
    bool changed = false;
    std::size_t places = 0;
    auto last = place(corners.back());
    for (const FaceCorner& corner : corners) {
        const auto here = place(corner);
        const Point& p = *corner.p;
        changed |= here != std::array{p.x, p.y, p.z};
        places += here != last;
        last = here;
    }
    losses.collapsed += changed && places < 3;
}

/// The numbers that lose something by three decimals.
std::int64_t countRounded(const Mesh& mesh, const WrittenParts& written) {
    std::int64_t count = 0;
    for (std::size_t i = 0; i < written.points.size(); ++i) {
        const Point& p = mesh.points[i];
        if (!written.points[i]) continue;
        count += (rounded(p.x) != p.x) + (rounded(p.y) != p.y) + (rounded(p.z) != p.z);
    }
    return count;
}

/// A longer number than that makes a line which readers cut in two.
bool fitsALine(const FaceCorner& corner) {
    const auto fits = [](double value) { return std::fabs(value) < 1e249; };
    return corner.p == nullptr || (fits(corner.p->x) && fits(corner.p->y) && fits(corner.p->z));
}

bool isWhole(Corners face) {
    return std::none_of(face.begin(), face.end(), [](auto& corner) { return corner.p == nullptr; });
}

/// Calls `write` for each face that can be written, until it gives false.
template <typename Write>
bool forFaces(const Mesh& mesh, bool onlySelected, Losses& losses, Write write) {
    LoopProgress progress(mesh.nf);
    for (const Face& face : allFaces(mesh)) {
        progress.step();
        if (!isLive(face) || face.n < 3 || (onlySelected && face.selected == 0)) continue;
        if (!write(face, corners(face))) return false;
        losses.cut += face.n > 4;
    }
    return true;
}

/// False after a message when a coordinate cannot be written.
bool writeFaces(SaveFile& file, const Mesh& mesh, bool onlySelected, const std::string& path,
                Losses& losses) {
    return forFaces(mesh, onlySelected, losses, [&](const Face& face, Corners fan) {
        if (!std::all_of(fan.begin(), fan.end(), fitsALine)) {
            platform().message("a DXF file can't have a coordinate beyond 1e249", path,
                               Icon::exclamation);
            return false;
        }
        if (!isWhole(fan)) {
            workbench.wholeMeshWritten = false;
            return true;
        }
        countCollapsed(fan, losses);
        writeFan(file, plainEntity, fan);
        if (face.mat != 0) writeLayer(file, mesh, face.mat);
        return true;
    });
}

/// `plain`: with three decimals and no colours.
Sentences lossesOf(const Mesh& mesh, bool onlySelected, const Losses& losses, bool plain) {
    Sentences list;
    const WrittenParts written = writtenParts(mesh, onlySelected);
    addCount(list, plain ? countRounded(mesh, written) : 0,
             "{number} {has} more than three decimals: export keeps {it}");
    addCount(list, losses.collapsed,
             "{face} {has} no area left in three decimals: export keeps {it}");
    addCount(list, losses.cut, "{face} {has} more than 4 corners and {was} cut into 3DFACEs");
    addCount(list, written.groups > 1 ? written.groups : 0,
             "{group} {was} left out: a DXF file has none");
    addCount(list, plain ? written.colored : 0,
             "{material} {has} a colour that was left out: export keeps {it}");
    addCount(list, written.texcoords, "{texture coordinate} {was} left out: a DXF file has none");
    addCount(list, written.normals, "{normal} {was} left out: a DXF file has none");
    addCount(list, written.loosePoints, loosePointsLost);
    return list;
}

} // namespace

int writeDxfFile(const Mesh& mesh, const std::string& path, Wanted wanted) {
    SaveFile file;
    // The file first: nobody is asked about a file that cannot be made.
    if (!file.open(path)) return 0;
    file.append(head);
    const bool onlySelected = askOnlySelected(mesh, true, wanted);
    workbench.wholeMeshWritten = !onlySelected;
    Losses losses;
    bool written = writeFaces(file, mesh, onlySelected, path, losses);
    file.append(tail);
    written = written && file.commit();
    if (!written) workbench.wholeMeshWritten = false;
    if (!written) return 0;
    noteSaved(path, countFaces(mesh, onlySelected));
    noteAll(lossesOf(mesh, onlySelected, losses, true));
    return 1;
}

void appendDxf(SaveFile& file, const Mesh& mesh, bool onlySelected, Sentences& lost) {
    std::vector<Entity> entities;
    for (int i = 0; i < mesh.nmat; ++i) entities.push_back(exactEntity(mesh, i));
    Losses losses;
    file.append(head);
    static_cast<void>(forFaces(mesh, onlySelected, losses, [&](const Face& face, Corners fan) {
        if (isWhole(fan)) writeFan(file, entities[static_cast<std::size_t>(face.mat)], fan);
        return true;
    }));
    file.append(tail);
    lost = lossesOf(mesh, onlySelected, losses, false);
}

} // namespace polyfab
