// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/state.h"
#include "formats/3ds_reader.h"
#include "formats/3ds_writer.h"
#include "mesh/check.h"
#include "tests/support/mesh_fixture.h"
#include "tests/support/temp_folder.h"

#include <bit>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace polyfab {
namespace {

using namespace std::string_literals;

class ThreeDs : public test::MeshTest {
  protected:
    ThreeDs() { resetEditorState(); }
    ~ThreeDs() override { resetEditorState(); }

    /// Walks through the bytes, which end where their memory ends.
    static std::string walk(const std::string& bytes) {
        const std::vector<std::uint8_t> exact(bytes.begin(), bytes.end());
        const char* const fault = add3dsChunks(exact);
        EXPECT_EQ(check(*OB), nullptr);
        return fault == nullptr ? "done" : fault;
    }

    const test::TempFolder folder;
    const std::string path = folder.path("mesh.3ds");
};

std::string number(std::size_t value, int size) {
    std::string text;
    for (int i = 0; i < size; ++i) text += static_cast<char>(value >> 8 * i);
    return text;
}
std::string word(std::size_t value) { return number(value, 2); }
std::string words(std::initializer_list<std::size_t> values) {
    std::string text;
    for (const std::size_t value : values) text += word(value);
    return text;
}
std::string real(double value) {
    return number(std::bit_cast<std::uint32_t>(static_cast<float>(value)), 4);
}

// Chunks as the reader takes them apart: the first word inside is the upper half of the length, so
// that a chunk is as long as that word asks for, at least.

/// A chunk that is skipped.
std::string filler(std::size_t size) {
    return word(0) + "??" + number(size, 4) + std::string(size - 8, '\0');
}

std::string leaf(std::size_t id, std::string inside) {
    inside.resize(std::max<std::size_t>(inside.size(), 2));
    std::uint16_t high;
    std::memcpy(&high, inside.data(), 2);
    inside.resize(std::max(inside.size() + 6, std::size_t{high} << 16) - 6);
    return word(id) + "??" + word(inside.size() + 6) + inside;
}

/// The first sub-chunk is one that nobody reads, with an id that suits the length.
std::string container(std::size_t id, const std::string& inside) {
    const std::size_t length = 6 + 8 + inside.size();
    return leaf(id, word(length >> 16) + filler(8).substr(2) + inside);
}

/// An object with a name of one character or none, whichever suits the length.
std::string object(const std::string& inside) {
    const std::size_t high = (8 + inside.size()) >> 16;
    return leaf(0x4000, high == 0 ? "\0"s + filler(8) + inside : word(high) + inside);
}

std::string points(const std::vector<double>& xyz) {
    std::string list = word(xyz.size() / 3);
    for (const double value : xyz) list += real(value);
    return leaf(0x4110, list);
}

/// The corners of one triangle after the other.
std::string triangles(const std::vector<std::size_t>& corners, const std::string& inside = "") {
    const std::size_t count = corners.size() / 3;
    std::string list = word(count);
    for (std::size_t i = 0; i < corners.size(); ++i) {
        list += word(corners[i]);
        if (i % 3 == 2) list += word(7);
    }
    list += inside;
    if (count > 0) list += filler((count << 16) - 6 - list.size());
    return leaf(0x4120, list);
}

std::string materialGroup(const std::string& name, std::size_t count, const std::string& numbers) {
    return leaf(0x4130, name + "\0"s + word(count) + numbers);
}

std::string material(const std::string& name, const std::string& more = "") {
    return container(0xAFFF, more + leaf(0xA000, name + "\0"s));
}

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

/// "a-b-c/material" of every triangle.
std::string faceList() {
    std::string text;
    for (int i = 0; i < OB->nf; ++i) {
        const Face& face = OB->faces[i];
        for (int k = 0; k < face.n; ++k) {
            text += (k > 0 ? "-" : "") + std::to_string(indexIn(OB->points, face.q[k].p));
        }
        text += "/" + std::to_string(face.mat) + " ";
    }
    return text;
}

TEST_F(ThreeDs, ReadsAndAppends) {
    EXPECT_EQ(walk(scene()), "done");
    EXPECT_EQ(faceList(), "0-1-2/2 2-1-1/1 5-4-3/1 ");
    EXPECT_EQ(OB->points[3].y, static_cast<double>(0.1F));
    EXPECT_EQ(OB->points[4].x, static_cast<double>(1e30F));
    EXPECT_STREQ(OB->materials[1].name, "\1");
    EXPECT_EQ(OB->materials[0].color, 0U);
    EXPECT_EQ(OB->materials[1].color, 0x300001U);
    EXPECT_EQ(std::tuple(OB->faces[1].g, OB->faces[2].g, OB->curgroup), std::tuple(0, 1, 1));
    EXPECT_EQ(walk(scene()), "done");
    EXPECT_EQ(faceList(), "0-1-2/2 2-1-1/1 5-4-3/1 6-7-8/2 8-7-7/1 11-10-9/1 ");
    EXPECT_EQ(std::tuple(OB->ng, OB->nmat), std::tuple(4, 6));
    EXPECT_TRUE(shown.log.empty());
}

TEST_F(ThreeDs, MaterialGroups) {
    const std::string faces = triangles({0, 0, 0, 0, 0, 0});
    const struct {
        std::string chunks, result;
    } rows[] = {
        {materialGroup("\1", 1, word(0)) + faces, "0-0-0/0 0-0-0/0 "}, // no face array yet
        {faces + materialGroup("\1", 0, words({1, 0})), "0-0-0/0 0-0-0/1 "},
        {faces + materialGroup("\1", 2, words({0, 1})), "0-0-0/1 0-0-0/1 "},
        {faces + materialGroup("\2", 1, word(0)), "0-0-0/0 0-0-0/0 "}, // no such material
        {faces + faces + materialGroup("\1", 1, word(1)), "0-0-0/0 0-0-0/0 0-0-0/0 0-0-0/1 "},
        {faces + leaf(0xA000, "\5\0"s) + materialGroup("\1", 1, word(0)), "0-0-0/1 0-0-0/0 "},
        {faces + material("") + word(0x4130) + "??" + word(11) + "\0\0\xFF"s + word(1),
         "0-0-0/0 0-0-0/2 "}}; // the list ends where the file does
    for (const auto& row : rows) {
        test::emptyMesh();
        OB->addMaterial(0, "first");
        OB->addMaterial(0, "\1");
        EXPECT_EQ(walk(container(0x4D4D, points({0, 0, 0}) + row.chunks)), "done");
        EXPECT_EQ(faceList(), row.result) << &row - rows;
    }
}

TEST_F(ThreeDs, BadChunks) {
    const std::string xyz = points({0, 0, 0, 1, 1, 1});
    const auto header = [](std::size_t id, std::size_t length) {
        return word(id) + "??" + number(length, 4);
    };
    const auto inside = [](const std::string& chunks) { return container(0x4D4D, chunks); };
    const struct {
        std::string bytes, fault;
        int groups = 0;
    } rows[] = {
        {"MM??\6\0"s, "done"},
        {"MM??\7\0"s, "chunk runs off end"},
        {"MM??\6\0\0\x80"s, "chunk runs off end"},
        {inside(filler(9) + "12345"), "chunk too short"},
        {inside(header(0, 0)), "chunk too short"},
        {inside(header(0, 5)), "chunk too short"},
        {inside(object("") + header(0, 9)), "chunk runs off end", 1},
        // A name ends inside its chunk, even where the next one begins with a NUL.
        {inside(word(0x4000) + "??" + word(6) + filler(8)), "chunk runs off end"},
        {container(0xAFFF, word(0xA000) + "??" + word(6) + filler(8)), "chunk runs off end"},
        {inside(word(0x4130) + "??" + word(6)), "chunk runs off end"},
        {container(0xAFFF, header(0xA020, 5)) + filler(0x11000), "chunk too short"},
        {inside(word(0x4110) + "??" + word(6)), "bad vertex list"},
        {inside(word(0x4120) + "??" + word(7) + "\0"s), "bad face list"},
        {inside(object(xyz) + triangles({0, 1, 2})), "bad vertex number", 1},
        {inside(object(xyz) + object(triangles({0, 0, 0}))), "bad vertex number", 2},
        // A chunk that its container is too short for is read all the same, and once.
        {inside(word(0x4100) + "??" + words({7, 0}) + filler(8).substr(2) + object("")), "done",
         1}};
    for (const auto& row : rows) {
        test::emptyMesh();
        EXPECT_EQ(walk(row.bytes), row.fault) << &row - rows;
        EXPECT_EQ(std::tuple(OB->ng, OB->nf), std::tuple(row.groups, 0)) << &row - rows;
    }
}

TEST_F(ThreeDs, DeepNestingTakesNoStack) {
    constexpr std::size_t levels = 300'000;
    std::string bytes;
    for (std::size_t i = 0; i < levels; ++i) {
        const std::size_t length = 14 * (levels - i);
        bytes += word(0x4100) + "??" + word(length) + word(length >> 16) + filler(8).substr(2);
    }
    EXPECT_EQ(walk(bytes), "done");
}

/// A file that the first chunk's length has room for: no point, triangle or colour.
std::string smallFile() {
    const std::string mesh = points({}) + triangles({}, materialGroup("", 0, word(0)));
    return container(0x4D4D, container(0x3D3D, material("") + object(container(0x4100, mesh)))
                                 + object(""));
}

TEST_F(ThreeDs, EveryTruncation) {
    const std::string whole = smallFile();
    EXPECT_EQ(walk(whole), "done");
    for (std::size_t size = 0; size < whole.size(); ++size) {
        test::emptyMesh();
        std::string cut = whole.substr(0, size);
        EXPECT_NE(walk(cut), "done");
        if (size < 6) continue;
        cut.replace(4, 2, word(size));
        walk(cut);
        EXPECT_LE(OB->ng, 2);
        folder.write("mesh.3ds", cut);
        EXPECT_EQ(read3dsFile(path, true), walk(cut) == "done");
    }
}

TEST_F(ThreeDs, Files) {
    const struct {
        std::string bytes, title, text;
        int result = 0;
    } rows[] = {
        {smallFile(), "", "", 1},
        {smallFile() + std::string(2'000'000, 'x'), "", "", 1},
        {"MM??\6"s, "bad 3DS file", path},
        {"MN??\6\0"s, "bad 3DS file", path},
        {"MM??\5\0"s, "bad 3DS file", path},
        {"MM??\7\0"s, "bad 3DS file", path},
        {scene(), path, "chunk runs off end"}}; // it holds more than the lower half of its length
    for (const auto& row : rows) {
        test::emptyMesh();
        shown.log.clear();
        OB->addPoint(1, 2, 3, false);
        folder.write("mesh.3ds", row.bytes);
        EXPECT_EQ(read3dsFile(path, false), row.result);
        EXPECT_EQ(OB->np, 0);
        const std::string expected = "message!|" + row.title + "|" + row.text;
        EXPECT_EQ(shown.log, std::vector<std::string>(row.result ? 0 : 1, expected));
    }
    OB->addPoint(1, 2, 3, false);
    EXPECT_EQ(read3dsFile(folder.path(""), true), 0);
    EXPECT_EQ(OB->np, 1);
    EXPECT_EQ(shown.log.back(), "message!|I can't open this file|" + folder.path(""));
}

TEST_F(ThreeDs, FullTablesEndTheReading) {
    for (int i = OB->ng; i < maxIndexed; ++i) OB->addGroup("group");
    folder.write("mesh.3ds", container(0x4D4D, object("") + object("")));
    EXPECT_EQ(read3dsFile(path, true), 0);
    EXPECT_EQ(shown.log.size(), 1U);
}

// Writing. The file as the rules state it, group by group, each chunk from what is inside it.

std::string chunk(std::size_t id, const std::string& inside) {
    return word(id) + number(6 + inside.size(), 4) + inside;
}

std::string name(const char* text) { return text + "\0"s; }

/// "" for a group without a selected face.
std::string expectedObject(int group, bool onlySelected) {
    std::vector<const Face*> faces;
    for (const Face* face = OB->faces; face != OB->faces + OB->nf; ++face) {
        if (face->g == group && (face->selected || !onlySelected)) faces.push_back(face);
    }
    // The points of selected faces first, each kind in the order of points.
    std::vector<int> listed;
    const auto numberOf = [&](const FaceCorner& corner) {
        const auto at = std::find(listed.begin(), listed.end(), indexIn(OB->points, corner.p));
        return static_cast<std::size_t>(at - listed.begin());
    };
    for (const bool selected : {true, false}) {
        std::set<int> points;
        for (const Face* face : faces) {
            if ((face->selected != 0) != selected) continue;
            for (const FaceCorner* c = face->q; c != face->q + face->n; ++c) {
                if (numberOf(*c) == listed.size()) points.insert(indexIn(OB->points, c->p));
            }
        }
        listed.insert(listed.end(), points.begin(), points.end());
        if (listed.empty()) return "";
    }
    std::string xyz, triangles;
    for (const int p : listed) {
        xyz += real(OB->points[p].x) + real(OB->points[p].y) + real(OB->points[p].z);
    }
    std::vector<std::string> numbers(static_cast<std::size_t>(OB->nmat)); // of each one's triangles
    std::size_t count = 0;
    for (const Face* face : faces) {
        for (const FaceCorner* c = face->q + 1; c + 1 != face->q + face->n; ++c) {
            triangles += words({numberOf(face->q[0]), numberOf(c[0]), numberOf(c[1]), 7});
            numbers[static_cast<std::size_t>(face->mat)] += word(count++);
        }
    }
    std::string inside =
        chunk(0x4110, word(listed.size()) + xyz) + chunk(0x4120, word(count) + triangles);
    for (std::size_t m = 0; m < numbers.size(); ++m) {
        inside +=
            chunk(0x4130, name(OB->materials[m].name) + word(numbers[m].size() / 2) + numbers[m]);
    }
    return chunk(0x4000, name(OB->groups[group].name) + chunk(0x4100, inside));
}

std::string expectedFile(bool onlySelected) {
    std::string inside = chunk(0x3D3E, number(3, 4));
    for (int m = 0; m < OB->nmat; ++m) {
        const std::string rgb = number(OB->materials[m].color, 3);
        inside += chunk(0xAFFF, chunk(0xA000, name(OB->materials[m].name))
                                    + chunk(0xA020, chunk(0x0011, rgb) + chunk(0x0012, rgb)));
    }
    for (int g = 0; g < OB->ng; ++g) inside += expectedObject(g, onlySelected);
    return chunk(0x4D4D, chunk(0x0002, number(3, 4)) + chunk(0x3D3D, inside));
}

void addFace(const std::vector<int>& points, int group, int mat) {
    Face* const face = test::addFace(points);
    face->g = static_cast<std::int16_t>(group);
    face->mat = static_cast<std::int16_t>(mat);
}

TEST_F(ThreeDs, RandomMeshesAreWrittenByTheRules) {
    std::mt19937 random(3);
    // In memory: on a disk each save would wait for it.
    const int file = memfd_create("3ds", 0);
    const std::string memory = "/proc/self/fd/" + std::to_string(file);
    const auto upTo = [&](int most) { return std::uniform_int_distribution(0, most)(random); };
    int messages = 0;
    for (int round = 0; round < 2000; ++round) {
        test::emptyMesh();
        shown.log.clear();
        for (int i = 0; i < 12; ++i) OB->addPoint(upTo(9) / 10.0, upTo(9), -upTo(9), false);
        for (const char* text : {"a", "b b", "a"}) OB->addGroup(text);
        for (unsigned i = 0; i < 3; ++i) OB->addMaterial(0xFF102030 * (i + 1), std::to_string(i));
        for (int i = upTo(8); i > 0; --i) {
            std::vector<int> list{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
            std::shuffle(list.begin(), list.end(), random);
            list.resize(static_cast<std::size_t>(3 + upTo(3)));
            addFace(list, upTo(2), upTo(2));
            OB->faces[OB->nf - 1].selected = upTo(2) > 0;
        }
        const bool yes = upTo(1) > 0;
        shown.choices = {yes ? Choice::yes : Choice::no};
        ASSERT_EQ(ftruncate(file, 0), 0);
        ASSERT_EQ(write3dsFile(memory), 1);
        const bool asked = shown.choices.empty();
        ASSERT_EQ(folder.read(memory), expectedFile(asked && yes)) << "round " << round;

        std::set<int> groups; // with a selected face; the faces of others are left out
        for (int i = 0; i < OB->nf; ++i) {
            if (OB->faces[i].selected != 0) groups.insert(OB->faces[i].g);
        }
        const bool whole = std::all_of(OB->faces, OB->faces + OB->nf,
                                       [&](const Face& face) { return groups.contains(face.g); });
        const bool told = !shown.log.empty() && shown.log.back().starts_with("message!|");
        EXPECT_EQ(told, !whole && !(asked && yes));
        EXPECT_EQ(editorState.wholeMeshWritten, whole && !(asked && yes));
        messages += told;
    }
    EXPECT_GT(messages, 10);
    close(file);
}

TEST_F(ThreeDs, WhatFitsInAFile) {
    const auto strip = [](int count) {
        for (int i = 0; i < count; ++i) OB->addPoint(i, i % 2, 0, false);
        for (int i = 0; i + 2 < count; ++i) addFace({i, i + 1, i + 2}, 0, 0);
    };
    const auto fans = [](int last) {
        for (int i = 0; i < maxIndexed; ++i) OB->addPoint(i, 0, 0, false);
        std::vector<int> list(maxIndexed);
        std::iota(list.begin(), list.end(), 0);
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
    const auto triangle = [&](double z, int mat) {
        strip(3);
        OB->points[1].z = z;
        OB->faces[0].mat = static_cast<std::int16_t>(mat);
    };
    const std::string group = "in a 3DS file the group \"default\" can";
    const struct {
        std::function<void()> build;
        std::string fault;
    } rows[] = {{std::bind(strip, 65535), ""},
                {std::bind(strip, 65536), group + " have at most 65535 points"},
                {std::bind(fans, 7), ""},
                {std::bind(fans, 8), group + " have at most 65535 triangles"},
                {std::bind(names, 1200), ""},
                {std::bind(names, 1400), "a 3DS file can hold at most 16 MiB"},
                {std::bind(triangle, -1e39, 0), group + "'t have a coordinate beyond 3.4e38"},
                {std::bind(triangle, std::numeric_limits<double>::infinity(), 0), ""},
                {std::bind(triangle, 0, 9), "fault in mesh"}};
    for (const auto& row : rows) {
        test::emptyMesh();
        shown.log = {""};
        row.build();
        folder.write("mesh.3ds", "old");
        EXPECT_EQ(write3dsFile(path), row.fault.empty());
        EXPECT_EQ(folder.read("mesh.3ds") == "old", !row.fault.empty());
        const std::string expected = row.fault.empty() ? "" : "message!|" + row.fault + "|";
        EXPECT_TRUE(shown.log.back().starts_with(expected)) << shown.log.back();
    }
    test::emptyMesh();
    strip(3);
    const std::string nowhere = folder.path("missing/mesh.3ds");
    editorState.wholeMeshWritten = false;
    EXPECT_EQ(write3dsFile(nowhere), 0);
    EXPECT_EQ(shown.log.back(), "message!|can't open file|" + nowhere);
    EXPECT_FALSE(editorState.wholeMeshWritten);
}

} // namespace
} // namespace polyfab
