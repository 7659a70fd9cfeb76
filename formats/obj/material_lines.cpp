// SPDX-License-Identifier: GPL-3.0-or-later
// A line that names a picture has options before the name, behind it or both, and the name may hold
// blanks: it reaches from the first word that belongs to no option up to where nothing but options
// follows.
#include "formats/obj/material_lines.h"

#include "formats/file_finder.h"
#include "formats/obj/obj_lines.h"
#include "io/parse_number.h"
#include "mesh/names.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace polyfab {
namespace {

using Words = std::span<const std::string_view>;

std::vector<std::string_view> wordsOf(std::string_view line) {
    std::vector<std::string_view> words;
    for (std::size_t i = 0; i < line.size();) {
        const std::size_t begin = i;
        while (i < line.size() && isBlank(line[i]) == isBlank(line[begin])) ++i;
        if (!isBlank(line[begin])) words.push_back(line.substr(begin, i - begin));
    }
    return words;
}

std::optional<double> numberIn(std::string_view word) {
    const std::string text(word);
    const char* end = text.c_str();
    double value = 0;
    if (!parseDecimal(end, value) || *end != '\0' || !std::isfinite(value)) return std::nullopt;
    return value;
}

/// The numbers that the words begin with, three at most.
std::vector<double> numbersIn(Words words) {
    std::vector<double> numbers;
    for (const std::string_view word : words.first(std::min<std::size_t>(words.size(), 3))) {
        const std::optional<double> number = numberIn(word);
        if (!number) break;
        numbers.push_back(*number);
    }
    return numbers;
}

/// An option and what follows it: up to so many numbers, or a word.
struct Option {
    std::string_view word;
    std::size_t numbers;
};
constexpr Option options[] = {{"-s", 3},      {"-o", 3},     {"-t", 3},      {"-mm", 2},
                              {"-boost", 1},  {"-bm", 1},    {"-texres", 1}, {"-blendu", 0},
                              {"-blendv", 0}, {"-clamp", 0}, {"-cc", 0},     {"-imfchan", 0},
                              {"-type", 0}};

/// How many words the option takes that they begin with; 0: it is none.
std::size_t optionLength(Words words, PicturePlacing& placing) {
    const auto* const option =
        std::find_if(std::begin(options), std::end(options),
                     [&](const Option& o) { return sameButCase(words.front(), o.word); });
    if (option == std::end(options)) return 0;
    if (option->numbers == 0) return std::min<std::size_t>(words.size(), 2);
    const std::vector<double> numbers = numbersIn(words.subspan(1));
    const std::size_t taken = std::min(numbers.size(), option->numbers);
    const bool scales = option->word == "-s";
    if (scales || option->word == "-o") {
        if (taken > 0) (scales ? placing.uScale : placing.uOffset) = numbers[0];
        if (taken > 1) (scales ? placing.vScale : placing.vOffset) = numbers[1];
    }
    return 1 + taken;
}

/// How many words the options take that they begin with.
std::size_t optionsLength(Words words, PicturePlacing& placing) {
    std::size_t length = 0;
    while (length < words.size()) {
        const std::size_t next = optionLength(words.subspan(length), placing);
        if (next == 0) break;
        length += next;
    }
    return length;
}

bool namesPicture(std::string_view keyword) {
    constexpr std::string_view others[] = {"bump", "disp", "decal", "norm", "refl"};
    return sameButCase(keyword.substr(0, 4), "map_")
           || std::any_of(std::begin(others), std::end(others),
                          [&](std::string_view other) { return sameButCase(keyword, other); });
}

std::uint32_t channel(double value) {
    return static_cast<std::uint32_t>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
}

/// One number is a grey.
std::optional<std::uint32_t> colorOf(Words words) {
    const std::vector<double> numbers = numbersIn(words);
    if (numbers.empty()) return std::nullopt;
    const bool grey = numbers.size() < 3;
    return channel(numbers[0]) << 16 | channel(numbers[grey ? 0 : 1]) << 8
           | channel(numbers[grey ? 0 : 2]);
}

/// The name behind the keyword as an OBJ file would have it, blanks as spaces.
std::string nameOf(std::string_view line, const std::vector<std::string_view>& words) {
    if (words.size() < 2) return "";
    std::string name(line.substr(static_cast<std::size_t>(words[1].data() - line.data())));
    std::replace_if(name.begin(), name.end(), isBlank, ' ');
    return std::string(storedName(name));
}

void readLine(std::string_view line, const std::vector<std::string_view>& words,
              LibraryMaterial& material) {
    if (words.size() < 2) return material.others.push_back(line);
    const Words arguments = Words(words).subspan(1);
    if (sameButCase(words[0], "kd")) {
        if (const auto color = colorOf(arguments)) material.color = color;
    } else if (sameButCase(words[0], "d")) {
        const std::size_t first = sameButCase(words[1], "-halo") && words.size() > 2 ? 2 : 1;
        if (const auto opacity = numberIn(words[first])) material.opacity = *opacity;
    } else if (sameButCase(words[0], "map_kd")) {
        const std::optional<MapLine> map = readMapLine(line);
        if (!map) return;
        material.picture = fileNameIn(map->name);
        material.placing = map->placing;
        material.map = line;
    } else {
        material.others.push_back(line);
    }
}

} // namespace

std::optional<MapLine> readMapLine(std::string_view line) {
    const std::vector<std::string_view> words = wordsOf(line);
    if (words.size() < 2 || !namesPicture(words[0])) return std::nullopt;
    MapLine map{};
    const Words all(words);
    const std::size_t first = 1 + optionsLength(all.subspan(1), map.placing);
    if (first >= words.size()) return std::nullopt;
    std::size_t end = first + 1; // the first word behind the name
    for (; end < words.size(); ++end) {
        PicturePlacing placing = map.placing;
        if (end + optionsLength(all.subspan(end), placing) != words.size()) continue;
        map.placing = placing;
        break;
    }
    const char* begin = words[first].data();
    const char* const last = words[end - 1].data() + words[end - 1].size();
    map.name = {begin, static_cast<std::size_t>(last - begin)};
    if (map.name.starts_with('"')) map.name.remove_prefix(1);
    if (map.name.ends_with('"')) map.name.remove_suffix(1);
    if (map.name.empty()) return std::nullopt;
    return map;
}

std::vector<LibraryMaterial> readLibraryText(std::string_view text) {
    std::vector<LibraryMaterial> materials;
    eachLine(text, [&](std::string_view line) {
        const std::vector<std::string_view> words = wordsOf(line);
        if (words.empty()) return;
        if (sameButCase(words[0], "newmtl")) {
            materials.push_back({nameOf(line, words)});
        } else if (!materials.empty()) {
            readLine(line, words, materials.back());
        }
    });
    return materials;
}

} // namespace polyfab
