// SPDX-License-Identifier: GPL-3.0-or-later
// How names of groups and materials are stored, and a table for looking many of them up.
#pragma once

#include "mesh/mesh.h"

#include <string>
#include <string_view>
#include <unordered_map>

namespace polyfab {

/// The text without its trailing blanks and tabs.
[[nodiscard]] std::string_view trimTrailingBlanks(std::string_view text);

/// What is kept of a name: no trailing blanks or tabs, nothing from a NUL on, 63 bytes at most.
/// The result is a part of `name`.
[[nodiscard]] std::string_view storedName(std::string_view name);

/// Find-or-add of groups (or materials) with a table instead of a scan, for as long as nobody else
/// adds or renames any. Gives the same index as Mesh::findOrAddGroup (findOrAddMaterial with
/// defaultColor). When the mesh can hold no more names, the message appears once and further new
/// names get index 0.
class NameTable {
  public:
    enum class Kind { groups, materials };
    NameTable(Mesh& mesh, Kind kind);
    int findOrAdd(std::string_view name);
    /// The mesh has refused a name.
    [[nodiscard]] bool isFull() const { return full; }

  private:
    static int addGroup(Mesh& mesh, std::string_view name);
    static int addMaterial(Mesh& mesh, std::string_view name);

    Mesh& mesh;
    const std::int32_t& count; ///< the mesh's own
    int (*add)(Mesh&, std::string_view);
    std::unordered_map<std::string, int> indices;
    bool full = false; ///< the mesh takes no more names, and has said so
};

} // namespace polyfab
