// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/notes.h"

#include "platform/platform.h"
#include "workbench/state.h"

#include <algorithm>
#include <iterator>

namespace polyfab {
namespace {

std::string told;

struct Verb {
    std::string_view one, many;
};
constexpr Verb verbs[] = {{"is", "are"}, {"was", "were"}, {"has", "have"}, {"it", "them"}};

std::string plural(std::string_view word) {
    const auto* const verb = std::find_if(std::begin(verbs), std::end(verbs),
                                          [&](const Verb& row) { return row.one == word; });
    return verb != std::end(verbs) ? std::string(verb->many) : std::string(word) + "s";
}

} // namespace

void note(const std::string& text) {
    platform().note(text);
    told += (told.empty() ? "" : "; ") + text;
}

void noteInTitle(const std::string& text) {
    platform().setTitle(text);
    note(text);
}

bool stopRequested() {
    if (!abortRequested()) return false;
    note("stopped: nothing has changed");
    return true;
}

const std::string& notes() { return told; }

void forgetNotes() { told.clear(); }

std::string counted(std::int64_t number) {
    std::string digits = std::to_string(number);
    const std::ptrdiff_t sign = number < 0 ? 1 : 0;
    for (auto at = std::ssize(digits) - 3; at > sign; at -= 3) {
        digits.insert(static_cast<std::size_t>(at), ",");
    }
    return digits;
}

std::string counted(std::int64_t number, const std::string& what) {
    return counted(number) + " " + what + (number == 1 ? "" : "s");
}

std::string listOf(const std::vector<std::string>& names) {
    constexpr std::size_t shown = 5;
    std::string text;
    for (std::size_t i = 0; i < std::min(shown, names.size()); ++i) {
        text += (i > 0 ? ", " : "") + names[i];
    }
    return text + (names.size() > shown ? " …" : "");
}

std::string sentence(std::int64_t count, std::string_view pattern) {
    std::string text = counted(count) + " ";
    while (!pattern.empty()) {
        const std::size_t word = pattern.find('{');
        text += pattern.substr(0, word);
        if (word == pattern.npos) break;
        pattern.remove_prefix(word + 1);
        const std::string_view one = pattern.substr(0, pattern.find('}'));
        text += count == 1 ? std::string(one) : plural(one);
        pattern.remove_prefix(one.size() + 1);
    }
    return text;
}

void noteCount(std::int64_t count, std::string_view pattern) {
    if (count > 0) note(sentence(count, pattern));
}

void addCount(Sentences& list, std::int64_t count, std::string_view pattern) {
    if (count > 0) list.push_back(sentence(count, pattern));
}

void noteAll(const Sentences& list) {
    for (const std::string& text : list) note(text);
}

std::string selectionText(std::int64_t selected, std::int64_t live) {
    return counted(selected) + " of " + counted(live, "face") + " selected";
}

} // namespace polyfab
