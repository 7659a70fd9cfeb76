// SPDX-License-Identifier: GPL-3.0-or-later
// How a face is split is told as a list of pieces, each a list of the face's corners. The list is
// gone through twice, to count what the new arrays need and to fill them.
#include "tools/triangularize.h"

#include "mesh/edges.h"
#include "mesh/faces.h"
#include "mesh/stale.h"
#include "mesh/store.h"
#include "platform/platform.h"
#include "tools/delete_faces.h"
#include "workbench/long_work.h"
#include "workbench/state.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace polyfab {
namespace {

/// The corners of a piece by their places in the face.
using Places = std::initializer_list<int>;

/// Calls use(places) for each piece of a face of n corners.
struct Fan {
    template <typename Use>
    static void eachPiece(int n, Use use) {
        for (int k = 2; k < n; ++k) use(Places{0, k - 1, k});
    }
};

struct Quads {
    template <typename Use>
    static void eachPiece(int n, Use use) {
        for (int k = 3; k < n; k += 2) use(Places{0, k - 2, k - 1, k});
        if (n % 2 != 0) use(Places{0, n - 2, n - 1});
    }
};

/// Faces and their corners while they are written, one behind the other. There must be room.
struct Writer {
    Face* faces;
    FaceCorner* corners;

    Face& start(const Face& from, int n) {
        Face& face = *faces++;
        face = from;
        face.q = corners;
        face.n = static_cast<std::int16_t>(n);
        corners += n;
        return face;
    }
    void copy(const Face& from) { std::copy_n(from.q, from.n, start(from, from.n).q); }
    void addPiece(const Face& from, Places places) {
        Face& piece = start(from, static_cast<int>(places.size()));
        piece.selected = 1;
        std::transform(places.begin(), places.end(), piece.q, [&](int k) { return from.q[k]; });
    }
};

bool stays(const Face& face) { return isLive(face) && face.n >= 3; }

struct Counts {
    std::int64_t faces = 0;
    std::int64_t corners = 0;
};

template <typename Split>
Counts countAll(const Mesh& mesh) {
    Counts counts;
    const auto add = [&](std::int64_t corners) {
        ++counts.faces;
        counts.corners += corners;
    };
    for (const Face& face : FacesThat<const Face, stays>(mesh)) {
        if (!face.selected)
            add(face.n);
        else
            Split::eachPiece(face.n, [&](Places places) { add(std::ssize(places)); });
    }
    return counts;
}

/// Room for so many elements, or null after a message box.
template <typename T>
T* take(std::int64_t count, const char* elements) {
    if (count <= INT32_MAX) {
        return static_cast<T*>(farmalloc(static_cast<std::size_t>(count) * sizeof(T)));
    }
    platform().message("I ran out of space when wanting more room for ", elements,
                       Icon::exclamation);
    return nullptr;
}

/// Writes the faces that are not selected, then the pieces of the others; gives the new number of
/// the current face.
template <typename Split>
std::int32_t writeAll(const Mesh& mesh, Writer writer) {
    const Face* const first = writer.faces;
    std::int32_t curface = -1;
    LoopProgress progress(2 * std::int64_t{mesh.nf});
    const auto eachFace = [&](bool selected, auto write) {
        for (std::int32_t i = 0; i < mesh.nf; ++i) {
            progress.step();
            const Face& face = mesh.faces[i];
            if (!stays(face) || (face.selected != 0) != selected) continue;
            const Face* const start = writer.faces;
            write(face);
            if (i == mesh.curface && writer.faces == start + 1) curface = indexIn(first, start);
        }
    };
    eachFace(false, [&](const Face& face) { writer.copy(face); });
    eachFace(true, [&](const Face& face) {
        Split::eachPiece(face.n, [&](Places places) { writer.addPiece(face, places); });
    });
    return curface;
}

/// Splits all selected faces. False, and nothing done, without memory.
template <typename Split>
bool splitAll(Mesh& mesh) {
    const Counts counts = countAll<Split>(mesh);
    auto* faces = take<Face>(counts.faces, "faces");
    auto* corners = faces != nullptr ? take<FaceCorner>(counts.corners, "face-corners") : nullptr;
    if (corners == nullptr) {
        farfree(&faces);
        return false;
    }
    mesh.curface = writeAll<Split>(mesh, {faces, corners});
    farfree(&mesh.faces);
    farfree(&mesh.corners);
    mesh.faces = faces;
    mesh.corners = corners;
    mesh.nf = mesh.nfmax = static_cast<std::int32_t>(counts.faces);
    mesh.nq = mesh.nqmax = static_cast<std::int32_t>(counts.corners);
    mesh.changed = 1;
    stale.edges = true;
    forgetCurrentEdge();
    return true;
}

} // namespace

void triangularize(Mesh& mesh) { static_cast<void>(splitAll<Fan>(mesh)); }

void breakupfaces(Mesh& mesh) {
    if (splitAll<Quads>(mesh)) checkEdges(mesh, false, false, false);
}

void fanface(Mesh& mesh, int face) {
    const int n = isLive(mesh.faces[face]) ? mesh.faces[face].n : 3;
    if (n < 3) mesh.faces[face].q = nullptr;
    if (n <= 3) return;
    const std::int64_t pieces = n - 2;
    if (!mesh.growFaces(mesh.nf + pieces, false) || !mesh.growCorners(mesh.nq + 3 * pieces, false))
        return;
    Writer writer{mesh.faces + mesh.nf, mesh.corners + mesh.nq};
    const Face original = mesh.faces[face];
    Fan::eachPiece(n, [&](Places places) { writer.addPiece(original, places); });
    mesh.nf = indexIn(mesh.faces, writer.faces);
    mesh.nq = indexIn(mesh.corners, writer.corners);
    mesh.faces[face].q = nullptr;
    noteDeletedFaces(mesh);
}

} // namespace polyfab
