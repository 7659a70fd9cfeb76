// SPDX-License-Identifier: GPL-3.0-or-later
// A fixture for tests of the display: whatever it keeps is as at start-up before and after.
#pragma once

#include "display/box.h"
#include "display/look.h"
#include "display/options.h"
#include "display/view.h"
#include "display/wireframe.h"
#include "geometry/affine.h"
#include "mesh/stale.h"
#include "tests/support/mesh_fixture.h"

#include <algorithm>
#include <cmath>

namespace polyfab::test {

class PaneTest : public MeshTest {
  protected:
    explicit PaneTest(Size size) : client(size) {
        view.client = client;
        resetView();
        // Whole pixels are counted, and no text that is not asked for.
        displayOptions.smoothLines = displayOptions.paneNames = false;
    }
    ~PaneTest() override {
        displayOptions = {};
        look = Look();
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
    static void addPoints(const std::vector<std::array<double, 3>>& positions) {
        for (const auto& [x, y, z] : positions) OB->addPoint(x, y, z, false);
    }
    /// Turns the object by these degrees about its vertical axis, then about the screen's
    /// horizontal one and the line of sight, and fits the view.
    static void turnView(double about, double down, double roll = 0) {
        resetAttitude();
        polyfab::turnView(1, -about * M_PI / 180, true);
        polyfab::turnView(0, down * M_PI / 180, true);
        polyfab::turnView(2, -roll * M_PI / 180, true);
        fitView(*OB);
    }

    Size client;
};

} // namespace polyfab::test
