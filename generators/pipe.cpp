// SPDX-License-Identifier: GPL-3.0-or-later
// A pipe along the edge of the current face. Each side is a round tube; two tubes meet in the plane
// that halves the angle between them, and there is their common ring. Where they would meet too far
// out each keeps a ring of its own. A ring begins where the face's normal points, so that the
// pipe comes back to its beginning without a twist.
#include "generators/face_outline.h"
#include "generators/maker.h"
#include "generators/rings.h"

namespace polyfab {
namespace {

enum { radius, sides };
constexpr Parameter rows[] = {size("radius", 0.1), count("sides", 16, 3, mostFaces)};

/// Corners stand out by at most this many radii.
constexpr double mitreLimit = 10;

/// The tubes along the sides of the face. Side i begins at corner i.
struct Tubes {
    FaceOutline outline;
    std::vector<Frame> frames; ///< of each side: w along it, u towards the face's normal

    std::size_t before(std::size_t i) const { return (i == 0 ? frames.size() : i) - 1; }
    /// The normal of the plane that halves the angle of the corner.
    Vec3 halving(std::size_t i) const { return unit(frames[before(i)].w + frames[i].w); }
    bool isBevelled(std::size_t i) const {
        return !(dot(halving(i), frames[i].w) * mitreLimit >= 1);
    }
};

/// Without frames when a side runs back along the one before or along the face's normal, or the
/// face has none.
Tubes tubesOf(const Mesh& mesh) {
    Tubes tubes{outlineOfCurrent(mesh), {}};
    const FaceOutline& outline = tubes.outline;
    const Vec3 normal = unit(doubleArea(outline));
    Vec3 last;
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const Vec3 w = unit(outline.places[outline.next(i)] - outline.places[i]);
        const Vec3 u = unit(normal - w * dot(normal, w));
        const Vec3 turned = w + (i == 0 ? unit(outline.places[0] - outline.places.back()) : last);
        if (!(dot(u, normal) > 1e-6 && largestPart(turned) > 1e-6)) return {outline, {}};
        tubes.frames.push_back({u, cross(w, u), w});
        last = w;
    }
    return tubes;
}

Vec3 outOf(const Frame& frame, const Turn& turn) {
    return frame.u * turn.cosine + frame.v * turn.sine;
}

/// A ring and what follows it: a side, or -1 the other ring of a bevelled corner.
struct Link {
    Ring ring;
    int side;
};

class PipeBuilder {
  public:
    PipeBuilder(Shape& target, const Tubes& ofFace, const Answers& answers)
        : shape(target), tubes(ofFace), thickness(answers[radius]),
          around(turnsOf(answers.whole(sides))) {}

    const char* build() {
        for (std::size_t i = 0; i < tubes.frames.size(); ++i) addCorner(i);
        links.push_back({links.front().ring, -1}); // with other texture places
        for (std::size_t i = 0; i < links.size(); ++i) {
            addTexture(shape, links[i].ring,
                       static_cast<double>(i) / static_cast<double>(links.size() - 1));
            if (i == 0) continue;
            const Link& from = links[i - 1];
            if (from.side >= 0 && !runsOn(from, links[i].ring)) {
                return "the pipe is too thick for the face's edge: it would turn inside out";
            }
            joinRings(shape, from.ring, links[i].ring);
        }
        return nullptr;
    }

  private:
    void addCorner(std::size_t i) {
        const auto side = static_cast<int>(i);
        if (!tubes.isBevelled(i)) return links.push_back({mitreRing(i), side});
        links.push_back({straightRing(i, tubes.frames[tubes.before(i)], nullptr), -1});
        Ring start = straightRing(i, tubes.frames[i], &links.back().ring);
        links.push_back({std::move(start), side});
    }

    /// In the plane that halves the angle.
    Ring mitreRing(std::size_t i) {
        const Frame &before = tubes.frames[tubes.before(i)], &after = tubes.frames[i];
        const Vec3 halving = tubes.halving(i);
        Ring ring;
        for (const Turn& turn : around) {
            // What the plane mirrors of one tube lies on the other. Where the face is bent the two
            // do not begin at the same place, and the ring begins between them.
            const Vec3 other = outOf(before, turn);
            const Vec3 mirrored = other - halving * (2 * dot(halving, other));
            const Vec3 out = unit(outOf(after, turn) + mirrored) * thickness;
            const Vec3 slid = out - after.w * (dot(halving, out) / dot(halving, after.w));
            ring.points.push_back(shape.addPoint(tubes.outline.places[i] + slid));
        }
        return ring;
    }

    /// Straight across a side. It shares the points that are where those of its `twin` are.
    Ring straightRing(std::size_t i, const Frame& side, const Ring* twin) {
        Ring ring;
        for (std::size_t k = 0; k < around.size(); ++k) {
            const Vec3 at = tubes.outline.places[i] + outOf(side, around[k]) * thickness;
            const bool shared =
                twin != nullptr && largestPart(pointOf(*twin, k) - at) <= 1e-9 * thickness;
            ring.points.push_back(shared ? twin->points[k] : shape.addPoint(at));
        }
        return ring;
    }

    /// Whether all lines from the ring to the next run the way of the side: on the inside of its
    /// corners a thick pipe has no room.
    bool runsOn(const Link& from, const Ring& to) const {
        const Vec3& way = tubes.frames[static_cast<std::size_t>(from.side)].w;
        for (std::size_t k = 0; k < around.size(); ++k) {
            if (!(dot(pointOf(to, k) - pointOf(from.ring, k), way) > 0)) return false;
        }
        return true;
    }

    const Vec3& pointOf(const Ring& ring, std::size_t k) const {
        return shape.points[static_cast<std::size_t>(ring.points[k])];
    }

    Shape& shape;
    const Tubes& tubes;
    double thickness;
    std::vector<Turn> around;
    std::vector<Link> links;
};

double faces(const Mesh& mesh, const Answers& answers) {
    const Tubes tubes = tubesOf(mesh);
    auto rings = static_cast<double>(tubes.frames.size());
    for (std::size_t i = 0; i < tubes.frames.size(); ++i) rings += tubes.isBevelled(i);
    return rings * answers[sides];
}

const char* build(const Mesh& mesh, const Answers& answers, Shape& shape) {
    const Tubes tubes = tubesOf(mesh);
    if (tubes.frames.size() < 3) {
        return "the current face has no area, or sides that run back or along its normal";
    }
    shape.reserve(faces(mesh, answers));
    return PipeBuilder(shape, tubes, answers).build();
}

} // namespace

const Maker pipeMaker = {"PIPE", "pipe", rows, true, true, faces, build};

} // namespace polyfab
