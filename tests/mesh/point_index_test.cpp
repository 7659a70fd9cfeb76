// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/point_index.h"

#include "tests/support/mesh_fixture.h"

#include <cmath>
#include <random>
#include <vector>

namespace polyfab {
namespace {

class PointIndexTest : public test::MeshTest {};

// The scan is the measure, on meshes that hold the same position more than once; while it adds, the
// table grows several times.
TEST_F(PointIndexTest, FindsAndAddsWhatAScanDoes) {
    const double values[] = {0, -0.0, 1, std::nextafter(1, 2), -1, 0.1, 1e300, INFINITY, NAN, 2, 3};
    for (const int size : {0, 50, 1000}) {
        std::vector<int> found[2];
        for (std::vector<int>& list : found) {
            std::mt19937 random(5);
            const auto any = [&] { return values[random() % std::size(values)]; };
            OB->np = 0;
            for (int i = 0; i < size; ++i) OB->addPoint(any(), 1, 0, false);
            PointIndex index(*OB);
            for (int i = 0; i < 5000; ++i) {
                const double x = any();
                const double z = i % 3 == 0 ? i - i % 10 : any();
                list.push_back(&list == found ? OB->findOrAddPoint(x, 1, z)
                                              : index.findOrAdd(x, 1, z));
            }
        }
        EXPECT_EQ(found[0], found[1]);
    }
}

} // namespace
} // namespace polyfab
