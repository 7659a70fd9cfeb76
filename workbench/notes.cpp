// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/notes.h"

#include "platform/platform.h"

#include <iterator>

namespace polyfab {
namespace {

std::string told;

} // namespace

void note(const std::string& text) {
    platform().note(text);
    told += (told.empty() ? "" : "; ") + text;
}

void noteInTitle(const std::string& text) {
    platform().setTitle(text);
    note(text);
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

std::string selectionText(std::int64_t selected, std::int64_t live) {
    return counted(selected) + " of " + counted(live, "face") + " selected";
}

} // namespace polyfab
