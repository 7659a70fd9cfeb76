// SPDX-License-Identifier: GPL-3.0-or-later
// What a pane costs that OpenGL draws: of a machine without a graphics card its software one.
#pragma once

#include <memory>

namespace polyfab::bench {

class OpenGlPane {
  public:
    /// Loads the triangles of OB, to be drawn with their normals and texture coordinates in a pane
    /// of this size. Null when there is no OpenGL, or it draws nothing.
    static std::unique_ptr<OpenGlPane> open(int width, int height, bool smooth, bool textured);
    virtual ~OpenGlPane() = default;
    OpenGlPane(const OpenGlPane&) = delete;
    OpenGlPane& operator=(const OpenGlPane&) = delete;

    /// Draws them as the left pane shows them now, and fetches the pixels.
    virtual void draw() = 0;

  protected:
    OpenGlPane() = default;
};

} // namespace polyfab::bench
