// SPDX-License-Identifier: GPL-3.0-or-later
// Tidying of one face. Its rules speak of the first spike or repeat from the start of the list,
// again after each removal. A removal can only make a new one where it happened or across the ends,
// so that one walk with a gap at the place of repair takes out the same corners in the same order.
#include "mesh/face_loops.h"
#include "mesh/faces.h"
#include "mesh/garbage.h"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <vector>

namespace polyfab {
namespace {

/// Whether any point stands at two corners. Only such faces (and short ones) can need tidying.
bool repeatsPoint(const Face& face) {
    constexpr int few = 8;
    if (face.n <= few) {
        for (int k = 1; k < face.n; ++k) {
            for (int i = 0; i < k; ++i) {
                if (face.q[i].p == face.q[k].p) return true;
            }
        }
        return false;
    }
    std::vector<const Point*> points;
    for (const FaceCorner& corner : corners(face)) points.push_back(corner.p);
    std::sort(points.begin(), points.end());
    return std::adjacent_find(points.begin(), points.end()) != points.end();
}

/// Per corner a number that equal points share, from 0 upwards without large gaps.
std::vector<std::size_t> numberPoints(const std::vector<FaceCorner>& corners) {
    std::vector<const Point*> sorted;
    for (const FaceCorner& corner : corners) sorted.push_back(corner.p);
    std::sort(sorted.begin(), sorted.end());
    std::vector<std::size_t> numbers;
    for (const FaceCorner& corner : corners) {
        const auto place = std::lower_bound(sorted.begin(), sorted.end(), corner.p);
        numbers.push_back(static_cast<std::size_t>(place - sorted.begin()));
    }
    return numbers;
}

/// The corner list of one face while it is tidied.
class Path {
  public:
    explicit Path(const std::vector<FaceCorner>& corners) : number(numberPoints(corners)) {
        for (std::size_t k = 0; k < corners.size(); ++k) ahead.push_back(k);
    }

    [[nodiscard]] std::size_t size() const { return done.size() + ahead.size(); }
    [[nodiscard]] int repairs() const { return repaired; }
    [[nodiscard]] Corners corners() const { return {done.begin(), done.end()}; }
    [[nodiscard]] const std::vector<std::size_t>& points() const { return number; }

    void tidy(bool thorough) {
        if (thorough) removeSpikes();
        removeRepeats(thorough);
        closeEnds(thorough);
    }

  private:
    [[nodiscard]] bool same(std::size_t a, std::size_t b) const { return number[a] == number[b]; }
    [[nodiscard]] std::size_t at(std::size_t k) const {
        return k < done.size() ? done[k] : ahead[k - done.size()];
    }

    void popFront() { (done.empty() ? ahead : done).pop_front(); }
    void popBack() { (ahead.empty() ? done : ahead).pop_back(); }

    void advance() {
        done.push_back(ahead.front());
        ahead.pop_front();
    }

    /// Removes the spikes whose three corners lie on both sides of the gap, the first one first.
    void removeSpikesAtGap() {
        while (!done.empty() && !ahead.empty()) {
            if (done.size() >= 2 && same(done[done.size() - 2], ahead[0])) {
                done.pop_back();
                ahead.pop_front();
            } else if (ahead.size() >= 2 && same(done.back(), ahead[1])) {
                ahead.erase(ahead.begin(), ahead.begin() + 2);
            } else {
                return;
            }
            ++repaired;
        }
    }

    void removeSpikes() {
        while (!ahead.empty()) {
            advance();
            removeSpikesAtGap();
        }
        removeSpikesAcrossEnds();
        std::swap(done, ahead);
    }

    void removeSpikesAcrossEnds() {
        for (; size() >= 3; ++repaired) {
            if (same(at(size() - 1), at(1))) {
                popFront();
                popBack();
            } else if (same(at(size() - 2), at(0))) {
                popBack();
                popBack();
            } else {
                return;
            }
        }
    }

    /// Of two equal neighbours the later one stays.
    void removeRepeats(bool thorough) {
        while (!ahead.empty()) {
            if (done.empty() || !same(done.back(), ahead.front())) {
                advance();
                continue;
            }
            done.pop_back();
            ++repaired;
            if (!thorough) continue;
            removeSpikesAtGap();
            removeSpikesAcrossEnds();
        }
    }

    /// The same at the seam between the last corner and the first.
    void closeEnds(bool thorough) {
        while (size() >= 2 && same(at(size() - 1), at(0))) {
            popBack();
            ++repaired;
            if (thorough) removeSpikesAcrossEnds();
        }
    }

    std::vector<std::size_t> number; ///< of each corner's point
    std::deque<std::size_t> done;    ///< the list up to the gap
    std::deque<std::size_t> ahead;   ///< the list behind it
    int repaired = 0;
};

FaceCorner* copyCorners(FaceCorner* to, const std::vector<FaceCorner>& all, const Corners& which) {
    return std::transform(which.begin(), which.end(), to, [&](std::size_t k) { return all[k]; });
}

/// Puts the loops of a face into new faces and what is left of it into fresh corners behind theirs.
void split(Mesh& mesh, int index, std::size_t n, const std::vector<FaceCorner>& all,
           const FaceLoops& cut) {
    if (!mesh.growCorners(mesh.nq + static_cast<std::int64_t>(n), false)
        || !mesh.growFaces(mesh.nf + static_cast<std::int64_t>(cut.loops.size()), false)) {
        return;
    }
    FaceCorner* fresh = mesh.corners + mesh.nq;
    mesh.nq += static_cast<std::int32_t>(n);
    Face& face = mesh.faces[index];
    const auto give = [&](Face& owner, const Corners& corners) {
        owner.q = fresh;
        owner.n = static_cast<std::int16_t>(corners.size());
        fresh = copyCorners(fresh, all, corners);
    };
    for (const Corners& loop : cut.loops) {
        mesh.faces[mesh.nf] = face;
        give(mesh.faces[mesh.nf++], loop);
    }
    give(face, cut.rest);
    std::fill(fresh, mesh.corners + mesh.nq, FaceCorner()); // what spikes in the loops left over
}

} // namespace

int tidyFace(Mesh& mesh, int index, bool thorough) {
    Face& face = mesh.faces[index];
    if (!isLive(face)) return 0;
    if (face.n >= 3 && !repeatsPoint(face)) return 0;
    const std::vector<FaceCorner> all(face.q, face.q + std::max<int>(face.n, 0));
    Path path(all);
    path.tidy(thorough);
    if (path.size() < 3) {
        face.q = nullptr;
        mesh.changed = 1;
        return 1;
    }
    const Corners kept = path.corners();
    copyCorners(face.q, all, kept);
    face.n = static_cast<std::int16_t>(kept.size());
    const FaceLoops cut = thorough ? cutLoops(kept, path.points()) : FaceLoops();
    if (!cut.loops.empty()) split(mesh, index, kept.size(), all, cut);
    if (path.repairs() > 0 || !cut.loops.empty()) mesh.changed = 1;
    return path.repairs() + cut.spikes;
}

} // namespace polyfab
