// SPDX-License-Identifier: GPL-3.0-or-later
// What is left of the list is a ring whose start moves forward. Each place knows where its point
// was passed before; the first place that was passed since the start is found block by block, so
// that a long way between two cuts is not walked again and again.
#include "mesh/face_loops.h"

#include <algorithm>
#include <cstdint>

namespace polyfab {
namespace {

constexpr std::int64_t removed = INT64_MIN;

struct Place {
    std::size_t point = 0;
    std::size_t after = 0, before = 0;         ///< neighbours in the ring
    std::size_t afterSame = 0, beforeSame = 0; ///< places of the same point, round the ring
    std::int64_t passed = removed; ///< `beforeSame`, less the number of places if round the ring
};

class Ring {
  public:
    Ring(const Corners& list, const std::vector<std::size_t>& point)
        : corners(list), n(list.size()), left(n), places(n) {
        while (blockSize * blockSize < n) ++blockSize;
        latest.resize(n / blockSize + 1, removed);
        Corners newest(point.size(), n); // place of each point
        for (std::size_t k = 0; k < n; ++k) {
            places[k].point = point[corners[k]];
            places[k].after = (k + 1) % n;
            places[k].before = (k + n - 1) % n;
            std::size_t& last = newest[places[k].point];
            const std::size_t first = last == n ? k : places[last].afterSame;
            linkSame(last == n ? k : last, k);
            linkSame(k, first);
            last = k;
        }
        for (std::size_t k = 0; k < n; ++k) notePassed(k);
    }

    FaceLoops cut() {
        FaceLoops result;
        for (std::size_t end = firstRepeat(); end < n; end = firstRepeat()) {
            Corners loop;
            for (std::size_t k = places[end].beforeSame; k != end; k = places[k].after) {
                loop.push_back(corners[k]);
                remove(k);
            }
            result.loops.push_back(loop);
            start = end;
            result.spikes += removeSpikesAtEnds();
        }
        for (std::size_t k = start; result.rest.size() < left; k = places[k].after) {
            result.rest.push_back(corners[k]);
        }
        return result;
    }

  private:
    void linkSame(std::size_t from, std::size_t to) {
        places[from].afterSame = to;
        places[to].beforeSame = from;
    }

    void notePassed(std::size_t k) {
        const auto before = static_cast<std::int64_t>(places[k].beforeSame);
        setPassed(k, places[k].beforeSame < k ? before : before - static_cast<std::int64_t>(n));
    }

    void setPassed(std::size_t k, std::int64_t passed) {
        places[k].passed = passed;
        const std::size_t begin = k / blockSize * blockSize;
        std::int64_t& most = latest[k / blockSize];
        most = removed;
        for (std::size_t i = begin; i < std::min(begin + blockSize, n); ++i) {
            most = std::max(most, places[i].passed);
        }
    }

    /// The first place from `from` on and before `to` that was passed at `since` or later, or n.
    [[nodiscard]] std::size_t find(std::size_t from, std::size_t to, std::int64_t since) const {
        for (std::size_t k = from; k < to;) {
            if (k % blockSize == 0 && latest[k / blockSize] < since) {
                k += blockSize;
            } else if (places[k].passed >= since) {
                return k;
            } else {
                ++k;
            }
        }
        return n;
    }

    [[nodiscard]] std::size_t firstRepeat() const {
        const auto since = static_cast<std::int64_t>(start);
        const std::size_t found = find(start, n, since);
        return found < n ? found : find(0, start, since - static_cast<std::int64_t>(n));
    }

    void remove(std::size_t k) {
        const Place place = places[k];
        places[place.before].after = place.after;
        places[place.after].before = place.before;
        linkSame(place.beforeSame, place.afterSame);
        notePassed(place.afterSame);
        setPassed(k, removed);
        --left;
    }

    void removeBoth(std::size_t a, std::size_t b) {
        remove(a);
        remove(b);
    }

    int removeSpikesAtEnds() {
        const auto same = [&](std::size_t a, std::size_t b) {
            return places[a].point == places[b].point;
        };
        for (int spikes = 0;; ++spikes) {
            const std::size_t last = places[start].before;
            const std::size_t second = places[start].after;
            if (left >= 3 && same(last, second)) {
                removeBoth(start, last);
                start = second;
            } else if (left >= 3 && same(places[last].before, start)) {
                removeBoth(places[last].before, last);
            } else {
                return spikes;
            }
        }
    }

    const Corners& corners;
    std::size_t n;
    std::size_t left;      ///< places still in the ring
    std::size_t start = 0; ///< of the rest
    std::vector<Place> places;
    std::size_t blockSize = 1;
    std::vector<std::int64_t> latest; ///< the greatest of `passed` in each block
};

} // namespace

FaceLoops cutLoops(const Corners& corners, const std::vector<std::size_t>& point) {
    return Ring(corners, point).cut();
}

} // namespace polyfab
