// SPDX-License-Identifier: GPL-3.0-or-later
// A solid of revolution: the current face is turned about the axis through the settable points in
// steps, and its sides sweep walls out. A full turn closes, and the face inside it goes; otherwise
// the face is one end and a copy of it the other.
#include "generators/face_outline.h"
#include "generators/maker.h"
#include "generators/rings.h"
#include "mesh/edges.h"
#include "mesh/face_angle.h"
#include "mesh/faces.h"
#include "workbench/state.h"

#include <algorithm>
#include <cmath>

namespace polyfab {
namespace {

enum { axis1, axis2 = 3, angle = 6, steps, rise };
constexpr double mostAngle = 36000;
constexpr Parameter rows[] = {coordinate("axis from x", 0, 0),
                              coordinate("axis from y", 0, 1),
                              coordinate("axis from z", 0, 2),
                              coordinate("axis to x", 1, 0),
                              coordinate("axis to y", 1, 1),
                              coordinate("axis to z", 1, 2),
                              {"angle in degrees", 360, -mostAngle, mostAngle},
                              count("steps", 24, 1, mostFaces),
                              {"rise along the axis", 0, -mostLength, mostLength}};

bool isFullTurn(const Answers& answers) {
    return std::abs(answers[angle]) == 360 && answers[rise] == 0;
}

/// A face as it stands to the axis: each corner is at `foot` on the axis and `out` from it.
struct Profile {
    FaceOutline outline;
    Frame frame; ///< w along the axis
    std::vector<Vec3> foot, out;
    std::vector<char> onAxis;
    double nothing = 0; ///< distances up to this count as none
};

Profile profileOf(const Mesh& mesh, const Answers& answers) {
    const Vec3 base = answers.position(axis1);
    Profile profile{outlineOfCurrent(mesh), frameAlong(answers.position(axis2) - base), {}, {}, {}};
    const Vec3& w = profile.frame.w;
    double farthest = largestPart(base);
    for (const Vec3& at : profile.outline.places) {
        const Vec3 from = at - base;
        profile.out.push_back(from - w * dot(from, w));
        profile.foot.push_back(at - profile.out.back());
        farthest = std::max(farthest, largestPart(at));
    }
    profile.nothing = 1e-12 * farthest;
    for (const Vec3& out : profile.out) {
        profile.onAxis.push_back(largestPart(out) <= profile.nothing ? 1 : 0);
    }
    return profile;
}

/// A corner as it is seen along the axis, turned so that the farthest one lies on the right.
struct Seen {
    double x, y;
};

std::vector<Seen> seenAlongAxis(const Profile& profile) {
    const auto size = [](const Vec3& v) { return dot(v, v); };
    const Vec3 farthest =
        *std::max_element(profile.out.begin(), profile.out.end(),
                          [&](const Vec3& a, const Vec3& b) { return size(a) < size(b); });
    const Vec3 right = unit(farthest), up = cross(profile.frame.w, right);
    std::vector<Seen> seen;
    for (const Vec3& out : profile.out) seen.push_back({dot(out, right), dot(out, up)});
    return seen;
}

/// Whether the axis goes through the face or one of its sides, or a face in one plane with it
/// lies on both sides of it.
bool crossesAxis(const Profile& profile) {
    const std::vector<Seen> seen = seenAlongAxis(profile);
    const double nothing = profile.nothing;
    double farthest = 0;
    for (const Seen& p : seen) farthest = std::max(farthest, p.x);
    // A file's digits may bend the face a little.
    const bool inPlane = std::all_of(
        seen.begin(), seen.end(), [&](const Seen& p) { return std::abs(p.y) <= 1e-6 * farthest; });
    if (inPlane) {
        return std::any_of(seen.begin(), seen.end(), [&](const Seen& p) { return p.x < -nothing; });
    }
    bool inside = false, touches = false;
    for (std::size_t i = 0; i < seen.size(); ++i) {
        const std::size_t next = profile.outline.next(i);
        const Seen &a = seen[i], &b = seen[next];
        touches |= profile.onAxis[i] != 0;
        if (profile.onAxis[i] || profile.onAxis[next]) continue;
        const double area = a.x * b.y - a.y * b.x, length = std::hypot(b.x - a.x, b.y - a.y);
        const bool between =
            a.x * (b.x - a.x) + a.y * (b.y - a.y) < 0 && b.x * (b.x - a.x) + b.y * (b.y - a.y) > 0;
        if (between && std::abs(area) <= nothing * length) return true;
        if ((a.y > 0) != (b.y > 0) && (area > 0) == (b.y > a.y)) inside = !inside;
    }
    return inside && !touches; // what only touches the axis lies around it nowhere
}

/// Whether a whole side of the face lies on the axis.
bool hasSideOnAxis(const Profile& profile) {
    for (std::size_t i = 0; i < profile.onAxis.size(); ++i) {
        if (profile.onAxis[i] && profile.onAxis[profile.outline.next(i)]) return true;
    }
    return false;
}

/// The volume that the face sweeps, over the area that it has: above 0 where it moves to the side
/// that it looks to.
double sweptLength(const Profile& profile, const Answers& answers) {
    const std::vector<Vec3>& at = profile.outline.places;
    const double radians = answers[angle] * pi / 180;
    double volume = 0, area = 0;
    for (std::size_t i = 2; i < at.size(); ++i) {
        const Vec3 twice = cross(at[i - 1] - at[0], at[i] - at[0]);
        const Vec3 middle = (profile.out[0] + profile.out[i - 1] + profile.out[i]) * (1.0 / 3);
        const Vec3 moved =
            cross(profile.frame.w, middle) * radians + profile.frame.w * answers[rise];
        volume += dot(twice, moved);
        area += std::sqrt(dot(twice, twice));
    }
    return area > 0 ? volume / area : 0;
}

double sweptLength(const Mesh& mesh, const Answers& answers) {
    return sweptLength(profileOf(mesh, answers), answers);
}

const char* refusal(const Profile& profile, const Answers& answers) {
    if (profile.outline.size() < 3) return "the current face has no area";
    const double degrees = std::abs(answers[angle]);
    if (degrees == 0 && answers[rise] == 0) return "the angle and the rise are both 0";
    if (degrees > 360 && answers[rise] == 0) {
        return "without a rise the angle can't be more than 360 degrees";
    }
    if (degrees >= 180 * answers[steps]) return "a step has to be less than half a turn";
    if (crossesAxis(profile)) return "the face crosses the axis";
    if (answers[rise] != 0 && hasSideOnAxis(profile)) {
        return "with a rise, no side of the face can lie on the axis";
    }
    if (!(std::abs(sweptLength(profile, answers)) > profile.nothing)) {
        return "the face would only slide in its own plane";
    }
    return nullptr;
}

/// Where the corners are after k steps. What stays in place keeps its number.
Ring ringAt(Shape& shape, const Profile& profile, const Answers& answers, int k) {
    const Turn turn = turnBy(answers[angle] * k, 360 * answers[steps]);
    const Vec3& w = profile.frame.w;
    const Vec3 up = w * (answers[rise] * k / answers[steps]);
    Ring ring;
    for (std::size_t i = 0; i < profile.out.size(); ++i) {
        const bool stays = k > 0 && profile.onAxis[i] && answers[rise] == 0;
        const Vec3& out = profile.out[i];
        const Vec3 at = k == 0 ? profile.outline.places[i]
                        : profile.onAxis[i]
                            ? profile.outline.places[i] + up
                            : profile.foot[i] + out * turn.cosine + cross(w, out) * turn.sine + up;
        ring.points.push_back(stays ? static_cast<std::int32_t>(i) : shape.addPoint(at));
    }
    return ring;
}

double faces(const Mesh& mesh, const Answers& answers) {
    return mesh.faces[mesh.curface].n * answers[steps] + 1;
}

const char* build(const Mesh& mesh, const Answers& answers, Shape& shape) {
    if (isZero(answers.position(axis2) - answers.position(axis1))) {
        return "the axis has no direction: it ends where it begins";
    }
    const Profile profile = profileOf(mesh, answers);
    if (const char* const reason = refusal(profile, answers)) return reason;
    const bool looksAhead = sweptLength(profile, answers) > 0;
    shape.reserve(faces(mesh, answers));
    shape.known = profile.outline.numbers;
    Ring before = ringAt(shape, profile, answers, 0);
    const std::vector<std::int32_t> first = before.points;
    addTexture(shape, before, 0);
    for (int k = 1; k <= answers[steps]; ++k) {
        const bool closes = k == answers[steps] && isFullTurn(answers);
        Ring ring = closes ? Ring{first} : ringAt(shape, profile, answers, k);
        addTexture(shape, ring, k / answers[steps]);
        looksAhead ? joinRings(shape, before, ring) : joinRings(shape, ring, before);
        before = std::move(ring);
    }
    if (isFullTurn(answers)) return nullptr;
    if (!looksAhead) std::reverse(before.points.begin(), before.points.end());
    shape.addFace(before.points);
    return nullptr;
}

/// The current face is inside the object and goes, or it is one end and looks outwards.
void finish(Mesh& mesh, const Answers& answers, const Shape&) {
    Face& face = mesh.faces[mesh.curface];
    if (isFullTurn(answers)) {
        face.q = nullptr;
        mesh.curface = -1;
        return dropStaleEdge();
    }
    face.selected = 1;
    if (sweptLength(mesh, answers) <= 0) return;
    if (workbench.currentEdgeFace == mesh.curface) forgetCurrentEdge();
    reverseFace(face);
}

} // namespace

const Maker spinMaker = {"SPIN", "solid of revolution", rows, true, true, faces, build, finish};

} // namespace polyfab
