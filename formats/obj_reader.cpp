// SPDX-License-Identifier: GPL-3.0-or-later
// Two passes over the file: one counts, so that the arrays are made once and in their size, one
// reads. The reading pass knows each line in two ways: plainLine parses the lines that make up
// nearly all of a file where they stand in the buffer, or declines. The Reader then cuts the line
// into words and applies the rules in full. Both do the same to the mesh.
#include "formats/obj_reader.h"

#include "formats/file_command.h"
#include "formats/left_out.h"
#include "formats/material_library.h"
#include "formats/obj_elements.h"
#include "formats/obj_writer.h"
#include "io/parse_number.h"
#include "io/read_file.h"
#include "mesh/mesh.h"
#include "mesh/names.h"
#include "platform/platform.h"

#include <algorithm>
#include <iterator>
#include <optional>

namespace polyfab {
namespace {

void cannot(const std::string& what, const std::string& path) {
    platform().message("I can't " + what + " this file", path, Icon::exclamation);
}

/// Lines that nothing is read from, by their keyword; the last row is any other.
struct Unread {
    std::string_view word;
    const char* what;
};
constexpr Unread unreadLines[] = {{"#", "comment"},        {"o", "object name"},
                                  {"s", "smoothing line"}, {"l", "line element"},
                                  {"p", "point element"},  {"", "other line"}};

/// Whether the writer makes such a comment anew.
bool isOwnComment(std::string_view text) {
    return std::any_of(std::begin(objHeader), std::end(objHeader),
                       [&](std::string_view row) { return text.starts_with(row); });
}

/// The reading pass.
class Reader {
  public:
    explicit Reader(Mesh& to) : mesh(to) {}

    /// 1; or 0, after a message unless the user stopped it.
    int read(PieceReader& file, const std::string& path);

  private:
    /// What a line does; null or the reason why it is bad.
    using Handler = const char* (Reader::*)();
    struct Keyword {
        std::string_view word;
        Handler handler;
    };
    static const Keyword keywords[];

    [[nodiscard]] std::size_t readLines(std::string_view text);
    void readLine();
    void noteUnread();
    void noteCut(std::string_view text, std::size_t used);
    void tellLeftOut(std::string_view end) const;
    void enterGroup(std::string_view name);
    [[nodiscard]] double decimal(int k) const;
    [[nodiscard]] std::optional<CornerNumbers> cornerNumbers(int k) const;

    const char* point();
    const char* texcoord();
    const char* normal();
    const char* face();
    const char* library();
    const char* group();
    const char* actor();
    const char* prop();
    const char* section();
    const char* material();

    Mesh& mesh;
    Bases bases = currentCounts(mesh);
    ObjLine line;
    std::int64_t lineNumber = 0;  ///< lines with a word so far
    const char* reason = nullptr; ///< why the line is bad
    // Made at the first name: a face before that may have made the default group or material.
    std::optional<NameTable> groups;
    std::optional<NameTable> materials;
    Surplus surplus;
    std::int64_t unread[std::size(unreadLines)] = {};
    std::int64_t cutLines = 0;
    bool cut = false; ///< the line before went on where it was cut
};

const Reader::Keyword Reader::keywords[] = {
    {"v", &Reader::point},
    {"vt", &Reader::texcoord},
    {"vn", &Reader::normal},
    {"f", &Reader::face},
    {"fo", &Reader::face},
    {"g", &Reader::group},
    {"usemtl", &Reader::material},
    {"mtllib", &Reader::library},
    {"actor", &Reader::actor},
    {"prop", &Reader::prop},
    {"geomcustom", &Reader::section},
};

int Reader::read(PieceReader& file, const std::string& path) {
    std::string_view text;
    std::size_t kept = 0;
    while (reason == nullptr && file.next(kept, text)) {
        if (!readsOn(file, Pass::reading)) return 0;
        kept = text.size() - readLines(text);
    }
    if (reason != nullptr) {
        platform().message("line " + std::to_string(lineNumber) + " is bad: " + reason,
                           line.whole(), Icon::exclamation);
        return 0;
    }
    if (file.failed()) {
        cannot("read", path);
        return 0;
    }
    mesh.highlightPoint(-1);
    tellLeftOut(text);
    return 1;
}

/// Reads the complete lines at the start of `text` and returns how many characters they take; stops
/// at a bad one.
std::size_t Reader::readLines(std::string_view text) {
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    // Up to the last line end no parser can run out of the text.
    const char* plainEnd = end;
    while (plainEnd != begin && !isLineEnd(plainEnd[-1])) --plainEnd;
    const char* p = begin;
    while (reason == nullptr) {
        // What is left of a split line goes by the full rules at once, lest the parsers look
        // through all of an endless line from each of its splits.
        if (p < plainEnd && (p == begin || isLineEnd(p[-1]))) {
            const char* const after = plainLine(mesh, p, bases, surplus);
            if (after != nullptr) {
                ++lineNumber;
                cut = false;
                p = after + 1;
                continue;
            }
        }
        const std::size_t used = line.take({p, static_cast<std::size_t>(end - p)});
        if (used == 0) break;
        noteCut({p, static_cast<std::size_t>(end - p)}, used);
        p += used;
        if (!line.empty()) readLine();
    }
    return static_cast<std::size_t>(p - begin);
}

void Reader::readLine() {
    ++lineNumber;
    if (line.keyword().starts_with('#')) return noteUnread();
    if (line.arguments() < 1) return;
    for (const Keyword& row : keywords) {
        if (!sameKeyword(line.keyword(), row.word)) continue;
        reason = (this->*row.handler)();
        return;
    }
    noteUnread();
}

/// Counts the line, unless it says nothing, as it does that goes on where the one before was cut.
void Reader::noteUnread() {
    const bool comment = line.keyword().starts_with('#');
    if (line.keyword() == "#" && line.arguments() == 0) return;
    if (comment && isOwnComment(line.whole())) return;
    if (sameKeyword(line.keyword(), "s") && (line.word(1) == "off" || line.word(1) == "0")) return;
    const std::string_view word = comment ? "#" : line.keyword();
    const auto* row = std::begin(unreadLines);
    while (!row->word.empty() && !sameKeyword(word, row->word)) ++row;
    ++unread[row - unreadLines];
}

/// Counts the line at the start of the text, of which so much was used, when that is not all of it.
void Reader::noteCut(std::string_view text, std::size_t used) {
    const bool goesOn = used == maxObjLine && !isLineEnd(text[used - 1]) && text.size() > used
                        && !isLineEnd(text[used]);
    if (goesOn && !cut && text[0] != '#') ++cutLines;
    cut = goesOn;
}

/// `end`: what stands behind the last line end.
void Reader::tellLeftOut(std::string_view end) const {
    const auto* const word = std::find_if_not(end.begin(), end.end(), isBlank);
    leftOut.lines += cutLines + (word != end.end() && *word != '#' ? 1 : 0);
    for (std::size_t i = 0; i < std::size(unreadLines); ++i) {
        leftOut.add(unreadLines[i].what, unread[i]);
    }
    leftOut.add("vertex colour", surplus.colors);
    leftOut.add("vertex weight", surplus.weights);
    leftOut.add("third texture coordinate", surplus.depths);
}

double Reader::decimal(int k) const {
    const char* text = line.word(k).data();
    double value = 0;
    parseDecimal(text, value);
    return value;
}

const char* Reader::point() {
    if (line.arguments() < 3) return "<3 args";
    mesh.addPoint(decimal(1), decimal(2), decimal(3), false);
    surplus.behindPoint(line.arguments() - 3, line.arguments() > 3 ? decimal(4) : 0);
    return nullptr;
}

const char* Reader::texcoord() {
    if (line.arguments() < 2) return "<2 args";
    mesh.addTexCoord(sensibleTexCoord(decimal(1)), sensibleTexCoord(decimal(2)));
    surplus.behindTexCoord(line.arguments() - 2, line.arguments() > 2 ? decimal(3) : 0);
    return nullptr;
}

const char* Reader::normal() {
    if (line.arguments() < 3) return "<3 args";
    mesh.addNormal(decimal(1), decimal(2), decimal(3));
    return nullptr;
}

/// The numbers of argument k; nothing when it does not begin with one.
std::optional<CornerNumbers> Reader::cornerNumbers(int k) const {
    const std::string_view word = line.word(k);
    CornerNumbers numbers;
    const char* text = word.data();
    if (!parseInteger(text, numbers.point)) return std::nullopt;
    const std::size_t first = word.find('/');
    if (first == std::string_view::npos) return numbers;
    text = word.data() + first + 1;
    parseInteger(text, numbers.texcoord);
    const std::size_t second = word.find('/', first + 1);
    if (second == std::string_view::npos) return numbers;
    text = word.data() + second + 1;
    parseInteger(text, numbers.normal);
    return numbers;
}

const char* Reader::face() {
    Face* const added = mesh.addFaceByPoints(nullptr, line.arguments(), false);
    if (added == nullptr) return nullptr;
    for (int k = 0; k < added->n; ++k) {
        const std::optional<CornerNumbers> numbers = cornerNumbers(k + 1);
        if (!numbers) return "no such vertex";
        if (const char* bad = setCorner(mesh, added->q[k], *numbers, bases)) return bad;
    }
    return nullptr;
}

const char* Reader::library() {
    static_assert(sizeof mesh.mtllib > maxObjLine);
    const std::string name = line.rest(1);
    noteLibrary(name);
    if (mesh.mtllib[0] != '\0') return nullptr;
    name.copy(mesh.mtllib, name.size());
    mesh.mtllib[name.size()] = '\0';
    return nullptr;
}

/// Makes the group of this name, which ends before a colon, the current one.
void Reader::enterGroup(std::string_view name) {
    if (!groups) groups.emplace(mesh, NameTable::Kind::groups);
    mesh.curgroup = static_cast<std::int16_t>(groups->findOrAdd(name.substr(0, name.find(':'))));
}

const char* Reader::group() {
    enterGroup(line.rest(1));
    return nullptr;
}

const char* Reader::actor() {
    enterGroup(line.rest(1));
    return section();
}

const char* Reader::prop() {
    enterGroup("prop___" + line.rest(1).substr(0, 1017));
    return section();
}

const char* Reader::section() {
    bases = currentCounts(mesh);
    return nullptr;
}

const char* Reader::material() {
    if (!materials) materials.emplace(mesh, NameTable::Kind::materials);
    mesh.curmat = static_cast<std::int16_t>(materials->findOrAdd(line.rest(1)));
    return nullptr;
}

bool reserve(Mesh& mesh, const ObjCounts& counts) {
    return mesh.growFaces(counts.faces, false) && mesh.growCorners(counts.corners, false)
           && mesh.growPoints(counts.points, false) && mesh.growTexCoords(counts.texcoords, false)
           && mesh.growNormals(counts.normals, false) && mesh.growGroups(counts.groups, false)
           && mesh.growMaterials(counts.materials, false);
}

/// Gives back what was reserved too much. Shrinking can hardly fail, and when it does it has shown
/// its message; the arrays after it are trimmed all the same.
void trim(Mesh& mesh) {
    const int trimmed[] = {
        mesh.growFaces(mesh.nf, true),       mesh.growCorners(mesh.nq, true),
        mesh.growPoints(mesh.np, true),      mesh.growTexCoords(mesh.nt, true),
        mesh.growNormals(mesh.nd, true),     mesh.growGroups(mesh.ng, true),
        mesh.growMaterials(mesh.nmat, true), mesh.growTextureMapAreas(mesh.ntma, true),
        mesh.growParts(mesh.nprt, true),
    };
    static_cast<void>(trimmed);
}

} // namespace

int countObjFile(const std::string& path, ObjCounts& counts) {
    PieceReader file(path);
    if (!file.isOpen()) {
        cannot("open", path);
        return 0;
    }
    std::string_view text;
    std::size_t kept = 0;
    while (file.next(kept, text)) {
        if (!readsOn(file, Pass::counting)) return -1;
        kept = text.size() - countObjLines(text, counts);
    }
    if (file.failed()) cannot("read", path);
    return file.failed() ? 0 : 1;
}

int readObjFile(Mesh& mesh, const std::string& path, bool append) {
    if (!append) mesh.clear(true);
    ObjCounts counts{mesh.nf, mesh.nq, mesh.np, mesh.nt, mesh.nd, mesh.ng, mesh.nmat};
    platform().showBusy("I am counting the vertexes etc in the file");
    // When it fails, reading fails in the same way, and that is what counts.
    const bool stopped = countObjFile(path, counts) < 0;
    platform().showBusy("");
    if (stopped) return 0;
    PieceReader file(path);
    if (!file.isOpen()) {
        cannot("open", path);
        return 0;
    }
    if (!reserve(mesh, counts)) return 0;
    const int result = Reader(mesh).read(file, path);
    trim(mesh);
    return result;
}

} // namespace polyfab
