// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/group_order.h"

#include "mesh/check.h"
#include "tests/support/mesh_fixture.h"

#include <random>
#include <string>

namespace polyfab {
namespace {

class GroupOrder : public test::MeshTest {
  protected:
    std::mt19937 random{7};
    int below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(random); }

    void buildGroups(int count, int faces) {
        test::emptyMesh();
        for (int g = 0; g < count; ++g) {
            OB->addGroup("group" + std::to_string(g));
            Group& group = OB->groups[g];
            group.selected = static_cast<std::uint8_t>(below(2));
            group.texture = static_cast<std::uint8_t>(g % 8);
        }
        for (int i = 0; i < 3; ++i) OB->addPoint(i, i * i, 0, false);
        for (int f = 0; f < faces; ++f) {
            test::addFace({0, 1, 2})->g = static_cast<std::int16_t>(below(count));
        }
    }
};

/// Where the group at `index` stands after the move, case by case.
int placeAfter(int index, int from, int to) {
    if (index == from) return to;
    if (from > to && index >= to && index < from) return index + 1;
    if (from < to && index > from && index <= to) return index - 1;
    return index;
}

TEST_F(GroupOrder, FacesStayInTheirGroupsAndTheOthersCloseTheGap) {
    for (int round = 0; round < 500; ++round) {
        const int count = 1 + below(9);
        buildGroups(count, 20);
        const std::vector<Group> groups(OB->groups, OB->groups + count);
        std::vector<int> before;
        for (int f = 0; f < OB->nf; ++f) before.push_back(OB->faces[f].g);
        const int from = below(count);
        const int to = below(count);
        OB->changed = 0;
        moveGroup(*OB, from, to);
        EXPECT_EQ(OB->changed, 1);
        for (int g = 0; g < count; ++g) {
            const Group& was = groups[static_cast<std::size_t>(g)];
            const Group& is = OB->groups[placeAfter(g, from, to)];
            EXPECT_STREQ(is.name, was.name) << from << " to " << to;
            EXPECT_EQ(is.selected, was.selected);
            EXPECT_EQ(is.texture, was.texture);
        }
        for (int f = 0; f < OB->nf; ++f) {
            EXPECT_EQ(OB->faces[f].g, placeAfter(before[static_cast<std::size_t>(f)], from, to));
        }
        ASSERT_EQ(check(*OB), nullptr);
    }
}

} // namespace
} // namespace polyfab
