// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/obj/material_library.h"

#include "formats/found_pictures.h"
#include "formats/left_out.h"
#include "formats/obj/material_lines.h"
#include "formats/obj/obj_lines.h"
#include "io/read_file.h"
#include "mesh/mesh.h"
#include "mesh/names.h"
#include "workbench/notes.h"

#include <algorithm>
#include <map>
#include <new>
#include <optional>
#include <set>
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

/// What may be a comment belongs to the name as long as there is such a file.
std::string pictureNameOf(const std::string& named, FileFinder& finder) {
    const std::size_t comment = named.find(" #");
    const bool isName = comment == std::string::npos || !finder.find(named).empty();
    return isName ? named : fileNameIn(named.substr(0, comment));
}

/// Gives the materials of the mesh from `firstNew` on what the libraries say of them.
class LooksReader {
  public:
    LooksReader(Mesh& to, int firstNew) : mesh(to), looks(looksBefore(firstNew)) {
        for (int i = firstNew; i < mesh.nmat; ++i) wanted[mesh.materials[i].name].push_back(i);
        all = std::ssize(wanted);
    }

    void read(std::shared_ptr<const MaterialLibrary> library) {
        FileFinder finder = finderOf(*library);
        pictures.startFile();
        for (const LibraryMaterial& material : readLibraryText(library->text)) {
            take(material, finder);
        }
        looks.libraries.push_back(std::move(library));
        anyRead = true;
    }

    /// Puts the looks into place. Returns a note on pictures that are not there, or "".
    std::string finish() {
        if (anyRead) tellUnknown();
        if (!others.empty()) {
            leftOut.changed.push_back(
                sentence(std::ssize(others), "{material} {has} another picture in the file than in "
                                             "the mesh, which stays as it is: ")
                + listOf({others.begin(), others.end()}));
        }
        const bool any = !looks.libraries.empty() || !looks.byName.empty();
        setMaterialLooks(any ? std::make_shared<const MaterialLooks>(std::move(looks)) : nullptr);
        return pictures.note();
    }

  private:
    /// Those of materials that are there no more would fall to new ones of their names.
    MaterialLooks looksBefore(int count) {
        MaterialLooks before;
        if (count == 0 || materialLooks() == nullptr) return before;
        before = *materialLooks();
        for (int i = 0; i < count; ++i) old.insert(mesh.materials[i].name);
        std::erase_if(before.byName, [&](const auto& look) { return !old.contains(look.first); });
        return before;
    }

    void take(const LibraryMaterial& material, FileFinder& finder) {
        const auto found = wanted.find(material.name);
        const bool isOld = old.contains(material.name);
        if (found == wanted.end() && !isOld) return;
        MaterialLook look{nullptr, material.placing, material.opacity};
        if (!material.picture.empty()) {
            look.picture = pictures.find(pictureNameOf(material.picture, finder), finder);
        }
        if (isOld) return compare(material.name, look);
        for (const int i : found->second) {
            if (material.color) mesh.materials[i].color = *material.color;
        }
        wanted.erase(found); // of several of one name the first counts
        looks.byName.insert_or_assign(material.name, std::move(look));
    }

    void compare(const std::string& name, const MaterialLook& look) {
        const auto kept = looks.byName.find(name);
        const PictureSource* const before =
            kept != looks.byName.end() ? kept->second.picture.get() : nullptr;
        const auto file = [](const PictureSource* picture) {
            return picture != nullptr ? picture->path() : "";
        };
        if (file(before) != file(look.picture.get())) others.insert(name);
    }

    void tellUnknown() const {
        std::vector<std::string> unknown;
        for (const auto& [name, places] : wanted) unknown.push_back(name);
        if (unknown.empty()) return;
        leftOut.changed.push_back("the material libraries say nothing of "
                                  + counted(std::ssize(unknown)) + " of the "
                                  + counted(all, "material") + ": " + listOf(unknown));
    }

    Mesh& mesh;
    std::set<std::string, std::less<>> old, others; ///< names; the others' pictures differ
    MaterialLooks looks;
    std::map<std::string, std::vector<int>, std::less<>> wanted;
    std::int64_t all = 0;
    bool anyRead = false;
    FoundPictures pictures;
};

const char* whyMissing(const std::string& path, const std::string& library) {
    std::error_code failure;
    const fs::path folder = fs::canonical(folderOf(path), failure);
    const fs::path place = fs::weakly_canonical(folder / library, failure);
    if (failure) return "is not there";
    if (*place.lexically_relative(folder).begin() == "..") return "lies outside its folder";
    return fs::exists(place, failure) ? "is no regular file that I can read" : "is not there";
}

void tellMissing(const std::string& path, const std::string& line) {
    const std::string name(trimTrailingBlanks(line));
    leftOut.changed.push_back("the file asks for " + name + ", which " + whyMissing(path, name)
                              + ": left out");
}

} // namespace

FileFinder finderOf(const MaterialLibrary& library) {
    return FileFinder({folderOf(library.path), library.meshFolder});
}

/// What follows "mtllib" is one name or, where no such file is, several. The bare name of all of
/// it comes last: it is that of the last of several.
Libraries librariesOf(const std::string& path, const std::string& named) {
    Libraries libraries;
    std::error_code failure; // the folder stays when another start looks for its files
    const std::string folder = fs::absolute(folderOf(path), failure);
    const std::string line(trimTrailingBlanks(named));
    const std::string whole = fileNameIn(line);
    FileFinder finder({folder});
    if (addLibrary(libraries, folder, line, whole, finder.findPath(whole))) return libraries;
    std::istringstream words(line);
    for (std::string word; words >> word;) {
        const std::string name = fileNameIn(word);
        addLibrary(libraries, folder, line, name, finder.find(name));
    }
    if (libraries.empty()) addLibrary(libraries, folder, line, whole, finder.find(whole));
    return libraries;
}

void noteLibrary(const std::string& line) {
    constexpr std::size_t most = 100;
    auto& all = namedLibraries;
    if (all.size() < most && std::find(all.begin(), all.end(), line) == all.end()) {
        all.push_back(line);
    }
}

std::string readMaterialLibraries(Mesh& mesh, const std::string& path,
                                  const std::vector<std::string>& lines, int firstNew) try {
    LooksReader reader(mesh, firstNew);
    for (const std::string& line : lines) {
        Libraries libraries = librariesOf(path, line);
        if (libraries.empty()) tellMissing(path, line);
        for (auto& library : libraries) reader.read(std::move(library));
    }
    return reader.finish();
} catch (const std::bad_alloc&) {
    return "there is not enough memory for the materials";
}

} // namespace polyfab
