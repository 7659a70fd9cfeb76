// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/exchange/dxf_scene.h"

#include "formats/dxf/dxf_drawing.h"
#include "formats/exchange/numbered_names.h"
#include "formats/exchange/stream_mesh.h"
#include "formats/exchange/unique_records.h"
#include "formats/exchange/unique_table.h"
#include "formats/left_out.h"
#include "io/read_file.h"
#include "workbench/notes.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace polyfab {

namespace {

/// How often blocks may be put somewhere in all, and how deep in each other: a small file could ask
/// for more than any machine can hold.
constexpr std::int64_t maxPlaced = 1'000'000;
constexpr int maxDepth = 64;

bool mirrors(const AffineMap& map) { return determinantOf(map) < 0; }

/// The block, its base point at the origin.
AffineMap fromBase(const AffineMap& map, const Vec3& base) {
    AffineMap moved = map;
    const Vec3 offset = map(base * -1.0);
    for (int axis = 0; axis < 3; ++axis) moved.row[axis][3] = along(offset, axis);
    return moved;
}

class Placer {
  public:
    explicit Placer(const DxfDrawing& source) : drawing(source) {
        for (std::size_t i = 1; i < drawing.blocks.size(); ++i) {
            blockNamed.try_emplace(foldedName(drawing.blocks[i].name), i);
        }
        for (std::size_t i = 0; i < drawing.layers.size(); ++i) {
            layerNamed.try_emplace(foldedName(cleanName(drawing.layers[i])), i);
            numbers.avoid(cleanName(drawing.layers[i]));
        }
    }

    StreamTables place() {
        placeBlock(0, {}, {0, 0xFFFFFF}, 0);
        if (tables.failure.empty() && tables.faces.empty())
            tables.failure = "there is no face in it";
        if (!leftOut.empty()) tables.notes.push_back(noteOf(leftOut));
        addCount(tables.notes, beyond, beyondBounds);
        return std::move(tables);
    }

  private:
    /// A style with nothing left to be told by others.
    struct Resolved {
        std::int32_t layer;
        std::uint32_t color;
    };

    [[nodiscard]] Resolved resolve(const DxfStyle& style, const Resolved& outer) const {
        const std::int32_t layer = style.layer == 0 ? outer.layer : style.layer;
        if (style.color == colorOfBlock) return {layer, outer.color};
        if (style.color >= 0) return {layer, static_cast<std::uint32_t>(style.color)};
        const std::int32_t color = drawing.layerColors[static_cast<std::size_t>(layer)];
        return {layer, color < 0 ? 0xFFFFFFU : static_cast<std::uint32_t>(color)};
    }

    void placeBlock(std::size_t number, const AffineMap& map, const Resolved& style, int depth) {
        const DxfBlock& block = drawing.blocks[number];
        if (++placed > maxPlaced) tables.failure = "its blocks are inserted too often";
        if (!tables.failure.empty()) return;
        if (known.insert(number).second) {
            for (const auto& [name, count] : block.leftOut) leftOut[name] += count;
            beyond += block.beyond;
        }
        placeFaces(block, number, map, style);
        unfinished[number] = true;
        for (const DxfInsert& insert : block.inserts) placeInsert(insert, map, style, depth);
        unfinished[number] = false;
    }

    void placeInsert(const DxfInsert& insert, const AffineMap& map, const Resolved& outer,
                     int depth) {
        const auto found = blockNamed.find(foldedName(insert.block));
        const char* const fault = found == blockNamed.end()   ? "INSERT of no block"
                                  : unfinished[found->second] ? "INSERT of a block in itself"
                                  : depth == maxDepth         ? "block too deep in others"
                                                              : nullptr;
        if (fault != nullptr) {
            if (refused.insert(&insert).second) ++leftOut[fault];
            return;
        }
        const Resolved style = resolve(insert.style, outer);
        const Vec3& base = drawing.blocks[found->second].base;
        for (int row = 0; row < insert.rows; ++row) {
            for (int column = 0; column < insert.columns; ++column) {
                if (!tables.failure.empty()) return;
                AffineMap at = insert.map;
                const Vec3 way = insert.column * column + insert.row * row;
                for (int axis = 0; axis < 3; ++axis) at.row[axis][3] += along(way, axis);
                placeBlock(found->second, product(map, fromBase(at, base)), style, depth + 1);
            }
        }
    }

    void placeFaces(const DxfBlock& block, std::size_t number, const AffineMap& map,
                    const Resolved& outer) {
        if (block.faces.empty()) return;
        const std::int32_t group = groupOf(number);
        const bool turnOver = mirrors(map);
        std::vector<std::int32_t> at(block.points.size(), -1);
        const std::int32_t* next = block.corners.data();
        for (const DxfFace& face : block.faces) {
            ring.clear();
            for (std::int32_t k = 0; k < face.corners; ++k) {
                const auto point = static_cast<std::size_t>(*next++);
                if (at[point] < 0) at[point] = pointAt(map(block.points[point]));
                if (ring.empty() || ring.back() != at[point]) ring.push_back(at[point]);
            }
            while (ring.size() > 1 && ring.back() == ring.front()) ring.pop_back();
            if (ring.size() < 3) {
                ++leftOut["face without area"];
                continue;
            }
            if (turnOver) std::reverse(ring.begin() + 1, ring.end());
            for (const std::int32_t point : ring) tables.corners.push_back({point, -1, -1});
            tables.faces.push_back({static_cast<std::int32_t>(ring.size()), group,
                                    materialOf(resolve(face.style, outer))});
        }
    }

    std::int32_t pointAt(const Vec3& p) {
        return points.findOrAdd({bounded(p.x), bounded(p.y), bounded(p.z)});
    }

    /// What a place is made of where it is inserted.
    double bounded(double value) {
        if (std::isfinite(value)) return value;
        ++beyond;
        return 0;
    }

    std::int32_t groupOf(std::size_t block) {
        const auto [entry, isNew] =
            groups.try_emplace(block, static_cast<std::int32_t>(tables.groups.size()));
        if (isNew) tables.groups.push_back(block == 0 ? "default" : drawing.blocks[block].name);
        return entry->second;
    }

    std::int32_t materialOf(const Resolved& style) {
        const auto [entry, isNew] = materials.try_emplace(
            {style.layer, style.color}, static_cast<std::int32_t>(tables.materials.size()));
        if (isNew) {
            tables.materials.push_back(newName(static_cast<std::size_t>(style.layer)));
            tables.colors.push_back(style.color);
        }
        return entry->second;
    }

    /// For a material of that layer a name that no other has: the first gets the layer's, where it
    /// is not that of another layer too.
    std::string newName(std::size_t layer) {
        std::string name = cleanName(drawing.layers[layer]);
        const auto own = layerNamed.find(foldedName(name));
        if (own->second == layer && named.insert(layer).second) return name;
        return numbers.next(name);
    }

    static std::string noteOf(const std::map<std::string, std::int64_t>& counts) {
        constexpr std::size_t most = 8;
        std::vector<std::pair<std::int64_t, std::string>> sorted;
        for (const auto& [name, count] : counts) sorted.emplace_back(-count, name);
        std::sort(sorted.begin(), sorted.end());
        std::string text = "left out as no surface:";
        for (std::size_t i = 0; i < std::min(most, sorted.size()); ++i) {
            text +=
                (i == 0 ? " " : ", ") + std::to_string(-sorted[i].first) + " " + sorted[i].second;
        }
        return text + (sorted.size() > most ? " and others" : "");
    }

    const DxfDrawing& drawing;
    StreamTables tables;
    UniqueTable<Vec3> points{tables.points};
    std::map<std::string, std::size_t> blockNamed;
    std::map<std::string, std::size_t> layerNamed; ///< by what the mesh keeps of the names
    NumberedNames numbers;
    std::set<std::size_t> named; ///< layers whose name a material has
    std::map<std::size_t, std::int32_t> groups;
    std::map<std::pair<std::int32_t, std::uint32_t>, std::int32_t> materials;
    std::map<std::string, std::int64_t> leftOut;
    std::set<std::size_t> known;        ///< blocks whose left out entities are counted
    std::set<const DxfInsert*> refused; ///< counted already, for the block they are in comes often
    std::vector<bool> unfinished = std::vector<bool>(drawing.blocks.size()); ///< their inserts
    std::vector<std::int32_t> ring;
    std::int64_t placed = 0;
    std::int64_t beyond = 0; ///< numbers that are none of a mesh
};

} // namespace

StreamTables dxfTables(std::string_view file) {
    const DxfDrawing drawing = readDxfDrawing(file);
    return Placer(drawing).place();
}

StreamTables importDxf(const std::string& path) {
    const std::optional<std::string> contents = wholeFile(path);
    if (contents) return dxfTables(*contents);
    StreamTables none;
    none.failure = "there is no such file";
    return none;
}

} // namespace polyfab
