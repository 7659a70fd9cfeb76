// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/json_pieces.h"

#include "io/print_number.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

namespace polyfab {

void JsonPieces::addString(const char* text) {
    using Json = nlohmann::json;
    put(Json(text).dump(-1, ' ', false, Json::error_handler_t::replace));
}

void JsonPieces::finish() {
    sink({buffer.data(), used});
    used = 0;
}

void JsonPieces::put(std::string_view text) {
    if (text.size() > buffer.size()) {
        finish();
        return sink(text);
    }
    std::copy(text.begin(), text.end(), roomFor(text.size()));
    used += text.size();
}

void JsonPieces::put(double value) {
    if (!std::isfinite(value)) return put("null");
    char* const out = roomFor(numberRoom);
    // The library's own digits, which are those of every other object that is printed.
    const char* const end = nlohmann::detail::to_chars(out, out + numberRoom, value);
    used += static_cast<std::size_t>(end - out);
}

void JsonPieces::put(std::int64_t value) {
    char* const out = roomFor(numberRoom);
    used += static_cast<std::size_t>(printInteger(out, value) - out);
}

/// At most as much as the buffer holds.
char* JsonPieces::roomFor(std::size_t size) {
    if (buffer.size() - used < size) finish();
    return buffer.data() + used;
}

} // namespace polyfab
