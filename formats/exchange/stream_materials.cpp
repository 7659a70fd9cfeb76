// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/exchange/stream_materials.h"

#include "display/material_looks.h"
#include "formats/exchange/import_stream.h"
#include "formats/exchange/numbered_names.h"
#include "formats/exchange/stream_mesh.h"
#include "io/read_file.h"
#include "mesh/mesh.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

namespace polyfab {
namespace {

/// Tells pictures of different bytes apart: copies of one lie in many files, beside them and
/// inside. Files are read only where their sizes ask for it, and once.
class PictureTeller {
  public:
    bool alike(const PictureSource* a, const PictureSource* b) {
        if (a == b || a == nullptr || b == nullptr) return a == b;
        if (a->bytes().empty() && b->bytes().empty() && a->path() == b->path()) return true;
        return sizeOf(*a) == sizeOf(*b) && hashOf(*a) == hashOf(*b);
    }

  private:
    std::uintmax_t sizeOf(const PictureSource& picture) {
        const auto [entry, isNew] = sizes.try_emplace(&picture, picture.bytes().size());
        std::error_code failure;
        if (isNew && entry->second == 0) {
            entry->second = std::filesystem::file_size(picture.path(), failure);
        }
        return entry->second;
    }

    std::size_t hashOf(const PictureSource& picture) {
        constexpr std::int64_t most = 1 << 28;
        const auto [entry, isNew] = hashes.try_emplace(&picture, 0);
        if (!isNew) return entry->second;
        const bool inFile = picture.bytes().empty();
        const std::optional<std::string> bytes =
            inFile ? wholeFile(picture.path(), most) : picture.bytes();
        // What can't be read is like nothing else.
        entry->second = bytes ? std::hash<std::string>()(*bytes) : hashes.size();
        return entry->second;
    }

    std::map<const PictureSource*, std::uintmax_t> sizes;
    std::map<const PictureSource*, std::size_t> hashes;
};

/// But for what is lost where files have single floats.
bool alike(double a, double b) { return std::fabs(a - b) <= 1e-6; }

bool alike(const PicturePlacing& a, const PicturePlacing& b) {
    return alike(a.uScale, b.uScale) && alike(a.vScale, b.vScale) && alike(a.uOffset, b.uOffset)
           && alike(a.vOffset, b.vOffset);
}

/// "wood" of "wood 2"; else the name.
std::string withoutNumber(const std::string& name) {
    const std::size_t last = name.find_last_not_of("0123456789");
    const bool numbered = last != std::string::npos && last + 1 < name.size() && name[last] == ' ';
    return numbered ? name.substr(0, last) : name;
}

class MaterialTaker {
  public:
    MaterialTaker(Mesh& to, const StreamView& view) : mesh(to) {
        for (int i = 0; i < mesh.nmat; ++i) {
            const Material& material = mesh.materials[i];
            const MaterialLook* const look = lookOf(material.name);
            enter(material.name, material.color, i, look != nullptr ? *look : MaterialLook());
            if (look != nullptr) looks.byName.emplace(material.name, *look);
        }
        // With none of their materials libraries say nothing of this mesh.
        if (!looks.byName.empty()) looks.libraries = materialLooks()->libraries;
        for (const std::string_view name : view.materials) numbers.avoid(cleanName(name));
    }

    /// Which one of the mesh it is.
    std::int16_t take(const std::string& name, std::uint32_t color, const MaterialLook& look) {
        int index = find(named, {name, color}, look);
        const bool taken = names.contains(name);
        if (index < 0 && taken) index = find(numbered, {numberedStem(name), color}, look);
        if (index >= 0) return static_cast<std::int16_t>(index);
        const std::string free = taken ? numbers.next(name) : name;
        index = mesh.addMaterial(color, free);
        if (look.picture != nullptr || look.opacity != 1) looks.byName.emplace(free, look);
        enter(free, color, index, look);
        if (taken) named[{name, color}].push_back({index, look});
        return static_cast<std::int16_t>(index);
    }

    LooksRef allLooks() {
        if (looks.byName.empty()) return nullptr;
        return std::make_shared<const MaterialLooks>(std::move(looks));
    }

  private:
    struct Known {
        int index;
        MaterialLook look;
    };
    using Key = std::pair<std::string, std::uint32_t>; ///< name, colour
    using Table = std::map<Key, std::vector<Known>>;

    void enter(const std::string& name, std::uint32_t color, int index, const MaterialLook& look) {
        names.insert(name);
        numbers.avoid(name);
        named[{name, color}].push_back({index, look});
        numbered[{withoutNumber(name), color}].push_back({index, look});
    }

    bool alike(const MaterialLook& a, const MaterialLook& b) {
        return polyfab::alike(a.opacity, b.opacity)
               && (a.picture == nullptr || polyfab::alike(a.placing, b.placing))
               && pictures.alike(a.picture.get(), b.picture.get());
    }

    int find(const Table& table, const Key& key, const MaterialLook& look) {
        const auto entry = table.find(key);
        if (entry == table.end()) return -1;
        const auto known = std::find_if(entry->second.begin(), entry->second.end(),
                                        [&](const Known& k) { return alike(k.look, look); });
        return known == entry->second.end() ? -1 : known->index;
    }

    Mesh& mesh;
    MaterialLooks looks;
    std::set<std::string> names;
    NumberedNames numbers;
    PictureTeller pictures;
    Table named;
    Table numbered; ///< by what stands before their numbers
};

} // namespace

std::vector<std::int16_t> addMaterials(Mesh& mesh, const StreamView& view,
                                       const std::vector<MaterialLook>& looks) {
    MaterialTaker taker(mesh, view);
    std::vector<std::int16_t> indices;
    for (std::size_t i = 0; i < view.materials.size(); ++i) {
        const std::uint32_t color = view.colors[i] & 0xFFFFFF;
        indices.push_back(taker.take(cleanName(view.materials[i]), color, looks[i]));
    }
    setMaterialLooks(taker.allLooks());
    return indices;
}

} // namespace polyfab
