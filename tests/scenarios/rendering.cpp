// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/scenarios/rendering.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

namespace polyfab::test {
namespace {

using Json = nlohmann::ordered_json;

const std::map<std::string, std::string> aliases = {
    {"faces", "faces.corners.0"}, {"t", "faces.corners.1"},       {"d", "faces.corners.2"},
    {"use", "faces.corners.3"},   {"selected", "faces.selected"}, {"g", "faces.g"},
    {"mat", "faces.mat"},         {"tma", "faces.tma"},           {"prt", "faces.prt"},
    {"groups", "groups.name"},    {"picked", "groups.selected"},  {"materials", "materials.name"},
};

/// In one line, with no blank unseen.
std::string shownText(std::string text) {
    for (std::size_t at = 0; (at = text.find('\n', at)) != text.npos;) text.replace(at, 1, "\\n");
    const bool plain = !text.empty() && text.front() != ' ' && text.back() != ' ';
    return plain ? text : '"' + text + '"';
}

/// Rounded, so that the last figures of a rotation do not show.
std::string shownNumber(double number) {
    char text[32];
    const double rounded = std::abs(number) < 1e6 ? std::round(number * 1e9) / 1e9 : number;
    std::snprintf(text, sizeof text, "%.9g", rounded + 0); // no negative zero
    return text;
}

std::string shown(const Json& value, const char* between = ",") {
    if (value.is_null()) return "-";
    if (value.is_string()) return shownText(value);
    if (!value.is_structured()) return shownNumber(value);
    const auto isList = [](const Json& element) { return element.is_structured(); };
    const bool nested = value.is_array() && std::any_of(value.begin(), value.end(), isList);
    std::string list;
    for (const Json& element : value) {
        if (!list.empty() && !(nested && element.is_structured())) list += between;
        list += nested && element.is_structured() ? '(' + shown(element) + ')' : shown(element);
    }
    return list;
}

/// What the path leads to, in each element of the lists on the way.
Json pluck(const Json& value, const std::string& path) {
    if (path.empty() || value.is_null()) return value;
    const std::size_t end = std::min(path.find('.'), path.size());
    const std::string head = path.substr(0, end),
                      rest = path.substr(std::min(end + 1, path.size()));
    if (value.is_object()) return pluck(value.at(head), rest);
    if (!value.empty() && value[0].is_primitive() && !value[0].is_null()) return value[stoi(head)];
    Json list = Json::array();
    for (const Json& element : value) list.push_back(pluck(element, path));
    return list;
}

} // namespace

std::string renderEvents(const std::string& lines) {
    std::istringstream list(lines);
    std::string text;
    for (std::string line; std::getline(list, line);) {
        Json event = Json::parse(line);
        const std::string kind = event["event"];
        event.erase("event");
        text += "    " + kind + (event.empty() ? "" : " ") + shown(event, " | ") + '\n';
    }
    return text;
}

std::string renderFields(const std::string& keys, const std::string& stateAndDump) {
    if (stateAndDump.empty()) return keys + " (but the run has ended)";
    std::istringstream lines(stateAndDump);
    Json state, dump;
    lines >> state >> dump;
    const auto isNamed = [](unsigned char c) { return std::isalpha(c) != 0 || c == '.'; };
    std::istringstream words(keys);
    std::string text;
    for (std::string word; words >> word;) {
        // NAME= or NAME/INDEX=; other words belong to the value before.
        const std::string head = word.substr(0, word.find('='));
        const std::string name = head.substr(0, head.find('/')), index = head.substr(name.size());
        if (head == word || name.empty() || !std::all_of(name.begin(), name.end(), isNamed)) {
            continue;
        }
        const auto alias = aliases.find(name);
        Json value = pluck(state.contains(name) ? state : dump,
                           alias != aliases.end() ? alias->second : name);
        if (!index.empty()) value = value.at(std::stoul(index.substr(1)));
        text += ' ' + name + index + '=' + shown(value);
    }
    return text;
}

} // namespace polyfab::test
