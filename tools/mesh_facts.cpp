// SPDX-License-Identifier: GPL-3.0-or-later
// The genus is that of the surface which the faces make when they hang together by edges alone:
// corners at one point that no edge joins count as points of their own.
#include "tools/mesh_facts.h"

#include "geometry/polygon.h"
#include "io/print_number.h"
#include "mesh/faces.h"
#include "mesh/table.h"
#include "platform/platform.h"
#include "tools/edge_numbers.h"
#include "tools/hole_rims.h"
#include "workbench/notes.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace polyfab {
namespace {

/// Sets of numbers, each named by one of them (Tarjan's disjoint sets, with paths halved).
class Sets {
  public:
    explicit Sets(std::int64_t count) : parent(count) {
        for (std::int32_t i = 0; parent && i < count; ++i) parent[i] = i;
    }
    explicit operator bool() const { return static_cast<bool>(parent); }
    std::int32_t find(std::int32_t i) {
        while (parent[i] != i) i = parent[i] = parent[parent[i]];
        return i;
    }
    void unite(std::int32_t a, std::int32_t b) { parent[find(a)] = find(b); }

  private:
    Table<std::int32_t> parent;
};

constexpr std::int32_t none = -1;

/// What is known of an edge.
struct EdgeUse {
    std::int32_t face = none;       ///< the first one on it
    std::int32_t low = 0, high = 0; ///< the corners of that face at its ends
    std::int32_t up = 0, down = 0;  ///< sides towards the higher-numbered point, and back
};

class Counter {
  public:
    Counter(const Mesh& counted, const EdgeNumbers& numbers)
        : mesh(counted), edges(numbers), uses(numbers.count(), EdgeUse()), parts(counted.nf),
          fans(counted.nq) {}
    explicit operator bool() const { return uses && parts && fans; }

    void count(MeshFacts& facts) {
        eachSideWithPoints(mesh, [&](const Face& face, int k, std::int32_t from, std::int32_t to) {
            enter(face, k, from < to);
        });
        bool closed = true;
        for (std::int32_t e = 0; e < edges.count(); ++e) {
            const std::int32_t up = uses[e].up, down = uses[e].down;
            facts.looseEdges += up + down == 1;
            facts.overusedEdges += up + down > 2;
            facts.badEdges += up > 1 || down > 1;
            closed = closed && up == 1 && down == 1;
        }
        std::int64_t corners = 0;
        for (const Face& face : liveFaces(mesh)) {
            ++facts.faces;
            closed = closed && face.n > 2;
            facts.parts += parts.find(indexIn(mesh.faces, &face)) == indexIn(mesh.faces, &face);
            for (const FaceCorner& corner : polyfab::corners(face)) {
                const std::int32_t c = indexIn(mesh.corners, &corner);
                corners += fans.find(c) == c;
                closed = closed && edges.at(c) >= 0;
            }
        }
        if (closed && facts.faces > 0)
            facts.genus = facts.parts - (corners - edges.count() + facts.faces) / 2;
    }

  private:
    /// The side joins its face to the first one on the edge, and the corners at both ends.
    void enter(const Face& face, int k, bool up) {
        const std::int32_t start = indexIn(mesh.corners, face.q), from = start + k;
        const std::int32_t to = start + (k + 1 == face.n ? 0 : k + 1);
        const std::int32_t number = indexIn(mesh.faces, &face);
        const std::int32_t low = up ? from : to, high = up ? to : from;
        EdgeUse& use = uses[edges.at(from)];
        ++(up ? use.up : use.down);
        if (use.face == none) {
            use.face = number;
            use.low = low;
            use.high = high;
            return;
        }
        parts.unite(number, use.face);
        fans.unite(low, use.low);
        fans.unite(high, use.high);
    }

    const Mesh& mesh;
    const EdgeNumbers& edges;
    Table<EdgeUse> uses;
    Sets parts, fans; ///< of faces, and of corners
};

/// From the first finite point, so that a small surface far away does not drown.
void measure(const Mesh& mesh, MeshFacts& facts) {
    const Point* origin = nullptr;
    for (const Face& face : liveFaces(mesh)) {
        const auto way = [&](const Point& p) { return worldPosition(p) - worldPosition(*origin); };
        const bool finite = isFinite(face);
        if (!finite) ++facts.notFinite;
        if (!finite || face.n < 3) continue;
        if (origin == nullptr) origin = face.q[0].p;
        const Vec3 start = way(*face.q[0].p);
        const Vec3 area = doubledArea(face.n, [&](int k) { return way(*face.q[k].p) - start; });
        Vec3 middle;
        for (const FaceCorner& corner : corners(face)) middle += way(*corner.p);
        facts.area += std::sqrt(dot(area, area)) / 2;
        facts.volume += dot(middle, area) / (6 * face.n);
    }
}

std::string shown(double value) {
    if (!std::isfinite(value)) return "too large to tell";
    char text[numberRoom];
    return {text, printG6(text, value, 0)};
}

} // namespace

bool findFacts(const Mesh& mesh, MeshFacts& facts) {
    const EdgeNumbers edges(mesh);
    if (!edges) return false;
    Counter counter(mesh, edges);
    Rims rims;
    if (!counter || !findRims(mesh, rims)) return false;
    facts = {};
    facts.points = mesh.np;
    counter.count(facts);
    facts.holes = std::count(rims.closed.begin(), rims.closed.end(), true);
    measure(mesh, facts);
    return true;
}

void tellFacts(Mesh& mesh) {
    MeshFacts facts;
    if (!findFacts(mesh, facts)) return;
    std::string text;
    const auto add = [&](const char* what, const std::string& value) {
        text += (text.empty() ? "" : "\n") + std::string(what) + ": " + value;
    };
    const std::pair<const char*, std::int64_t> counts[] = {
        {"points", facts.points},
        {"faces", facts.faces},
        {"loose edges", facts.looseEdges},
        {"bad edges, which two faces run the same way", facts.badEdges},
        {"over-used edges, of three faces or more", facts.overusedEdges},
        {"holes", facts.holes},
        {"parts", facts.parts},
    };
    for (const auto& [what, count] : counts) add(what, counted(count));
    if (facts.genus) add("genus", counted(*facts.genus));
    add("area", shown(facts.area));
    const bool closed = facts.genus || facts.faces == 0;
    add("volume", !closed               ? "it is not closed"
                  : facts.notFinite > 0 ? "it is not finite"
                                        : shown(facts.volume));
    if (facts.notFinite > 0) add("faces that are not finite", counted(facts.notFinite));
    platform().message("what the mesh is made of", text, Icon::none);
}

} // namespace polyfab
