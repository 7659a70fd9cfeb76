// SPDX-License-Identifier: GPL-3.0-or-later
// The chunks are built in memory, where their lengths and counts are filled in behind them, and go
// to the file only when the whole mesh has found room.
#include "formats/3ds/3ds_writer.h"

#include "display/material_looks.h"
#include "formats/face_order.h"
#include "formats/file_command.h"
#include "formats/written_parts.h"
#include "io/save_file.h"
#include "mesh/faces.h"
#include "mesh/garbage.h"
#include "mesh/mesh.h"
#include "mesh/stale.h"
#include "platform/platform.h"
#include "workbench/long_work.h"
#include "workbench/notes.h"
#include "workbench/state.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace polyfab {
namespace {

constexpr std::size_t maxOutput = std::size_t{16} << 20;
constexpr std::size_t maxLength = 0xFFFFFFFF; ///< what a chunk's length can say
constexpr std::size_t maxCount = 65535;
constexpr unsigned formatVersion = 3;
constexpr unsigned allEdgesVisible = 7;

/// The bytes of the file. Values are written lowest byte first.
class Output {
  public:
    void value(std::uint32_t number, int size) {
        for (int i = 0; i < size; ++i) bytes += static_cast<char>(number >> 8 * i);
    }
    void word(std::size_t number) { value(static_cast<std::uint32_t>(number), 2); }
    void real(double number) { value(std::bit_cast<std::uint32_t>(static_cast<float>(number)), 4); }
    void name(std::string_view text) { bytes.append(text).push_back('\0'); }

    [[nodiscard]] std::string_view text() const { return bytes; }
    [[nodiscard]] std::size_t size() const { return bytes.size(); }

  private:
    friend class Chunk;
    std::string bytes;
};

/// A chunk of the output: what is written while it lives is inside.
class Chunk {
  public:
    Chunk(Output& file, unsigned id) : out(file), start(file.bytes.size()) {
        out.word(id);
        out.value(0, 4);
    }
    ~Chunk() {
        const std::size_t length = out.bytes.size() - start;
        for (std::size_t i = 0; i < 4; ++i) {
            out.bytes[start + 2 + i] = static_cast<char>(length >> 8 * i);
        }
    }
    Chunk(const Chunk&) = delete;
    Chunk& operator=(const Chunk&) = delete;

  private:
    Output& out;
    std::size_t start;
};

/// What the reader of the file will not find as it was.
struct Losses {
    std::int64_t rounded = 0; ///< numbers
    std::int64_t cut = 0;     ///< faces
};

/// Builds the file; the first thing that does not fit ends it.
class Writer {
  public:
    /// `picturesForAll`: it is for all programs, and the materials have these pictures; null: it is
    /// for this one.
    Writer(const Mesh& from, bool selectedOnly, bool allGroups,
           const std::vector<std::string>* picturesForAll)
        : mesh(from), onlySelected(selectedOnly), everything(allGroups),
          ordinary(picturesForAll != nullptr), pictures(picturesForAll),
          progress(4 * std::int64_t{from.nf}) {}

    /// "", or what the file can't hold.
    std::string write();

    Output out;
    Losses losses;
    int leftOut = 0; ///< faces that were wanted, in groups without a selected face

  private:
    [[nodiscard]] bool isSelected(int face) const {
        return everything || mesh.faces[face].selected != 0;
    }
    [[nodiscard]] std::span<const FaceCorner> cornersOf(int face) const {
        return {mesh.faces[face].q, static_cast<std::size_t>(mesh.faces[face].n)};
    }
    [[nodiscard]] bool fits() const { return out.size() <= (ordinary ? maxLength : maxOutput); }
    [[nodiscard]] std::size_t triangleCount(std::span<const int> faces) const;

    void writeMaterials();
    void writeColor(std::uint32_t color);
    void writeLook(const MaterialLook& look, const std::string& picture);
    std::string writeGroups();
    std::string writeGroup(std::span<const int> faces);
    std::string refuse(std::span<const int> faces) const;
    void listPoints(std::span<const int> faces);
    void addPointsOf(std::span<const int> faces, bool selected);
    void listVertices(std::span<const int> faces);
    [[nodiscard]] std::uint64_t keyOf(const FaceCorner& corner) const;
    [[nodiscard]] std::uint16_t numberOf(const FaceCorner& corner) const;
    void writePoints();
    void writeTexture();
    void writeTriangles(std::span<const int> faces);
    void writeMaterialGroups();

    const Mesh& mesh;
    bool onlySelected;
    bool everything; ///< also the groups without a selected face
    bool ordinary;   ///< the file is for other programs
    const std::vector<std::string>* pictures;
    LoopProgress progress; ///< each face is looked at four times
    // Of the group that is being written.
    std::vector<int> points; ///< indices into mesh.points, in the order of their new numbers
    std::vector<std::vector<std::uint16_t>> uses; ///< for each material, the triangles that have it
    // The same with texture coordinates, in the order in which they are met.
    std::vector<int> texcoords;
    std::unordered_map<std::uint64_t, std::uint16_t> numberOfKey;
    // Of each point of the mesh.
    std::vector<int> listedFor; ///< the last group that listed it
    std::vector<std::uint16_t> number;
};

std::size_t Writer::triangleCount(std::span<const int> faces) const {
    std::size_t count = 0;
    for (const int face : faces) count += cornersOf(face).size() - 2;
    return count;
}

std::string Writer::write() {
    const Chunk file(out, 0x4D4D);
    {
        const Chunk version(out, 0x0002);
        out.value(formatVersion, 4);
    }
    const Chunk editorData(out, 0x3D3D);
    {
        const Chunk version(out, 0x3D3E);
        out.value(formatVersion, 4);
    }
    writeMaterials();
    return writeGroups();
}

void Writer::writeMaterials() {
    for (int i = 0; i < mesh.nmat; ++i) {
        const Chunk entry(out, 0xAFFF);
        {
            const Chunk name(out, 0xA000);
            out.name(mesh.materials[i].name);
        }
        writeColor(mesh.materials[i].color);
        const MaterialLook* const look = ordinary ? lookOf(mesh.materials[i].name) : nullptr;
        if (look != nullptr) writeLook(*look, (*pictures)[static_cast<std::size_t>(i)]);
    }
}

void Writer::writeColor(std::uint32_t color) {
    const Chunk diffuse(out, 0xA020);
    if (ordinary) {
        const Chunk value(out, 0x0011);
        for (const unsigned shift : {16U, 8U, 0U}) out.value(color >> shift, 1);
        return;
    }
    for (const unsigned id : {0x0011U, 0x0012U}) {
        const Chunk value(out, id);
        out.value(color, 3);
    }
}

void Writer::writeLook(const MaterialLook& look, const std::string& picture) {
    const auto percent = [&](double share) {
        const Chunk value(out, 0x0030);
        out.word(static_cast<std::size_t>(std::lround(100 * std::clamp(share, 0.0, 1.0))));
    };
    if (look.opacity != 1) {
        const Chunk transparency(out, 0xA050);
        percent(1 - look.opacity);
    }
    if (picture.empty()) return;
    const Chunk map(out, 0xA200);
    percent(1);
    {
        const Chunk name(out, 0xA300);
        out.name(picture);
    }
    const PicturePlacing& placing = look.placing;
    const struct {
        unsigned id;
        double value, usual;
    } rows[] = {{0xA354, placing.uScale, 1},
                {0xA356, placing.vScale, 1},
                {0xA358, placing.uOffset, 0},
                {0xA35A, placing.vOffset, 0}};
    for (const auto& [id, value, usual] : rows) {
        if (value == usual) continue;
        const Chunk placed(out, id);
        out.real(value);
    }
}

std::string Writer::writeGroups() {
    listedFor.assign(static_cast<std::size_t>(mesh.np), -1);
    number.resize(static_cast<std::size_t>(mesh.np));
    uses.resize(static_cast<std::size_t>(mesh.nmat));
    FaceList faces;
    for (int i = 0; i < mesh.nf; ++i) {
        progress.step();
        const bool has = isLive(mesh.faces[i]) && mesh.faces[i].n >= 3;
        if (has && (isSelected(i) || !onlySelected)) faces.push_back(i);
    }
    faces = sortedBy(faces, mesh.ng, [&](int face) { return mesh.faces[face].g; });
    for (auto first = faces.begin(); first != faces.end() && fits();) {
        const int group = mesh.faces[*first].g;
        const auto last =
            std::find_if(first, faces.end(), [&](int face) { return mesh.faces[face].g != group; });
        std::string fault = writeGroup({first, last});
        if (!fault.empty()) return fault;
        first = last;
    }
    if (fits()) return "";
    return ordinary ? "a 3DS file can hold at most 4 GB" : "a 3DS file can hold at most 16 MiB";
}

std::string Writer::writeGroup(std::span<const int> faces) {
    if (std::none_of(faces.begin(), faces.end(), [&](int face) { return isSelected(face); })) {
        leftOut += static_cast<int>(faces.size());
        return "";
    }
    ordinary ? listVertices(faces) : listPoints(faces);
    const bool large = points.size() > maxCount || triangleCount(faces) > maxCount;
    if (ordinary && large && faces.size() > 1) {
        std::string fault = writeGroup(faces.first(faces.size() / 2));
        return fault.empty() ? writeGroup(faces.subspan(faces.size() / 2)) : fault;
    }
    std::string fault = refuse(faces);
    if (!fault.empty()) return fault;
    const Chunk object(out, 0x4000);
    out.name(mesh.groups[mesh.faces[faces.front()].g].name);
    const Chunk triangles(out, 0x4100);
    writePoints();
    writeTexture();
    writeTriangles(faces);
    if (!ordinary) writeMaterialGroups();
    return "";
}

/// Why the faces of a group, whose points are listed, do not fit; "" when they do.
std::string Writer::refuse(std::span<const int> faces) const {
    const auto fits = [](double value) {
        return std::isfinite(static_cast<float>(value)) || !std::isfinite(value);
    };
    const auto pointFits = [&](int i) {
        const Point& point = mesh.points[i];
        return fits(point.x) && fits(point.y) && fits(point.z);
    };
    const char* fault = nullptr;
    if (points.size() > maxCount) fault = "can have at most 65535 points";
    if (triangleCount(faces) > maxCount) fault = "can have at most 65535 triangles";
    if (!std::all_of(points.begin(), points.end(), pointFits)) {
        fault = "can't have a coordinate beyond 3.4e38";
    }
    if (fault == nullptr) return "";
    const char* const name = mesh.groups[mesh.faces[faces.front()].g].name;
    return "in a 3DS file the group \"" + std::string(name) + "\" " + fault;
}

/// The points of selected faces come first, then those that only the others use, each in the order
/// of the mesh.
void Writer::listPoints(std::span<const int> faces) {
    points.clear();
    addPointsOf(faces, true);
    addPointsOf(faces, false);
    for (std::size_t i = 0; i < points.size(); ++i) {
        number[static_cast<std::size_t>(points[i])] = static_cast<std::uint16_t>(i);
    }
}

void Writer::addPointsOf(std::span<const int> faces, bool selected) {
    const auto before = std::ssize(points);
    for (const int face : faces) {
        progress.step();
        if (isSelected(face) != selected) continue;
        for (const FaceCorner& corner : cornersOf(face)) {
            const int point = indexIn(mesh.points, corner.p);
            int& listed = listedFor[static_cast<std::size_t>(point)];
            if (listed != mesh.faces[face].g) points.push_back(point);
            listed = mesh.faces[face].g;
        }
    }
    std::sort(points.begin() + before, points.end());
}

std::uint64_t Writer::keyOf(const FaceCorner& corner) const {
    const int texcoord = corner.t == nullptr ? -1 : indexIn(mesh.texcoords, corner.t);
    const auto point = static_cast<std::uint32_t>(indexIn(mesh.points, corner.p));
    return std::uint64_t{point} << 32 | static_cast<std::uint32_t>(texcoord);
}

/// A vertex of such a file has one texture coordinate: points are there once for each of theirs.
void Writer::listVertices(std::span<const int> faces) {
    points.clear();
    texcoords.clear();
    numberOfKey.clear();
    for (const int face : faces) {
        progress.step();
        for (const FaceCorner& corner : cornersOf(face)) {
            const std::uint64_t key = keyOf(corner);
            const auto next = static_cast<std::uint16_t>(points.size());
            if (!numberOfKey.try_emplace(key, next).second) continue;
            points.push_back(indexIn(mesh.points, corner.p));
            texcoords.push_back(static_cast<std::int32_t>(key));
        }
    }
}

std::uint16_t Writer::numberOf(const FaceCorner& corner) const {
    if (ordinary) return numberOfKey.at(keyOf(corner));
    return number[static_cast<std::size_t>(indexIn(mesh.points, corner.p))];
}

void Writer::writePoints() {
    const Chunk list(out, 0x4110);
    out.word(points.size());
    for (const int i : points) {
        const Point& point = mesh.points[i];
        for (const double value : {point.x, point.y, point.z}) {
            out.real(value);
            losses.rounded += static_cast<double>(static_cast<float>(value)) != value;
        }
    }
}

void Writer::writeTexture() {
    const auto isThere = [](int texcoord) { return texcoord >= 0; };
    if (!ordinary || std::none_of(texcoords.begin(), texcoords.end(), isThere)) return;
    const Chunk list(out, 0x4140);
    out.word(texcoords.size());
    for (const int i : texcoords) {
        out.real(i < 0 ? 0 : mesh.texcoords[i].u);
        out.real(i < 0 ? 0 : mesh.texcoords[i].v);
    }
}

/// Each face is a fan around its first corner.
void Writer::writeTriangles(std::span<const int> faces) {
    for (auto& triangles : uses) triangles.clear();
    const Chunk list(out, 0x4120);
    out.word(triangleCount(faces));
    std::uint16_t triangle = 0;
    for (const int face : faces) {
        progress.step();
        const auto corners = cornersOf(face);
        losses.cut += corners.size() > 3;
        auto& triangles = uses[static_cast<std::size_t>(mesh.faces[face].mat)];
        for (std::size_t i = 1; i + 1 < corners.size(); ++i) {
            for (const std::size_t k : {std::size_t{0}, i, i + 1}) out.word(numberOf(corners[k]));
            out.word(allEdgesVisible);
            triangles.push_back(triangle++);
        }
    }
    if (ordinary) writeMaterialGroups(); // where others look for them
}

void Writer::writeMaterialGroups() {
    for (std::size_t i = 0; i < uses.size(); ++i) {
        const Chunk group(out, 0x4130);
        out.name(mesh.materials[i].name);
        out.word(uses[i].size());
        for (const std::uint16_t triangle : uses[i]) out.word(triangle);
    }
}

Sentences lossesOf(const Mesh& mesh, bool onlySelected, const Losses& losses, bool ordinary) {
    Sentences list;
    const WrittenParts written = writtenParts(mesh, onlySelected);
    addCount(list, losses.rounded, "{number} {has} more digits than a 3DS file keeps");
    addCount(list, losses.cut, "{face} {has} more than 3 corners and {was} cut into triangles");
    addCount(list, ordinary ? 0 : written.texcoords,
             "{texture coordinate} {was} left out: export keeps {it}");
    addCount(list, written.normals, "{normal} {was} left out: a 3DS file has none");
    addCount(list, written.doubleNames, doubleNamesLost);
    addCount(list, written.loosePoints, loosePointsLost);
    return list;
}

int fail(const std::string& what, const std::string& path) {
    platform().message(what, path, Icon::exclamation);
    return 0;
}

} // namespace

int write3dsFile(Mesh& mesh, const std::string& path, Wanted wanted) try {
    if (!collectGarbage(mesh)) return 0;
    moveProgress();
    forgetCurrentEdge();
    stale.edges = true;
    const bool onlySelected = askOnlySelected(mesh, true, wanted);
    Writer writer(mesh, onlySelected, wanted == Wanted::all, nullptr);
    const std::string fault = writer.write();
    if (!fault.empty()) return fail(fault, path);
    SaveFile file;
    if (!file.open(path)) return fail("can't open file", path);
    file.append(writer.out.text());
    if (!file.commit()) return fail("can't open file", path);
    workbench.wholeMeshWritten = !onlySelected && writer.leftOut == 0;
    noteSaved(path, countFaces(mesh, onlySelected) - writer.leftOut);
    noteAll(lossesOf(mesh, onlySelected, writer.losses, false));
    if (writer.leftOut > 0) {
        fail(std::to_string(writer.leftOut)
                 + " faces were not written: their groups have no selected face",
             path);
    }
    return 1;
} catch (const std::bad_alloc&) {
    return fail("I can't get enough memory", path);
}

std::string append3ds(SaveFile& file, const Mesh& mesh, bool onlySelected,
                      const std::vector<std::string>& pictures, Sentences& lost) {
    Writer writer(mesh, onlySelected, !onlySelected, &pictures);
    std::string fault = writer.write();
    if (!fault.empty()) return fault;
    file.append(writer.out.text());
    lost = lossesOf(mesh, onlySelected, writer.losses, true);
    return fault;
}

} // namespace polyfab
