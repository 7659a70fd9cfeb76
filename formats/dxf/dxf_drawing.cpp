// SPDX-License-Identifier: GPL-3.0-or-later
// An entity is a pair of code 0 with its name and all pairs up to the next one. A polyline is an
// entity followed by one a vertex.
#include "formats/dxf/dxf_drawing.h"

#include "formats/dxf/dxf_colors.h"
#include "formats/dxf/dxf_pairs.h"
#include "mesh/face_angle.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>
#include <optional>
#include <span>

namespace polyfab {
namespace {

/// Too large, or in words such as "nan", "-inf" and "1.#IND".
bool isBeyond(const DxfPair& pair) {
    return !std::isfinite(pair.number) || pair.text.find_first_of("nN") != pair.text.npos;
}

/// The pairs of one entity. Of several of a code the last counts.
class Fields {
  public:
    /// Numbers beyond all bounds among those that were asked for.
    std::int64_t beyond = 0;

    void clear() {
        pairs.clear();
        beyond = 0;
    }
    void add(const DxfPair& pair) { pairs.push_back(pair); }
    [[nodiscard]] std::span<const DxfPair> all() const { return pairs; }

    [[nodiscard]] const DxfPair* find(int code) const {
        const auto found =
            std::find_if(pairs.rbegin(), pairs.rend(), [=](auto& p) { return p.code == code; });
        return found == pairs.rend() ? nullptr : &*found;
    }
    [[nodiscard]] std::string_view text(int code) const {
        const DxfPair* const pair = find(code);
        return pair == nullptr ? std::string_view{} : pair->text;
    }
    /// The number of the pair; 0, and counted, where it is beyond all bounds.
    [[nodiscard]] double bounded(const DxfPair& pair) {
        beyond += isBeyond(pair);
        return isBeyond(pair) ? 0 : pair.number;
    }
    [[nodiscard]] double real(int code, double otherwise = 0) {
        const DxfPair* const pair = find(code);
        return pair == nullptr ? otherwise : bounded(*pair);
    }
    [[nodiscard]] int whole(int code, int otherwise = 0) const {
        const DxfPair* const pair = find(code);
        const bool fits =
            pair != nullptr && std::abs(pair->number) < std::numeric_limits<int>::max();
        return fits ? static_cast<int>(pair->number) : otherwise;
    }
    /// The position whose x, y and z have the codes `code`, 10 and 20 more.
    [[nodiscard]] Vec3 place(int code) { return {real(code), real(code + 10), real(code + 20)}; }

  private:
    std::vector<DxfPair> pairs;
};

void appendUtf8(std::string& text, unsigned character) {
    if (character < 0x80) {
        text += static_cast<char>(character);
        return;
    }
    const int more = character < 0x800 ? 1 : 2;
    text += static_cast<char>((more == 1 ? 0xC0 : 0xE0) | character >> 6 * more);
    for (int k = more; k-- > 0;) text += static_cast<char>(0x80 | (character >> 6 * k & 0x3F));
}

/// The four hexadecimal digits at the start of `text`, or nothing.
std::optional<unsigned> hexadecimal(std::string_view text) {
    unsigned value = 0;
    if (text.size() < 4) return std::nullopt;
    for (const char c : text.substr(0, 4)) {
        const std::size_t digit = std::string_view("0123456789abcdef")
                                      .find(static_cast<char>(c >= 'A' && c <= 'F' ? c | 0x20 : c));
        if (digit == std::string_view::npos) return std::nullopt;
        value = value * 16 + static_cast<unsigned>(digit);
    }
    return value;
}

/// Characters that the code page of a drawing lacks are written as "\U+1234".
std::string plainName(std::string_view text) {
    std::string name;
    while (!text.empty()) {
        const auto character =
            text.starts_with("\\U+") ? hexadecimal(text.substr(3)) : std::nullopt;
        if (character && *character != 0) {
            appendUtf8(name, *character);
            text.remove_prefix(7);
        } else {
            name += text.front();
            text.remove_prefix(1);
        }
    }
    return name;
}

/// From the coordinates of a flat entity that faces this way to the drawing's: its x axis lies in
/// the plane of the drawing's x and y, or in that of x and z where the entity nearly does.
AffineMap mapFrom(Fields& fields) {
    if (fields.find(210) == nullptr) return {};
    const Vec3 z = unit(fields.place(210));
    if (isZero(z)) return {};
    constexpr double nearly = 1.0 / 64;
    const bool upright = std::abs(z.x) < nearly && std::abs(z.y) < nearly;
    const Vec3 x = unitCross(upright ? Vec3{0, 1, 0} : Vec3{0, 0, 1}, z);
    const Vec3 y = unitCross(z, x);
    return {{{x.x, y.x, z.x, 0}, {x.y, y.y, z.y, 0}, {x.z, y.z, z.z, 0}}};
}

/// The way that the map makes of a way: without its offset.
Vec3 turned(const AffineMap& map, const Vec3& way) { return map(way) - map(Vec3{}); }

/// A face of a polyline.
struct FaceRecord {
    std::array<int, 4> corners; ///< counted from 1; 0: none
    DxfStyle style;
};

/// A polyline whose vertexes are still to come.
struct Polyline {
    enum Kind { none, faces, grid } kind = none;
    int flags = 0;
    int columns = 0, rows = 0; ///< of a grid
    DxfStyle style;
    std::vector<Vec3> points;
    std::vector<FaceRecord> records;
};

// Bits of a polyline's flags, and of those of its vertexes.
constexpr int closedInColumns = 1, smoothed = 4, isGrid = 16, closedInRows = 32, hasFaces = 64;
constexpr int isControlPoint = 16, isPlace = 64, isFaceRecord = 128;

class DrawingReader {
  public:
    DxfDrawing read(std::string_view file) {
        DxfPairs pairs(file);
        std::string_view name;
        for (DxfPair pair; name != "EOF" && pairs.next(pair);) {
            if (pair.code != 0) {
                fields.add(pair);
                continue;
            }
            endEntity(name);
            name = pair.text;
        }
        endEntity(name);
        endPolyline();
        return std::move(drawing);
    }

  private:
    struct Entity {
        std::string_view name;
        void (DrawingReader::*read)();
        bool isDrawn = true; ///< it belongs to what is drawn; the others arrange that
    };
    static const Entity entities[];

    DxfBlock& block() { return drawing.blocks[present]; }

    void readEntity(std::string_view name);

    void endEntity(std::string_view name) {
        readEntity(name);
        block().beyond += fields.beyond;
        fields.clear();
    }

    void leaveOut(std::string_view name) { ++block().leftOut[std::string(name.substr(0, 40))]; }

    void readSection() {
        section = fields.all().empty() ? "" : fields.all().front().text;
        draws = section == "ENTITIES" || section == "BLOCKS";
        present = 0;
    }

    void endSection() { draws = false; }

    void readLayer() {
        const std::string name = plainName(fields.text(2));
        const auto layer = static_cast<std::size_t>(layerNamed(name));
        // A layer that is switched off has its colour below 0.
        drawing.layerColors[layer] = static_cast<std::int32_t>(
            fields.find(420) != nullptr ? static_cast<unsigned>(fields.whole(420)) & 0xFFFFFF
                                        : dxfColor(std::abs(fields.whole(62, 7))));
    }

    void beginBlock() {
        if (section != "BLOCKS") return;
        present = drawing.blocks.size();
        drawing.blocks.emplace_back();
        block().name = plainName(fields.text(2));
        block().base = fields.place(10);
    }

    void endBlock() { present = 0; }

    void ignore() {}

    std::int32_t layerNamed(const std::string& name) {
        const auto [entry, isNew] =
            layers.try_emplace(foldedName(name), static_cast<std::int32_t>(drawing.layers.size()));
        if (isNew) {
            drawing.layers.push_back(name);
            drawing.layerColors.push_back(colorOfLayer);
        }
        return entry->second;
    }

    DxfStyle style() {
        constexpr int byLayer = 256;
        const std::string_view layer = fields.text(8);
        const int number = fields.whole(62, byLayer);
        DxfStyle style = {layer.empty() ? 0 : layerNamed(plainName(layer)), colorOfLayer};
        if (fields.find(420) != nullptr) {
            style.color = fields.whole(420) & 0xFFFFFF;
        } else if (number == 0) {
            style.color = colorOfBlock;
        } else if (number != byLayer) {
            style.color = static_cast<std::int32_t>(dxfColor(number));
        }
        return style;
    }

    /// A face on points that are there already.
    void addFace(std::span<const std::int32_t> corners, const DxfStyle& style) {
        block().corners.insert(block().corners.end(), corners.begin(), corners.end());
        block().faces.push_back({static_cast<std::int32_t>(corners.size()), style});
    }

    std::int32_t addPoints(std::span<const Vec3> points) {
        const auto first = static_cast<std::int32_t>(block().points.size());
        block().points.insert(block().points.end(), points.begin(), points.end());
        return first;
    }

    void read3dFace() {
        const int count = fields.find(13) != nullptr ? 4 : 3;
        std::vector<Vec3> places;
        std::vector<std::int32_t> corners;
        for (int k = 0; k < count; ++k) {
            places.push_back(fields.place(10 + k));
            corners.push_back(static_cast<std::int32_t>(block().points.size()) + k);
        }
        addPoints(places);
        addFace(corners, style());
    }

    /// A flat face, which with a thickness is a prism.
    void readSolid() {
        const AffineMap map = mapFrom(fields);
        const Vec3 thickness = turned(map, {0, 0, fields.real(39)});
        std::vector<int> codes = {10, 11, 13, 12};
        if (fields.find(13) == nullptr) codes = {10, 11, 12};
        const auto n = static_cast<std::int32_t>(codes.size());
        std::vector<Vec3> places;
        for (const int code : codes) places.push_back(map(fields.place(code)));
        if (isZero(thickness)) {
            const std::int32_t at = addPoints(places);
            return addRing(at, at + 1, at + 2, n == 4 ? at + 3 : -1, style());
        }
        for (int k = 0; k < n; ++k)
            places.push_back(places[static_cast<std::size_t>(k)] + thickness);
        addPrism(addPoints(places), n, style());
    }

    void addRing(std::int32_t a, std::int32_t b, std::int32_t c, std::int32_t d,
                 const DxfStyle& style) {
        const std::int32_t ring[] = {a, b, c, d};
        addFace(std::span(ring).first(d < 0 ? 3 : 4), style);
    }

    /// Around n points and as many above them.
    void addPrism(std::int32_t at, std::int32_t n, const DxfStyle& style) {
        addRing(at + 2, at + 1, at, n == 4 ? at + 3 : -1, style);
        addRing(at + n, at + n + 1, at + n + 2, n == 4 ? at + n + 3 : -1, style);
        for (std::int32_t k = 0; k < n; ++k) {
            const std::int32_t next = (k + 1) % n;
            addRing(at + k, at + next, at + n + next, at + n + k, style);
        }
    }

    void readPolyline() {
        const int flags = fields.whole(70);
        polyline.kind = (flags & hasFaces) != 0 ? Polyline::faces
                        : (flags & isGrid) != 0 ? Polyline::grid
                                                : Polyline::none;
        if (polyline.kind == Polyline::none) return leaveOut("POLYLINE");
        const bool fitted = (flags & smoothed) != 0;
        polyline.flags = flags;
        polyline.columns = fields.whole(fitted ? 73 : 71);
        polyline.rows = fields.whole(fitted ? 74 : 72);
        polyline.style = style();
    }

    /// That of a face record: what it does not tell, or tells as layer 0, is its polyline's.
    DxfStyle recordStyle() {
        DxfStyle own = style();
        if (own.layer == 0) own.layer = polyline.style.layer;
        const bool hasColor = fields.find(62) != nullptr || fields.find(420) != nullptr;
        if (!hasColor) own.color = polyline.style.color;
        return own;
    }

    void readVertex() {
        const int flags = fields.whole(70);
        if (polyline.kind == Polyline::none) return;
        const bool fitted = (polyline.flags & smoothed) != 0;
        if (polyline.kind == Polyline::grid && fitted && (flags & isControlPoint) != 0) return;
        if (polyline.kind == Polyline::faces && (flags & isFaceRecord) != 0
            && (flags & isPlace) == 0) {
            // Below 0: the edge behind that corner is not to be seen.
            FaceRecord record{{}, recordStyle()};
            for (int k = 0; k < 4; ++k)
                record.corners[static_cast<std::size_t>(k)] = std::abs(fields.whole(71 + k));
            polyline.records.push_back(record);
        } else {
            polyline.points.push_back(fields.place(10));
        }
    }

    void endPolyline() {
        if (polyline.kind == Polyline::faces) addRecords();
        if (polyline.kind == Polyline::grid) addGrid();
        polyline = {};
    }

    void addRecords() {
        const std::int32_t first = addPoints(polyline.points);
        const auto count = static_cast<std::int64_t>(polyline.points.size());
        for (const FaceRecord& record : polyline.records) {
            const bool sound = std::all_of(record.corners.begin(), record.corners.end(),
                                           [&](int number) { return number <= count; });
            if (!sound) {
                leaveOut("face with a vertex that is not there");
                continue;
            }
            std::vector<std::int32_t> corners;
            for (const int number : record.corners) {
                if (number != 0) corners.push_back(first + number - 1);
            }
            addFace(corners, record.style);
        }
    }

    void addGrid() {
        const std::int64_t columns = polyline.columns, rows = polyline.rows;
        const auto points = static_cast<std::int64_t>(polyline.points.size());
        if (columns < 2 || rows < 2 || columns * rows > points) return leaveOut("POLYLINE");
        const std::int32_t first = addPoints(polyline.points);
        const auto at = [&](std::int64_t i, std::int64_t k) {
            return static_cast<std::int32_t>(first + i % columns * rows + k % rows);
        };
        const std::int64_t lastColumn = columns - ((polyline.flags & closedInColumns) != 0 ? 0 : 1);
        const std::int64_t lastRow = rows - ((polyline.flags & closedInRows) != 0 ? 0 : 1);
        for (std::int64_t i = 0; i < lastColumn; ++i) {
            for (std::int64_t k = 0; k < lastRow; ++k) {
                addRing(at(i, k), at(i + 1, k), at(i + 1, k + 1), at(i, k + 1), polyline.style);
            }
        }
    }

    /// Vertexes, then the faces as one list of numbers: how many corners, and which.
    void readMesh() {
        std::vector<Vec3> places;
        std::vector<std::int32_t> list;
        double left = 0; ///< numbers of that list still to come; others follow with the same code
        for (const DxfPair& pair : fields.all()) {
            if (pair.code == 10) places.emplace_back();
            const int axis = pair.code / 10 - 1;
            if (pair.code % 10 == 0 && axis >= 0 && axis < 3 && !places.empty()) {
                along(places.back(), axis) = fields.bounded(pair);
            }
            if (pair.code == 93) left = pair.number;
            if (pair.code == 94) left = 0;
            if (pair.code == 90 && left-- > 0) {
                list.push_back(std::abs(pair.number) < 2e9 ? static_cast<std::int32_t>(pair.number)
                                                           : -1);
            }
        }
        const std::int32_t first = addPoints(places);
        const DxfStyle own = style();
        for (std::span<const std::int32_t> rest = list; !rest.empty();) {
            const auto n = static_cast<std::size_t>(std::max(rest[0], 0));
            if (n + 1 > rest.size()) return leaveOut("face of a MESH");
            std::vector<std::int32_t> corners(rest.begin() + 1,
                                              rest.begin() + static_cast<std::ptrdiff_t>(n) + 1);
            rest = rest.subspan(n + 1);
            const bool sound = std::all_of(corners.begin(), corners.end(), [&](std::int32_t c) {
                return c >= 0 && static_cast<std::size_t>(c) < places.size();
            });
            if (!sound) {
                leaveOut("face of a MESH");
                continue;
            }
            for (std::int32_t& corner : corners) corner += first;
            addFace(corners, own);
        }
    }

    void readInsert() {
        const AffineMap frame = mapFrom(fields);
        const Vec3 factors{fields.real(41, 1), fields.real(42, 1), fields.real(43, 1)};
        const AffineMap turn = product(frame, rotation(2, fields.real(50) * pi / 180));
        DxfInsert insert{
            plainName(fields.text(2)), product(turn, scaling(factors)), {}, {}, 1, 1, style()};
        const Vec3 offset = frame(fields.place(10));
        for (int axis = 0; axis < 3; ++axis) insert.map.row[axis][3] = along(offset, axis);
        insert.column = turned(turn, {fields.real(44), 0, 0});
        insert.row = turned(turn, {0, fields.real(45), 0});
        insert.columns = std::max(fields.whole(70, 1), 1);
        insert.rows = std::max(fields.whole(71, 1), 1);
        block().inserts.push_back(std::move(insert));
    }

    DxfDrawing drawing;
    Fields fields;
    Polyline polyline;
    std::map<std::string, std::int32_t> layers = {{"0", 0}};
    std::string_view section = "ENTITIES"; ///< a file may have nothing but entities
    bool draws = true;                     ///< the section has entities
    std::size_t present = 0;               ///< the block that is being read
};

constexpr DrawingReader::Entity DrawingReader::entities[] = {
    {"SECTION", &DrawingReader::readSection, false},
    {"ENDSEC", &DrawingReader::endSection, false},
    {"LAYER", &DrawingReader::readLayer, false},
    {"BLOCK", &DrawingReader::beginBlock, false},
    {"ENDBLK", &DrawingReader::endBlock, false},
    {"SEQEND", &DrawingReader::ignore, false},
    {"VERTEX", &DrawingReader::readVertex},
    {"3DFACE", &DrawingReader::read3dFace},
    {"SOLID", &DrawingReader::readSolid},
    {"TRACE", &DrawingReader::readSolid},
    {"POLYLINE", &DrawingReader::readPolyline},
    {"MESH", &DrawingReader::readMesh},
    {"INSERT", &DrawingReader::readInsert},
};

void DrawingReader::readEntity(std::string_view name) {
    if (name.empty()) return;
    if (name != "VERTEX") endPolyline();
    const auto* const entity = std::find_if(std::begin(entities), std::end(entities),
                                            [&](const Entity& e) { return e.name == name; });
    const bool known = entity != std::end(entities);
    if (known && !entity->isDrawn) return (this->*entity->read)();
    if (!draws || (section == "BLOCKS" && present == 0)) return;
    if (fields.whole(67) == 1) return leaveOut("entity on paper");
    if (known) return (this->*entity->read)();
    leaveOut(name);
}

} // namespace

std::string foldedName(std::string name) {
    for (char& c : name) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c | 0x20 : c);
    return name;
}

DxfDrawing readDxfDrawing(std::string_view file) { return DrawingReader().read(file); }

} // namespace polyfab
