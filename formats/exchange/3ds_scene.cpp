// SPDX-License-Identifier: GPL-3.0-or-later
// Chunks hold chunks, but of few kinds and four deep at most: each kind of container has a function
// that goes over what is inside. Objects are put together when all their lists are known, since
// these may come in any order.
#include "formats/exchange/3ds_scene.h"

#include "formats/exchange/unique_records.h"
#include "formats/exchange/unique_table.h"
#include "io/read_file.h"
#include "mesh/mesh.h"
#include "workbench/notes.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <iterator>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

namespace polyfab {

namespace {

using Bytes = std::span<const std::uint8_t>;

// Values of the lowest byte first. Bytes behind the end are 0.
unsigned byteAt(Bytes bytes, std::size_t p) { return p < bytes.size() ? bytes[p] : 0; }
unsigned wordAt(Bytes bytes, std::size_t p) { return byteAt(bytes, p) | byteAt(bytes, p + 1) << 8; }
std::uint32_t longAt(Bytes bytes, std::size_t p) {
    return wordAt(bytes, p) | std::uint32_t{wordAt(bytes, p + 2)} << 16;
}
double realAt(Bytes bytes, std::size_t p) {
    const auto value = std::bit_cast<float>(longAt(bytes, p));
    return std::isfinite(value) ? value : 0;
}

/// The text that ends in NUL at the front of the bytes, which is taken off.
std::string takeName(Bytes& bytes) {
    const auto end = std::find(bytes.begin(), bytes.end(), std::uint8_t{0});
    std::string name(bytes.begin(), end);
    bytes = bytes.subspan(std::min(name.size() + 1, bytes.size()));
    return name;
}

/// The elements behind a count of so many bytes each, as far as they are there.
struct List {
    Bytes bytes;
    std::size_t count = 0, size = 1;

    [[nodiscard]] Bytes operator[](std::size_t i) const { return bytes.subspan(i * size, size); }
};

/// A file's objects of other kinds, by their chunks.
struct Other {
    unsigned id;
    const char* what;
};
constexpr Other others[] = {{0x4600, "light"}, {0x4700, "camera"}, {0xB000, "set of key frames"}};

class SceneReader {
  public:
    StreamTables read(Bytes file) {
        if (wordAt(file, 0) != 0x4D4D) {
            tables.failure = "it is no 3DS file";
            return std::move(tables);
        }
        forChunks(file, [&](unsigned, Bytes main) {
            forChunks(main, [&](unsigned id, Bytes part) {
                if (id == 0x3D3D) readParts(part);
                noteOther(id);
            });
        });
        if (tables.failure.empty() && tables.faces.empty()) {
            tables.failure = "there is no face in it";
        }
        note(badFaces, "{triangle} {was} left out: there is no vertex of a corner's number");
        note(damaged, "{part} of the file {is} damaged, and something may be missing");
        for (std::size_t i = 0; i < std::size(others); ++i) {
            note(otherCounts[i], "{" + std::string(others[i].what) + "} {was} left out");
        }
        return std::move(tables);
    }

  private:
    struct Material {
        std::string name;
        std::uint32_t color = defaultColor;
        std::string picture{}; ///< its file
        StreamLook look{};
    };

    /// The lists of an object.
    struct Object {
        List points, texture, triangles;
        std::vector<Bytes> uses; ///< of materials: the name, and the triangles that have it
    };

    /// Calls `visit` with the id and the inside of each chunk, one behind the other.
    template <typename Visit>
    void forChunks(Bytes bytes, Visit visit) {
        constexpr std::size_t header = 6;
        while (bytes.size() >= header) {
            const std::size_t given = longAt(bytes, 2);
            const std::size_t length = std::clamp(given, header, bytes.size());
            damaged += given != length;
            visit(wordAt(bytes, 0), bytes.subspan(header, length - header));
            bytes = bytes.subspan(length);
        }
    }

    void note(std::int64_t count, const std::string& pattern) {
        if (count > 0) tables.notes.push_back(sentence(count, pattern));
    }

    void noteOther(unsigned id) {
        for (std::size_t i = 0; i < std::size(others); ++i) otherCounts[i] += others[i].id == id;
    }

    /// Materials first: objects refer to them.
    void readParts(Bytes bytes) {
        forChunks(bytes, [&](unsigned id, Bytes part) {
            if (id == 0xAFFF) readMaterial(part);
        });
        forChunks(bytes, [&](unsigned id, Bytes part) {
            if (id == 0x4000) readNamed(part);
        });
    }

    /// A material with nothing but a colour, which is there twice, is of this program's write
    /// command, and has the lowest byte of its colour first; all others have red first.
    void readMaterial(Bytes bytes) {
        Material material;
        std::optional<std::uint32_t> gamma, linear, real;
        int chunks = 0;
        forChunks(bytes, [&](unsigned id, Bytes inside) {
            ++chunks;
            if (id == 0xA000) material.name = takeName(inside);
            if (id == 0xA050) material.look.opacity = 1 - percentIn(inside);
            if (id == 0xA200) readPicture(inside, material);
            if (id != 0xA020) return;
            forChunks(inside, [&](unsigned kind, Bytes color) {
                if (kind == 0x0011) gamma = threeBytes(color);
                if (kind == 0x0012) linear = threeBytes(color);
                if (kind == 0x0010) real = threeReals(color);
            });
        });
        const bool own = chunks == 2 && gamma && linear == gamma && !real;
        material.color = gamma.value_or(linear.value_or(real.value_or(defaultColor)));
        if (own) material.color = swapped(material.color);
        if (!materials.try_emplace(material.name, std::ssize(tables.materials)).second) return;
        addMaterial(material);
    }

    /// A share of 1: per cents are whole numbers or real ones.
    double percentIn(Bytes bytes) {
        double share = 0;
        forChunks(bytes, [&](unsigned kind, Bytes number) {
            if (kind == 0x0030) share = wordAt(number, 0) / 100.0;
            if (kind == 0x0031) share = realAt(number, 0) / 100;
        });
        return std::clamp(share, 0.0, 1.0);
    }

    void readPicture(Bytes bytes, Material& material) {
        StreamLook& look = material.look;
        forChunks(bytes, [&](unsigned id, Bytes inside) {
            if (id == 0xA300) material.picture = takeName(inside);
            if (id == 0xA354) look.uScale = realAt(inside, 0);
            if (id == 0xA356) look.vScale = realAt(inside, 0);
            if (id == 0xA358) look.uOffset = realAt(inside, 0);
            if (id == 0xA35A) look.vOffset = realAt(inside, 0);
        });
    }

    static std::uint32_t threeBytes(Bytes bytes) {
        return byteAt(bytes, 0) << 16 | byteAt(bytes, 1) << 8 | byteAt(bytes, 2);
    }

    static std::uint32_t threeReals(Bytes bytes) {
        std::uint32_t color = 0;
        for (std::size_t p = 0; p < 12; p += 4) {
            const double part = std::clamp(realAt(bytes, p), 0.0, 1.0);
            color = color << 8 | static_cast<std::uint32_t>(std::lround(255 * part));
        }
        return color;
    }

    static std::uint32_t swapped(std::uint32_t color) {
        return (color & 0xFF) << 16 | (color & 0xFF00) | color >> 16;
    }

    void addMaterial(const Material& material) {
        tables.materials.push_back(material.name);
        tables.colors.push_back(material.color);
        tables.pictures.push_back(material.picture);
        tables.looks.push_back(material.look);
    }

    void readNamed(Bytes bytes) {
        const std::string name = takeName(bytes);
        forChunks(bytes, [&](unsigned id, Bytes inside) {
            if (id == 0x4100) readObject(name, inside);
            noteOther(id);
        });
    }

    List listIn(Bytes bytes, std::size_t size) {
        const std::size_t count = wordAt(bytes, 0);
        const Bytes elements = bytes.subspan(std::min<std::size_t>(2, bytes.size()));
        const std::size_t there = std::min(count, elements.size() / size);
        damaged += there != count;
        return {elements, there, size};
    }

    void readObject(const std::string& name, Bytes bytes) {
        Object object;
        forChunks(bytes, [&](unsigned id, Bytes inside) {
            if (id == 0x4110) object.points = listIn(inside, 12);
            if (id == 0x4140) object.texture = listIn(inside, 8);
            if (id == 0x4130) object.uses.push_back(inside);
            if (id == 0x4120) readTriangles(object, inside);
        });
        enterGroup(name);
        addObject(object);
    }

    /// Most programs put the uses of materials behind the triangles in the same chunk, this one's
    /// write command behind it.
    void readTriangles(Object& object, Bytes bytes) {
        object.triangles = listIn(bytes, 8);
        const std::size_t end = std::min(2 + object.triangles.count * 8, bytes.size());
        forChunks(bytes.subspan(end), [&](unsigned id, Bytes inside) {
            if (id == 0x4130) object.uses.push_back(inside);
        });
    }

    /// The material of each triangle; -1: none.
    std::vector<std::int32_t> materialsOf(const Object& object) {
        std::vector<std::int32_t> found(object.triangles.count, -1);
        for (Bytes use : object.uses) {
            const auto material = materials.find(takeName(use));
            const List triangles = listIn(use, 2);
            for (std::size_t i = 0; i < triangles.count && material != materials.end(); ++i) {
                const std::size_t triangle = wordAt(triangles[i], 0);
                if (triangle >= found.size()) continue;
                found[triangle] = static_cast<std::int32_t>(material->second);
            }
        }
        return found;
    }

    /// Objects of one name that follow each other share their points.
    void enterGroup(const std::string& name) {
        if (points && name == lastName) return;
        points.emplace(tables.points);
        texcoords.emplace(tables.texcoords);
        lastName = name;
        tables.groups.push_back(name); // those of one name become one
    }

    void addObject(const Object& object) {
        std::vector<StreamCorner> vertices;
        for (std::size_t i = 0; i < object.points.count; ++i) {
            const Bytes at = object.points[i];
            StreamCorner corner;
            corner.point = points->findOrAdd({realAt(at, 0), realAt(at, 4), realAt(at, 8)});
            if (i < object.texture.count) {
                const Bytes texture = object.texture[i];
                corner.texcoord = texcoords->findOrAdd({realAt(texture, 0), realAt(texture, 4)});
            }
            vertices.push_back(corner);
        }
        const std::vector<std::int32_t> used = materialsOf(object);
        for (std::size_t i = 0; i < used.size(); ++i) {
            addTriangle(object.triangles[i], used[i], vertices);
        }
    }

    void addTriangle(Bytes numbers, std::int32_t material,
                     const std::vector<StreamCorner>& vertices) {
        const std::size_t corners[] = {wordAt(numbers, 0), wordAt(numbers, 2), wordAt(numbers, 4)};
        const bool bad = std::any_of(std::begin(corners), std::end(corners),
                                     [&](std::size_t corner) { return corner >= vertices.size(); });
        badFaces += bad;
        if (bad) return;
        for (const std::size_t corner : corners) tables.corners.push_back(vertices[corner]);
        const auto group = static_cast<std::int32_t>(tables.groups.size()) - 1;
        tables.faces.push_back({3, group, material < 0 ? defaultMaterial() : material});
    }

    std::int32_t defaultMaterial() {
        if (noMaterial < 0) {
            noMaterial = static_cast<std::int32_t>(tables.materials.size());
            addMaterial({});
        }
        return noMaterial;
    }

    StreamTables tables;
    std::map<std::string, std::ptrdiff_t> materials; ///< where in the table
    std::optional<UniqueTable<Vec3>> points;
    std::optional<UniqueTable<StreamTexCoord>> texcoords;
    std::string lastName;
    std::int32_t noMaterial = -1;
    std::int64_t badFaces = 0, damaged = 0;
    std::int64_t otherCounts[std::size(others)] = {};
};

} // namespace

StreamTables import3ds(const std::string& path) {
    if (const std::optional<std::string> bytes = wholeFile(path)) {
        return threeDsTables({reinterpret_cast<const std::uint8_t*>(bytes->data()), bytes->size()});
    }
    StreamTables none;
    none.failure = "it can't be read";
    return none;
}

StreamTables threeDsTables(Bytes bytes) { return SceneReader().read(bytes); }

} // namespace polyfab
