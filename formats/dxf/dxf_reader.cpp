// SPDX-License-Identifier: GPL-3.0-or-later
// A DXF file is pairs of lines, a group code and a value. Two passes: one counts the 3DFACE lines,
// so that the arrays are made once, one reads.
#include "formats/dxf/dxf_reader.h"

#include "formats/dxf/dxf_pairs.h"
#include "formats/file_command.h"
#include "formats/left_out.h"
#include "io/parse_number.h"
#include "io/read_file.h"
#include "mesh/garbage.h"
#include "mesh/mesh.h"
#include "mesh/names.h"
#include "mesh/point_index.h"
#include "mesh/stale.h"
#include "platform/platform.h"
#include "workbench/title.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <new>
#include <optional>
#include <string_view>

namespace polyfab {
namespace {

/// Characters of a line, its line feed included; the rest of a longer one is the next line.
constexpr std::size_t maxLine = 255;

constexpr std::string_view entity = "3DFACE";

/// The lines of a file, which end in LF, CR LF or with the file.
class Lines {
  public:
    Lines(const std::string& path, Pass which) : file(path), pass(which) {}
    [[nodiscard]] bool isOpen() const { return file.isOpen(); }
    [[nodiscard]] bool failed() const { return file.failed(); }
    [[nodiscard]] bool stopped() const { return unwanted; }

    /// The next line without its end, followed by a character that belongs to no number and valid
    /// until the next call. False behind the last one, and when the user stops it.
    bool next(std::string_view& line);

  private:
    void readOn();

    PieceReader file;
    Pass pass;
    bool unwanted = false;
    std::string_view rest; ///< not yet handed out
    bool ended = false;    ///< nothing comes behind `rest`
    std::array<char, maxLine + 1> cut;
};

void Lines::readOn() {
    ended = !file.next(rest.size(), rest);
    if (ended || readsOn(file, pass)) return;
    unwanted = ended = true;
    rest = {};
}

bool Lines::next(std::string_view& line) {
    constexpr std::size_t window = maxLine + 2; // more than a line and a CR LF take
    std::size_t feed = rest.substr(0, window).find('\n');
    while (feed == rest.npos && rest.size() < window && !ended) {
        readOn();
        feed = rest.substr(0, window).find('\n');
    }
    if (rest.empty()) return false;
    line = rest.substr(0, std::min(feed, window));
    if ((feed != rest.npos || ended) && line.ends_with('\r')) line.remove_suffix(1);
    if (feed != rest.npos && line.size() < maxLine) {
        rest.remove_prefix(feed + 1);
        return true;
    }
    const bool whole = line.size() <= maxLine && feed == rest.npos; // the last line, without end
    line = line.substr(0, maxLine);
    rest.remove_prefix(whole ? rest.size() : maxLine);
    line.copy(cut.data(), line.size());
    cut[line.size()] = '\0';
    line = {cut.data(), line.size()};
    return true;
}

const char* skipBlanks(std::string_view line) {
    return line.data() + std::min(line.find_first_not_of(" \t\v\f\r"), line.size());
}

std::int64_t integerIn(std::string_view line) {
    const char* text = skipBlanks(line);
    std::int64_t value = 0;
    parseInteger(text, value);
    return value;
}

double decimalIn(std::string_view line) {
    const char* text = skipBlanks(line);
    double value = 0;
    parseDecimal(text, value);
    return value;
}

bool isLetter(char c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; }

/// The reading pass.
class Reader {
  public:
    explicit Reader(Mesh& to) : mesh(to) {}

    /// Number of boundaries, or nothing when there was no room for what the file holds.
    std::optional<int> read(Lines& lines);

  private:
    bool boundary();
    bool addEntity();
    void setField(std::int64_t code, std::string_view value);

    Mesh& mesh;
    PointIndex points{mesh};
    // Made behind the first face, which may have made the default material.
    std::optional<NameTable> materials;
    std::array<std::array<double, 3>, 4> corners{}; ///< of the entity
    std::string layer;                              ///< its material, "" for none yet
    int boundaries = 0;
};

std::optional<int> Reader::read(Lines& lines) {
    std::string_view line;
    while (lines.next(line)) {
        const std::int64_t code = integerIn(line);
        if (!lines.next(line)) break;
        const bool last = line == "EOF" || line == "ENDSEC";
        if (!last && !line.starts_with(entity)) {
            setField(code, line);
            continue;
        }
        if (!boundary()) return std::nullopt;
        if (last) break;
    }
    return boundaries;
}

void Reader::setField(std::int64_t code, std::string_view value) {
    if (code == 8) {
        layer = value;
        if (value.empty() || !isLetter(value[0])) layer.insert(0, "material");
    } else if (code >= 10 && code <= 33 && code % 10 <= 3) {
        // The first digit tells the axis, the second the corner.
        const auto axis = static_cast<std::size_t>(code / 10 - 1);
        corners[static_cast<std::size_t>(code % 10)][axis] = decimalIn(value);
    }
}

/// Ends the entity, if one was begun, and begins the next. False: no room.
bool Reader::boundary() {
    if (boundaries > 0) {
        if (!addEntity()) return false;
        if (boundaries % 256 == 0) {
            const std::string count = std::to_string(boundaries);
            platform().setTitle(std::string(count.size() < 5 ? 5 - count.size() : 0, ' ') + count);
        }
    }
    ++boundaries;
    corners = {};
    return true;
}

bool Reader::addEntity() {
    int found[4];
    for (std::size_t k = 0; k < 4; ++k) {
        found[k] = points.findOrAdd(corners[k][0], corners[k][1], corners[k][2]);
        // Room was made for all, but the file may have grown since it was counted.
        if (found[k] < 0) return false;
    }
    // The layer of a degenerate entity stays for the next one.
    if (found[0] == found[2] || found[1] == found[3]) return true;
    Point* list[4];
    std::transform(std::begin(found), std::end(found), list,
                   [&](int i) { return mesh.points + i; });
    Face* const face = mesh.addFaceByPoints(list, 4, true);
    if (face == nullptr) return false;
    if (!materials) materials.emplace(mesh, NameTable::Kind::materials);
    const int material = materials->findOrAdd(layer.empty() ? "defaultmat" : layer);
    face->mat = static_cast<std::int16_t>(material);
    layer.clear();
    return true;
}

struct Drawn {
    std::string_view name;
    bool hasFaces = false; ///< for import
};

/// What is drawn in a DXF file, in the order of the notes.
constexpr Drawn drawn[] = {{entity, true},  {"POLYLINE", true}, {"INSERT", true}, {"MESH", true},
                           {"LWPOLYLINE"},  {"LINE"},           {"CIRCLE"},       {"ARC"},
                           {"ELLIPSE"},     {"SPLINE"},         {"POINT"},        {"SOLID", true},
                           {"TRACE", true}, {"TEXT"},           {"MTEXT"},        {"HATCH"},
                           {"DIMENSION"},   {"3DSOLID"},        {"REGION"},       {"BODY"},
                           {"SURFACE"},     {"VIEWPORT"}};

/// The counting pass.
struct Counts {
    std::int64_t entities = 0; ///< lines that the reading pass takes for the start of a face
    std::int64_t of[std::size(drawn)] = {};
    std::int64_t comments = 0;

    void count(Lines& lines) {
        constexpr std::int64_t isComment = 999;
        std::string_view line;
        while (lines.next(line)) {
            const std::int64_t code = integerIn(line);
            entities += line.starts_with(entity);
            if (!lines.next(line)) return;
            entities += line.starts_with(entity);
            comments += code == isComment;
            const auto* const row = std::find_if(std::begin(drawn), std::end(drawn),
                                                 [&](const Drawn& d) { return d.name == line; });
            if (code == 0 && row != std::end(drawn)) ++of[row - std::begin(drawn)];
        }
    }

    void tellLeftOut(std::int64_t read) const {
        if (comments > 0) leftOut.hold(counted(comments, "comment"));
        for (std::size_t i = 0; i < std::size(drawn); ++i) {
            const std::int64_t left = i == 0 ? of[i] - read : of[i];
            if (left > 0) leftOut.miss(counted(left) + " " + std::string(drawn[i].name));
        }
    }

    /// Whether import makes faces of something in the file.
    [[nodiscard]] bool hasFaces() const {
        return std::any_of(std::begin(drawn), std::end(drawn),
                           [&](const Drawn& row) { return row.hasFaces && of[&row - drawn] > 0; });
    }
};

/// Whether the coordinate has more decimals than are written.
bool isFine(double value) { return std::round(value * 1000) / 1000 != value; }

bool isBinaryFile(const std::string& path) {
    PieceReader file(path);
    std::string_view text;
    return file.isOpen() && file.next(0, text) && isBinaryDxf(text);
}

bool reserve(Mesh& mesh, std::int64_t entities) {
    return mesh.growFaces(mesh.nf + entities, false)
           && mesh.growCorners(mesh.nq + 4 * entities, false)
           && mesh.growPoints(mesh.np + 4 * entities, false);
}

/// Number of boundaries; or 0, after a message unless the user stopped it.
int readEntities(Mesh& mesh, const std::string& path) try {
    const int facesBefore = mesh.nf;
    Lines counted(path, Pass::counting);
    Lines lines(path, Pass::reading);
    if (!counted.isOpen() || !lines.isOpen()) {
        complain("I can't open this file", path);
        return 0;
    }
    Counts counts;
    counts.count(counted);
    if (counted.stopped() || !reserve(mesh, counts.entities)) return 0;
    const std::optional<int> boundaries = Reader(mesh).read(lines);
    if (!boundaries || lines.stopped()) return 0;
    if (counted.failed() || lines.failed()) {
        complain("I can't read this file", path);
        return 0;
    }
    counts.tellLeftOut(std::max(*boundaries - 1, 0));
    leftOut.elsewhere = mesh.nf == facesBefore && (counts.hasFaces() || isBinaryFile(path));
    if (*boundaries == 0) complain("bad DXF file", path);
    return *boundaries;
} catch (const std::bad_alloc&) { // the tables
    platform().message("I can't get enough memory", path, Icon::exclamation);
    return 0;
}

} // namespace

int readDxfFile(Mesh& mesh, const std::string& path, bool append) {
    if (!append) mesh.clear(true);
    const std::string title = titleUpTo(128);
    const int boundaries = readEntities(mesh, path);
    if (boundaries == 0) return 0;
    const bool fine = std::any_of(mesh.points, mesh.points + mesh.np, [](const Point& point) {
        return isFine(point.x) || isFine(point.y) || isFine(point.z);
    });
    if (fine) leftOut.hold("decimals behind the third");
    stale.edges = true;
    platform().setTitle(title);
    mesh.highlightPoint(-1);
    collectGarbage(mesh);
    return boundaries;
}

} // namespace polyfab
