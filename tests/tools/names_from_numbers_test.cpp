// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/names_from_numbers.h"

#include "tests/tools/tool_test.h"

namespace polyfab {
namespace {

class NamesFromNumbers : public test::ToolTest {
  protected:
    /// The four sides of a cube in part and area 2 or 3, the others deleted.
    NamesFromNumbers() {
        test::addCube();
        for (int i = 0; i < 4; ++i) {
            OB->addPart();
            OB->addTextureMapArea();
        }
        for (int i = 0; i < 6; ++i) {
            OB->faces[i].tma = static_cast<std::int16_t>(i / 2 + 1);
            OB->faces[i].prt = static_cast<std::int16_t>(3 - i / 3);
        }
        OB->faces[0].q = OB->faces[1].q = nullptr;
    }
};

TEST_F(NamesFromNumbers, OneNewNameForEachNumberInUse) {
    OB->addMaterial(0x123456, "mine");
    OB->faces[4].mat = 1;
    OB->faces[3].mat = 1;
    makeAreasIntoGroups(*OB);
    EXPECT_EQ(OB->ng, 3);
    EXPECT_STREQ(OB->groups[1].name, "area 2");
    EXPECT_STREQ(OB->groups[OB->faces[5].g].name, "area 3");
    makePartsIntoGroups(*OB);
    EXPECT_EQ(OB->ng, 5);
    EXPECT_STREQ(OB->groups[OB->faces[2].g].name, "part 3");
    EXPECT_STREQ(OB->groups[OB->faces[3].g].name, "part 2");
    makePartsIntoMaterials(*OB);
    EXPECT_EQ(OB->nmat, 4);
    EXPECT_STREQ(OB->materials[OB->faces[5].mat].name, "part 2");
    EXPECT_EQ(OB->materials[OB->faces[5].mat].color, 0x123456U); // that of face 3
    EXPECT_STREQ(OB->materials[OB->faces[2].mat].name, "part 3");
    EXPECT_EQ(OB->materials[OB->faces[2].mat].color, defaultColor);
    EXPECT_TRUE(shown.log.empty());
    EXPECT_EQ(check(*OB), nullptr);
}

TEST_F(NamesFromNumbers, MoreNamesThanThereCanBeAreRefusedWhole) {
    while (OB->ng < maxIndexed - 1) OB->addGroup("g");
    OB->changed = 0;
    makeAreasIntoGroups(*OB); // two of them
    EXPECT_EQ(shown.log, std::vector<std::string>{
                             "message!|too many names|a mesh can have at most 32767 groups"});
    EXPECT_EQ(OB->ng, maxIndexed - 1);
    EXPECT_EQ(OB->faces[5].g, 0);
    EXPECT_EQ(OB->changed, 0);
    --OB->ng;
    makeAreasIntoGroups(*OB);
    EXPECT_EQ(OB->faces[5].g, maxIndexed - 1);
    EXPECT_EQ(check(*OB), nullptr);
}

} // namespace
} // namespace polyfab
