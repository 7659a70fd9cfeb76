// SPDX-License-Identifier: GPL-3.0-or-later
// The plain... functions parse lines where they stand in the buffer; they change the mesh only when
// the whole line is good, and decline otherwise.
#include "formats/obj/obj_elements.h"

#include "formats/obj/obj_lines.h"
#include "io/parse_number.h"
#include "mesh/mesh.h"

#include <cmath>
#include <iterator>

namespace polyfab {
namespace {

constexpr double maxTexCoord = 100000.0;

/// A number of the file as a 1-based number of the mesh: negative ones count back from the last. An
/// absent one, which is 0, gets the base as well unless `absentIsNone`: with a base it then names
/// an element.
std::int64_t absolute(std::int64_t number, std::int64_t base, std::int64_t count,
                      bool absentIsNone) {
    if (number == 0 && absentIsNone) return 0;
    return number < 0 ? number + count + 1 : number + base;
}

// The plain lines. Each function takes the text behind the keyword, which has a line end ahead, and
// returns where the line ends, or null when it declines.

/// How far a line may go; null: as far as it wants.
using Limit = const char*;

const char* skipBlanks(const char* p) {
    while (isBlank(*p) && !isLineEnd(*p)) ++p;
    return p;
}

/// Whether the line that begins before `end` and ends there is a line of its own.
bool endsThere(const ObjInput& input, const char* end, Limit limit) {
    return limit != nullptr ? end <= limit : !input.how.joinsLines || end[-1] != '\\';
}

/// The end of the line; null when it is no line of its own.
const char* lineEnd(const ObjInput& input, const char* p, Limit limit) {
    while (!isLineEnd(*p)) ++p;
    return endsThere(input, p, limit) ? p : nullptr;
}

/// Where the words behind the numbers begin, or the line's end; null when the numbers are odd.
template <int count>
const char* plainNumbers(const ObjInput& input, const char* p, double (&values)[count]) {
    for (double& value : values) {
        p = skipBlanks(p);
        if (!parseDecimal(p, value) || !isBlank(*p)) return nullptr;
        if (input.how.keepsValues && !std::isfinite(value)) return nullptr;
    }
    return skipBlanks(p);
}

/// Tells of the words between p and the end of the line, which is given back.
const char* plainRest(ObjInput& input, const char* p, Limit limit,
                      void (Surplus::*tell)(int words, double first)) {
    const char* const end = lineEnd(input, p, limit);
    if (end == nullptr || p == end) return end;
    double first = 0;
    const char* number = p;
    parseDecimal(number, first);
    int words = 0;
    for (; p != end; p = skipBlanks(p), ++words) {
        if (*p == '#' && input.how.hasComments) return nullptr;
        while (!isBlank(*p)) ++p;
    }
    (input.surplus.*tell)(words, first);
    return end;
}

const char* plainPoint(ObjInput& input, const char* p, Limit limit) {
    double xyz[3];
    p = plainNumbers(input, p, xyz);
    if (p != nullptr) p = plainRest(input, p, limit, &Surplus::behindPoint);
    if (p != nullptr) input.mesh.addPoint(xyz[0], xyz[1], xyz[2], false);
    return p;
}

const char* plainNormal(ObjInput& input, const char* p, Limit limit) {
    double xyz[3];
    p = plainNumbers(input, p, xyz);
    if (p != nullptr) p = lineEnd(input, p, limit);
    if (p != nullptr) input.mesh.addNormal(xyz[0], xyz[1], xyz[2]);
    return p;
}

const char* plainTexCoord(ObjInput& input, const char* p, Limit limit) {
    double uv[2];
    p = plainNumbers(input, p, uv);
    if (p == nullptr) return nullptr;
    if (!input.how.keepsValues && (isBeyondTexture(uv[0]) || isBeyondTexture(uv[1]))) {
        return nullptr;
    }
    p = plainRest(input, p, limit, &Surplus::behindTexCoord);
    if (p != nullptr) input.mesh.addTexCoord(uv[0], uv[1]);
    return p;
}

const char* plainFace(ObjInput& input, const char* p, Limit limit) {
    FaceCorner corners[32];
    int n = 0;
    VainNumbers vain;
    for (p = skipBlanks(p); !isLineEnd(*p); p = skipBlanks(p)) {
        CornerNumbers numbers;
        if (n == std::ssize(corners) || !parseInteger(p, numbers.point)) return nullptr;
        if (*p == '/') {
            parseInteger(++p, numbers.texcoord);
            if (*p == '/') parseInteger(++p, numbers.normal);
        }
        FaceCorner& corner = corners[n++];
        if (!isBlank(*p) || setCorner(input, corner, numbers, vain) != nullptr) return nullptr;
        corner.edgeuse = 2;
        corner.mark = 0;
    }
    const bool odd = vain.texcoords + vain.normals > 0 || n < (input.how.forgives ? 3 : 1);
    if (odd || !endsThere(input, p, limit)) return nullptr;
    input.mesh.addFaceByCorners(corners, n);
    return p;
}

} // namespace

Bases currentCounts(const Mesh& mesh) { return {mesh.np, mesh.nt, mesh.nd}; }

const char* setCorner(const ObjInput& input, FaceCorner& corner, const CornerNumbers& numbers,
                      VainNumbers& vain) {
    const auto& [mesh, how, bases, surplus] = input;
    const std::int64_t point = absolute(numbers.point, bases.point, mesh.np, false);
    if (point < 1 || point > mesh.np) return "no such vertex";
    std::int64_t texcoord = absolute(numbers.texcoord, bases.texcoord, mesh.nt, how.keepsValues);
    std::int64_t normal = absolute(numbers.normal, bases.normal, mesh.nd, how.keepsValues);
    if (normal < 0 || normal > mesh.nd) {
        if (!how.forgives) return "no such normal";
        normal = 0;
        ++vain.normals;
    }
    if (texcoord < 0 || texcoord > mesh.nt) {
        texcoord = !how.forgives && mesh.nt > 0 ? 1 : 0;
        ++vain.texcoords;
    }
    corner.p = mesh.points + (point - 1);
    corner.t = texcoord > 0 ? mesh.texcoords + (texcoord - 1) : nullptr;
    corner.d = normal > 0 ? mesh.normals + (normal - 1) : nullptr;
    return nullptr;
}

bool isBeyondTexture(double value) { return std::fabs(value) > maxTexCoord; }

const char* plainLine(ObjInput& input, const char* line) {
    const Limit limit = input.how.joinsLines ? nullptr : line + maxObjLine;
    if (line[0] == 'f' && line[1] == ' ') return plainFace(input, line + 2, limit);
    if (line[0] != 'v') return nullptr;
    if (line[1] == ' ') return plainPoint(input, line + 2, limit);
    if (line[1] == 't' && line[2] == ' ') return plainTexCoord(input, line + 3, limit);
    if (line[1] == 'n' && line[2] == ' ') return plainNormal(input, line + 3, limit);
    return nullptr;
}

} // namespace polyfab
