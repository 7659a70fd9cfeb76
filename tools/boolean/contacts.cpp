// SPDX-License-Identifier: GPL-3.0-or-later
// Two triangles of different planes meet on the line that the planes share. Its ends are corners
// that lie in the other's plane, and edges that pass through it, where these hit the other
// triangle; all that are found are at most two points, so that nothing has to be ordered along the
// line.
#include "tools/boolean/contacts.h"

#include "mesh/hash_slots.h"
#include "workbench/long_work.h"
#include "workbench/state.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace polyfab::boolean {
namespace {

/// Where in a triangle something lies: at corner 0 to 2, on the edge 3 to 5 (from corner 0 to 2
/// on), within, or not in it.
enum Feature : int { within = 6, outside = 7 };
bool isCorner(int feature) { return feature < 3; }
bool isOnEdge(int feature) { return feature >= 3 && feature < within; }

/// By the signs of the sides that it lies on, 1: inwards.
int featureOf(const std::array<int, 3>& signs) {
    int zeros = 0, edge = 0, apart = 0;
    for (int k = 0; k < 3; ++k) {
        if (nth(signs, k) < 0) return outside;
        if (nth(signs, k) == 0) {
            ++zeros;
            edge = k;
        } else {
            apart = k;
        }
    }
    if (zeros == 0) return within;
    if (zeros == 1) return 3 + edge;
    return (apart + 2) % 3; // where the two others meet
}

struct MeetingHash {
    std::size_t operator()(const Meeting& m) const { return hashOfNumbers(m[0], m[1], m[2], m[3]); }
};

IdPair edgeOf(const Triangle& t, int k) {
    const auto [low, high] = std::minmax(nth(t.at, k), nth(t.at, (k + 1) % 3));
    return {low, high};
}

/// A found point and where it lies in the two triangles of a pair.
struct Spot {
    std::int32_t meeting;
    int inA, inB;
};

class ContactFinder {
  public:
    ContactFinder(const Soup& triangles, Contacts& list) : soup(triangles), found(list) {
        found.met.assign(soup.triangles.size(), 0);
    }

    void test(std::int32_t first, std::int32_t second) {
        numberA = first;
        numberB = second;
        a = nth(soup.triangles, first);
        b = nth(soup.triangles, second);
        if (a.piece == b.piece) return;
        int apartA = 0, apartB = 0;
        const int shared = countShared(apartA, apartB);
        if (shared == 3) return overlap();
        if (shared == 2) return testNeighbours(apartA, apartB);
        const Signs ofB = sidesOf(a, b);
        if (missesBy(ofB, shared)) return;
        if (ofB == Signs{0, 0, 0}) return testFlat();
        const Signs ofA = sidesOf(b, a);
        if (missesBy(ofA, shared)) return;
        testCrossing(ofA, ofB);
    }

  private:
    using Signs = std::array<int, 3>;

    /// Marks the corners that both have; gives how many, and the last corner of each that only it
    /// has.
    int countShared(int& apartA, int& apartB) const {
        int shared = 0;
        bool inB[3] = {};
        for (int i = 0; i < 3; ++i) {
            const auto* const same = std::find(b.at.begin(), b.at.end(), nth(a.at, i));
            if (same == b.at.end()) {
                apartA = i;
            } else {
                inB[same - b.at.begin()] = true;
                ++shared;
            }
        }
        for (int k = 0; k < 3; ++k) {
            if (!inB[k]) apartB = k;
        }
        return shared;
    }

    [[nodiscard]] Signs sidesOf(const Triangle& plane, const Triangle& other) const {
        Signs signs{};
        for (int k = 0; k < 3; ++k) {
            const bool isShared =
                std::find(plane.at.begin(), plane.at.end(), nth(other.at, k)) != plane.at.end();
            nth(signs, k) = isShared ? 0
                                     : side(soup.corner(plane, 0), soup.corner(plane, 1),
                                            soup.corner(plane, 2), soup.corner(other, k));
        }
        return signs;
    }

    /// Whether all corners but the shared ones lie on one side of the other's plane.
    static bool missesBy(const Signs& signs, int shared) {
        const int sum = signs[0] + signs[1] + signs[2];
        return std::abs(sum) == 3 - shared;
    }

    void overlap() {
        found.overlaps.push_back({numberA, numberB});
        noteMet();
    }

    void noteMet() { nth(found.met, numberA) = nth(found.met, numberB) = 1; }

    void testNeighbours(int apartA, int apartB) {
        const int edgeA = (apartA + 1) % 3, edgeB = (apartB + 1) % 3;
        if ((a.inner >> edgeA | b.inner >> edgeB) & 1) found.onInner.push_back({numberA, numberB});
        const Vec3 &low = soup.corner(a, edgeA), &high = soup.corner(a, (edgeA + 1) % 3);
        const Vec3 &ofA = soup.corner(a, apartA), &ofB = soup.corner(b, apartB);
        if (side(low, high, ofA, ofB) != 0) return;
        if (turn(low, high, ofA, a.axis) == turn(low, high, ofB, a.axis)) testFlat();
    }

    // Numbers and places of points.

    std::int32_t enter(const Meeting& meeting, const Recipe& recipe) {
        const auto [entry, isNew] = numberOf.try_emplace(meeting, sizeOf(found.meetings));
        if (isNew) {
            found.meetings.push_back(meeting);
            found.recipes.push_back(recipe);
        }
        return entry->second;
    }

    std::int32_t enterPlace(std::int32_t place) { return enter({place, place, -1, -1}, {}); }

    std::int32_t enterCrossing(IdPair first, IdPair second, const Recipe& recipe) {
        if (second < first) std::swap(first, second);
        return enter({first[0], first[1], second[0], second[1]}, recipe);
    }

    /// Notes the point on the edges that it lies on.
    void noteOn(const Triangle& t, int feature, std::int32_t meeting) {
        if (!isOnEdge(feature)) return;
        const auto [low, high] = edgeOf(t, feature - 3);
        found.onEdges.push_back({low, high, meeting});
    }

    void note(const Spot& spot) {
        noteOn(a, spot.inA, spot.meeting);
        noteOn(b, spot.inB, spot.meeting);
        noteMet();
    }

    // Triangles of one plane.

    /// Where a place of the plane lies in the triangle.
    [[nodiscard]] int locate(std::int32_t place, const Triangle& t) const {
        Signs signs{};
        for (int k = 0; k < 3; ++k) {
            const int way = turn(soup.corner(t, k), soup.corner(t, (k + 1) % 3),
                                 nth(soup.places, place), t.axis);
            nth(signs, k) = t.isTurned ? -way : way;
        }
        return featureOf(signs);
    }

    /// Whether an edge of the first has the whole other one on its outer side.
    [[nodiscard]] bool isParted(const Triangle& first, const Triangle& other) const {
        for (int k = 0; k < 3; ++k) {
            bool apart = true;
            for (int i = 0; i < 3 && apart; ++i) {
                const int way = turn(soup.corner(first, k), soup.corner(first, (k + 1) % 3),
                                     soup.corner(other, i), first.axis);
                apart = (first.isTurned ? -way : way) <= 0;
            }
            if (apart) return true;
        }
        return false;
    }

    void crossEdges(int i, int k) {
        const auto way = [&](const Triangle& t, int edge, const Triangle& of, int corner) {
            return turn(soup.corner(t, edge), soup.corner(t, (edge + 1) % 3),
                        soup.corner(of, corner % 3), a.axis);
        };
        if (way(a, i, b, k) * way(a, i, b, k + 1) >= 0) return;
        if (way(b, k, a, i) * way(b, k, a, i + 1) >= 0) return;
        const IdPair ofA = edgeOf(a, i), ofB = edgeOf(b, k);
        note({enterCrossing(ofA, ofB, {ofA, {ofB[0], ofB[1]}, a.axis}), 3 + i, 3 + k});
    }

    void testFlat() {
        for (int k = 0; k < 3; ++k) {
            const std::int32_t ofA = nth(a.at, k), ofB = nth(b.at, k);
            if (const int in = locate(ofA, b); isOnEdge(in)) note({enterPlace(ofA), k, in});
            if (const int in = locate(ofB, a); isOnEdge(in)) note({enterPlace(ofB), in, k});
            for (int i = 0; i < 3; ++i) crossEdges(k, i);
        }
        if (!isParted(a, b) && !isParted(b, a)) overlap();
    }

    // Triangles of two planes.

    /// Where the line through an edge's ends passes the triangle.
    [[nodiscard]] int locateCrossing(const Vec3& from, const Vec3& to, const Triangle& t) const {
        Signs signs{};
        for (int k = 0; k < 3; ++k) {
            nth(signs, k) = side(from, to, soup.corner(t, k), soup.corner(t, (k + 1) % 3));
        }
        if (std::any_of(signs.begin(), signs.end(), [](int s) { return s < 0; })) {
            for (int& sign : signs) sign = -sign;
        }
        return featureOf(signs);
    }

    /// Adds the points in which corners and edges of the first meet the other one, whose signs tell
    /// on which sides of it the first one's corners lie.
    void addSpots(const Triangle& first, const Triangle& other, std::int32_t otherNumber,
                  const Signs& signs, bool swapped) {
        const auto add = [&](std::int32_t meeting, int inFirst, int inOther) {
            const bool known = std::any_of(spots.begin(), spots.end(),
                                           [&](const Spot& s) { return s.meeting == meeting; });
            if (known) return;
            swapped ? spots.push_back({meeting, inOther, inFirst})
                    : spots.push_back({meeting, inFirst, inOther});
        };
        for (int k = 0; k < 3; ++k) {
            const int next = (k + 1) % 3;
            if (nth(signs, k) == 0) {
                const int in = locate(nth(first.at, k), other);
                if (in != outside) add(enterPlace(nth(first.at, k)), k, in);
            }
            if (nth(signs, k) * nth(signs, next) >= 0) continue;
            const int in = locateCrossing(soup.corner(first, k), soup.corner(first, next), other);
            if (in == outside) continue;
            const IdPair edge = edgeOf(first, k);
            add(isCorner(in)   ? enterPlace(nth(other.at, in))
                : isOnEdge(in) ? enterCrossing(edge, edgeOf(other, in - 3), {edge, other.at})
                               : enter({edge[0], edge[1], otherNumber, -1}, {edge, other.at}),
                3 + k, in);
        }
    }

    void testCrossing(const Signs& ofA, const Signs& ofB) {
        spots.clear();
        addSpots(a, b, numberB, ofA, false);
        addSpots(b, a, numberA, ofB, true);
        if (spots.size() == 1 && isCorner(spots[0].inA) && isCorner(spots[0].inB)) return;
        for (const Spot& spot : spots) note(spot);
        if (spots.empty() || spots.size() > 2) return;
        addTrace(numberA, &Spot::inA);
        addTrace(numberB, &Spot::inB);
    }

    /// Whether both features lie on this edge.
    static bool areOnEdge(int edge, int first, int second) {
        const auto isOn = [edge](int feature) {
            return feature == edge + 3 || feature == edge || feature == (edge + 1) % 3;
        };
        return isOn(first) && isOn(second);
    }

    void addTrace(std::int32_t triangle, int Spot::*in) {
        const Spot &first = spots.front(), &last = spots.back();
        if (spots.size() == 1) {
            if (first.*in == within) found.traces.push_back({triangle, first.meeting, -1});
            return;
        }
        for (int edge = 0; edge < 3; ++edge) {
            if (areOnEdge(edge, first.*in, last.*in)) return;
        }
        found.traces.push_back({triangle, first.meeting, last.meeting});
    }

    const Soup& soup;
    Contacts& found;
    std::unordered_map<Meeting, std::int32_t, MeetingHash> numberOf;
    std::int32_t numberA = 0, numberB = 0;
    Triangle a{}, b{};
    std::vector<Spot> spots;
};

} // namespace

BoxTree treeOf(const Soup& soup) {
    std::vector<Box> boxes(soup.triangles.size());
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        const Triangle& t = soup.triangles[i];
        for (int k = 0; k < 3 && t.axis >= 0; ++k) boxes[i].add(soup.corner(t, k));
    }
    return BoxTree(boxes);
}

bool findContacts(const Soup& soup, const BoxTree& tree, Contacts& found) {
    ContactFinder finder(soup, found);
    StepCounter pairs;
    bool stopped = false;
    tree.eachPair([&](std::int32_t a, std::int32_t b) {
        finder.test(a, b);
        if (pairs.step()) stopped = abortRequested();
        return !stopped;
    });
    std::sort(found.onEdges.begin(), found.onEdges.end());
    found.onEdges.erase(std::unique(found.onEdges.begin(), found.onEdges.end()),
                        found.onEdges.end());
    return !stopped;
}

} // namespace polyfab::boolean
