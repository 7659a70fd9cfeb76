// SPDX-License-Identifier: GPL-3.0-or-later
// Two passes over the file: one counts, so that the arrays are made once and in their size, one
// reads. The reading pass knows each line in two ways: plainLine parses the lines that make up
// nearly all of a file where they stand in the buffer, or declines. The Reader then cuts the line
// into words and applies the rules in full. Both do the same to the mesh.
#include "formats/obj/obj_reader.h"

#include "formats/file_command.h"
#include "formats/left_out.h"
#include "formats/obj/material_library.h"
#include "formats/obj/obj_elements.h"
#include "formats/obj/obj_writer.h"
#include "io/parse_number.h"
#include "io/read_file.h"
#include "mesh/mesh.h"
#include "mesh/names.h"
#include "platform/platform.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <new>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace polyfab {
namespace {

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

/// Why reading ended.
enum class End : std::uint8_t { whole, stopped, unopened, unreadable, badLine, noRoom, manyNames };

/// What was read otherwise than it stands there.
struct Changes {
    std::int64_t cutLines = 0, brokenLines = 0;
    std::int64_t badFaces = 0, smallFaces = 0, wideFaces = 0;
    std::int64_t fewNumbers = 0, beyondTexture = 0, infinite = 0;
    VainNumbers vain;
    std::set<std::string> longNames, colonNames;
};

/// The reading pass.
class Reader {
  public:
    Reader(Mesh& to, const ObjReading& how) : input{to, how}, mesh(to) {}

    /// A message tells of a bad line.
    End read(PieceReader& file);

  private:
    /// What a line does; null or the reason why it is bad.
    using Handler = const char* (Reader::*)();
    struct Keyword {
        std::string_view word;
        Handler handler;
        bool hasNumbers = false;
    };
    static const Keyword keywords[];

    void takeMark(std::string_view& text) const;
    [[nodiscard]] std::size_t readLines(std::string_view text);
    [[nodiscard]] std::size_t takeLine(std::string_view text);
    [[nodiscard]] std::size_t joinLine(std::string_view text);
    void readLine();
    void noteUnread();
    void noteCut(std::string_view text, std::size_t used);
    void noteChanges(std::string_view end) const;
    void enterGroup(std::string_view name);
    [[nodiscard]] std::string name(int k);
    [[nodiscard]] double decimal(int k);
    [[nodiscard]] double texture(int k);
    [[nodiscard]] bool hasNumbers(int count);
    [[nodiscard]] std::optional<CornerNumbers> cornerNumbers(int k) const;

    const char* point();
    const char* texcoord();
    const char* normal();
    const char* face();
    const char* goodFace();
    const char* library();
    const char* object();
    const char* group();
    const char* actor();
    const char* prop();
    const char* section();
    const char* material();

    ObjInput input;
    Mesh& mesh;
    ObjLine line;
    std::string pending;          ///< a line that goes on
    bool skipsFeed = false;       ///< of the line end behind a backslash the second half
    std::int64_t lineNumber = 0;  ///< lines with a word so far
    const char* reason = nullptr; ///< why the line is bad
    // Made at the first name: a face before that may have made the default group or material.
    std::optional<NameTable> groups;
    std::optional<NameTable> materials;
    std::vector<FaceCorner> corners; ///< of a face that may be bad
    Changes changes;
    std::int64_t unread[std::size(unreadLines)] = {};
    bool noRoom = false;
    bool cut = false; ///< the line before went on where it was cut
};

const Reader::Keyword Reader::keywords[] = {
    {"v", &Reader::point, true}, {"vt", &Reader::texcoord, true}, {"vn", &Reader::normal, true},
    {"f", &Reader::face, true},  {"fo", &Reader::face, true},     {"o", &Reader::object},
    {"g", &Reader::group},       {"usemtl", &Reader::material},   {"mtllib", &Reader::library},
    {"actor", &Reader::actor},   {"prop", &Reader::prop},         {"geomcustom", &Reader::section},
};

/// What ends in a backslash there does not go on.
bool isComment(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    return first != std::string_view::npos && text[first] == '#';
}

End Reader::read(PieceReader& file) {
    std::string_view text;
    std::size_t kept = 0;
    bool atStart = true;
    while (reason == nullptr && !noRoom && file.next(kept, text)) {
        if (!readsOn(file, Pass::reading)) return End::stopped;
        if (std::exchange(atStart, false) && text.starts_with(byteOrderMark)) takeMark(text);
        kept = text.size() - readLines(text);
    }
    if (reason != nullptr) {
        leftOut.badLine = true;
        platform().message("line " + std::to_string(lineNumber) + " is bad: " + reason,
                           line.whole(), Icon::exclamation);
        return End::badLine;
    }
    if (file.failed()) return End::unreadable;
    while (!pending.empty()) static_cast<void>(joinLine("\n"));
    if (noRoom) return End::noRoom;
    mesh.highlightPoint(-1);
    noteChanges(text);
    const bool full = (groups && groups->isFull()) || (materials && materials->isFull());
    return full && input.how.forgives ? End::manyNames : End::whole;
}

/// Of what follows a byte order mark, import makes more than a word that nobody knows.
void Reader::takeMark(std::string_view& text) const {
    const std::string_view rest = text.substr(byteOrderMark.size());
    if (input.how.forgives) {
        text = rest;
    } else if (!rest.empty() && rest[0] != '#' && !isLineEnd(rest[0])) {
        leftOut.lines.emplace_back("the first line has a byte order mark and was left out");
    }
}

/// Reads the complete lines at the start of `text` and returns how many characters they take; stops
/// at a bad one. Where lines are joined it takes all.
std::size_t Reader::readLines(std::string_view text) {
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    // Up to the last line end no parser can run out of the text.
    const char* plainEnd = end;
    while (plainEnd != begin && !isLineEnd(plainEnd[-1])) --plainEnd;
    const char* p = begin;
    while (reason == nullptr && !noRoom) {
        // What is left of a split line goes by the full rules at once, lest the parsers look
        // through all of an endless line from each of its splits.
        if (p < plainEnd && pending.empty() && (p == begin || isLineEnd(p[-1]))) {
            const char* const after = plainLine(input, p);
            if (after != nullptr) {
                ++lineNumber;
                cut = false;
                p = after + 1;
                continue;
            }
        }
        const std::string_view rest{p, static_cast<std::size_t>(end - p)};
        const std::size_t used = input.how.joinsLines ? joinLine(rest) : takeLine(rest);
        if (used == 0) break;
        p += used;
    }
    return static_cast<std::size_t>(p - begin);
}

/// Reads the line at the start of the text and returns how much that used up; 0 when the text holds
/// no complete line.
std::size_t Reader::takeLine(std::string_view text) {
    const std::size_t used = line.take(text);
    if (used == 0) return 0;
    noteCut(text, used);
    if (!line.empty()) readLine();
    return used;
}

/// The same for a line that may go on behind a backslash and in the next text.
std::size_t Reader::joinLine(std::string_view text) {
    const bool isFeed = std::exchange(skipsFeed, false) && text.starts_with('\n');
    if (isFeed || text.empty()) return text.empty() ? 0 : 1;
    const auto end = std::find_if(text.begin(), text.end(), isLineEnd);
    pending.append(text.begin(), end);
    if (end == text.end()) return text.size();
    if (pending.ends_with('\\') && !isComment(pending)) {
        pending.back() = ' ';
        skipsFeed = *end == '\r';
    } else {
        line.set(pending);
        pending.clear();
        if (!line.empty()) readLine();
    }
    return static_cast<std::size_t>(end - text.begin()) + 1;
}

void Reader::readLine() {
    ++lineNumber;
    if (line.keyword().starts_with('#')) return noteUnread();
    if (line.arguments() < 1) {
        const bool face = sameKeyword(line.keyword(), "f") || sameKeyword(line.keyword(), "fo");
        changes.smallFaces += input.how.forgives && face;
        return;
    }
    for (const Keyword& row : keywords) {
        if (!sameKeyword(line.keyword(), row.word)) continue;
        if (row.hasNumbers && input.how.hasComments) line.dropComment();
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
    if (goesOn && !cut && text[0] != '#') ++changes.cutLines;
    cut = goesOn;
}

struct Sentence {
    std::int64_t count;
    std::string_view pattern;
};

/// `end`: what stands behind the last line end.
void Reader::noteChanges(std::string_view end) const {
    const auto* const word = std::find_if_not(end.begin(), end.end(), isBlank);
    if (!input.how.joinsLines && word != end.end() && *word != '#') {
        leftOut.lines.emplace_back("the last line has no line end and was left out");
    }
    const Sentence lines[] = {{changes.cutLines, "{line} {is} longer than 1,023 characters"},
                              {changes.brokenLines, "{line} {was} cut at the backslash"}};
    for (const auto& [count, pattern] : lines) {
        if (count > 0) leftOut.lines.push_back(sentence(count, pattern));
    }
    for (std::size_t i = 0; i < std::size(unreadLines); ++i) {
        if (i == 0 && unread[i] > 0) leftOut.hold(counted(unread[i], unreadLines[i].what));
        if (i > 0) leftOut.add(unreadLines[i].what, unread[i]);
    }
    leftOut.add("vertex colour", input.surplus.colors);
    leftOut.add("vertex weight", input.surplus.weights);
    leftOut.add("third texture coordinate", input.surplus.depths);
    const Sentence sentences[] = {
        {changes.badFaces, "{face} {was} left out: there is no vertex of a corner's number"},
        {changes.smallFaces, "{face} of fewer than 3 corners {was} left out"},
        {changes.wideFaces, "{face} of more than 32,767 corners {was} left out"},
        {changes.fewNumbers, "{line} {has} too few numbers; they count as 0"},
        {changes.infinite, beyondBounds},
        {changes.beyondTexture, "{texture coordinate} beyond 100,000 {was} read as 0"},
        {changes.vain.normals,
         "{corner} {has} the number of a normal that is not there, and got none"},
        {changes.vain.texcoords,
         input.how.forgives || mesh.nt == 0
             ? "{corner} {has} the number of a texture coordinate that is not there, and got none"
             : "{corner} {has} the number of a texture coordinate that is not there, and got the "
               "first"},
        {std::ssize(changes.longNames), "{name} {is} longer than 63 characters and {was} cut"},
        {std::ssize(changes.colonNames), "{group name} {was} cut at a colon"},
    };
    for (const auto& [count, pattern] : sentences) leftOut.change(count, pattern);
}

/// What argument k begins with; 0 when it is not there.
double Reader::decimal(int k) {
    if (k > line.arguments()) return 0;
    const char* text = line.word(k).data();
    double value = 0;
    parseDecimal(text, value);
    if (!input.how.keepsValues || std::isfinite(value)) return value;
    ++changes.infinite;
    return 0;
}

double Reader::texture(int k) {
    const double value = decimal(k);
    if (input.how.keepsValues || !isBeyondTexture(value)) return value;
    ++changes.beyondTexture;
    return 0;
}

/// Whether there are so many arguments, or may be fewer.
bool Reader::hasNumbers(int count) {
    if (line.arguments() >= count) return true;
    if (input.how.forgives) ++changes.fewNumbers;
    return input.how.forgives;
}

const char* Reader::point() {
    if (!hasNumbers(3)) return "<3 args";
    mesh.addPoint(decimal(1), decimal(2), decimal(3), false);
    input.surplus.behindPoint(line.arguments() - 3, line.arguments() > 3 ? decimal(4) : 0);
    return nullptr;
}

const char* Reader::texcoord() {
    if (!hasNumbers(input.how.forgives ? 1 : 2)) return "<2 args";
    mesh.addTexCoord(texture(1), texture(2));
    input.surplus.behindTexCoord(line.arguments() - 2, line.arguments() > 2 ? decimal(3) : 0);
    return nullptr;
}

const char* Reader::normal() {
    if (!hasNumbers(3)) return "<3 args";
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
    if (input.how.forgives) return goodFace();
    Face* const added = mesh.addFaceByPoints(nullptr, line.arguments(), false);
    if (added == nullptr) return nullptr;
    for (int k = 0; k < added->n; ++k) {
        const std::optional<CornerNumbers> numbers = cornerNumbers(k + 1);
        if (!numbers) return "no such vertex";
        const char* const bad = setCorner(input, added->q[k], *numbers, changes.vain);
        if (bad != nullptr) return bad;
    }
    changes.brokenLines += line.word(line.arguments()).ends_with('\\');
    return nullptr;
}

/// Adds the face unless something is wrong with it.
const char* Reader::goodFace() {
    const int n = line.arguments();
    if (n < 3 || n > maxIndexed) {
        ++(n < 3 ? changes.smallFaces : changes.wideFaces);
        return nullptr;
    }
    corners.assign(static_cast<std::size_t>(n), {});
    VainNumbers vain;
    for (int k = 0; k < n; ++k) {
        FaceCorner& corner = corners[static_cast<std::size_t>(k)];
        const std::optional<CornerNumbers> numbers = cornerNumbers(k + 1);
        corner.edgeuse = 2;
        if (numbers && setCorner(input, corner, *numbers, vain) == nullptr) continue;
        ++changes.badFaces;
        return nullptr;
    }
    changes.vain.texcoords += vain.texcoords;
    changes.vain.normals += vain.normals;
    noRoom = mesh.addFaceByCorners(corners.data(), n) == nullptr;
    return nullptr;
}

/// The rest of the line from word k on, a name.
std::string Reader::name(int k) {
    std::string text = line.rest(k);
    if (trimTrailingBlanks(text).size() >= nameSize) changes.longNames.insert(text);
    // What is cut may end in a blank, which the next file with it would not have.
    return input.how.keepsNames ? std::string(trimTrailingBlanks(storedName(text))) : text;
}

const char* Reader::library() {
    std::string named = line.rest(1);
    noteLibrary(named);
    if (mesh.mtllib[0] != '\0') return nullptr;
    named.resize(std::min(named.size(), sizeof mesh.mtllib - 1));
    named.copy(mesh.mtllib, named.size());
    mesh.mtllib[named.size()] = '\0';
    return nullptr;
}

/// Makes the group of this name the current one.
void Reader::enterGroup(std::string_view name) {
    if (!groups) groups.emplace(mesh, NameTable::Kind::groups);
    const std::size_t colon = input.how.keepsNames ? name.npos : name.find(':');
    if (colon != name.npos) changes.colonNames.emplace(name);
    if (input.how.keepsNames) name = trimTrailingBlanks(storedName(name)); // also of "prop"
    mesh.curgroup = static_cast<std::int16_t>(groups->findOrAdd(name.substr(0, colon)));
}

const char* Reader::object() {
    if (!input.how.keepsNames) {
        noteUnread();
        return nullptr;
    }
    return group();
}

const char* Reader::group() {
    enterGroup(name(1));
    return nullptr;
}

const char* Reader::actor() {
    enterGroup(name(1));
    return section();
}

const char* Reader::prop() {
    enterGroup("prop___" + line.rest(1).substr(0, 1017));
    return section();
}

const char* Reader::section() {
    input.bases = currentCounts(mesh);
    return nullptr;
}

const char* Reader::material() {
    if (!materials) materials.emplace(mesh, NameTable::Kind::materials);
    mesh.curmat = static_cast<std::int16_t>(materials->findOrAdd(name(1)));
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

/// Adds what the lines of the file announce to `counts`.
End countLines(const std::string& path, ObjCounts& counts) {
    PieceReader file(path);
    if (!file.isOpen()) return End::unopened;
    std::string_view text;
    std::size_t kept = 0;
    while (file.next(kept, text)) {
        if (!readsOn(file, Pass::counting)) return End::stopped;
        kept = text.size() - countObjLines(text, counts);
    }
    return file.failed() ? End::unreadable : End::whole;
}

/// The second pass.
End readCounted(Mesh& mesh, const std::string& path, const ObjCounts& counts,
                const ObjReading& how) try {
    PieceReader file(path);
    if (!file.isOpen()) return End::unopened;
    if (!reserve(mesh, counts)) return End::noRoom;
    const End end = Reader(mesh, how).read(file);
    trim(mesh);
    return end;
} catch (const std::bad_alloc&) { // a long line, or names
    return End::noRoom;
}

ObjCounts countsOf(const Mesh& mesh) {
    return {mesh.nf, mesh.nq, mesh.np, mesh.nt, mesh.nd, mesh.ng, mesh.nmat};
}

/// What the read commands tell by a message; the others have been told, or need not be.
End complained(End end, const std::string& path) {
    if (end == End::unopened) complain("I can't open this file", path);
    if (end == End::unreadable) complain("I can't read this file", path);
    return end;
}

} // namespace

int countObjFile(const std::string& path, ObjCounts& counts) {
    const End end = complained(countLines(path, counts), path);
    return end == End::stopped ? -1 : end == End::whole ? 1 : 0;
}

int readObjFile(Mesh& mesh, const std::string& path, bool append) {
    if (!append) mesh.clear(true);
    ObjCounts counts = countsOf(mesh);
    platform().showBusy("I am counting the vertexes etc in the file");
    // When it fails, reading fails in the same way, and that is what counts.
    const bool stopped = countObjFile(path, counts) < 0;
    platform().showBusy("");
    if (stopped) return 0;
    return complained(readCounted(mesh, path, counts, {}), path) == End::whole ? 1 : 0;
}

std::string addObjFile(Mesh& mesh, const std::string& path, const ObjReading& how) {
    constexpr const char* reasons[] = {"",
                                       "stopped by the Escape key",
                                       "I can't open this file",
                                       "I can't read this file",
                                       "a line is bad",
                                       "there is not enough memory",
                                       "it has too many groups or materials"};
    ObjCounts counts = countsOf(mesh);
    End end = countLines(path, counts);
    if (end == End::whole) end = readCounted(mesh, path, counts, how);
    return reasons[static_cast<std::size_t>(end)];
}

} // namespace polyfab
