// SPDX-License-Identifier: GPL-3.0-or-later
// Builders of small mesh files.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace polyfab::test {

/// OBJ.
inline const std::string triangleText = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";

inline const std::string dxfHead = "0\nSECTION\n2\nENTITIES\n";
inline const std::string dxfTail = "0\nENDSEC\n0\nEOF\n";

/// A 3DFACE on points in convex position: A is (0, 0, 0), B (1, 1, 0), C (2, 4, 0), D (3, 9, 0).
inline std::string dxfFace(const std::string& layer, const std::string& letters) {
    std::string text = "0\n3DFACE\n" + (layer.empty() ? "" : "8\n" + layer + "\n");
    for (int k = 0; k < 4; ++k) {
        const int letter = letters[static_cast<std::size_t>(k)] - 'A';
        int axis = 10 + k;
        for (const int value : {letter, letter * letter, 0}) {
            text += std::to_string(axis) + "\n" + std::to_string(value) + ".000\n";
            axis += 10;
        }
    }
    return text;
}

/// 3DS.
namespace threeds {

using namespace std::string_literals;

inline std::string number(std::size_t value, int size) {
    std::string text;
    for (int i = 0; i < size; ++i) text += static_cast<char>(value >> 8 * i);
    return text;
}
inline std::string word(std::size_t value) { return number(value, 2); }
inline std::string words(std::initializer_list<std::size_t> values) {
    std::string text;
    for (const std::size_t value : values) text += word(value);
    return text;
}
inline std::string real(double value) {
    return number(std::bit_cast<std::uint32_t>(static_cast<float>(value)), 4);
}

// Chunks as the reader takes them apart: the first word inside is the upper half of the length, so
// that a chunk is as long as that word asks for, at least.

/// A chunk that is skipped.
inline std::string filler(std::size_t size) {
    return word(0) + "??" + number(size, 4) + std::string(size - 8, '\0');
}

inline std::string leaf(std::size_t id, std::string inside) {
    inside.resize(std::max<std::size_t>(inside.size(), 2));
    std::uint16_t high;
    std::memcpy(&high, inside.data(), 2);
    inside.resize(std::max(inside.size() + 6, std::size_t{high} << 16) - 6);
    return word(id) + "??" + word(inside.size() + 6) + inside;
}

/// The first sub-chunk is one that nobody reads, with an id that suits the length.
inline std::string container(std::size_t id, const std::string& inside) {
    const std::size_t length = 6 + 8 + inside.size();
    return leaf(id, word(length >> 16) + filler(8).substr(2) + inside);
}

/// An object with a name of one character or none, whichever suits the length.
inline std::string object(const std::string& inside) {
    const std::size_t high = (8 + inside.size()) >> 16;
    return leaf(0x4000, high == 0 ? "\0"s + filler(8) + inside : word(high) + inside);
}

inline std::string points(const std::vector<double>& xyz) {
    std::string list = word(xyz.size() / 3);
    for (const double value : xyz) list += real(value);
    return leaf(0x4110, list);
}

/// The corners of one triangle after the other.
inline std::string triangles(const std::vector<std::size_t>& corners,
                             const std::string& inside = "") {
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

inline std::string materialGroup(const std::string& name, std::size_t count,
                                 const std::string& numbers) {
    return leaf(0x4130, name + "\0"s + word(count) + numbers);
}

inline std::string material(const std::string& name, const std::string& more = "") {
    return container(0xAFFF, more + leaf(0xA000, name + "\0"s));
}

} // namespace threeds
} // namespace polyfab::test
