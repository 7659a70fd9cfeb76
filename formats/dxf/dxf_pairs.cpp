// SPDX-License-Identifier: GPL-3.0-or-later
// A value's kind follows from its group code: of text files it makes no difference, in binary ones
// it says how many bytes there are.
#include "formats/dxf/dxf_pairs.h"

#include "io/bytes.h"
#include "io/parse_number.h"

#include <algorithm>
#include <iterator>

namespace polyfab {
namespace {

constexpr std::string_view binaryMark("AutoCAD Binary DXF\r\n\x1a\0", 22);

enum class Kind { text, real, word, integer, wide, flag, chunk };

/// The codes up to and with `last` that no row above has.
struct Range {
    int last;
    Kind kind;
};

constexpr Range ranges[] = {
    {9, Kind::text},      {59, Kind::real},   {79, Kind::word},     {99, Kind::integer},
    {109, Kind::text},    {149, Kind::real},  {169, Kind::wide},    {209, Kind::word},
    {239, Kind::real},    {289, Kind::word},  {299, Kind::flag},    {309, Kind::text},
    {319, Kind::chunk},   {369, Kind::text},  {389, Kind::word},    {399, Kind::text},
    {409, Kind::word},    {419, Kind::text},  {429, Kind::integer}, {439, Kind::text},
    {459, Kind::integer}, {469, Kind::real},  {1003, Kind::text},   {1004, Kind::chunk},
    {1009, Kind::text},   {1059, Kind::real}, {1070, Kind::word},   {1071, Kind::integer},
};

Kind kindOf(int code) {
    const auto* const row = std::find_if(std::begin(ranges), std::end(ranges),
                                         [code](const Range& r) { return code <= r.last; });
    return row == std::end(ranges) ? Kind::text : row->kind;
}

std::string_view withoutBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::size_t sizeOf(Kind kind) {
    switch (kind) {
        case Kind::real:
        case Kind::wide:
            return 8;
        case Kind::integer:
            return 4;
        case Kind::word:
            return 2;
        default:
            return 1;
    }
}

/// A whole number of some bytes, lowest first, with its sign.
double wholeNumber(std::string_view bytes) {
    const int size = static_cast<int>(bytes.size());
    const int spare = 64 - 8 * size;
    const std::uint64_t value = ByteReader(bytes).fixed(size) << spare;
    return static_cast<double>(static_cast<std::int64_t>(value) >> spare);
}

} // namespace

bool isBinaryDxf(std::string_view beginning) { return beginning.starts_with(binaryMark); }

DxfPairs::DxfPairs(std::string_view file) : rest(file) {
    if (!isBinaryDxf(file)) return;
    rest.remove_prefix(binaryMark.size());
    // A first code of one byte is that of a section, or the 255 before a longer one.
    const bool narrow = rest.size() > 1 && (rest[0] == '\xff' || (rest[0] == 0 && rest[1] != 0));
    codeSize = narrow ? 1 : 2;
}

bool DxfPairs::line(std::string_view& text) {
    if (rest.empty()) return false;
    const std::size_t end = std::min(rest.find_first_of("\r\n"), rest.size());
    text = rest.substr(0, end);
    rest.remove_prefix(end);
    if (rest.starts_with("\r\n")) {
        rest.remove_prefix(2);
    } else if (!rest.empty()) {
        rest.remove_prefix(1);
    }
    return true;
}

bool DxfPairs::nextOfText(DxfPair& pair) {
    std::string_view code;
    if (!line(code) || !line(pair.text)) return false;
    code = withoutBlanks(code);
    pair.text = withoutBlanks(pair.text);
    const char* digits = code.empty() ? "" : code.data();
    std::int64_t value = 0;
    pair.code =
        parseInteger(digits, value) && value >= 0 && value <= 1071 ? static_cast<int>(value) : -1;
    pair.number = 0;
    if (pair.text.empty() || kindOf(pair.code) == Kind::text) return true;
    const char* number = pair.text.data();
    parseDecimal(number, pair.number);
    return true;
}

bool DxfPairs::take(std::size_t count, std::string_view& taken) {
    if (count > rest.size()) return false;
    taken = rest.substr(0, count);
    rest.remove_prefix(count);
    return true;
}

bool DxfPairs::takeCode(int& code) {
    std::string_view bytes;
    if (!take(codeSize, bytes)) return false;
    if (codeSize == 1 && bytes[0] == '\xff' && !take(2, bytes)) return false;
    code = static_cast<int>(ByteReader(bytes).fixed(static_cast<int>(bytes.size())));
    return true;
}

bool DxfPairs::nextOfBinary(DxfPair& pair) {
    if (!takeCode(pair.code)) return false;
    pair.text = {};
    pair.number = 0;
    const Kind kind = kindOf(pair.code);
    if (kind == Kind::text) {
        const std::size_t end = rest.find('\0');
        if (end == std::string_view::npos) return false;
        pair.text = withoutBlanks(rest.substr(0, end));
        rest.remove_prefix(end + 1);
        return true;
    }
    std::string_view bytes;
    if (!take(sizeOf(kind), bytes)) return false;
    if (kind == Kind::chunk) return take(static_cast<unsigned char>(bytes[0]), bytes);
    pair.number = kind == Kind::real ? ByteReader(bytes).real() : wholeNumber(bytes);
    return true;
}

} // namespace polyfab
