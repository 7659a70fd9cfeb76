// SPDX-License-Identifier: GPL-3.0-or-later
#include "io/file_name.h"

#include <charconv>

namespace polyfab {
namespace {

/// The character that two digits behind a percent sign stand for; 0: none.
char codedAt(std::string_view digits) {
    unsigned char code = 0;
    const char* const end = digits.data() + digits.size();
    return digits.size() == 2 && std::from_chars(digits.data(), end, code, 16).ptr == end
               ? static_cast<char>(code)
               : '\0';
}

} // namespace

std::string withoutPercents(std::string_view name) {
    std::string plain;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char coded = name[i] == '%' ? codedAt(name.substr(i + 1, 2)) : '\0';
        plain += coded != '\0' ? coded : name[i];
        i += coded != '\0' ? 2 : 0;
    }
    return plain;
}

} // namespace polyfab
