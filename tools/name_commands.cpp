// SPDX-License-Identifier: GPL-3.0-or-later
// The same few loops serve groups and materials: only the face's field differs.
#include "tools/name_commands.h"

#include "io/save_file.h"
#include "io/utf8.h"
#include "mesh/faces.h"
#include "platform/platform.h"
#include "workbench/notes.h"

#include <string_view>
#include <unordered_map>
#include <vector>

namespace polyfab {
namespace {

void setOnSelected(Mesh& mesh, std::int16_t Face::*field, int value) {
    mesh.changed = 1; // also when no name could be added and the faces go under the first one
    for (Face& face : selectedFaces(mesh)) face.*field = static_cast<std::int16_t>(value);
}

/// Per element, the lowest element of the same name.
template <typename T>
std::vector<std::int16_t> firstOfName(const T* array, int count) {
    std::vector<std::int16_t> first;
    std::unordered_map<std::string_view, std::int16_t> seen;
    for (int i = 0; i < count; ++i) {
        first.push_back(seen.emplace(array[i].name, static_cast<std::int16_t>(i)).first->second);
    }
    return first;
}

void moveFaces(Mesh& mesh, std::int16_t Face::*field, const std::vector<std::int16_t>& target) {
    for (Face& face : liveFaces(mesh)) {
        std::int16_t& index = face.*field;
        if (index < 0 || index >= static_cast<int>(target.size())) continue;
        const std::int16_t to = target[static_cast<std::size_t>(index)];
        if (to != index) mesh.changed = 1;
        index = to;
    }
}

template <typename T>
void writeNames(const T* array, int count, std::string& fileName, const char* prompt) {
    if (fileName.size() > 3) {
        std::size_t end = fileName.size() - 4;
        while (end > 0 && continuesCharacter(fileName[end])) --end; // no half of a character stays
        fileName.replace(end, std::string::npos, ".txt");
    }
    const auto path = platform().fileDialog(
        {true, prompt, {{"text files", "*.txt"}}, fileName, {}, fileName, ".txt"});
    if (!path) return;
    SaveFile file;
    bool written = file.open(*path);
    if (written) {
        for (int i = 0; i < count; ++i) {
            file.append(array[i].name);
            file.append("\n");
        }
        written = file.commit();
    }
    if (!written) return platform().message("I can't open this file", *path, Icon::exclamation);
    note("wrote " + counted(count, "name") + " to " + *path);
}

bool agreed(const char* question) {
    return platform().question("", question, Buttons::yesNo) == Choice::yes;
}

} // namespace

void putSelectedIntoNewGroup(Mesh& mesh) {
    if (!agreed("do you want to put the selected faces into a new group?")) return;
    setOnSelected(mesh, &Face::g, mesh.addGroup("NewGroup"));
}

void putSelectedIntoNewMaterial(Mesh& mesh) {
    if (!agreed("do you want to put the selected faces into a new material?")) return;
    setOnSelected(mesh, &Face::mat, mesh.addMaterial(0, "NewMaterial"));
}

void amalgamateGroups(Mesh& mesh) { moveFaces(mesh, &Face::g, firstOfName(mesh.groups, mesh.ng)); }

void amalgamateMaterials(Mesh& mesh) {
    moveFaces(mesh, &Face::mat, firstOfName(mesh.materials, mesh.nmat));
}

void writeGroupNames(const Mesh& mesh, std::string& fileName) {
    writeNames(mesh.groups, mesh.ng, fileName, "text file to write group names to?");
}

void writeMaterialNames(const Mesh& mesh, std::string& fileName) {
    writeNames(mesh.materials, mesh.nmat, fileName, "text file to write material names to?");
}

} // namespace polyfab
