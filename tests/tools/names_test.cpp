// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/names.h"

#include "mesh/group_order.h"
#include "tests/support/mesh_fixture.h"
#include "tests/support/temp_folder.h"
#include "tools/name_commands.h"

namespace polyfab {
namespace {

using Names = test::MeshTest;
using Log = std::vector<std::string>;

TEST_F(Names, AreStoredTrimmedAndCutAndFoundAgainAlsoByTheTable) {
    OB->addGroup("twice");
    OB->addGroup("twice");
    NameTable table(*OB, NameTable::Kind::groups);
    EXPECT_EQ(table.findOrAdd("twice "), 0);
    EXPECT_EQ(OB->findOrAddGroup("twice"), 0);
    const std::pair<std::string, std::string> rows[] = {
        {"left arm \t ", "left arm"},
        {" in front", " in front"},
        {"  ", ""},
        {std::string(100, 'n'), std::string(63, 'n')},
        {std::string(62, 'm') + " tail", std::string(62, 'm') + " "},
        {"LEFT ARM", "LEFT ARM"}};
    for (const auto& [given, stored] : rows) {
        const int group = table.findOrAdd(given);
        EXPECT_EQ(group, OB->ng - 1);
        EXPECT_EQ(OB->groups[group].name, stored);
        for (const char* blanks : {"", "\t"}) {
            EXPECT_EQ(OB->findOrAddGroup(given + blanks), group);
            EXPECT_EQ(table.findOrAdd(given + blanks), group);
        }
    }
}

TEST_F(Names, AFoundMaterialKeepsItsColorAndAnIndexNamesSoManyOnly) {
    EXPECT_EQ(OB->addMaterial(0x808080, "default"), 0);
    EXPECT_EQ(OB->findOrAddMaterial(0xFF0000, "default "), 0);
    EXPECT_EQ(OB->materials[0].color, 0x808080U);
    for (const int index : {1, 2}) { // no name: always a new one
        EXPECT_EQ(OB->findOrAddMaterial(0xFF0000, {}), index);
        EXPECT_EQ(OB->materials[index].color, 0xFF0000U);
    }
    OB->nmat = 0;
    NameTable table(*OB, NameTable::Kind::materials);
    for (int i = 0; i < 40'000; ++i) {
        EXPECT_EQ(table.findOrAdd("m" + std::to_string(i)), i < maxIndexed ? i : 0);
    }
    EXPECT_EQ(shown.log, Log{"message!|too many names|a mesh can have at most 32767 materials"});
    EXPECT_EQ(table.findOrAdd("m32766"), 32766);
}

TEST_F(Names, AreWrittenOneALine) {
    const test::TempFolder folder;
    const std::string nowhere = folder.path("missing/x.txt");
    for (const char* name : {"b", "a", "b"}) OB->addGroup(name);
    std::string fileName = "/models/cow.obj", shortName = "abc";
    writeGroupNames(*OB, fileName); // cancelled, but the suggestion is made
    shown.files = {folder.path("names.txt"), nowhere};
    writeGroupNames(*OB, fileName);
    EXPECT_EQ(folder.read("names.txt"), "b\na\nb\n");
    writeMaterialNames(*OB, shortName);
    EXPECT_EQ(shown.log, (Log{"file|text file to write group names to?|/models/cow.txt",
                              "file|text file to write group names to?|/models/cow.txt",
                              "note|wrote 3 names to " + folder.path("names.txt"),
                              "file|text file to write material names to?|abc",
                              "message!|I can't open this file|" + nowhere}));
}

TEST_F(Names, OfFacesStayWhenAGroupMovesAndTheOthersCloseTheGap) {
    test::RandomMesh random(7);
    const auto names = [] {
        Log list;
        for (int g = 0; g < OB->ng; ++g) list.push_back(OB->groups[g].name);
        return list;
    };
    for (int round = 0; round < 200; ++round) {
        random.fill(3, 20, 3);
        const auto faces = test::describe();
        Log expected = names();
        const int from = random.below(4), to = random.below(4);
        moveGroup(*OB, from, to);
        EXPECT_EQ(test::describe(), faces);
        const std::string moved = expected[static_cast<std::size_t>(from)];
        expected.erase(expected.begin() + from);
        expected.insert(expected.begin() + to, moved);
        EXPECT_EQ(names(), expected);
    }
}

} // namespace
} // namespace polyfab
