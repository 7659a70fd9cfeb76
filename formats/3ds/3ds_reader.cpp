// SPDX-License-Identifier: GPL-3.0-or-later
// One position walks through the bytes and never goes back, however the chunks overlap. A container
// that it has entered stands on a stack until the position has reached its end; nothing recurses. A
// chunk may run over the end of its container, never over that of the bytes.
#include "formats/3ds/3ds_reader.h"

#include "formats/file_command.h"
#include "formats/left_out.h"
#include "io/read_file.h"
#include "mesh/mesh.h"
#include "mesh/table.h"
#include "platform/platform.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>
#include <vector>

namespace polyfab {
namespace {

constexpr std::size_t headerSize = 6;
constexpr std::size_t listStart = headerSize + 2; ///< of the elements behind a 16-bit count
constexpr std::size_t pointSize = 12;
constexpr std::size_t triangleSize = 8;

/// The first chunk's length has only its lower half, hence no file reaches the limit of 5,000,000.
constexpr std::size_t maxLength = std::numeric_limits<std::uint16_t>::max();

constexpr const char* runsOff = "chunk runs off end";
constexpr const char* noRoom = "";

class Walk {
  public:
    Walk(Mesh& to, std::span<const std::uint8_t> all) : mesh(to), bytes(all) {}

    /// Null, or the reason why it ended early.
    const char* run() {
        do {
            if (const char* fault = readChunk()) return fault;
            while (!open.empty() && at >= open.back().end) open.pop_back();
        } while (!open.empty());
        leftOut.add("other chunk", skipped);
        return nullptr;
    }

  private:
    struct Chunk {
        unsigned id;
        std::size_t start, end;
    };

    /// What to do with the chunks of an id, all of them or only those directly inside `parent`.
    struct Action {
        unsigned id;
        unsigned parent; ///< 0: any
        /// Reads the chunk; the position is its end unless it is entered.
        const char* (Walk::*read)(const Chunk& chunk);
    };
    static const Action actions[];
    /// Skipped, but nothing is lost: versions, and a colour that is there twice.
    static constexpr unsigned needless[] = {0x0002, 0x3D3E, 0x0012};

    // Values of the lowest byte first. Bytes behind the end are 0.
    [[nodiscard]] unsigned byte(std::size_t p) const { return p < bytes.size() ? bytes[p] : 0; }
    [[nodiscard]] unsigned word(std::size_t p) const { return byte(p) | byte(p + 1) << 8; }
    [[nodiscard]] std::uint32_t longWord(std::size_t p) const {
        return word(p) | std::uint32_t{word(p + 2)} << 16;
    }
    [[nodiscard]] double real(std::size_t p) const { return std::bit_cast<float>(longWord(p)); }

    [[nodiscard]] std::size_t left(const Chunk& chunk) const { return bytes.size() - chunk.start; }

    const char* readChunk();
    const char* enter(const Chunk& chunk, std::size_t inside);
    const char* enterContainer(const Chunk& chunk) {
        return enter(chunk, chunk.start + headerSize);
    }
    const char* enterMaterial(const Chunk& chunk);
    const char* enterObject(const Chunk& chunk);
    const char* enterFaces(const Chunk& chunk);
    const char* readMaterialName(const Chunk& chunk);
    const char* readColor(const Chunk& chunk);
    const char* readPoints(const Chunk& chunk);
    const char* readMaterialGroup(const Chunk& chunk);

    [[nodiscard]] bool nameIn(const Chunk& chunk, std::string_view& name) const;
    [[nodiscard]] bool verticesExist(std::size_t list, std::size_t count) const;
    [[nodiscard]] bool addTriangle(std::size_t p) const;

    Mesh& mesh;
    std::span<const std::uint8_t> bytes;
    std::size_t at = 0;
    std::vector<Chunk> open;  ///< the containers around the position
    std::int64_t skipped = 0; ///< chunks that nothing is read from
    int pointBase = 0;        ///< points that were there before the object
    int faceBase = -1;        ///< faces that were there before the face array; -1: none was read
};

const Walk::Action Walk::actions[] = {
    {0x4D4D, 0, &Walk::enterContainer},      {0x3D3D, 0, &Walk::enterContainer},
    {0xAFFF, 0, &Walk::enterMaterial},       {0xA000, 0xAFFF, &Walk::readMaterialName},
    {0xA020, 0xAFFF, &Walk::enterContainer}, {0x0011, 0xA020, &Walk::readColor},
    {0x4000, 0, &Walk::enterObject},         {0x4100, 0, &Walk::enterContainer},
    {0x4110, 0, &Walk::readPoints},          {0x4120, 0, &Walk::enterFaces},
    {0x4130, 0, &Walk::readMaterialGroup},
};

const char* Walk::readChunk() {
    if (bytes.size() - at < headerSize) return "chunk too short";
    const unsigned id = word(at);
    const unsigned parent = open.empty() ? 0 : open.back().id;
    const std::uint32_t given = longWord(at + 4);
    if (given > bytes.size() - at) return runsOff;
    // Where a material's colour ends, only the lower half of the length tells.
    const bool color = id == 0xA020 && parent == 0xAFFF;
    const std::uint32_t length = color ? given & 0xFFFF : given;
    // The next chunk would begin inside this one's header, or be this one again.
    if (length < headerSize) return "chunk too short";
    const Chunk chunk{id, at, at + length};
    const auto* const action =
        std::find_if(std::begin(actions), std::end(actions), [&](const Action& row) {
            return row.id == chunk.id && (row.parent == 0 || row.parent == parent);
        });
    at = chunk.end;
    if (action != std::end(actions)) return (this->*action->read)(chunk);
    skipped += std::count(std::begin(needless), std::end(needless), id) == 0;
    return nullptr;
}

/// Goes on with the sub-chunks, the first of which is at `inside`.
const char* Walk::enter(const Chunk& chunk, std::size_t inside) {
    at = inside;
    open.push_back(chunk);
    return nullptr;
}

const char* Walk::enterMaterial(const Chunk& chunk) {
    const int before = mesh.nmat;
    mesh.addMaterial(0, "");
    return mesh.nmat == before ? noRoom : enterContainer(chunk);
}

const char* Walk::enterObject(const Chunk& chunk) {
    std::string_view name;
    if (!nameIn(chunk, name)) return runsOff;
    const int before = mesh.ng;
    mesh.curgroup = static_cast<std::int16_t>(mesh.addGroup(name));
    if (mesh.ng == before) return noRoom;
    pointBase = mesh.np;
    return enter(chunk, chunk.start + headerSize + name.size() + 1);
}

const char* Walk::enterFaces(const Chunk& chunk) {
    const std::size_t count = word(chunk.start + headerSize);
    const std::size_t list = chunk.start + listStart;
    if (listStart + count * triangleSize > left(chunk)) return "bad face list";
    faceBase = mesh.nf;
    if (!verticesExist(list, count)) return "bad vertex number";
    for (std::size_t i = 0; i < count; ++i) {
        if (!addTriangle(list + i * triangleSize)) return noRoom;
    }
    return enter(chunk, list + count * triangleSize);
}

const char* Walk::readMaterialName(const Chunk& chunk) {
    std::string_view name;
    if (!nameIn(chunk, name)) return runsOff;
    name = name.substr(0, nameSize - 1);
    auto& field = mesh.materials[mesh.nmat - 1].name;
    std::memset(field, 0, sizeof field);
    std::copy(name.begin(), name.end(), field);
    return nullptr;
}

const char* Walk::readColor(const Chunk& chunk) {
    mesh.materials[mesh.nmat - 1].color = longWord(chunk.start + headerSize) & 0xFFFFFF;
    return nullptr;
}

const char* Walk::readPoints(const Chunk& chunk) {
    const std::size_t count = word(chunk.start + headerSize);
    if (listStart + count * pointSize > left(chunk)) return "bad vertex list";
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t p = chunk.start + listStart + i * pointSize;
        const int before = mesh.np;
        mesh.addPoint(real(p), real(p + 4), real(p + 8), false);
        if (mesh.np == before) return noRoom;
    }
    return nullptr;
}

/// The first material of exactly this name is given to the triangles of the latest face array.
const char* Walk::readMaterialGroup(const Chunk& chunk) {
    std::string_view name;
    if (!nameIn(chunk, name)) return runsOff;
    const Material* const end = mesh.materials + mesh.nmat;
    const Material* const material =
        std::find_if(static_cast<const Material*>(mesh.materials), end,
                     [&](const Material& m) { return name.substr(0, nameSize - 1) == m.name; });
    if (material == end || faceBase < 0) return nullptr;
    std::size_t p = chunk.start + headerSize + name.size() + 1;
    // One triangle is named even where the count says none.
    const unsigned count = std::max(word(p), 1U);
    p += 2;
    for (unsigned i = 0; i < count && p + 2 <= bytes.size(); ++i, p += 2) {
        const auto face = std::int64_t{faceBase} + word(p);
        if (face >= mesh.nf) continue;
        mesh.faces[face].mat =
            static_cast<std::int16_t>(indexIn<Material>(mesh.materials, material));
    }
    return nullptr;
}

/// The text behind the header; false when no NUL ends it inside the chunk.
bool Walk::nameIn(const Chunk& chunk, std::string_view& name) const {
    const auto text = bytes.subspan(chunk.start + headerSize, chunk.end - chunk.start - headerSize);
    const auto nul = std::find(text.begin(), text.end(), std::uint8_t{0});
    name = {reinterpret_cast<const char*>(text.data()),
            static_cast<std::size_t>(nul - text.begin())};
    return nul != text.end();
}

/// Whether every corner of the triangles names a point, both by itself and with the base added.
bool Walk::verticesExist(std::size_t list, std::size_t count) const {
    for (std::size_t p = list; p < list + count * triangleSize; p += triangleSize) {
        const unsigned highest = std::max({word(p), word(p + 2), word(p + 4)});
        if (std::int64_t{pointBase} + highest >= mesh.np) return false;
    }
    return true;
}

bool Walk::addTriangle(std::size_t p) const {
    Point* const base = mesh.points + pointBase;
    Point* const corners[] = {base + word(p), base + word(p + 2), base + word(p + 4)};
    return mesh.addFaceByPoints(corners, 3, false) != nullptr;
}

int fail(const char* what, const std::string& path) {
    platform().message(what, path, Icon::exclamation);
    return 0;
}

/// As much of the file as `buffer` takes; the number of bytes.
std::size_t readUpTo(PieceReader& file, std::span<std::uint8_t> buffer) {
    std::string_view piece;
    std::size_t got = 0;
    while (got < buffer.size() && file.next(0, piece)) {
        const std::size_t count = std::min(piece.size(), buffer.size() - got);
        std::memcpy(buffer.data() + got, piece.data(), count);
        got += count;
    }
    return got;
}

} // namespace

const char* add3dsChunks(Mesh& mesh, std::span<const std::uint8_t> bytes) try {
    return Walk(mesh, bytes).run();
} catch (const std::bad_alloc&) { // the stack of containers
    platform().message("I can't get enough memory", "containers", Icon::exclamation);
    return noRoom;
}

int read3dsFile(Mesh& mesh, const std::string& path, bool append) {
    if (!append) mesh.clear(true);
    PieceReader file(path);
    if (!file.isOpen()) return fail("I can't open this file", path);
    Table<std::uint8_t> buffer(maxLength, 0);
    if (!buffer) return fail("file too big", path);
    std::span<std::uint8_t> bytes(&buffer[0], maxLength);
    bytes = bytes.first(readUpTo(file, bytes));
    if (!readsOn(file, Pass::only)) return 0; // all in one piece
    if (bytes.size() < headerSize) return fail("bad 3DS file", path);
    const unsigned id = bytes[0] | unsigned{bytes[1]} << 8;
    const unsigned length = bytes[4] | unsigned{bytes[5]} << 8;
    if (id != 0x4D4D || length < headerSize || length > bytes.size()) {
        return fail("bad 3DS file", path);
    }
    if (const char* fault = add3dsChunks(mesh, bytes.first(length))) {
        if (*fault != 0) platform().message(path, fault, Icon::exclamation);
        return 0;
    }
    mesh.highlightPoint(-1);
    return 1;
}

} // namespace polyfab
