// SPDX-License-Identifier: GPL-3.0-or-later
// Growth of the nine arrays: one rule, and the references that have to follow an array that moved.
#include "mesh/mesh.h"

#include "mesh/store.h"
#include "platform/platform.h"

#include <cstdint>
#include <utility>

namespace polyfab {
namespace {

constexpr std::int64_t step = 4096;

/// What differs from array to array in messages.
struct ArrayName {
    const char* label;    ///< for the store
    const char* elements; ///< for the growth itself
};

/// 0: failed. 1: the array has room and lies at `array`, where it may have moved to.
template <typename T>
int grow(T*& array, std::int32_t& capacity, std::int64_t want, bool exact, const ArrayName& name) {
    const std::int64_t newcap = (want + step - 1) / step * step;
    const bool enough = exact ? newcap == capacity : newcap <= capacity;
    // A growth that failed leaves a capacity without an array: such an array has to be got anew.
    if (enough && (array != nullptr || newcap == 0)) return 1;
    const bool countable = want >= 0 && newcap <= INT32_MAX;
    if (countable) {
        capacity = static_cast<std::int32_t>(newcap);
        array = static_cast<T*>(
            farrealloc(array, static_cast<std::size_t>(newcap) * sizeof(T), name.label));
        if (array != nullptr || newcap == 0) return 1;
    }
    platform().message("I ran out of space when wanting more room for ", name.elements,
                       Icon::exclamation);
    return 0;
}

/// Points a reference into an array that stood at address `before` at the same element of `array`.
template <typename T>
void rebase(T*& reference, std::uintptr_t before, T* array) {
    const auto address = reinterpret_cast<std::uintptr_t>(reference);
    const auto bytes = static_cast<std::intptr_t>(address - before);
    reference = array + bytes / static_cast<std::intptr_t>(sizeof(T));
}

std::uintptr_t addressOf(const void* array) { return reinterpret_cast<std::uintptr_t>(array); }

/// Grows `array`, and when that moved it re-bases the non-null reference `member` of the first
/// `count` records of `holders`.
template <typename T, typename Holder>
int growReferred(T*& array, std::int32_t& capacity, std::int64_t want, bool exact,
                 const ArrayName& name, Holder* holders, std::int32_t count, T* Holder::*member) {
    const std::uintptr_t before = addressOf(array);
    if (!grow(array, capacity, want, exact, name)) return 0;
    if (addressOf(array) == before || holders == nullptr) return 1;
    for (Holder* holder = holders; holder != holders + count; ++holder) {
        if (holder->*member != nullptr) rebase(holder->*member, before, array);
    }
    return 1;
}

} // namespace

int Mesh::growPoints(std::int64_t want, bool exact) {
    return growReferred(points, npmax, want, exact, {"point", "points"}, corners, nq,
                        &FaceCorner::p);
}

int Mesh::growCorners(std::int64_t want, bool exact) {
    return growReferred(corners, nqmax, want, exact, {"q", "face-corners"}, faces, nf, &Face::q);
}

int Mesh::growFaces(std::int64_t want, bool exact) {
    return grow(faces, nfmax, want, exact, {"fac", "faces"});
}

int Mesh::growGroups(std::int64_t want, bool exact) {
    return grow(groups, ngmax, want, exact, {"group", "groups"});
}

int Mesh::growMaterials(std::int64_t want, bool exact) {
    return grow(materials, nmatmax, want, exact, {"mat", "materials"});
}

int Mesh::growTextureMapAreas(std::int64_t want, bool exact) {
    return grow(tmas, ntmamax, want, exact, {"tma", "texture map areas"});
}

int Mesh::growParts(std::int64_t want, bool exact) {
    return grow(parts, nprtmax, want, exact, {"prt", "parts"});
}

int Mesh::growNormals(std::int64_t want, bool exact) {
    return growReferred(normals, ndmax, want, exact, {"d", "normals"}, corners, nq, &FaceCorner::d);
}

int Mesh::growTexCoords(std::int64_t want, bool exact) {
    return growReferred(texcoords, ntmax, want, exact, {"t", "texture map coords"}, corners, nq,
                        &FaceCorner::t);
}

void Mesh::settleLostArrays() {
    const auto isLost = [](const void* array, std::int32_t& count, std::int32_t& capacity) {
        if (array != nullptr || capacity == 0) return false;
        capacity = 0; // which would stand for room that is not there
        return std::exchange(count, 0) != 0;
    };
    const bool pointsLost = isLost(points, np, npmax), cornersLost = isLost(corners, nq, nqmax);
    const bool facesLost = isLost(faces, nf, nfmax);
    const bool groupsLost = isLost(groups, ng, ngmax),
               materialsLost = isLost(materials, nmat, nmatmax);
    // Of groups and materials a face needs one each.
    bool noFaces = pointsLost || cornersLost || facesLost || groupsLost || materialsLost;
    const auto forget = [this](auto FaceCorner::*reference) {
        for (std::int32_t c = 0; c < nq; ++c) corners[c].*reference = nullptr;
    };
    if (isLost(normals, nd, ndmax)) forget(&FaceCorner::d);
    if (isLost(texcoords, nt, ntmax)) forget(&FaceCorner::t);
    // Areas and parts are only found, and can be found again.
    const auto begin = [&](std::int16_t Face::*number, int (Mesh::*add)(),
                           const std::int32_t& count) {
        for (std::int32_t i = 0; i < nf && !noFaces; ++i) faces[i].*number = 0;
        (this->*add)();
        noFaces |= count == 0;
    };
    if (isLost(tmas, ntma, ntmamax)) begin(&Face::tma, &Mesh::addTextureMapArea, ntma);
    if (isLost(parts, nprt, nprtmax)) begin(&Face::prt, &Mesh::addPart, nprt);
    if (!noFaces) return;
    changed = 1;
    np = nq = nf = 0;
    curface = curvertex = -1;
}

} // namespace polyfab
