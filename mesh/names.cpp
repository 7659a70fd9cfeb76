// SPDX-License-Identifier: GPL-3.0-or-later
// All comparisons are made with what would be stored, so that a long name finds itself again.
#include "mesh/names.h"

#include "platform/platform.h"

#include <algorithm>

namespace polyfab {
namespace {

/// Refuses, with a message, what a 16-bit index could not name.
bool roomForName(int count, const char* elements) {
    if (count < maxIndexed) return true;
    platform().message("too many names", std::string("a mesh can have at most 32767 ") + elements,
                       Icon::exclamation);
    return false;
}

void store(char (&field)[nameSize], std::string_view name) {
    const std::string_view kept = storedName(name);
    std::copy(kept.begin(), kept.end(), field);
}

/// The lowest element of that name, or -1.
template <typename T>
int findName(const T* array, int count, std::string_view name) {
    const std::string_view wanted = storedName(name);
    const T* const found =
        std::find_if(array, array + count, [&](const T& e) { return wanted == e.name; });
    return found == array + count ? -1 : indexIn(array, found);
}

template <typename T>
void enterAll(std::unordered_map<std::string, int>& indices, const T* array, int count) {
    for (int i = 0; i < count; ++i) indices.emplace(array[i].name, i);
}

} // namespace

std::string_view trimTrailingBlanks(std::string_view text) {
    const std::size_t last = text.find_last_not_of(" \t");
    return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

std::string_view storedName(std::string_view name) {
    return trimTrailingBlanks(name.substr(0, name.find('\0'))).substr(0, nameSize - 1);
}

int Mesh::addGroup(std::string_view name) {
    if (!roomForName(ng, "groups") || !growGroups(std::int64_t{ng} + 1, false)) return 0;
    changed = 1;
    groups[ng] = {};
    store(groups[ng].name, name);
    groups[ng].selected = 1;
    return ng++;
}

int Mesh::findOrAddGroup(std::string_view name) {
    changed = 1;
    const int found = findName(groups, ng, name);
    return found >= 0 ? found : addGroup(name);
}

int Mesh::addMaterial(std::uint32_t color, std::string_view name) {
    if (!roomForName(nmat, "materials") || !growMaterials(std::int64_t{nmat} + 1, false)) return 0;
    changed = 1;
    materials[nmat] = {};
    materials[nmat].color = color;
    materials[nmat].selected = 1;
    store(materials[nmat].name, name);
    return nmat++;
}

int Mesh::findOrAddMaterial(std::uint32_t color, std::string_view name) {
    changed = 1;
    const int found = name.data() == nullptr ? -1 : findName(materials, nmat, name);
    return found >= 0 ? found : addMaterial(color, name);
}

const char* Mesh::currentGroupName() const {
    return curgroup >= 0 && curgroup < ng ? groups[curgroup].name : "default";
}

const char* Mesh::currentMaterialName() const {
    return curmat >= 0 && curmat < nmat ? materials[curmat].name : "default";
}

NameTable::NameTable(Mesh& owner, Kind kind)
    : mesh(owner), count(kind == Kind::groups ? mesh.ng : mesh.nmat),
      add(kind == Kind::groups ? addGroup : addMaterial) {
    if (kind == Kind::groups) {
        enterAll(indices, mesh.groups, mesh.ng);
    } else {
        enterAll(indices, mesh.materials, mesh.nmat);
    }
}

int NameTable::addGroup(Mesh& mesh, std::string_view name) { return mesh.addGroup(name); }

int NameTable::addMaterial(Mesh& mesh, std::string_view name) {
    return mesh.addMaterial(defaultColor, name);
}

int NameTable::findOrAdd(std::string_view name) {
    mesh.changed = 1;
    const auto [entry, isNew] = indices.try_emplace(std::string(storedName(name)), 0);
    if (isNew && !full) {
        const int before = count;
        entry->second = add(mesh, name);
        full = count == before;
    }
    return entry->second;
}

} // namespace polyfab
