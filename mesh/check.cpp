// SPDX-License-Identifier: GPL-3.0-or-later
// Every test ends in checkSpan, which writes the fault's text.
#include "mesh/check.h"

#include "mesh/faces.h"
#include "mesh/progress.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

namespace polyfab {
namespace {

char faultText[256];

/// An array that faces refer to: where it is, how much of it is in use, and the width that messages
/// count its records in.
template <typename T>
struct Span {
    const T* array;
    std::int32_t count;
    std::int64_t nominal;
    const char* name;
};

/// Null when `element` is one of the elements in use.
template <typename T>
const char* checkElement(const T* element, const Span<T>& span) {
    constexpr auto size = static_cast<std::int64_t>(sizeof(T));
    const auto distance = static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(element)
                                                    - reinterpret_cast<std::uintptr_t>(span.array));
    const std::int64_t index = distance / size;
    const std::int64_t beside = distance % size;
    if (beside == 0 && index >= 0 && index < span.count) return nullptr;
    // A reference beside a record must not look like one to a record in the nominal width.
    const std::int64_t shown = std::clamp(beside, 1 - span.nominal, span.nominal - 1);
    return checkSpan(index * span.nominal + shown, span.nominal, span.count, span.name);
}

const char* checkCounts(const Mesh& mesh) {
    struct Row {
        std::int32_t count, capacity;
        const char* name;
    };
    // Groups and parts are left out: their tables may be ahead of their capacity.
    const Row rows[] = {
        {mesh.np, mesh.npmax, "OB.np"},       {mesh.nq, mesh.nqmax, "OB.nq"},
        {mesh.nf, mesh.nfmax, "OB.nf"},       {mesh.nt, mesh.ntmax, "OB.nt"},
        {mesh.nd, mesh.ndmax, "OB.nd"},       {mesh.nmat, mesh.nmatmax, "OB.nmat"},
        {mesh.ntma, mesh.ntmamax, "OB.ntma"},
    };
    for (const Row& row : rows) {
        const std::int64_t allowed = std::int64_t{row.capacity} + 1;
        if (const char* fault = checkSpan(row.count, 1, allowed, row.name)) return fault;
    }
    // A failed growth leaves a capacity without an array. For the faces, which are looked into
    // below, that is room for none; every reference into another such array is out of range.
    return mesh.faces != nullptr ? nullptr : checkSpan(mesh.nf, 1, 1, "OB.nf");
}

const char* checkCorner(const Mesh& mesh, const FaceCorner& corner) {
    const Span<TexCoord> texcoords{mesh.texcoords, mesh.nt, 24, "q.t"};
    const Span<Normal> normals{mesh.normals, mesh.nd, 24, "q.d"};
    const Span<Point> points{mesh.points, mesh.np, 56, "q.p"};
    if (corner.t != nullptr) {
        if (const char* fault = checkElement(corner.t, texcoords)) return fault;
    }
    if (corner.d != nullptr) {
        if (const char* fault = checkElement(corner.d, normals)) return fault;
    }
    if (corner.p == nullptr) return "V->p==0";
    return checkElement(corner.p, points);
}

const char* checkFace(const Mesh& mesh, const Face& face) {
    const Span<FaceCorner> all{mesh.corners, mesh.nq, 16, "fac.q"};
    if (const char* fault = checkElement(face.q, all)) return fault;
    const std::int64_t end = indexIn(mesh.corners, face.q) + std::int64_t{face.n};
    if (const char* fault = checkSpan(end, 1, std::int64_t{mesh.nq} + 1, "fac.n")) return fault;
    // From here on every corner of the face is known to lie in the used part of the array.
    for (const FaceCorner& corner : corners(face)) {
        if (const char* fault = checkCorner(mesh, corner)) return fault;
    }
    if (const char* fault = checkSpan(face.mat, 1, mesh.nmat, "fac.mat")) return fault;
    if (const char* fault = checkSpan(face.tma, 1, mesh.ntma, "fac.tma")) return fault;
    if (const char* fault = checkSpan(face.g, 1, mesh.ng, "fac.g")) return fault;
    return checkSpan(face.prt, 1, mesh.nprt, "fac.prt");
}

[[gnu::format(printf, 1, 2)]] const char* report(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(faultText, sizeof faultText, format, arguments);
    va_end(arguments);
    return faultText;
}

} // namespace

const char* checkSpan(std::int64_t offset, std::int64_t elementSize, std::int64_t count,
                      const char* name) {
    if (offset % elementSize != 0) {
        return report("%s bad, = (as bytes) %lld, not a multiple of %lld", name,
                      static_cast<long long>(offset), static_cast<long long>(elementSize));
    }
    const std::int64_t index = offset / elementSize;
    if (index >= 0 && index < count) return nullptr;
    return report("%s = %lld out of range, should be 0 to %lld", name,
                  static_cast<long long>(index), static_cast<long long>(count - 1));
}

const char* check(const Mesh& mesh) {
    if (const char* fault = checkCounts(mesh)) return fault;
    WorkCounter done;
    for (const Face& face : allFaces(mesh)) {
        done.step(face.n);
        if (!isLive(face)) continue;
        if (const char* fault = checkFace(mesh, face)) return fault;
    }
    return nullptr;
}

} // namespace polyfab
