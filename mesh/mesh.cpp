// SPDX-License-Identifier: GPL-3.0-or-later
// Life of the mesh record.
#include "mesh/mesh.h"

#include "mesh/store.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <type_traits>

namespace polyfab {

// Clearing a record sets all its bytes to zero, which must be what its fields mean by "empty".
static_assert(std::is_standard_layout_v<Mesh>);

void Mesh::clear(bool release) {
    if (release) releaseAll();
    std::memset(static_cast<void*>(this), 0, sizeof *this);
    curvertex = curtexcoord = curface = -1;
}

void Mesh::swapWith(Mesh& other) {
    // The references go into the arrays, which stay where they are.
    auto* const bytes = reinterpret_cast<unsigned char*>(this);
    std::swap_ranges(bytes, bytes + sizeof *this, reinterpret_cast<unsigned char*>(&other));
}

void Mesh::releaseAll() {
    changed = 1;
    farfree(&faces);
    farfree(&points);
    farfree(&corners);
    farfree(&materials);
    farfree(&normals);
    farfree(&texcoords);
    farfree(&tmas);
    farfree(&parts);
    farfree(&spare);
}

void createMesh() {
    if (OB != nullptr) return;
    void* const block = farmalloc(sizeof(Mesh));
    if (block != nullptr) OB = new (block) Mesh;
}

void destroyMesh() {
    if (OB == nullptr) return;
    OB->~Mesh();
    farfree(&OB);
}

} // namespace polyfab
