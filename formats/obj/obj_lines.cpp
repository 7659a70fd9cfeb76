// SPDX-License-Identifier: GPL-3.0-or-later
// The count looks at 64 characters at a time: one bit each for line ends and blanks, from which the
// length of a line and the number of its words follow without a loop over characters.
#include "formats/obj/obj_lines.h"

#include "io/read_file.h"

#include <algorithm>
#include <bit>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace polyfab {
namespace {

constexpr std::size_t blockSize = 64;
static_assert(PieceReader::slack >= 2 * blockSize && maxCountedLine < 2 * blockSize);
static_assert(PieceReader::maxKept >= maxObjLine);

/// Bit k tells about character k.
struct Block {
    std::uint64_t ends = 0;
    std::uint64_t blanks = 0; ///< line ends included
};

#ifdef __SSE2__
std::uint64_t bits(__m128i equal, unsigned shift) {
    return static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(equal))) << shift;
}

Block blockAt(const char* text) {
    const __m128i lineFeed = _mm_set1_epi8('\n');
    const __m128i carriageReturn = _mm_set1_epi8('\r');
    const __m128i blank = _mm_set1_epi8(' ');
    Block block;
    for (unsigned i = 0; i < blockSize; i += 16) {
        const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
        block.ends |=
            bits(_mm_or_si128(_mm_cmpeq_epi8(c, lineFeed), _mm_cmpeq_epi8(c, carriageReturn)), i);
        block.blanks |= bits(_mm_cmpeq_epi8(_mm_min_epu8(c, blank), c), i);
    }
    return block;
}
#else
Block blockAt(const char* text) {
    Block block;
    for (unsigned i = 0; i < blockSize; ++i) {
        block.ends |= std::uint64_t{isLineEnd(text[i])} << i;
        block.blanks |= std::uint64_t{isBlank(text[i])} << i;
    }
    return block;
}
#endif

/// The bits below `count`, which is 0 to 63.
constexpr std::uint64_t below(int count) { return (std::uint64_t{1} << count) - 1; }

/// The number of set bits. They are few, and without a processor instruction for it the library's
/// function takes longer.
int setBits(std::uint64_t bits) {
    int count = 0;
    for (; bits != 0; bits &= bits - 1) ++count;
    return count;
}

struct CountedKeyword {
    std::string_view word;
    std::int64_t ObjCounts::*counter;
};

constexpr CountedKeyword countedKeywords[] = {
    {"f", &ObjCounts::faces},    {"v", &ObjCounts::points}, {"vt", &ObjCounts::texcoords},
    {"vn", &ObjCounts::normals}, {"g", &ObjCounts::groups}, {"usemtl", &ObjCounts::materials},
};

/// Counts a line of at least two words, the first of which begins at `keyword`.
void countLine(const char* keyword, int words, ObjCounts& counts) {
    std::size_t length = 1;
    while (!isBlank(keyword[length])) ++length;
    for (const CountedKeyword& row : countedKeywords) {
        if (!sameKeyword({keyword, length}, row.word)) continue;
        ++(counts.*row.counter);
        if (row.counter == &ObjCounts::faces) counts.corners += words;
        return;
    }
}

} // namespace

bool sameKeyword(std::string_view word, std::string_view lower) {
    // Setting bit 5 makes a letter, and nothing else, that letter in lower case.
    return word.size() == lower.size()
           && std::equal(word.begin(), word.end(), lower.begin(),
                         [](char a, char b) { return (a | 0x20) == b; });
}

std::size_t countObjLines(std::string_view text, ObjCounts& counts) {
    constexpr int limit = maxCountedLine;
    const char* line = text.data();
    const char* const end = line + text.size();
    while (true) {
        const Block low = blockAt(line);
        std::uint64_t words = ~low.blanks & (low.blanks << 1 | 1);
        std::uint64_t furtherWords = 0;
        int length = std::countr_zero(low.ends);
        if (length < 64) {
            words &= below(length);
        } else {
            const Block high = blockAt(line + blockSize);
            length = std::min(64 + std::countr_zero(high.ends), limit);
            furtherWords =
                ~high.blanks & (high.blanks << 1 | low.blanks >> 63) & below(length - 64);
        }
        const int used = length + (length < limit);
        if (end - line < used) return static_cast<std::size_t>(line - text.data());
        const int count = setBits(words) + setBits(furtherWords);
        if (count >= 2) {
            const int start =
                words != 0 ? std::countr_zero(words) : 64 + std::countr_zero(furtherWords);
            countLine(line + start, count, counts);
        }
        line += used;
    }
}

std::size_t ObjLine::take(std::string_view from) {
    const std::string_view most = from.substr(0, maxObjLine);
    const auto end = std::find_if(most.begin(), most.end(), isLineEnd);
    const auto length = static_cast<std::size_t>(end - most.begin());
    if (end == most.end() && length < maxObjLine) return 0;
    set(most.substr(0, length));
    return length + (length < maxObjLine);
}

void ObjLine::set(std::string_view line) {
    text = line;
    starts.clear();
    bool inWord = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool blank = isBlank(text[i]);
        if (!blank && !inWord) starts.push_back(i);
        inWord = !blank;
        if (blank) text[i] = '\0';
    }
}

void ObjLine::dropComment() {
    const auto begins = [&](std::size_t start) { return text[start] == '#'; };
    if (starts.empty()) return;
    starts.erase(std::find_if(starts.begin() + 1, starts.end(), begins), starts.end());
}

std::string_view ObjLine::word(int k) const { return &text[starts[static_cast<std::size_t>(k)]]; }

std::string ObjLine::rest(int k) const { return from(starts[static_cast<std::size_t>(k)]); }

std::string ObjLine::whole() const { return from(0); }

std::string ObjLine::from(std::size_t start) const {
    std::string result = text.substr(start);
    std::replace(result.begin(), result.end(), '\0', ' ');
    return result;
}

} // namespace polyfab
