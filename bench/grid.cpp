// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/grid.h"

#include "mesh/mesh.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <numeric>
#include <random>
#include <vector>

namespace polyfab::bench {
namespace {

/// Quads along one side of the square.
int sideFor(std::int64_t triangles) {
    return static_cast<int>(std::lround(std::sqrt(static_cast<double>(triangles) / 2)));
}

struct Vertex {
    double x, y, z, u, v, nx, ny, nz;
};

Vertex vertexAt(int row, int column, int side) {
    const double u = static_cast<double>(column) / side;
    const double v = static_cast<double>(row) / side;
    const double slopeU = std::cos(12 * u) * std::cos(9 * v) * 0.6;
    const double slopeV = -std::sin(12 * u) * std::sin(9 * v) * 0.45;
    const double length = std::sqrt(slopeU * slopeU + slopeV * slopeV + 1);
    return {2 * u - 1,
            2 * v - 1,
            0.05 * std::sin(12 * u) * std::cos(9 * v),
            u,
            v,
            -slopeU / length,
            -slopeV / length,
            1 / length};
}

template <typename Use>
void eachVertex(int side, Use use) {
    for (int row = 0; row <= side; ++row) {
        for (int column = 0; column <= side; ++column) use(vertexAt(row, column, side));
    }
}

/// Hands out the triangles as three vertex numbers from 0.
template <typename Use>
void eachTriangle(int side, Use use) {
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column) {
            const int low = row * (side + 1) + column;
            const int high = low + side + 1;
            use(std::array{low, low + 1, high + 1});
            use(std::array{low, high + 1, high});
        }
    }
}

} // namespace

std::int64_t gridTriangles(std::int64_t wanted) {
    const std::int64_t side = sideFor(wanted);
    return 2 * side * side;
}

bool writeGridObj(const std::string& path, std::int64_t triangles) {
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) return false;
    const int side = sideFor(triangles);
    eachVertex(side, [&](const Vertex& p) { std::fprintf(file, "v %f %f %f\n", p.x, p.y, p.z); });
    eachVertex(side, [&](const Vertex& p) { std::fprintf(file, "vt %f %f\n", p.u, p.v); });
    eachVertex(side,
               [&](const Vertex& p) { std::fprintf(file, "vn %f %f %f\n", p.nx, p.ny, p.nz); });
    eachTriangle(side, [&](const std::array<int, 3>& corners) {
        std::fputc('f', file);
        for (const int k : corners) std::fprintf(file, " %d/%d/%d", k + 1, k + 1, k + 1);
        std::fputc('\n', file);
    });
    const bool written = std::ferror(file) == 0;
    return std::fclose(file) == 0 && written;
}

void buildGridMesh(std::int64_t triangles) {
    OB->clear(true);
    const int side = sideFor(triangles);
    eachVertex(side, [](const Vertex& p) {
        OB->addPoint(p.x, p.y, p.z, false);
        OB->addTexCoord(p.u, p.v);
        OB->addNormal(p.nx, p.ny, p.nz);
    });
    eachTriangle(side, [](const std::array<int, 3>& numbers) {
        FaceCorner corners[3];
        for (int i = 0; i < 3; ++i) {
            const int k = numbers[static_cast<std::size_t>(i)];
            corners[i] = {OB->points + k, OB->normals + k, OB->texcoords + k, 2, 0};
        }
        OB->addFaceByCorners(corners, 3);
    });
}

void shuffleMesh(Mesh& mesh) {
    std::mt19937 random(1);
    std::vector<std::size_t> place(static_cast<std::size_t>(mesh.np));
    std::iota(place.begin(), place.end(), 0);
    std::shuffle(place.begin(), place.end(), random);
    const std::vector<Point> points(mesh.points, mesh.points + mesh.np);
    for (std::size_t i = 0; i < place.size(); ++i) mesh.points[place[i]] = points[i];
    for (int k = 0; k < mesh.nq; ++k) {
        Point*& point = mesh.corners[k].p;
        point = mesh.points + place[static_cast<std::size_t>(point - mesh.points)];
    }
    std::shuffle(mesh.faces, mesh.faces + mesh.nf, random);
}

} // namespace polyfab::bench
