// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/same_corners.h"

#include "tests/tools/tool_test.h"

#include <algorithm>

namespace polyfab {
namespace {

class SameCorners : public test::ToolTest {};

TEST_F(SameCorners, OrderDirectionAndRepeatsDoNotCount) {
    for (int i = 0; i < 4; ++i) OB->addPoint(0, 0, 0, false); // one place, but four points
    for (const auto& points : std::vector<std::vector<int>>{
             {0, 1, 2}, {2, 0, 1}, {0, 1, 3}, {1, 0, 2}, {0, 1, 2, 0}, {0, 1}, {0, 1, 2}}) {
        test::addFace(points);
    }
    OB->faces[6].selected = 0;
    OB->curface = 3;
    unselectFacesOnSamePoints(*OB);
    EXPECT_EQ(shown.log.back(), "message|duplicated faces|4 such faces found");
    EXPECT_EQ(test::liveFaces(true), (std::vector<int>{2, 5}));
    for (int i = 0; i < 6; ++i) OB->faces[i].selected = 1;
    removeFacesOnSamePoints(*OB);
    EXPECT_EQ(shown.log.back(), "message|duplicated faces|I have removed 3 faces");
    EXPECT_EQ(test::liveFaces(), (std::vector<int>{0, 2, 5, 6}));
    EXPECT_EQ(OB->curface, -1);
}

TEST_F(SameCorners, AllTwinsAreFoundOneByOne) {
    int found = 0;
    for (int round = 0; round < 2000; ++round) {
        fillWithParts(1 + random.below(6), 1 + random.below(12), 5);
        const std::vector<int> selected = test::liveFaces(true);
        std::vector<int> kept = test::liveFaces();
        std::vector<int> alone;
        for (const int face : selected) {
            const auto isTwin = [&](int other) {
                return other != face && test::pointSet(other) == test::pointSet(face);
            };
            if (std::none_of(selected.begin(), selected.end(), isTwin)) alone.push_back(face);
            const auto end = std::find(selected.begin(), selected.end(), face);
            if (std::any_of(selected.begin(), end, isTwin)) std::erase(kept, face);
        }
        found += static_cast<int>(selected.size() - alone.size());

        unselectFacesOnSamePoints(*OB);
        ASSERT_EQ(test::liveFaces(true), alone) << round;
        for (const int face : selected) OB->faces[face].selected = 1;
        removeFacesOnSamePoints(*OB);
        ASSERT_EQ(test::liveFaces(), kept) << round;
        ASSERT_EQ(check(*OB), nullptr);
    }
    EXPECT_GT(found, 1000);
}

} // namespace
} // namespace polyfab
