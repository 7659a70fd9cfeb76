// SPDX-License-Identifier: GPL-3.0-or-later
// The make object menu shows the first object in an empty scene whole.
#include "tests/editor/window_fixture.h"

namespace polyfab::test {
namespace {

TEST_F(WindowEvents, TheFirstObjectIsShownWhole) {
    for (const int id : {282, 392, 401, 414, 412, 1036, 1068, 283}) {
        SCOPED_TRACE(id);
        reset();
        workbench.settable = {Vec3{0, 0, 0}, Vec3{2, 20, 1}};
        const auto shows = [](const Vec3& at) {
            const Vec3 seen = projection.toScreen(at);
            return seen.x > 0 && seen.x < 511 && seen.y > 0 && seen.y < 511
                   && seen.x > box.left.x - 1e-6 && seen.x < box.right.x + 1e-6;
        };
        shown.dialogAnswers = {{}, {}};
        command(id);
        for (int i = 0; i < OB->np; ++i) EXPECT_TRUE(shows(worldPosition(OB->points[i])));
        const double scale = view.scale;
        workbench.settable[1] = {200, 200, 200};
        command(id);
        EXPECT_EQ(view.scale, scale);
    }
}

} // namespace
} // namespace polyfab::test
