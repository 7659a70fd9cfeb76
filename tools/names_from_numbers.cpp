// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/names_from_numbers.h"

#include "mesh/faces.h"
#include "mesh/table.h"
#include "platform/platform.h"
#include "workbench/notes.h"

#include <algorithm>
#include <cstdint>
#include <string>

namespace polyfab {
namespace {

/// What becomes what.
struct Change {
    std::int16_t Face::*number;
    std::int32_t Mesh::*numbers;
    std::int16_t Face::*name;
    std::int32_t Mesh::*names;
    const char* word;     ///< before the number, in the new name
    const char* elements; ///< for messages
    int (*add)(Mesh&, const std::string& name, const Face& first);
};

int addGroup(Mesh& mesh, const std::string& name, const Face&) { return mesh.addGroup(name); }

int addMaterial(Mesh& mesh, const std::string& name, const Face& first) {
    return mesh.addMaterial(mesh.materials[first.mat].color, name);
}

constexpr Change areasToGroups{&Face::tma, &Mesh::ntma, &Face::g, &Mesh::ng,
                               "area ",    "groups",    addGroup};
constexpr Change partsToGroups{&Face::prt, &Mesh::nprt, &Face::g, &Mesh::ng,
                               "part ",    "groups",    addGroup};
constexpr Change partsToMaterials{&Face::prt, &Mesh::nprt, &Face::mat, &Mesh::nmat,
                                  "part ",    "materials", addMaterial};

constexpr std::int32_t unused = -1;

/// Enters the first live face of each number; gives how many numbers have one.
std::int64_t findFirstFaces(const Mesh& mesh, const Change& change, Table<std::int32_t>& first) {
    std::int64_t used = 0;
    for (const Face& face : liveFaces(mesh)) {
        std::int32_t& place = first[face.*change.number];
        if (place != unused) continue;
        place = indexIn(mesh.faces, &face);
        ++used;
    }
    return used;
}

void carryOut(Mesh& mesh, const Change& change) {
    const std::int32_t numbers = mesh.*change.numbers;
    Table<std::int32_t> first(numbers, unused);
    Table<std::int16_t> made(numbers);
    if (!first || !made) return;
    const std::int64_t used = findFirstFaces(mesh, change, first);
    if (mesh.*change.names + used > maxIndexed) {
        platform().message("too many names",
                           std::string("a mesh can have at most 32767 ") + change.elements,
                           Icon::exclamation);
        return;
    }
    for (std::int32_t i = 0; i < numbers; ++i) {
        if (first[i] == unused) continue;
        const std::string name = change.word + std::to_string(i);
        made[i] = static_cast<std::int16_t>(change.add(mesh, name, mesh.faces[first[i]]));
    }
    for (Face& face : liveFaces(mesh)) face.*change.name = made[face.*change.number];
    note(std::string("new ") + change.elements + ": " + counted(used));
}

} // namespace

void makeAreasIntoGroups(Mesh& mesh) { carryOut(mesh, areasToGroups); }

void makePartsIntoGroups(Mesh& mesh) { carryOut(mesh, partsToGroups); }

void makePartsIntoMaterials(Mesh& mesh) { carryOut(mesh, partsToMaterials); }

} // namespace polyfab
