// SPDX-License-Identifier: GPL-3.0-or-later
// The plain... functions parse lines where they stand in the buffer; they change the mesh only when
// the whole line is good, and decline otherwise.
#include "formats/obj_elements.h"

#include "formats/obj_lines.h"
#include "io/parse_number.h"
#include "mesh/mesh.h"

#include <cmath>
#include <iterator>

namespace polyfab {
namespace {

constexpr double maxTexCoord = 100000.0;

/// A number of the file as a 1-based number of the mesh: negative ones count back from the last.
std::int64_t absolute(std::int64_t number, std::int64_t base, std::int64_t count) {
    return number < 0 ? number + count + 1 : number + base;
}

// The plain lines. Each function takes the text behind the keyword, which has a line end ahead, and
// returns where the line ends, or null when it declines. A line that ends behind `limit` is long.

const char* skipBlanks(const char* p) {
    while (isBlank(*p) && !isLineEnd(*p)) ++p;
    return p;
}

const char* lineEnd(const char* p) {
    while (!isLineEnd(*p)) ++p;
    return p;
}

/// Where the words behind the numbers begin, or the line's end; null when the numbers are odd.
template <int count>
const char* plainNumbers(const char* p, double (&values)[count]) {
    for (double& value : values) {
        p = skipBlanks(p);
        if (!parseDecimal(p, value) || !isBlank(*p)) return nullptr;
    }
    return skipBlanks(p);
}

/// Tells of the words between p and the end of the line, which is given back.
const char* plainRest(const char* p, const char* limit, Surplus& surplus,
                      void (Surplus::*tell)(int words, double first)) {
    const char* const end = lineEnd(p);
    if (end > limit) return nullptr;
    if (p == end) return end;
    double first = 0;
    const char* number = p;
    parseDecimal(number, first);
    int words = 0;
    for (; p != end; p = skipBlanks(p), ++words) {
        while (!isBlank(*p)) ++p;
    }
    (surplus.*tell)(words, first);
    return end;
}

const char* plainPoint(Mesh& mesh, const char* p, const char* limit, Surplus& surplus) {
    double xyz[3];
    p = plainNumbers(p, xyz);
    if (p != nullptr) p = plainRest(p, limit, surplus, &Surplus::behindPoint);
    if (p != nullptr) mesh.addPoint(xyz[0], xyz[1], xyz[2], false);
    return p;
}

const char* plainNormal(Mesh& mesh, const char* p, const char* limit) {
    double xyz[3];
    p = plainNumbers(p, xyz);
    if (p != nullptr) p = lineEnd(p);
    if (p == nullptr || p > limit) return nullptr;
    mesh.addNormal(xyz[0], xyz[1], xyz[2]);
    return p;
}

const char* plainTexCoord(Mesh& mesh, const char* p, const char* limit, Surplus& surplus) {
    double uv[2];
    p = plainNumbers(p, uv);
    if (p != nullptr) p = plainRest(p, limit, surplus, &Surplus::behindTexCoord);
    if (p != nullptr) mesh.addTexCoord(sensibleTexCoord(uv[0]), sensibleTexCoord(uv[1]));
    return p;
}

const char* plainFace(Mesh& mesh, const char* p, const char* limit, const Bases& bases) {
    FaceCorner corners[32];
    int n = 0;
    for (p = skipBlanks(p); !isLineEnd(*p); p = skipBlanks(p)) {
        CornerNumbers numbers;
        if (n == std::ssize(corners) || !parseInteger(p, numbers.point)) return nullptr;
        if (*p == '/') {
            parseInteger(++p, numbers.texcoord);
            if (*p == '/') parseInteger(++p, numbers.normal);
        }
        FaceCorner& corner = corners[n++];
        if (!isBlank(*p) || setCorner(mesh, corner, numbers, bases) != nullptr) return nullptr;
        corner.edgeuse = 2;
        corner.mark = 0;
    }
    if (n == 0 || p > limit) return nullptr;
    mesh.addFaceByCorners(corners, n);
    return p;
}

} // namespace

Bases currentCounts(const Mesh& mesh) { return {mesh.np, mesh.nt, mesh.nd}; }

const char* setCorner(const Mesh& mesh, FaceCorner& corner, const CornerNumbers& numbers,
                      const Bases& bases) {
    const std::int64_t point = absolute(numbers.point, bases.point, mesh.np);
    if (point < 1 || point > mesh.np) return "no such vertex";
    // An absent number (0) also gets the base, here and below: with a base it names an element.
    std::int64_t texcoord = absolute(numbers.texcoord, bases.texcoord, mesh.nt);
    if (texcoord < 0 || texcoord > mesh.nt) texcoord = mesh.nt > 0 ? 1 : 0;
    const std::int64_t normal = absolute(numbers.normal, bases.normal, mesh.nd);
    if (normal < 0 || normal > mesh.nd) return "no such normal";
    corner.p = mesh.points + (point - 1);
    corner.t = texcoord > 0 ? mesh.texcoords + (texcoord - 1) : nullptr;
    corner.d = normal > 0 ? mesh.normals + (normal - 1) : nullptr;
    return nullptr;
}

double sensibleTexCoord(double value) { return std::fabs(value) > maxTexCoord ? 0 : value; }

const char* plainLine(Mesh& mesh, const char* line, const Bases& bases, Surplus& surplus) {
    const char* const limit = line + maxObjLine;
    if (line[0] == 'f' && line[1] == ' ') return plainFace(mesh, line + 2, limit, bases);
    if (line[0] != 'v') return nullptr;
    if (line[1] == ' ') return plainPoint(mesh, line + 2, limit, surplus);
    if (line[1] == 't' && line[2] == ' ') return plainTexCoord(mesh, line + 3, limit, surplus);
    if (line[1] == 'n' && line[2] == ' ') return plainNormal(mesh, line + 3, limit);
    return nullptr;
}

} // namespace polyfab
