// SPDX-License-Identifier: GPL-3.0-or-later
// The table says what is gone when a file of that suffix is imported again. All numbers are floats.
#include "formats/exchange/export_losses.h"

#include "display/material_looks.h"
#include "formats/exchange/import_stream.h"
#include "formats/exchange/stream_looks.h"
#include "formats/mesh_formats.h"
#include "formats/written_parts.h"
#include "io/print_number.h"
#include "mesh/mesh.h"
#include "workbench/notes.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <map>
#include <set>
#include <string_view>
#include <utility>

namespace polyfab {
namespace {

enum Loss : unsigned {
    groups = 1,
    groupNames = 2,
    materials = 4, ///< with all that they look like
    materialNames = 8,
    colors = 16,
    opacity = 32,
    texcoords = 64,
    normals = 128,
    turnsNormals = 256,
    polygons = 512,
    decimals = 1024,      ///< all behind the sixth
    digits = 2048,        ///< all behind the sixth
    underPictures = 4096, ///< colours
};

struct Limits {
    std::string_view suffix;
    unsigned lost;
};

constexpr Limits formats[] = {
    {".stl", groups | materials | texcoords | normals | polygons},
    {".ply", groups | materials},
    {".gltf", polygons},
    {".glb", polygons},
    {".dae", underPictures},
    {".fbx", decimals},
    {".x", materialNames | colors | opacity | turnsNormals},
    {".x3d", groups | materialNames | decimals},
    {".3mf", groupNames | opacity | texcoords | normals | polygons | digits},
    {".stp", groups | materials | texcoords | normals | polygons},
    {".assbin", 0},
    {".assxml", 0},
    {".json", 0},
};

unsigned lostBy(const std::filesystem::path& target) {
    const auto* const row = std::find_if(std::begin(formats), std::end(formats), [&](auto& format) {
        return endsIn(target.extension().native(), format.suffix);
    });
    return row == std::end(formats) ? unsigned{polygons} : row->lost;
}

bool hasSixDecimals(float value) {
    std::array<char, 64> text;
    const auto end =
        std::to_chars(text.begin(), text.end(), value, std::chars_format::fixed, 6).ptr;
    float read = 0;
    std::from_chars(text.begin(), end, read);
    return read == value;
}

class Losses {
  public:
    Losses(const Mesh& of, const StreamTables& written, const std::filesystem::path& target)
        : mesh(of), tables(written), lost(lostBy(target)), takes(takesPictures(target)) {}

    Sentences list() {
        goOverFaces();
        tell(roundedNumbers(), "{number} {has} more digits than this format keeps");
        tell(has(polygons) ? cut : 0,
             "{face} {has} more than 3 corners and {was} cut into triangles");
        if (usedGroups.size() > 1) tellNames(groups, groupNames, usedGroups, "group");
        if (needsMaterials()) tellNames(materials, materialNames, usedMaterials, "material");
        tell(has(materials) || has(materialNames) ? 0 : doubleNames(),
             "{material} {has} the name of another: import puts a number behind it");
        tellLooks();
        tell(has(texcoords) ? std::ssize(tables.texcoords) : 0,
             "{texture coordinate} {was} left out: this format has none");
        tellNormals();
        return std::move(sentences);
    }

  private:
    [[nodiscard]] bool has(unsigned loss) const { return (lost & loss) != 0; }

    void tell(std::int64_t count, std::string_view pattern) { addCount(sentences, count, pattern); }

    void goOverFaces() {
        const StreamCorner* corner = tables.corners.data();
        for (const StreamFace& face : tables.faces) {
            usedGroups.insert(face.group);
            usedMaterials.insert(face.material);
            cut += face.corners > 3;
            auto& [without, with] = pieces[{face.group, face.material}];
            for (int k = 0; k < face.corners; ++k, ++corner)
                ++(corner->normal < 0 ? without : with);
        }
    }

    [[nodiscard]] bool keeps(double value) const {
        const auto written = static_cast<float>(value);
        if (double{written} != value) return false;
        return (!has(decimals) || hasSixDecimals(written)) && (!has(digits) || hasSixDigits(value));
    }

    [[nodiscard]] std::int64_t roundedNumbers() const {
        std::int64_t count = 0;
        const auto look = [&](double value) { count += !keeps(value); };
        const auto lookAll = [&](const std::vector<Vec3>& list) {
            for (const auto& [x, y, z] : list) look(x), look(y), look(z);
        };
        lookAll(tables.points);
        if (!has(normals)) lookAll(tables.normals);
        if (has(texcoords)) return count;
        for (const auto& [u, v] : tables.texcoords) look(u), look(v);
        return count;
    }

    /// Whether there is more to them than that there is one.
    [[nodiscard]] bool needsMaterials() const {
        return usedMaterials.size() > 1
               || std::any_of(usedMaterials.begin(), usedMaterials.end(), [&](int i) {
                      return mesh.materials[i].color != defaultColor
                             || lookOf(mesh.materials[i].name) != nullptr;
                  });
    }

    void tellNames(unsigned all, unsigned names, const std::set<int>& used,
                   const std::string& what) {
        tell(has(all) ? std::ssize(used) : 0,
             "{" + what + "} {was} left out: this format has none");
        tell(has(names) ? std::ssize(used) : 0,
             "{" + what + "} {has} a name that this format does not keep");
    }

    [[nodiscard]] std::int64_t doubleNames() const {
        KnownNames names;
        return std::count_if(usedMaterials.begin(), usedMaterials.end(),
                             [&](int i) { return names.areOfAnother(mesh.materials[i]); });
    }

    void tellLooks() {
        if (has(materials)) return;
        std::int64_t colored = 0, under = 0, transparent = 0, pictured = 0;
        for (const int i : usedMaterials) {
            const auto index = static_cast<std::size_t>(i);
            const MaterialLook* const look = lookOf(mesh.materials[i].name);
            colored += mesh.materials[i].color != defaultColor;
            transparent += look != nullptr && look->opacity != 1;
            if (look == nullptr || look->picture == nullptr) continue;
            const bool given = !tables.pictures[index].empty() || tables.looks[index].embedded >= 0;
            ++(given ? under : pictured);
        }
        tell(has(colors) ? colored : 0, "{material} {has} a colour that this format does not keep");
        tell(has(underPictures) ? under : 0,
             "{material} {has} a picture in place of the colour there");
        tell(has(opacity) ? transparent : 0, opacityLost);
        tell(pictured, takes ? pictureUnread : pictureLost);
    }

    /// Where only some corners of a mesh in the file have a normal, it gets none.
    void tellNormals() {
        if (has(normals)) {
            return tell(std::ssize(tables.normals),
                        "{normal} {was} left out: this format has none");
        }
        if (has(turnsNormals)) tell(std::ssize(tables.normals), "{normal} {is} turned round there");
        std::int64_t dropped = 0;
        for (const auto& [piece, counts] : pieces) dropped += counts.first > 0 ? counts.second : 0;
        tell(dropped,
             "{corner} lost a normal, since others of the same group and material have none");
    }

    const Mesh& mesh;
    const StreamTables& tables;
    unsigned lost;
    bool takes; ///< pictures
    std::set<int> usedGroups, usedMaterials;
    std::int64_t cut = 0; ///< faces
    /// Of each group and material the corners without and with a normal.
    std::map<std::pair<int, int>, std::pair<std::int64_t, std::int64_t>> pieces;
    Sentences sentences;
};

} // namespace

bool needsTriangles(const std::filesystem::path& target) {
    return (lostBy(target) & polygons) != 0;
}

Sentences exportLosses(const Mesh& mesh, const StreamTables& tables,
                       const std::filesystem::path& target) {
    return Losses(mesh, tables, target).list();
}

} // namespace polyfab
