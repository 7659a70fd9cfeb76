// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/title.h"

#include "io/utf8.h"
#include "platform/platform.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

namespace polyfab {

std::string titleUpTo(int most) {
    std::string title = platform().title();
    int characters = 0;
    const auto end = std::find_if(title.begin(), title.end(), [&](char c) {
        return !continuesCharacter(c) && characters++ == most;
    });
    title.erase(end, title.end());
    return title;
}

SavedTitle::~SavedTitle() { platform().setTitle(saved); }

void showTitle(const char* format, ...) {
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    platform().setTitle(text);
}

} // namespace polyfab
