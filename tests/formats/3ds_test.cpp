// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/3ds/3ds_reader.h"
#include "formats/3ds/3ds_writer.h"
#include "mesh/check.h"
#include "tests/support/file_texts.h"
#include "tests/support/mesh_fixture.h"
#include "tests/support/temp_folder.h"
#include "workbench/state.h"

#include <functional>
#include <numeric>

namespace polyfab {
namespace {

using namespace std::string_literals;
using namespace test::threeds;

class ThreeDs : public test::MeshTest {
  protected:
    ThreeDs() { leavesGroups = true; }

    /// Walks through the bytes, which end where their memory ends. How that ended, the number of
    /// groups, and each triangle as letters of points and its material.
    static std::string walk(const std::string& bytes) {
        const std::vector<std::uint8_t> exact(bytes.begin(), bytes.end());
        const char* const fault = add3dsChunks(*OB, exact);
        EXPECT_EQ(check(*OB), nullptr);
        std::string told = (fault == nullptr ? "done " : fault + " "s) + std::to_string(OB->ng);
        for (const Face* face = OB->faces; face != OB->faces + OB->nf; ++face) {
            told += " ";
            for (const FaceCorner* c = face->q; c != face->q + face->n; ++c) {
                told += static_cast<char>('a' + (c->p - OB->points));
            }
            told += std::to_string(face->mat);
        }
        return told;
    }

    const test::TempFolder folder;
    const std::string path = folder.path("mesh.3ds");
};

/// Two objects of three points and one or two triangles, and three materials, one with a colour.
/// Behind the end is what the colour's length asks for.
std::string scene() {
    const std::string xyz = points({0, 0.1, 0, 1e30, -2, 0, 0, 3, -0.0});
    const std::string two = triangles({0, 1, 2, 2, 1, 1}, materialGroup("\1", 1, word(1)));
    const std::string color = word(0xA020) + "??" + word(15) + leaf(0x0011, "\1\0\x30"s);
    const std::string materials = material("\2") + material("\1", color) + material("\3");
    const std::string objects =
        object(container(0x4100, xyz + two + materialGroup("\3", 1, word(0))))
        + object(
            container(0x4100, xyz + triangles({2, 1, 0}) + materialGroup("\1", 2, words({0, 9}))));
    return container(0x4D4D, leaf(2, words({0, 3})) + container(0x3D3D, materials + objects))
           + std::string(2'000'000, '\0');
}

TEST_F(ThreeDs, ReadsAndAppends) {
    EXPECT_EQ(walk(scene()), "done 2 abc2 cbb1 fed1");
    EXPECT_EQ(OB->points[3].y, static_cast<double>(0.1F));
    EXPECT_EQ(OB->points[4].x, static_cast<double>(1e30F));
    EXPECT_STREQ(OB->materials[1].name, "\1");
    EXPECT_EQ(std::tuple(OB->materials[0].color, OB->materials[1].color), std::tuple(0, 0x300001));
    EXPECT_EQ(std::tuple(OB->faces[1].g, OB->faces[2].g, OB->curgroup), std::tuple(0, 1, 1));
    EXPECT_EQ(walk(scene()), "done 4 abc2 cbb1 fed1 ghi2 ihh1 lkj1");
    EXPECT_TRUE(shown.log.empty());
}

TEST_F(ThreeDs, Chunks) {
    const std::string xyz = points({0, 0, 0, 1, 1, 1});
    const std::string faces = points({0, 0, 0}) + triangles({0, 0, 0, 0, 0, 0});
    const auto header = [](std::size_t id, std::size_t length) {
        return word(id) + "??" + number(length, 4);
    };
    const auto inside = [](const std::string& chunks) { return container(0x4D4D, chunks); };
    const struct {
        std::string bytes, result;
    } rows[] = {
        // There are two materials, the second of which is "\1".
        {inside(materialGroup("\1", 1, word(0)) + faces), "done 1 aaa0 aaa0"}, // no face array yet
        {inside(faces + materialGroup("\1", 0, words({1, 0}))), "done 1 aaa0 aaa1"},
        {inside(faces + materialGroup("\1", 2, words({0, 1}))), "done 1 aaa1 aaa1"},
        {inside(faces + materialGroup("\2", 1, word(0))), "done 1 aaa0 aaa0"}, // no such material
        {inside(faces + triangles({0, 0, 0}) + materialGroup("\1", 1, word(0))),
         "done 1 aaa0 aaa0 aaa1"},
        // A name outside of a material is none.
        {inside(faces + leaf(0xA000, "\5\0"s) + materialGroup("\1", 1, word(0))),
         "done 1 aaa1 aaa0"},
        {inside(faces + material("") + word(0x4130) + "??" + word(11) + "\0\0\xFF"s + word(1)),
         "done 1 aaa0 aaa2"}, // the list ends where the file does
        {"MM??\6\0"s, "done 0"},
        {"MM??\6\0\0\x80"s, "chunk runs off end 0"},
        {inside(filler(9) + "12345"), "chunk too short 0"},
        {inside(header(0, 5)), "chunk too short 0"},
        {inside(object("") + header(0, 9)), "chunk runs off end 1"},
        // A name ends inside its chunk, even where the next one begins with a NUL.
        {inside(word(0x4000) + "??" + word(6) + filler(8)), "chunk runs off end 0"},
        {container(0xAFFF, word(0xA000) + "??" + word(6) + filler(8)), "chunk runs off end 0"},
        {inside(word(0x4130) + "??" + word(6)), "chunk runs off end 0"},
        {container(0xAFFF, header(0xA020, 5)) + filler(0x11000), "chunk too short 0"},
        {container(0xAFFF, header(0xA020, 0x20006)), "chunk runs off end 0"},
        {inside(word(0x4110) + "??" + word(6)), "bad vertex list 0"},
        {inside(word(0x4120) + "??" + word(7) + "\0"s), "bad face list 0"},
        {inside(object(xyz) + triangles({0, 1, 2})), "bad vertex number 1"},
        {inside(object(xyz) + object(triangles({0, 0, 0}))), "bad vertex number 2"},
        // A chunk that its container is too short for is read all the same, and once.
        {inside(word(0x4100) + "??" + words({7, 0}) + filler(8).substr(2) + object("")), "done 1"}};
    for (const auto& row : rows) {
        test::emptyMesh();
        for (const char* const name : {"first", "\1"}) OB->addMaterial(0, name);
        EXPECT_EQ(walk(row.bytes), row.result) << &row - rows;
    }
}

TEST_F(ThreeDs, DeepNestingTakesNoStack) {
    constexpr std::size_t levels = 300'000;
    std::string bytes;
    for (std::size_t i = 0; i < levels; ++i) {
        const std::size_t length = 14 * (levels - i);
        bytes += word(0x4100) + "??" + word(length) + word(length >> 16) + filler(8).substr(2);
    }
    EXPECT_EQ(walk(bytes), "done 0");
}

TEST_F(ThreeDs, Files) {
    // All that the first chunk's length has room for: no point, triangle or colour.
    const std::string mesh = points({}) + triangles({}, materialGroup("", 0, word(0)));
    const std::string small = container(
        0x4D4D, container(0x3D3D, material("") + object(container(0x4100, mesh))) + object(""));
    const struct {
        std::string bytes, title, text;
    } rows[] = {{small + std::string(2'000'000, 'x'), "", ""},
                {"MM??\6"s, "bad 3DS file", path},
                {"MN??\6\0"s, "bad 3DS file", path},
                {"MM??\5\0"s, "bad 3DS file", path},
                {"MM??\7\0"s, "bad 3DS file", path},
                // It holds more than the lower half of its length.
                {scene(), path, "chunk runs off end"}};
    for (const auto& row : rows) {
        shown.log.clear();
        OB->addPoint(1, 2, 3, false);
        EXPECT_EQ(read3dsFile(*OB, folder.write("mesh.3ds", row.bytes), false), row.title.empty());
        EXPECT_EQ(OB->np, 0);
        const std::string expected = "message!|" + row.title + "|" + row.text;
        EXPECT_EQ(shown.log, std::vector<std::string>(row.title.empty() ? 0 : 1, expected));
    }
    for (std::size_t size = 0; size < small.size(); ++size) {
        test::emptyMesh();
        std::string cut = small.substr(0, size);
        EXPECT_FALSE(walk(cut).starts_with("done"));
        if (size >= 6) walk(cut.replace(4, 2, word(size)));
    }
    OB->addPoint(1, 2, 3, false);
    EXPECT_EQ(read3dsFile(*OB, folder.path(""), true), 0);
    EXPECT_EQ(OB->np, 1);
    EXPECT_EQ(shown.log.back(), "message!|I can't open this file|" + folder.path(""));
    // Full tables end the reading.
    while (OB->ng < maxIndexed) OB->addGroup("group");
    folder.write("mesh.3ds", container(0x4D4D, object("") + object("")));
    shown.log.clear();
    EXPECT_EQ(read3dsFile(*OB, path, true), 0);
    EXPECT_EQ(shown.log.size(), 1U);
}

// Writing.

void addFace(const std::vector<int>& points, int group, int mat) {
    Face* const face = test::addFace(points);
    face->g = static_cast<std::int16_t>(group);
    face->mat = static_cast<std::int16_t>(mat);
}

TEST_F(ThreeDs, WhatFitsInAFile) {
    const auto strip = [](int count, double z = 0, int mat = 0) {
        for (int i = 0; i < count; ++i) OB->addPoint(i, i % 2, z, false);
        for (int i = 0; i + 2 < count; ++i) addFace({i, i + 1, i + 2}, 0, mat);
    };
    const auto fans = [](int last) {
        std::vector<int> list(maxIndexed);
        std::iota(list.begin(), list.end(), 0);
        for (const int i : list) OB->addPoint(i, 0, 0, false);
        for (const int n : {maxIndexed, maxIndexed, last}) {
            list.resize(static_cast<std::size_t>(n));
            addFace(list, 0, 0);
        }
    };
    const auto names = [&](int count) {
        strip(3);
        for (int i = 0; i < count; ++i) {
            OB->addGroup("g");
            OB->addMaterial(0, "m");
            addFace({0, 1, 2}, i, i);
        }
    };
    const std::string group = "in a 3DS file the group \"default\" can";
    const struct {
        std::function<void()> build;
        std::string fault;
    } rows[] = {{std::bind(strip, 65535, 0, 0), ""},
                {std::bind(strip, 65536, 0, 0), group + " have at most 65535 points"},
                {std::bind(fans, 7), ""},
                {std::bind(fans, 8), group + " have at most 65535 triangles"},
                {std::bind(names, 1400), "a 3DS file can hold at most 16 MiB"},
                {std::bind(strip, 3, -1e39, 0), group + "'t have a coordinate beyond 3.4e38"},
                {std::bind(strip, 3, test::infinity, 0), ""},
                {std::bind(strip, 3, 0, 9), "fault in mesh"}};
    for (const auto& row : rows) {
        test::emptyMesh();
        shown.log = {""};
        row.build();
        folder.write("mesh.3ds", "old");
        EXPECT_EQ(write3dsFile(*OB, path), row.fault.empty());
        EXPECT_EQ(folder.read("mesh.3ds") == "old", !row.fault.empty());
        const std::string expected = row.fault.empty() ? "" : "message!|" + row.fault + "|";
        EXPECT_TRUE(shown.log.back().starts_with(expected)) << shown.log.back();
    }
}

} // namespace
} // namespace polyfab
