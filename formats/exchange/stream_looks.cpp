// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/exchange/stream_looks.h"

#include "display/material_looks.h"
#include "formats/exchange/import_stream.h"
#include "formats/exchange/stream_mesh.h"
#include "formats/file_finder.h"
#include "formats/found_pictures.h"
#include "formats/mesh_formats.h"
#include "io/file_name.h"
#include "io/names_in.h"
#include "io/read_file.h"
#include "io/save_file.h"
#include "io/utf8.h"
#include "mesh/mesh.h"
#include "picture/read_image.h"
#include "picture/write_png.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <new>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace polyfab {
namespace {

namespace fs = std::filesystem;

// Import.

class LooksTaker {
  public:
    LooksTaker(const StreamView& from, const std::string& path)
        : view(from), finder({folderOf(path)}), embedded(view.embedded.size()) {}

    MaterialLook take(std::size_t material) {
        const auto finite = [](double value, double otherwise) {
            return std::isfinite(value) ? value : otherwise;
        };
        const StreamLook& look = view.looks[material];
        return {pictureOf(material),
                {finite(look.uScale, 1), finite(look.vScale, 1), finite(look.uOffset, 0),
                 finite(look.vOffset, 0)},
                finite(look.opacity, 1)};
    }

    std::string note() const { return pictures.note(); }

  private:
    std::shared_ptr<PictureSource> pictureOf(std::size_t material) {
        const std::string name = fileNameIn(withoutControls(view.pictures[material]));
        const std::int64_t number = view.looks[material].embedded;
        if (number < 0 && name.empty()) return nullptr;
        if (number < 0) {
            const bool coded = finder.find(name).empty();
            return pictures.find(coded ? withoutPercents(name) : name, finder);
        }
        auto& picture = embedded[static_cast<std::size_t>(number)];
        const std::string_view bytes = view.embedded[static_cast<std::size_t>(number)];
        if (picture == nullptr && !bytes.empty()) { // without any it would be one in a file
            picture = std::make_shared<PictureSource>(name, std::string(bytes));
        }
        return picture;
    }

    const StreamView& view;
    FileFinder finder;
    FoundPictures pictures;
    std::vector<std::shared_ptr<PictureSource>> embedded;
};

// Export.

bool isPng(std::string_view bytes) { return bytes.starts_with(pngHead); }
bool isJpeg(std::string_view bytes) { return bytes.starts_with(jpegHead); }

bool save(const fs::path& path, std::string_view bytes) {
    SaveFile file;
    if (!file.open(path)) return false;
    file.append(bytes);
    return file.commit();
}

bool isAscii(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; });
}

/// A file name without what may mean something to a format or a system, and with room for a number
/// and a suffix.
std::string plainName(const std::string& text, bool onlyAscii) {
    constexpr std::size_t longest = 200;
    std::string name = beginningOf(fs::path(text).stem(), longest);
    for (char& c : name) {
        const auto byte = static_cast<unsigned char>(c);
        const bool plain =
            byte < 0x80 ? std::isalnum(byte) != 0 || c == '-' || c == '.' : !onlyAscii;
        if (!plain) c = '_';
    }
    return name;
}

/// Where the pictures of an export come to lie.
class PictureGiver {
  public:
    PictureGiver(StreamTables& to, const fs::path& targetFile, const fs::path& scratchFolder)
        : tables(to), target(targetFile), scratch(scratchFolder) {
        const auto is = [&](std::string_view suffix) { return endsIn(target.native(), suffix); };
        holds = is(".glb");
        forWeb = holds || is(".gltf");
        onlyAscii = is(".x"); // its names have another code than those of files
    }

    void give(PictureSource& picture, std::size_t number) {
        const auto [entry, isNew] = given.try_emplace(&picture);
        if (isNew) entry->second = place(picture);
        tables.pictures[number] = entry->second.name;
        tables.looks[number].embedded = entry->second.embedded;
    }

  private:
    struct Given {
        std::string name; ///< "": it can't be given
        std::int64_t embedded = -1;
    };

    Given place(PictureSource& picture) {
        const bool inFile = picture.bytes().empty();
        std::string bytes = inFile ? wholeFile(picture.path()).value_or("") : picture.bytes();
        const bool common = isPng(bytes) || isJpeg(bytes);
        if (inFile && common && !holds) {
            const std::string name = nameInTarget(picture.path());
            if (!name.empty() && (!onlyAscii || isAscii(name))) return {name};
        }
        if (!common && (forWeb || !inFile)) bytes = asPng(picture);
        if (bytes.empty()) return {};
        const std::string stem = stemOf(picture);
        const std::string usual = isPng(bytes) ? ".png" : ".jpg";
        const std::string suffix =
            isPng(bytes) || isJpeg(bytes) ? usual : fs::path(picture.path()).extension().string();
        if (holds) {
            tables.embedded.push_back(std::move(bytes));
            return {stem, std::ssize(tables.embedded) - 1};
        }
        return {copyOf(bytes, stem, suffix)};
    }

    /// How the name of a copy begins. Some formats only number the pictures inside of them.
    std::string stemOf(const PictureSource& picture) const {
        const std::string& path = picture.path();
        return plainName(path.empty() || path.starts_with('*') ? target.string() : path, onlyAscii);
    }

    /// "" when the file does not lie in the folder of the target or below.
    std::string nameInTarget(const std::string& path) const {
        std::error_code failure;
        const fs::path folder = fs::canonical(folderOf(target), failure);
        const fs::path name = fs::path(path).lexically_relative(folder);
        return failure || name.empty() || *name.begin() == ".." ? "" : name.string();
    }

    std::string asPng(PictureSource& picture) const {
        const Image* const image = picture.image();
        const fs::path passing = scratch / "picture.polyfab";
        if (image == nullptr || !writePngFile(*image, passing).empty()) return "";
        std::string bytes = wholeFile(passing).value_or("");
        std::error_code ignored;
        fs::remove(passing, ignored);
        return bytes;
    }

    /// The name of a copy beside the target, or of one that is there already. Whatever else has
    /// such a name stays.
    std::string copyOf(const std::string& bytes, const std::string& stem,
                       const std::string& suffix) {
        std::string& known = copies[std::hash<std::string>()(bytes)];
        if (!known.empty() && isCopy(known, bytes)) return known;
        for (int& i = numbers[stem + suffix]; i < maxIndexed;) {
            std::string name = stem;
            if (++i > 1) name.append("-").append(std::to_string(i));
            name += suffix;
            if (isCopy(name, bytes)) return known = name;
            const fs::path here = scratch / name, there = folderOf(target) / name;
            if (name == target.filename() || !isFreeName(here) || !isFreeName(there)) continue;
            return save(here, bytes) ? known = name : "";
        }
        return "";
    }

    /// Whether a file of these bytes has the name, itself and not by a link.
    bool isCopy(const std::string& name, const std::string& bytes) const {
        return hasBytes(scratch / name, bytes, Links::refused)
               || hasBytes(folderOf(target) / name, bytes, Links::refused);
    }

    StreamTables& tables;
    fs::path target, scratch;
    bool holds, forWeb, onlyAscii;
    std::map<PictureSource*, Given> given;
    std::map<std::string, int> numbers;        ///< that a copy of this name had last
    std::map<std::size_t, std::string> copies; ///< by hashes of their bytes
};

/// The file's texture coordinates become those at which its pictures lie, as not all formats can
/// stretch and move a picture.
class PlacedTexcoords {
  public:
    explicit PlacedTexcoords(StreamTables& of) : tables(of) {}

    void place(StreamCorner& corner, std::int32_t material, const PicturePlacing& placing) {
        if (corner.texcoord < 0) return;
        const auto [entry, isNew] = placed.try_emplace({material, corner.texcoord});
        if (isNew) {
            const auto [u, v] = tables.texcoords[static_cast<std::size_t>(corner.texcoord)];
            entry->second = static_cast<std::int32_t>(tables.texcoords.size());
            tables.texcoords.push_back(
                {u * placing.uScale + placing.uOffset, v * placing.vScale + placing.vOffset});
        }
        corner.texcoord = entry->second;
    }

  private:
    StreamTables& tables;
    std::map<std::pair<std::int32_t, std::int32_t>, std::int32_t> placed;
};

bool isPlain(const PicturePlacing& p) {
    return p.uScale == 1 && p.vScale == 1 && p.uOffset == 0 && p.vOffset == 0;
}

void placeTexcoords(StreamTables& tables, const std::vector<const MaterialLook*>& looks) {
    PlacedTexcoords placed(tables);
    StreamCorner* corner = tables.corners.data();
    for (const StreamFace& face : tables.faces) {
        const MaterialLook* const look = looks[static_cast<std::size_t>(face.material)];
        const bool moves = look != nullptr && look->picture != nullptr && !isPlain(look->placing);
        for (int k = 0; k < face.corners; ++k, ++corner) {
            if (moves) placed.place(*corner, face.material, look->placing);
        }
    }
}

} // namespace

std::vector<MaterialLook> looksIn(const StreamView& view, const std::string& path,
                                  std::string& missing) {
    LooksTaker taker(view, path);
    std::vector<MaterialLook> looks;
    for (std::size_t i = 0; i < view.materials.size(); ++i) looks.push_back(taker.take(i));
    missing = taker.note();
    return looks;
}

bool takesPictures(const fs::path& target) {
    constexpr std::string_view all[] = {".glb", ".gltf", ".dae", ".obj", ".fbx", ".3ds", ".x"};
    return std::any_of(std::begin(all), std::end(all),
                       [&](std::string_view suffix) { return endsIn(target.native(), suffix); });
}

void giveLooks(const Mesh& mesh, StreamTables& tables, const fs::path& target,
               const fs::path& scratch) {
    if (materialLooks() == nullptr) return;
    const std::size_t count = tables.materials.size();
    tables.looks.resize(count);
    tables.pictures.resize(count);
    const bool shown = takesPictures(target);
    std::vector<bool> used(count);
    for (const StreamFace& face : tables.faces)
        used[static_cast<std::size_t>(face.material)] = true;
    PictureGiver giver(tables, target, scratch);
    std::vector<const MaterialLook*> looks(count);
    for (std::size_t i = 0; i < count; ++i) {
        if (used[i]) looks[i] = lookOf(mesh.materials[i].name);
        if (looks[i] == nullptr) continue;
        tables.looks[i].opacity = looks[i]->opacity;
        if (!shown || looks[i]->picture == nullptr) continue;
        giver.give(*looks[i]->picture, i);
    }
    if (shown) placeTexcoords(tables, looks);
}

std::vector<std::string> picturesBeside(const Mesh& mesh, const fs::path& target,
                                        const fs::path& scratch) {
    const auto count = static_cast<std::size_t>(mesh.nmat);
    StreamTables tables;
    tables.looks.resize(count);
    tables.pictures.resize(count);
    if (materialLooks() == nullptr) return tables.pictures;
    PictureGiver giver(tables, target, scratch);
    for (std::size_t i = 0; i < count; ++i) {
        const MaterialLook* const look = lookOf(mesh.materials[i].name);
        if (look == nullptr || look->picture == nullptr) continue;
        giver.give(*look->picture, i);
    }
    return std::move(tables.pictures);
}

} // namespace polyfab
