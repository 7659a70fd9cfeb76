// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/names.h"

#include "mesh/name_commands.h"
#include "tests/support/mesh_fixture.h"
#include "tests/support/temp_folder.h"

namespace polyfab {
namespace {

using Names = test::MeshTest;
using Log = std::vector<std::string>;
using namespace std::string_literals;

TEST_F(Names, AreStoredTrimmedAndCut) {
    const struct {
        std::string given, stored;
    } rows[] = {{"left arm \t ", "left arm"},
                {" in front", " in front"},
                {"  ", ""},
                {std::string(100, 'n'), std::string(63, 'n')},
                {std::string(62, 'n') + " tail", std::string(62, 'n') + " "}};
    for (const auto& row : rows) {
        const int group = OB->findOrAddGroup(row.given);
        EXPECT_EQ(OB->groups[group].name, row.stored);
        EXPECT_EQ(OB->groups[group].selected, 1);
        EXPECT_EQ(OB->findOrAddGroup(row.given + "\t"), group); // found again, however long
        EXPECT_NE(OB->addGroup(row.given), group);
    }
    EXPECT_NE(OB->findOrAddGroup("LEFT ARM"), 0);
}

TEST_F(Names, AFoundMaterialKeepsItsColor) {
    EXPECT_EQ(OB->addMaterial(0x808080, "default"), 0);
    EXPECT_EQ(OB->findOrAddMaterial(0xFF0000, "default "), 0);
    EXPECT_EQ(OB->materials[0].color, 0x808080U);
    EXPECT_EQ(OB->findOrAddMaterial(0xFF0000, {}), 1); // no name: always a new one
    EXPECT_EQ(OB->findOrAddMaterial(0xFF0000, {}), 2);
    EXPECT_EQ(OB->materials[2].color, 0xFF0000U);
}

TEST_F(Names, TheTableFindsWhatTheScanFinds) {
    for (int i = 0; i < 2; ++i) OB->addGroup("twice");
    NameTable table(*OB, NameTable::Kind::groups);
    const std::string longName(80, 'x');
    for (const std::string& name : {"twice "s, "new"s, longName, longName, "new\t"s, ""s}) {
        const int found = table.findOrAdd(name);
        EXPECT_EQ(found, OB->findOrAddGroup(name));
    }
    EXPECT_EQ(OB->ng, 5);
}

TEST_F(Names, MoreThanAnIndexCanNameAreRefusedOnce) {
    NameTable table(*OB, NameTable::Kind::materials);
    for (int i = 0; i < 40'000; ++i) {
        EXPECT_EQ(table.findOrAdd("m" + std::to_string(i)), i < maxIndexed ? i : 0);
    }
    EXPECT_EQ(OB->nmat, maxIndexed);
    const Log expected = {"message!|too many names|a mesh can have at most 32767 materials"};
    EXPECT_EQ(shown.log, expected);
    EXPECT_EQ(table.findOrAdd("m32766"), 32766);
}

TEST_F(Names, CurrentNamesFallBackToDefault) {
    EXPECT_STREQ(OB->currentGroupName(), "default");
    OB->addGroup("a");
    EXPECT_STREQ(OB->currentGroupName(), "a");
    OB->curgroup = -1;
    EXPECT_STREQ(OB->currentGroupName(), "default");
}

TEST_F(Names, SelectedFacesGoIntoANewGroupEachTime) {
    test::addCube();
    OB->faces[0].selected = 0;
    OB->faces[1].q = nullptr;
    putSelectedIntoNewGroup(*OB); // answered no
    EXPECT_EQ(OB->ng, 1);
    shown.choices = {Choice::yes, Choice::yes, Choice::yes};
    putSelectedIntoNewGroup(*OB);
    putSelectedIntoNewGroup(*OB);
    EXPECT_EQ(shown.log.back(),
              "question||do you want to put the selected faces into a new group?");
    EXPECT_STREQ(OB->groups[2].name, "NewGroup");
    putSelectedIntoNewMaterial(*OB);
    EXPECT_STREQ(OB->materials[1].name, "NewMaterial");
    EXPECT_EQ(OB->materials[1].color, 0U);
    const int expected[] = {0, 0, 2, 2, 2, 2};
    for (int f = 0; f < 6; ++f) {
        EXPECT_EQ(OB->faces[f].g, expected[f]);
        EXPECT_EQ(OB->faces[f].mat, expected[f] / 2);
    }
}

TEST_F(Names, AmalgamationComparesByte) {
    test::addCube();
    for (const char* name : {"a", "b", "a", "A", "a"}) OB->addGroup(name);
    for (int f = 0; f < 6; ++f) OB->faces[f].g = static_cast<std::int16_t>(f);
    OB->changed = 0;
    amalgamateGroups(*OB);
    const int expected[] = {0, 1, 2, 1, 4, 1};
    for (int f = 0; f < 6; ++f) EXPECT_EQ(OB->faces[f].g, expected[f]);
    EXPECT_EQ(OB->changed, 1);
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
    const Log expected = {"file|text file to write group names to?|/models/cow.txt",
                          "file|text file to write group names to?|/models/cow.txt",
                          "file|text file to write material names to?|abc",
                          "message!|I can't open this file|" + nowhere};
    EXPECT_EQ(shown.log, expected);
}

} // namespace
} // namespace polyfab
