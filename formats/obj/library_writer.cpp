// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/obj/library_writer.h"

#include "display/material_looks.h"
#include "formats/file_finder.h"
#include "formats/obj/material_library.h"
#include "formats/obj/material_lines.h"
#include "io/print_number.h"
#include "io/read_file.h"
#include "io/save_file.h"
#include "mesh/mesh.h"
#include "mesh/names.h"
#include "workbench/notes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <initializer_list>
#include <map>
#include <new>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

namespace polyfab {
namespace {

namespace fs = std::filesystem;

/// The path as it is from the folder.
std::string pathFrom(const fs::path& folder, const std::string& path) {
    std::error_code failure;
    const fs::path from = fs::canonical(folder, failure);
    return failure ? path : fs::path(path).lexically_relative(from).string();
}

/// A line of a library with its picture, if it has one that is found, named from another folder.
std::string movedLine(std::string_view line, FileFinder& finder, const fs::path& folder) {
    std::string moved(line);
    const std::optional<MapLine> map = readMapLine(line);
    const std::string path = map ? finder.find(fileNameIn(map->name)) : "";
    if (path.empty()) return moved;
    const auto at = static_cast<std::size_t>(map->name.data() - line.data());
    return moved.replace(at, map->name.size(), pathFrom(folder, path));
}

/// The library's text with the pictures that are found named from another folder.
std::string movedText(const MaterialLibrary& library, const fs::path& folder) {
    FileFinder finder = finderOf(library);
    std::string moved;
    const char* copied = library.text.data();
    eachLine(library.text, [&](std::string_view line) {
        moved.append(copied, line.data());
        moved += movedLine(line, finder, folder);
        copied = line.data() + line.size();
    });
    moved.append(copied, library.text.data() + library.text.size());
    if (!moved.ends_with('\n')) moved += '\n';
    return moved;
}

void addNumbers(std::string& text, const char* keyword, std::initializer_list<double> values) {
    text += keyword;
    for (const double value : values) {
        char digits[numberRoom];
        text += " " + std::string(digits, printG6(digits, value, 6));
    }
    text += "\n";
}

/// What there is to say of a material whose picture has this name from where the library lies.
std::string sectionOf(const Material& material, const MaterialLook* look,
                      const std::string& picture) {
    std::string text = std::string("\nnewmtl ") + material.name + "\n";
    const auto channel = [&](int shift) { return (material.color >> shift & 0xFF) / 255.0; };
    addNumbers(text, "Kd", {channel(16), channel(8), channel(0)});
    if (look == nullptr) return text;
    if (look->opacity != 1) addNumbers(text, "d", {look->opacity});
    if (picture.empty()) return text;
    text += "map_Kd";
    const PicturePlacing& placing = look->placing;
    if (placing.uScale != 1 || placing.vScale != 1) {
        addNumbers(text, " -s", {placing.uScale, placing.vScale, 1});
        text.pop_back();
    }
    if (placing.uOffset != 0 || placing.vOffset != 0) {
        addNumbers(text, " -o", {placing.uOffset, placing.vOffset, 0});
        text.pop_back();
    }
    return text + " " + picture + "\n";
}

/// The libraries of this name that were read with the mesh.
Libraries librariesRead(const std::string& line) {
    Libraries libraries;
    if (materialLooks() != nullptr) libraries = materialLooks()->libraries;
    std::erase_if(libraries, [&](const auto& library) { return library->line != line; });
    return libraries;
}

/// The materials of the mesh that none of these libraries has.
std::string missingSections(const Mesh& mesh, const Libraries& libraries, const fs::path& folder) {
    std::set<std::string, std::less<>> known;
    for (const auto& library : libraries) {
        for (const LibraryMaterial& m : readLibraryText(library->text)) known.insert(m.name);
    }
    std::string text;
    for (const Material* m = mesh.materials; m != mesh.materials + mesh.nmat; ++m) {
        if (!known.insert(m->name).second) continue;
        const MaterialLook* const look = lookOf(m->name);
        const bool inFile =
            look != nullptr && look->picture != nullptr && look->picture->bytes().empty();
        text += sectionOf(*m, look, inFile ? pathFrom(folder, look->picture->path()) : "");
    }
    return text;
}

/// What the libraries that were read say of their materials that no section does, as it is from the
/// folder.
std::map<std::string, std::string, std::less<>> otherLines(const fs::path& folder) {
    std::map<std::string, std::string, std::less<>> all;
    if (materialLooks() == nullptr) return all;
    for (const auto& library : materialLooks()->libraries) {
        FileFinder finder = finderOf(*library);
        for (const LibraryMaterial& material : readLibraryText(library->text)) {
            const auto [entry, isNew] = all.try_emplace(material.name);
            if (!isNew) continue;
            const MaterialLook* const look = lookOf(material.name);
            std::vector<std::string_view> lines = material.others;
            const bool lost = look == nullptr || look->picture == nullptr; // not found
            if (lost && !material.map.empty()) lines.push_back(material.map);
            for (const std::string_view line : lines) {
                entry->second += movedLine(line, finder, folder) + "\n";
            }
        }
    }
    return all;
}

/// Where the library comes to lie: a folder of its own must be there.
fs::path placeFor(const std::string& name, const fs::path& folder) {
    const fs::path below = fs::path(name).lexically_normal();
    std::error_code failure;
    const bool inside = !below.is_absolute() && *below.begin() != "..";
    return inside && fs::is_directory((folder / below).parent_path(), failure)
               ? folder / below
               : folder / below.filename();
}

/// Also a link that leads anywhere, or nowhere.
bool isThere(const fs::path& path) {
    std::error_code failure;
    return fs::exists(fs::symlink_status(path, failure));
}

/// Whether the file has the same bytes.
bool isSamePicture(const PictureSource& picture, const std::string& file) {
    if (file.empty()) return false;
    if (!picture.bytes().empty()) return hasBytes(file, picture.bytes());
    return file == picture.path() || haveSameBytes(file, picture.path());
}

/// What an OBJ file beside these libraries brings back of how materials look.
class ToldLooks {
  public:
    /// `stand`: they are there already. Else they are yet to be written, with the materials that
    /// they lack, and without copies of pictures.
    ToldLooks(const Libraries& libraries, bool stand) : there(stand), any(!libraries.empty()) {
        for (const auto& library : libraries) {
            FileFinder& finder = finders.emplace_back(finderOf(*library));
            for (const LibraryMaterial& material : readLibraryText(library->text)) {
                told.try_emplace(material.name, Told{material, &finder});
            }
        }
    }

    [[nodiscard]] bool has(const Material& material) const {
        static const MaterialLook plain;
        const MaterialLook* const own = lookOf(material.name);
        const MaterialLook& look = own != nullptr ? *own : plain;
        if (!there && look.picture != nullptr) return false;
        const std::uint32_t color = material.color & 0xFFFFFF;
        const auto known = told.find(std::string_view(material.name));
        if (known != told.end()) return says(known->second, color, look);
        const bool isPlain = color == defaultColor && look.picture == nullptr && look.opacity == 1;
        return isPlain || (!there && any);
    }

  private:
    struct Told {
        LibraryMaterial material;
        FileFinder* finder;
    };

    static bool says(const Told& told, std::uint32_t color, const MaterialLook& look) {
        const LibraryMaterial& said = told.material;
        if (said.color.value_or(defaultColor) != color) return false;
        if (!isNear(said.opacity, look.opacity)) return false;
        const std::string file = said.picture.empty() ? "" : told.finder->find(said.picture);
        if (look.picture == nullptr) return file.empty();
        const PicturePlacing &a = said.placing, &b = look.placing;
        return isNear(a.uScale, b.uScale) && isNear(a.vScale, b.vScale)
               && isNear(a.uOffset, b.uOffset) && isNear(a.vOffset, b.vOffset)
               && isSamePicture(*look.picture, file);
    }

    /// As near as six digits say it.
    static bool isNear(double a, double b) {
        return std::abs(a - b) <= 1e-5 * std::max(1.0, std::abs(b));
    }

    std::map<std::string, Told, std::less<>> told; ///< of several of one name the first
    std::deque<FileFinder> finders;
    bool there, any;
};

void writeOne(const fs::path& path, const std::string& text) {
    SaveFile file;
    bool written = file.open(path);
    if (written) file.append(text);
    written = written && file.commit();
    note((written ? "wrote the materials to " : "I can't write the materials to ")
         + path.filename().string());
}

} // namespace

void writeMaterialLibrary(const Mesh& mesh, const std::string& path) try {
    const std::string line(trimTrailingBlanks(mesh.mtllib));
    if (line.empty() || materialLooks() == nullptr) return;
    const Libraries libraries = librariesRead(line);
    const fs::path folder = folderOf(path);
    FileFinder finder({folder});
    std::vector<std::pair<fs::path, std::string>> texts; // by where they come to lie
    for (const auto& library : libraries) {
        const fs::path place = placeFor(library->name, folder);
        if (isThere(place) || !finder.find(library->name).empty()) continue;
        auto text = std::find_if(texts.begin(), texts.end(),
                                 [&](const auto& other) { return other.first == place; });
        if (text == texts.end()) text = texts.insert(text, {place, ""});
        text->second += movedText(*library, place.parent_path());
    }
    if (texts.empty()) return;
    texts.front().second += missingSections(mesh, libraries, texts.front().first.parent_path());
    for (const auto& [place, text] : texts) writeOne(place, text);
} catch (const std::bad_alloc&) {
    note("there is not enough memory to write the materials");
}

std::int64_t looksUntold(const Mesh& mesh, const std::string& path) {
    const std::string line(trimTrailingBlanks(mesh.mtllib));
    Libraries libraries;
    if (!line.empty()) libraries = librariesOf(path, line);
    const bool stand = !libraries.empty();
    if (!stand && !line.empty()) libraries = librariesRead(line);
    const ToldLooks told(libraries, stand);
    std::set<std::string_view> names; // of several of one name a file has the first
    return std::count_if(mesh.materials, mesh.materials + mesh.nmat, [&](const Material& material) {
        return names.insert(material.name).second && !told.has(material);
    });
}

std::string newLibraryName(const std::string& path) {
    return fs::path(path).stem().string() + ".mtl";
}

std::string libraryText(const Mesh& mesh, const std::string& path,
                        const std::vector<std::string>& pictures) {
    std::map<std::string, std::string, std::less<>> others = otherLines(folderOf(path));
    std::set<std::string, std::less<>> known;
    std::string text;
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        const Material& material = mesh.materials[i];
        if (!known.insert(material.name).second) continue;
        text += sectionOf(material, lookOf(material.name), pictures[i]);
        text += others[material.name];
    }
    return text;
}

} // namespace polyfab
