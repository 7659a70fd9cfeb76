// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/obj/material_library.h"

#include "formats/found_pictures.h"
#include "formats/left_out.h"
#include "formats/obj/material_lines.h"
#include "formats/obj/obj_lines.h"
#include "io/read_file.h"
#include "mesh/mesh.h"
#include "mesh/names.h"

#include <algorithm>
#include <map>
#include <new>
#include <optional>
#include <sstream>
#include <system_error>
#include <utility>

namespace polyfab {
namespace {

namespace fs = std::filesystem;

/// A library of a hundred thousand materials has some ten million.
constexpr std::int64_t maxLibraryBytes = 1 << 26;

/// Adds the library in that file, which the line gives this name, if there is one.
bool addLibrary(Libraries& libraries, const std::string& meshFolder, const std::string& line,
                const std::string& name, std::string path) {
    if (path.empty()) return false;
    std::optional<std::string> text = wholeFile(path, maxLibraryBytes);
    if (!text) return false;
    if (text->starts_with(byteOrderMark)) text->erase(0, byteOrderMark.size());
    libraries.push_back(std::make_shared<const MaterialLibrary>(
        MaterialLibrary{line, name, std::move(path), meshFolder, std::move(*text)}));
    return true;
}

/// Gives the materials of the mesh from `firstNew` on what the library says of them.
class LooksReader {
  public:
    LooksReader(Mesh& to, int firstNew) : mesh(to) {
        for (int i = firstNew; i < mesh.nmat; ++i) wanted[mesh.materials[i].name].push_back(i);
    }

    void read(const MaterialLibrary& library, MaterialLooks& looks) {
        FileFinder finder = finderOf(library);
        pictures.startFile();
        for (const LibraryMaterial& material : readLibraryText(library.text)) {
            const auto found = wanted.find(material.name);
            if (found == wanted.end()) continue;
            for (const int i : found->second) {
                if (material.color) mesh.materials[i].color = *material.color;
            }
            wanted.erase(found); // of several of one name the first counts
            MaterialLook look{nullptr, material.placing, material.opacity};
            if (!material.picture.empty()) look.picture = pictures.find(material.picture, finder);
            looks.byName.insert_or_assign(material.name, std::move(look));
        }
    }

    std::string note() const { return pictures.note(); }

  private:
    Mesh& mesh;
    std::map<std::string, std::vector<int>, std::less<>> wanted;
    FoundPictures pictures;
};

/// Reads these libraries into the looks, for the materials from `firstNew` on.
std::string readLooks(Mesh& mesh, Libraries libraries, int firstNew) {
    const bool alone = firstNew == 0 || materialLooks() == nullptr;
    if (libraries.empty()) {
        if (firstNew == 0) setMaterialLooks(nullptr);
        return "";
    }
    MaterialLooks looks = alone ? MaterialLooks() : *materialLooks();
    LooksReader reader(mesh, firstNew);
    for (auto& library : libraries) {
        reader.read(*library, looks);
        looks.libraries.push_back(std::move(library));
    }
    setMaterialLooks(std::make_shared<const MaterialLooks>(std::move(looks)));
    return reader.note();
}

const char* whyMissing(const std::string& path, const std::string& library) {
    std::error_code failure;
    const fs::path folder = fs::canonical(folderOf(path), failure);
    const fs::path place = fs::weakly_canonical(folder / library, failure);
    if (failure) return "is not there";
    if (*place.lexically_relative(folder).begin() == "..") return "lies outside its folder";
    return fs::exists(place, failure) ? "is no regular file that I can read" : "is not there";
}

} // namespace

FileFinder finderOf(const MaterialLibrary& library) {
    return FileFinder({folderOf(library.path), library.meshFolder});
}

/// What follows "mtllib" is one name or, where no such file is, several. The bare name of all of
/// it comes last: it is that of the last of several.
Libraries librariesOf(const std::string& path, const std::vector<std::string>& lines) {
    Libraries libraries;
    std::error_code failure; // the folder stays when another start looks for its files
    const std::string folder = fs::absolute(folderOf(path), failure);
    for (const std::string& named : lines) {
        const std::string line(trimTrailingBlanks(named));
        const std::string whole = fileNameIn(line);
        FileFinder finder({folder});
        if (addLibrary(libraries, folder, line, whole, finder.findPath(whole))) continue;
        bool found = false;
        std::istringstream words(line);
        for (std::string word; words >> word;) {
            const std::string name = fileNameIn(word);
            found |= addLibrary(libraries, folder, line, name, finder.find(name));
        }
        if (!found) addLibrary(libraries, folder, line, whole, finder.find(whole));
    }
    return libraries;
}

void noteLibrary(const std::string& line) {
    constexpr std::size_t most = 100;
    auto& all = namedLibraries;
    if (all.size() < most && std::find(all.begin(), all.end(), line) == all.end()) {
        all.push_back(line);
    }
}

void holdMissingLibraries(const std::string& path, const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
        if (!librariesOf(path, {line}).empty()) continue;
        const std::string name(trimTrailingBlanks(line));
        leftOut.changed.push_back("the file asks for " + name + ", which " + whyMissing(path, name)
                                  + ": left out");
    }
}

std::string readMaterialLibraries(Mesh& mesh, const std::string& path,
                                  const std::vector<std::string>& lines, int firstNew) try {
    return readLooks(mesh, librariesOf(path, lines), firstNew);
} catch (const std::bad_alloc&) {
    return "there is not enough memory for the materials";
}

} // namespace polyfab
