// SPDX-License-Identifier: GPL-3.0-or-later
// The functions are those of OpenGL 1.5, which every driver has.
#define GL_GLEXT_PROTOTYPES
#include "bench/opengl_pane.h"

#include "geometry/projection.h"
#include "mesh/faces.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>
#include <GL/glext.h>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace polyfab::bench {
namespace {

struct Vertex {
    float position[3], normal[3], place[2];
};

/// Without a window system. False when there is no OpenGL.
bool begin(int width, int height) {
    const auto open = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(
        eglGetProcAddress("eglGetPlatformDisplayEXT"));
    if (open == nullptr) return false;
    const EGLDisplay display =
        open(EGL_PLATFORM_SURFACELESS_MESA, reinterpret_cast<void*>(EGL_DEFAULT_DISPLAY), nullptr);
    if (eglInitialize(display, nullptr, nullptr) == 0 || eglBindAPI(EGL_OPENGL_API) == 0) {
        return false;
    }
    constexpr EGLint wanted[] = {
        EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_DEPTH_SIZE, 24, EGL_RED_SIZE, 8, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint found = 0;
    if (eglChooseConfig(display, wanted, &config, 1, &found) == 0 || found == 0) return false;
    const EGLint size[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
    const EGLSurface surface = eglCreatePbufferSurface(display, config, size);
    const EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
    return eglMakeCurrent(display, surface, surface, context) != 0;
}

void copyTo(float (&to)[3], double x, double y, double z) {
    to[0] = static_cast<float>(x);
    to[1] = static_cast<float>(y);
    to[2] = static_cast<float>(z);
}

class Pane : public OpenGlPane {
  public:
    Pane(int across, int down) : width(across), height(down), pixels(std::size_t(across * down)) {
        glViewport(0, 0, width, height);
        glEnable(GL_DEPTH_TEST);
        glEnable(GL_LIGHTING);
        glEnable(GL_LIGHT0);
        glEnable(GL_NORMALIZE);
        glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1);
    }

    /// The grid has a normal and a texture coordinate for every point, of the same number.
    void load() const {
        std::vector<Vertex> vertexes(std::size_t(OB->np));
        for (std::size_t i = 0; i < vertexes.size(); ++i) {
            const Point& p = OB->points[i];
            const Normal& n = OB->normals[i];
            copyTo(vertexes[i].position, p.x, p.y, p.z);
            copyTo(vertexes[i].normal, n.x, n.y, n.z);
            vertexes[i].place[0] = static_cast<float>(OB->texcoords[i].u);
            vertexes[i].place[1] = static_cast<float>(OB->texcoords[i].v);
        }
        std::vector<std::uint32_t> corners;
        for (const Face& face : liveFaces(*OB)) {
            for (const FaceCorner& corner : polyfab::corners(face)) {
                corners.push_back(std::uint32_t(indexIn(OB->points, corner.p)));
            }
        }
        GLuint buffers[2];
        glGenBuffers(2, buffers);
        glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers[1]);
        const auto bytes = [](const auto& v) { return GLsizeiptr(v.size() * sizeof v[0]); };
        glBufferData(GL_ARRAY_BUFFER, bytes(vertexes), vertexes.data(), GL_STATIC_DRAW);
        glBufferData(GL_ELEMENT_ARRAY_BUFFER, bytes(corners), corners.data(), GL_STATIC_DRAW);
        const auto at = [](std::size_t offset) { return reinterpret_cast<const void*>(offset); };
        glVertexPointer(3, GL_FLOAT, sizeof(Vertex), at(offsetof(Vertex, position)));
        glNormalPointer(GL_FLOAT, sizeof(Vertex), at(offsetof(Vertex, normal)));
        glTexCoordPointer(2, GL_FLOAT, sizeof(Vertex), at(offsetof(Vertex, place)));
        for (const GLenum array : {GL_VERTEX_ARRAY, GL_NORMAL_ARRAY, GL_TEXTURE_COORD_ARRAY}) {
            glEnableClientState(array);
        }
    }

    void shade(bool smooth, bool textured) const {
        glShadeModel(smooth ? GL_SMOOTH : GL_FLAT);
        if (!textured) return;
        constexpr int side = 1024;
        std::vector<std::uint32_t> noise(side * side);
        for (std::uint32_t i = 0; i < side * side; ++i) noise[i] = i * 2654435761U >> 8;
        glEnable(GL_TEXTURE_2D);
        glTexParameteri(GL_TEXTURE_2D, GL_GENERATE_MIPMAP, 1);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST_MIPMAP_NEAREST);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, side, side, 0, GL_BGRA, GL_UNSIGNED_BYTE,
                     noise.data());
    }

    void draw() override {
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(0, width, height, 0, -1e5, 1e5);
        glMatrixMode(GL_MODELVIEW);
        GLdouble matrix[16] = {};
        for (int i = 0; i < 3; ++i) {
            const double sign = i == 2 ? -1 : 1; // here z is towards the viewer
            for (int k = 0; k < 4; ++k) matrix[4 * k + i] = sign * projection.toScreen.row[i][k];
        }
        matrix[15] = 1;
        glLoadMatrixd(matrix);
        glDrawElements(GL_TRIANGLES, 3 * OB->nf, GL_UNSIGNED_INT, nullptr);
        glReadPixels(0, 0, width, height, GL_BGRA, GL_UNSIGNED_BYTE, pixels.data());
    }

    /// Whether less than a tenth of the pane is covered.
    bool isEmpty() const {
        const auto plain = std::count(pixels.begin(), pixels.end(), pixels.front());
        return plain > std::ssize(pixels) * 9 / 10;
    }

  private:
    int width, height;
    std::vector<std::uint32_t> pixels;
};

} // namespace

std::unique_ptr<OpenGlPane> OpenGlPane::open(int width, int height, bool smooth, bool textured) {
    if (!begin(width, height)) return nullptr;
    auto pane = std::make_unique<Pane>(width, height);
    pane->load();
    pane->shade(smooth, textured);
    pane->draw();
    return pane->isEmpty() ? nullptr : std::move(pane);
}

} // namespace polyfab::bench
