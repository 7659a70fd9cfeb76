// SPDX-License-Identifier: GPL-3.0-or-later
// The words of a batch command line.
#include "platform/batch/arguments.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace polyfab {
namespace {

struct NamedValue {
    std::string_view name;
    int value;
};

constexpr NamedValue keyNames[] = {
    {"ctrl", key::ctrl},     {"shift", key::shift},   {"alt", key::alt},
    {"escape", key::escape}, {"f1", key::f1},         {"f2", key::f2},
    {"f3", key::f3},         {"pageup", key::pageUp}, {"pagedown", key::pageDown},
};

constexpr NamedValue buttonNames[] = {
    {"none", 0},
    {"left", int(button::left)},
    {"right", int(button::right)},
    {"left+right", int(button::left | button::right)},
};

template <std::size_t count>
std::optional<int> find(const NamedValue (&table)[count], std::string_view name) {
    for (const NamedValue& row : table) {
        if (row.name == name) return row.value;
    }
    return std::nullopt;
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return c >= 'a' && c <= 'z'; }

} // namespace

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = char(c + ('a' - 'A'));
    }
    return lower;
}

std::vector<std::string> splitText(std::string_view text, char separator, bool keepEmpty) {
    std::vector<std::string> parts;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(separator, begin), text.size());
        if (keepEmpty || end > begin) parts.emplace_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

std::optional<int> parseInt(std::string_view text) {
    int value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end) return std::nullopt;
    return value;
}

std::optional<Size> parseSize(std::string_view text) {
    constexpr int largest = 32767;
    const std::size_t cross = text.find('x');
    if (cross == std::string_view::npos) return std::nullopt;
    const std::optional<int> width = parseInt(text.substr(0, cross));
    const std::optional<int> height = parseInt(text.substr(cross + 1));
    if (!width || !height || std::min(*width, *height) < 1 || std::max(*width, *height) > largest) {
        return std::nullopt;
    }
    return Size{*width, *height};
}

std::optional<int> parseKey(std::string_view text) {
    const std::string name = lowerCase(text);
    if (name.size() == 1 && isDigit(name[0])) return int(name[0]);
    if (name.size() == 1 && isLetter(name[0])) return name[0] - 'a' + 'A';
    if (const std::optional<int> code = find(keyNames, name)) return code;
    const std::optional<int> code = parseInt(name);
    return code && *code >= 1 && *code <= 255 ? code : std::nullopt;
}

std::optional<Event> parseMouse(std::string_view text) {
    const std::vector<std::string> parts = splitText(text, ',', true);
    if (parts.size() < 2 || parts.size() > 3) return std::nullopt;
    const std::optional<int> x = parseInt(parts[0]);
    const std::optional<int> y = parseInt(parts[1]);
    const std::optional<int> buttons = find(buttonNames, parts.size() == 3 ? parts[2] : "none");
    constexpr int farthest = 1'000'000; // pixels; sums and differences of such positions are ints
    if (!x || !y || !buttons || std::abs(*x) > farthest || std::abs(*y) > farthest) {
        return std::nullopt;
    }
    return Event{.kind = EventKind::mouse, .x = *x, .y = *y, .buttons = unsigned(*buttons)};
}

namespace {

/// A regular file or a pipe, which a shell makes of what another program prints.
bool hasAnEnd(const std::string& path) {
    std::error_code failure;
    const std::filesystem::file_status status = std::filesystem::status(path, failure);
    return std::filesystem::is_regular_file(status) || std::filesystem::is_fifo(status);
}

} // namespace

std::string expandArgumentFiles(std::vector<std::string>& args) {
    std::vector<std::string> expanded;
    for (const std::string& arg : args) {
        if (arg.empty() || arg[0] != '@') {
            expanded.push_back(arg);
            continue;
        }
        std::ifstream file;
        if (hasAnEnd(arg.substr(1))) file.open(arg.substr(1));
        if (!file.is_open()) return "cannot read the argument file " + arg.substr(1);
        for (std::string line; std::getline(file, line);) {
            if (line.ends_with('\r')) line.pop_back();
            const bool blank = line.find_first_not_of(" \t") == std::string::npos;
            if (!blank && line[0] != '#') expanded.push_back(line);
        }
        if (file.bad()) return "cannot read the argument file " + arg.substr(1);
    }
    args = std::move(expanded);
    return "";
}

} // namespace polyfab
