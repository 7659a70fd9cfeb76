// SPDX-License-Identifier: GPL-3.0-or-later
// A fixture for tests of pictures: whatever the display keeps is as at start-up before and after.
#pragma once

#include "display/box.h"
#include "display/options.h"
#include "display/view.h"
#include "display/wireframe.h"
#include "tests/support/mesh_fixture.h"

#include <algorithm>
#include <cmath>

namespace polyfab::test {

class PaneTest : public MeshTest {
  protected:
    explicit PaneTest(Size size) : client(size) {
        view.client = client;
        resetView();
    }
    ~PaneTest() override {
        displayOptions = {};
        box = {};
        view.client = {};
        resetView();
    }

    /// The picture made anew.
    const Bitmap& redraw(const Markers& markers = {}) {
        stale = Stale();
        return drawPanes(*OB, client, markers);
    }
    static auto count(const Bitmap& picture, std::uint32_t color) {
        return std::count(picture.pixels.begin(), picture.pixels.end(), color);
    }
    /// Turns the object by these degrees about its vertical axis, then about the screen's
    /// horizontal one and the line of sight, and fits the view.
    static void turnView(double about, double down, double roll = 0) {
        const auto turned = [](double(&v)[3], int i, int k, double degrees) {
            const double c = std::cos(degrees * M_PI / 180), s = std::sin(degrees * M_PI / 180);
            const double first = c * v[i] - s * v[k];
            v[k] = s * v[i] + c * v[k];
            v[i] = first;
        };
        for (int axis = 0; axis < 3; ++axis) {
            double column[3] = {};
            column[axis] = 1;
            turned(column, 2, 0, about);
            turned(column, 1, 2, down);
            turned(column, 0, 1, roll);
            for (int i = 0; i < 3; ++i) view.rotation[i][axis] = column[i];
        }
        fitView(*OB);
    }

    Size client;
};

} // namespace polyfab::test
